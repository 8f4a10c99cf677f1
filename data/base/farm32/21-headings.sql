-- The headings take their names in the installation's language.
UPDATE [Account Codes] SET [Account Name] = [{language}AccountName];

-- Each heading's own secondary row.
INSERT INTO [Secondary Codes] ([Secondary Codes ID], [Main Code ID], [Cached Name], [AccountantsCode], [TaxNumID])
SELECT [Account Code] * 100, [Account Code], [Account Name] & ' : ', [Accountants Code], [TaxNumber] FROM [Account Codes];

-- The headings of the wage tax, under the numbers that the settings have by default.
INSERT INTO [Secondary Codes] ([Secondary Codes ID], [Main Code ID], [Name], [Englishname], [Spanishname], [Portuguesename], [TaxNumID]) VALUES (401001, 4010, 'Wage Account', 'Wage Account', 'Wage Account', 'Wage Account', 6);
INSERT INTO [Secondary Codes] ([Secondary Codes ID], [Main Code ID], [Name], [Englishname], [Spanishname], [Portuguesename], [TaxNumID]) VALUES (401002, 4010, '{paye} Account', '{paye} Account', '{paye} Account', '{paye} Account', 6);
INSERT INTO [Secondary Codes] ([Secondary Codes ID], [Main Code ID], [Name], [Englishname], [Spanishname], [Portuguesename], [TaxNumID]) VALUES (401005, 4010, '{paye} Payment Account', '{paye} Payment Account', '{paye} Payment Account', '{paye} Payment Account', 6);
INSERT INTO [Secondary Codes] ([Secondary Codes ID], [Main Code ID], [Name], [Englishname], [Spanishname], [Portuguesename], [TaxNumID]) VALUES (401008, 4010, 'Adjust Account', 'Adjust Account', 'Adjust Account', 'Adjust Account', 6);

UPDATE [Account Codes] INNER JOIN [Secondary Codes] ON [Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] SET [Secondary Codes].[Cached Name] = [Account Codes].[Account Name] & ' : ' & [Secondary Codes].[Name];

-- The tax office; the settings name it as number 1.
INSERT INTO [Addresses] ([AddressID], [BusName], [BusinessFlag]) VALUES (1, '{taxoffice}', True);

INSERT INTO [TaxRebates] ([RebateID], [RebateName], [SecCode], [Rate], [IsQuantity], [Country]) VALUES (1, 'Fuel Tax Credit - Off Road', 443000, 0.508, True, 61);
INSERT INTO [TaxRebates] ([RebateID], [RebateName], [SecCode], [Rate], [IsQuantity], [Country]) VALUES (2, 'Fuel Tax Credit - On Road', 443000, 0.203, True, 61);
INSERT INTO [TaxRebates] ([RebateID], [RebateName], [SecCode], [Rate], [IsQuantity], [Country]) VALUES (3, 'Diesel Generation', 447000, 0.508, True, 61);
