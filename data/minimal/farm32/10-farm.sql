INSERT INTO [Farm Details] ([Farm Name], [Current Season], [Effective Area], [Diary Units], [Financial Year], [Budget Year], [GST Start Date], [GST Rate], [GST Period])
VALUES ('Test Farm', 108, 10, 'M', #7/1/2007#, #7/1/2008#, #4/1/2007#, 15, 2);

INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (1, 'Monthly');
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (2, 'Two monthly');
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (6, 'Six monthly');
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (12, 'Yearly');

INSERT INTO [Account Codes] ([Account Code], [Account Name], [Show in Cashbk]) VALUES (6100, 'Cashbook', True);
