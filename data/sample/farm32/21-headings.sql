-- Names that a farm has made its own.
UPDATE [Account Codes] SET [Account Name] = 'Deer & Velvet Stags', [EnglishAccountName] = 'Deer & Velvet Stags' WHERE [Account Code] = 1030;
UPDATE [Account Codes] SET [Account Name] = 'Shearers'' & Shed Expenses', [EnglishAccountName] = 'Shearers'' & Shed Expenses' WHERE [Account Code] = 4140;

UPDATE [Account Codes] INNER JOIN [Secondary Codes] ON [Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] SET [Secondary Codes].[Cached Name] = [Account Codes].[Account Name] & ' : ' & [Secondary Codes].[Name];
