INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (1, 0);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (2, 15);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (3, 9);
