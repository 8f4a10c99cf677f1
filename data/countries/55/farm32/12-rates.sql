INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (1, 0);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (2, 17);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (3, 12);
INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (4, 7);
