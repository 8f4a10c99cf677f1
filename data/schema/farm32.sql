-- The main database: identity of the farm, chart of accounts, tax, stock and the budget's names.
-- Statements end with ";" at a line's end; a line that begins with "--" is a comment between statements.

CREATE TABLE [Farm Details] (
    [Farm Name] TEXT(50),
    [Address1] TEXT(50),
    [Address2] TEXT(50),
    [Address3] TEXT(50),
    [Phone] TEXT(25),
    [Fax] TEXT(25),
    [Email] TEXT(50),
    [Version] TEXT(20),
    [Diary Units] TEXT(1),
    [Effective Area] SINGLE,
    [Current Season] SHORT,
    [Financial Year] DATETIME,
    [Budget Year] DATETIME,
    [GST Start Date] DATETIME,
    [GST Rate] SINGLE,
    [GST Reg Number] TEXT(30),
    [GST Period] SHORT,
    [OD Interest Rate] SINGLE,
    [ODLimit] CURRENCY,
    [Budget Open Balance] CURRENCY,
    [Budget GST] BIT,
    [Bgt GST Account] LONG
);

CREATE TABLE [Map Layers] (
    [Season] TEXT(4),
    [Use] TEXT(1)
);

CREATE TABLE [Account Codes] (
    [Account Code] LONG PRIMARY KEY,
    [Account Name] TEXT(50),
    [EnglishAccountName] TEXT(50),
    [SpanishAccountName] TEXT(50),
    [GermanAccountName] TEXT(50),
    [PortugueseAccountName] TEXT(50),
    [Show in Cashbk] BIT,
    [GST Percentage] SINGLE,
    [TaxNumber] LONG,
    [IncomeTax] BIT,
    [Accountants Code] TEXT(8),
    [Account Level] TEXT(20),
    [Account Category ID] LONG,
    [Planner Use ID] LONG
);

CREATE TABLE [Account Categories] (
    [Account Category ID] LONG PRIMARY KEY,
    [Category Name] TEXT(50)
);

CREATE TABLE [Planner Use] (
    [Planner Use ID] LONG PRIMARY KEY,
    [Planner Use] TEXT(50)
);

CREATE TABLE [Secondary Codes] (
    [Secondary Codes ID] LONG PRIMARY KEY,
    [Main Code ID] LONG,
    [Name] TEXT(50),
    [Englishname] TEXT(50),
    [Spanishname] TEXT(50),
    [Portuguesename] TEXT(50),
    [Cached Name] TEXT(255),
    [AccountantsCode] TEXT(8),
    [TaxNumID] LONG
);
CREATE INDEX [SecondaryMainCode] ON [Secondary Codes] ([Main Code ID]);

CREATE TABLE [TransactionDetails] (
    [Account Code] LONG,
    [TaxReturnID] LONG DEFAULT 0,
    [PAYERtnID] LONG DEFAULT 0,
    [IncomeTaxRtnID] LONG DEFAULT 0
);
CREATE INDEX [TransactionAccount] ON [TransactionDetails] ([Account Code]);
CREATE INDEX [TransactionTaxReturn] ON [TransactionDetails] ([TaxReturnID]);
CREATE INDEX [TransactionPAYEReturn] ON [TransactionDetails] ([PAYERtnID]);
CREATE INDEX [TransactionIncomeTaxReturn] ON [TransactionDetails] ([IncomeTaxRtnID]);

CREATE TABLE [tbl no Enterprises] (
    [Code] LONG PRIMARY KEY,
    [Name] TEXT(28)
);

CREATE TABLE [Enterprises] (
    [Enterprise Codes] LONG,
    [Enterprise Name] TEXT(50)
);

CREATE TABLE [BudgetStart] (
    [Season] LONG,
    [BgtStartDate] DATETIME
);

CREATE TABLE [Budget Details] (
    [Account Code] LONG,
    [Description] TEXT(100)
);
CREATE INDEX [BudgetAccount] ON [Budget Details] ([Account Code]);
CREATE INDEX [BudgetDescription] ON [Budget Details] ([Description]);

CREATE TABLE [Tax Periods] (
    [Months] SHORT PRIMARY KEY,
    [Prompt] TEXT(50)
);

CREATE TABLE [TaxRates] (
    [TaxRateNumber] LONG PRIMARY KEY,
    [Rate %] SINGLE
);

CREATE TABLE [TaxTypes] (
    [TaxTypeID] COUNTER PRIMARY KEY,
    [TaxTypeName] TEXT(20),
    [TaxNumber] LONG,
    [TaxRateNumber] LONG,
    [IsExpense] BIT,
    [DisplayOrder] LONG,
    [Hidden] BIT,
    [Multiplier] LONG,
    [Country] LONG
);

CREATE TABLE [TaxReturns] (
    [TaxReturnID] COUNTER PRIMARY KEY,
    [StartDate] DATETIME,
    [RtnType] SHORT
);

