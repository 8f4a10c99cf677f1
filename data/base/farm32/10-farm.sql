-- A farm without a name: the name, the tax rate and the units are asked for at the first start.
INSERT INTO [Farm Details] ([Version], [Current Season], [Financial Year], [Budget Year], [GST Period], [OD Interest Rate], [ODLimit], [Budget Open Balance], [Bgt GST Account])
VALUES ('5.00', {shortseason}, #7/1/{season}#, #7/1/{season}#, 2, 0, 0, 0, 4670);

-- The crop layers of the season and the next four, as the map module makes them; each with its budget year.
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('{shortseason}', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('{shortseason+1}', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('{shortseason+2}', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('{shortseason+3}', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('{shortseason+4}', 'C');

INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES ({season}, #7/1/{season}#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES ({season+1}, #7/1/{season+1}#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES ({season+2}, #7/1/{season+2}#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES ({season+3}, #7/1/{season+3}#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES ({season+4}, #7/1/{season+4}#);

INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (1, 'Monthly');
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (2, 'Two monthly');
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (6, 'Six monthly');
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (12, 'Yearly');

INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (1, 'Livestock Income');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (2, 'Produce Income');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (3, 'Other Income');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (4, 'Livestock Purchases');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (5, 'Working Expenses');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (6, 'Labour');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (7, 'Administration');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (8, 'Standing Charges');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (9, 'Capital & Development');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (10, 'Finance');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (11, 'Tax');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (12, 'Bank & Cash');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (13, 'Personal');
INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) VALUES (14, 'Year End');

-- Uses 1 and 2 need a planner tab, the account level of their headings.
INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) VALUES (1, 'Stock');
INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) VALUES (2, 'Crop');
INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) VALUES (3, 'Income');
INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) VALUES (4, 'Expense');
INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) VALUES (5, 'Capital');
INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) VALUES (6, 'Not used');

INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (1, '--- none ---');

INSERT INTO [Stock Types] ([Type ID], [Account Code], [Icon]) VALUES (1, 1010, 'sheep.png');
INSERT INTO [Stock Types] ([Type ID], [Account Code], [Icon]) VALUES (2, 1020, 'cattle.png');
INSERT INTO [Stock Types] ([Type ID], [Account Code], [Icon]) VALUES (3, 1030, 'deer.png');
INSERT INTO [Stock Types] ([Type ID], [Account Code], [Icon]) VALUES (4, 1040, 'dairy.png');
INSERT INTO [Stock Types] ([Type ID], [Account Code], [Icon]) VALUES (5, 1050, 'other.png');
