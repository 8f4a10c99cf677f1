INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (1, 0);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (2, 23);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (3, 14);
