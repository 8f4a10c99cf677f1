-- Tax on the employer's superannuation contribution, by salary up to the level.
INSERT INTO [ESCT] ([Salary], [Rate]) VALUES (18720, 0.105);
INSERT INTO [ESCT] ([Salary], [Rate]) VALUES (64200, 0.175);
INSERT INTO [ESCT] ([Salary], [Rate]) VALUES (93720, 0.3);
INSERT INTO [ESCT] ([Salary], [Rate]) VALUES (216000, 0.33);
INSERT INTO [ESCT] ([Salary], [Rate]) VALUES (999999999, 0.39);