-- No field of PayeInfo has a default: a Null makes the setting of the ini file apply.
CREATE TABLE [PayeInfo] (
    [PayeAccount] LONG,
    [WageAccount] LONG,
    [PaymentAccount] LONG,
    [AdjustAccount] LONG,
    [PayeFreq] LONG,
    [PayeStart] DATETIME,
    [PayeNonCash] BIT,
    [PayeAddressID] LONG,
    [TaxFreq] LONG,
    [ITaxStart] DATETIME
);

CREATE TABLE [Partners] (
    [PartnerID] COUNTER PRIMARY KEY,
    [PartnerName] TEXT(30),
    [PartnerGSTNum] TEXT(30),
    [PartnerDefault] BIT,
    [PartnerTaxRate] SINGLE
);

CREATE TABLE [Addresses] (
    [AddressID] COUNTER PRIMARY KEY,
    [BusName] TEXT(50),
    [BusinessFlag] BIT
);

CREATE TABLE [TaxRebates] (
    [RebateID] COUNTER PRIMARY KEY,
    [RebateName] TEXT(30) NOT NULL CONSTRAINT [RebateNameUnique] UNIQUE,
    [SecCode] LONG,
    [Rate] SINGLE,
    [IsQuantity] BIT,
    [Country] LONG
);

-- Rebates claimed on transactions, kept by another module: a rebate in use cannot be deleted.
CREATE TABLE [TransactionRebates] (
    [RebateID] LONG,
    CONSTRAINT [TaxRebatesTransactionRebates] FOREIGN KEY ([RebateID]) REFERENCES [TaxRebates] ([RebateID])
);
CREATE INDEX [TransactionRebatesRebate] ON [TransactionRebates] ([RebateID]);

CREATE TABLE [Stock Types] (
    [Type ID] LONG PRIMARY KEY,
    [Account Code] LONG,
    [Icon] TEXT(50)
);

-- No relation from [Stock Type ID] to [Stock Types]: the grid stores the tab's number, 0 on the first tab.
CREATE TABLE [Stock Class Names] (
    [Class ID] COUNTER PRIMARY KEY,
    [Class Name] TEXT(50) NOT NULL CONSTRAINT [ClassNameUnique] UNIQUE,
    [Stock Type ID] LONG,
    [Sex] TEXT(1),
    [Individual] BIT
);
CREATE INDEX [ClassStockType] ON [Stock Class Names] ([Stock Type ID]);

CREATE TABLE [Stock Details] (
    [Mob Details ID] COUNTER PRIMARY KEY,
    [Class ID] LONG,
    [Season] SHORT,
    [Number in mob] LONG
);
CREATE INDEX [StockDetailsClassSeason] ON [Stock Details] ([Class ID], [Season]);

-- The feed, budget and reconciliation tables know a stock class by its name, with no relation.
CREATE TABLE [Feed Demand] (
    [Stock Name] TEXT(50)
);
CREATE INDEX [FeedDemandName] ON [Feed Demand] ([Stock Name]);

CREATE TABLE [Feed Demand Profile] (
    [Class Name] TEXT(50)
);
CREATE INDEX [FeedDemandProfileName] ON [Feed Demand Profile] ([Class Name]);

CREATE TABLE [Feed Profile] (
    [Class Name] TEXT(50)
);
CREATE INDEX [FeedProfileName] ON [Feed Profile] ([Class Name]);

CREATE TABLE [Stock Reconciliations] (
    [Class Name] TEXT(50),
    [Season] SHORT,
    [Purchases] LONG,
    [Sales] LONG
);
CREATE INDEX [ReconciliationClassName] ON [Stock Reconciliations] ([Class Name]);

-- Brings the cached names over for headings whose name has changed.
CREATE PROCEDURE [qry cb collect Changed AccCodes] AS
UPDATE DISTINCTROW [Account Codes] INNER JOIN [Secondary Codes] ON [Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] SET [Secondary Codes].[Cached Name] = [Account Codes].[Account Name] & ' : ' & [Secondary Codes].[Name] WHERE [Secondary Codes].[Cached Name] Is Null Or [Secondary Codes].[Cached Name] <> [Account Codes].[Account Name] & ' : ' & [Secondary Codes].[Name];

-- Brings the accountant's code over to the heading's own secondary row.
CREATE PROCEDURE [qry_UpdateAccountantsCode] AS
UPDATE DISTINCTROW [Account Codes] INNER JOIN [Secondary Codes] ON [Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] SET [Secondary Codes].AccountantsCode = [Account Codes].[Accountants Code] WHERE [Secondary Codes].[Secondary Codes ID]=[Secondary Codes].[Main Code ID]*100;

-- Made anew by the program at each run; here so that a fresh file has it too.
CREATE PROCEDURE [qry Update Secondary heading names] AS
UPDATE DISTINCTROW [Account Codes] INNER JOIN [Secondary Codes] ON [Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] SET [Secondary Codes].[Cached Name] = [Account Codes].[Account Name] & ' : ' & [Secondary Codes].[Name];
