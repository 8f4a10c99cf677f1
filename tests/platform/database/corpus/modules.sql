INSERT INTO Setup VALUES ('FARM', 'Stock', 'S', 5, 2);
INSERT INTO Setup VALUES ('farm', 'Farm', 'F', 0, 1);
INSERT INTO Setup VALUES ('Farm', 'GST', 'G', 9, 3);
INSERT INTO Setup VALUES ('ALL', 'About', 'A', 10, 1);
