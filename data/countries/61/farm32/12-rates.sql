INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (1, 0);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (2, 10);

-- Business activity statements are quarterly.
INSERT INTO [Tax Periods] ([Months], [Prompt]) VALUES (3, 'Three monthly');
