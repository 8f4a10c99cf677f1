-- The wage book: occupations with their pay rates and allowances, tax rates, deductions, contributions.

CREATE TABLE [EmployeeAwardType] (
    [EmployeetypeID] COUNTER PRIMARY KEY,
    [Employeetype] TEXT(30),
    [Unitofpay] TEXT(10)
);

CREATE TABLE [PaymentNames] (
    [PaymentNameID] COUNTER PRIMARY KEY,
    [PayUnitname] TEXT(30),
    [Calculation] SINGLE,
    [Salary] BIT
);

CREATE TABLE [TaxAllowName] (
    [TaxNameID] COUNTER PRIMARY KEY,
    [taxAllowancename] TEXT(30),
    [taxallowrate] SINGLE
);

CREATE TABLE [NonTaxAllowName] (
    [NonTaxNameID] COUNTER PRIMARY KEY,
    [NonTaxallowname] TEXT(30),
    [NonTaxRate] SINGLE
);

-- The three link tables have no key and no relation: an occupation's rows are written anew as a whole, and
-- rows whose item is gone fall out at the next save.
CREATE TABLE [PaymentTypes] (
    [PaymentNameID] LONG,
    [Order] LONG,
    [EmployeetypeID] LONG
);
CREATE INDEX [PaymentTypesOccupation] ON [PaymentTypes] ([EmployeetypeID]);

CREATE TABLE [TaxAllowTypes] (
    [TaxNameID] LONG,
    [Orderinlist] LONG,
    [EmployeetypeID] LONG
);
CREATE INDEX [TaxAllowTypesOccupation] ON [TaxAllowTypes] ([EmployeetypeID]);

CREATE TABLE [NonTaxAllowTypes] (
    [NonTaxNameID] LONG,
    [Order] LONG,
    [EmployeetypeID] LONG
);
CREATE INDEX [NonTaxAllowTypesOccupation] ON [NonTaxAllowTypes] ([EmployeetypeID]);

-- CountryPhone has no default: Null marks a rate that the user has added.
CREATE TABLE [TaxTypes] (
    [TaxTypeID] COUNTER PRIMARY KEY,
    [TaxName] TEXT(255) NOT NULL,
    [CountryPhone] LONG,
    [Order] LONG DEFAULT 0
);

CREATE TABLE [DeductNames] (
    [DeductNameID] COUNTER PRIMARY KEY,
    [DeductionName] TEXT(255),
    [Percentage] SINGLE,
    [LowerThreshold] CURRENCY,
    [UpperThreshold] CURRENCY,
    [MaxPercent] SINGLE,
    [CountryPhone] LONG DEFAULT 0,
    [Order] LONG
);

-- CountryPhone's default matters: the add does not set it, and a Null row would drop out of the list.
CREATE TABLE [ContributionNames] (
    [ContributionNameID] COUNTER PRIMARY KEY,
    [ContributionName] TEXT(255),
    [Percentage] SINGLE DEFAULT 0,
    [LowerThreshold] CURRENCY DEFAULT 0,
    [UpperThreshold] CURRENCY DEFAULT 0,
    [Amount] CURRENCY DEFAULT 0,
    [CountryPhone] LONG DEFAULT 0
);

CREATE TABLE [TaxSteps] (
    [TaxStepsID] COUNTER PRIMARY KEY,
    [upperlimit] CURRENCY,
    [taxrate] SINGLE,
    [taxtypeID] LONG,
    CONSTRAINT [TaxTypesTaxSteps] FOREIGN KEY ([taxtypeID]) REFERENCES [TaxTypes] ([TaxTypeID]) ON DELETE CASCADE
);
CREATE INDEX [TaxStepsType] ON [TaxSteps] ([taxtypeID]);

CREATE TABLE [ESCT] (
    [Salary] CURRENCY,
    [Rate] SINGLE
);

-- What the wage calculations of another module use: a rate, deduction or contribution in use cannot be deleted.
CREATE TABLE [EmployeeTaxTypes] (
    [TaxTypeID] LONG,
    CONSTRAINT [TaxTypesEmployeeTaxTypes] FOREIGN KEY ([TaxTypeID]) REFERENCES [TaxTypes] ([TaxTypeID])
);
CREATE INDEX [EmployeeTaxTypesType] ON [EmployeeTaxTypes] ([TaxTypeID]);

CREATE TABLE [EmployeeDeductions] (
    [DeductNameID] LONG,
    CONSTRAINT [DeductNamesEmployeeDeductions] FOREIGN KEY ([DeductNameID]) REFERENCES [DeductNames] ([DeductNameID])
);
CREATE INDEX [EmployeeDeductionsName] ON [EmployeeDeductions] ([DeductNameID]);

CREATE TABLE [EmployeeContributions] (
    [ContributionNameID] LONG,
    CONSTRAINT [ContributionNamesEmployeeContributions] FOREIGN KEY ([ContributionNameID]) REFERENCES [ContributionNames] ([ContributionNameID])
);
CREATE INDEX [EmployeeContributionsName] ON [EmployeeContributions] ([ContributionNameID]);
