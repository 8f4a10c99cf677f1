-- The pages of each edition, by its key in the module catalogue; ALL stands in for a key that has none.
-- The fourth row is the tax page in every list: the program gives that row the name of the tax.
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Farm', 'F', 0, 1);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Headings', 'H', 10, 2);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Enterprises', 'E', 2, 3);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'GST', 'G', 9, 4);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Planner', 'P', 4, 5);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Taxation', 'X', 5, 6);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Stock', 'S', 6, 7);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'Wages', 'W', 8, 8);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('ALL', 'About', 'A', 7, 9);

INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Farm', 'F', 0, 1);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Headings', 'H', 10, 2);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Enterprises', 'E', 2, 3);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'GST', 'G', 9, 4);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Planner', 'P', 4, 5);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Taxation', 'X', 5, 6);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Stock', 'S', 6, 7);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'Wages', 'W', 8, 8);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('FARM', 'About', 'A', 7, 9);

INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'Business', 'B', 0, 1);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'Headings', 'H', 10, 2);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'Enterprises', 'E', 2, 3);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'GST', 'G', 9, 4);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'Planner', 'P', 4, 5);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'Taxation', 'X', 5, 6);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'Wages', 'W', 8, 7);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('BUSINESS', 'About', 'A', 7, 8);

INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'Club', 'C', 0, 1);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'Headings', 'H', 10, 2);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'Enterprises', 'E', 2, 3);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'GST', 'G', 9, 4);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'Taxation', 'X', 5, 5);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'Wages', 'W', 8, 6);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('CB_WAGE_PAY', 'About', 'A', 7, 7);

INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('DIARY', 'Farm', 'F', 0, 1);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('DIARY', 'Enterprises', 'E', 2, 2);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('DIARY', 'Stock', 'S', 6, 3);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('DIARY', 'GST', 'G', 9, 4);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('DIARY', 'Planner', 'P', 4, 5);
INSERT INTO [Setup] ([modules], [Name], [Key], [Frame], [Order]) VALUES ('DIARY', 'About', 'A', 7, 6);
