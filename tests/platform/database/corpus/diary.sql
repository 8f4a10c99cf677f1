INSERT INTO AnimalMultipleList VALUES (3);
INSERT INTO AnimalMultipleList VALUES (1);
INSERT INTO AnimalMultipleList VALUES (3);
INSERT INTO [Field Definition] ([Field Caption], Unit, Equation) VALUES ('Height', 'cm', 'h');
