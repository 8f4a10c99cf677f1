-- Rates that the farm has added: no country.
INSERT INTO [TaxTypes] ([TaxTypeID], [TaxName]) VALUES (40, 'Special code - Hemi');
INSERT INTO [TaxSteps] ([TaxStepsID], [upperlimit], [taxrate], [taxtypeID]) VALUES (100, 53500, 14.6, 40);
INSERT INTO [TaxSteps] ([TaxStepsID], [upperlimit], [taxrate], [taxtypeID]) VALUES (101, 999999999, 30, 40);
INSERT INTO [TaxTypes] ([TaxTypeID], [TaxName]) VALUES (41, 'School holiday helpers');

INSERT INTO [DeductNames] ([DeductNameID], [DeductionName], [Percentage], [LowerThreshold], [UpperThreshold], [MaxPercent], [CountryPhone], [Order]) VALUES (30, 'Farm Store Account', 0, 0, 0, 25, 0, 0);
INSERT INTO [DeductNames] ([DeductNameID], [DeductionName], [Percentage], [LowerThreshold], [UpperThreshold], [MaxPercent], [CountryPhone], [Order]) VALUES (31, 'Hunting & Fishing Club', 0.5, 0, 0, 1, 0, 0);
INSERT INTO [ContributionNames] ([ContributionNameID], [ContributionName], [Percentage], [LowerThreshold], [UpperThreshold], [Amount], [CountryPhone]) VALUES (30, 'Boot Fund', 0, 0, 0, 6.25, 0);
INSERT INTO [ContributionNames] ([ContributionNameID], [ContributionName], [Percentage], [LowerThreshold], [UpperThreshold], [Amount], [CountryPhone]) VALUES (31, 'Manager''s Super Scheme', 4.5, 20000, 120000, 0, 0);

INSERT INTO [EmployeeAwardType] ([EmployeetypeID], [Employeetype], [Unitofpay]) VALUES (10, 'Head Shepherd', 'Fortnight');
INSERT INTO [EmployeeAwardType] ([EmployeetypeID], [Employeetype], [Unitofpay]) VALUES (11, 'Herd Manager', 'Year');
INSERT INTO [EmployeeAwardType] ([EmployeetypeID], [Employeetype], [Unitofpay]) VALUES (12, 'Relief Milker', 'Milking');
INSERT INTO [EmployeeAwardType] ([EmployeetypeID], [Employeetype], [Unitofpay]) VALUES (13, 'Tractor Driver', 'Hour');
INSERT INTO [EmployeeAwardType] ([EmployeetypeID], [Employeetype], [Unitofpay]) VALUES (14, 'Fencer', 'Hour');
INSERT INTO [EmployeeAwardType] ([EmployeetypeID], [Employeetype], [Unitofpay]) VALUES (15, 'Shearers'' Cook', 'Day');

INSERT INTO [PaymentNames] ([PaymentNameID], [PayUnitname], [Calculation], [Salary]) VALUES (20, 'Per Milking', 1, False);
INSERT INTO [PaymentNames] ([PaymentNameID], [PayUnitname], [Calculation], [Salary]) VALUES (21, 'Lambing Beat', 1.25, False);
INSERT INTO [PaymentNames] ([PaymentNameID], [PayUnitname], [Calculation], [Salary]) VALUES (22, 'Calving Bonus', 1, False);
INSERT INTO [PaymentNames] ([PaymentNameID], [PayUnitname], [Calculation], [Salary]) VALUES (23, 'Manager''s Salary', 1, True);
INSERT INTO [TaxAllowName] ([TaxNameID], [taxAllowancename], [taxallowrate]) VALUES (10, 'Early Start', 3.75);
INSERT INTO [TaxAllowName] ([TaxNameID], [taxAllowancename], [taxallowrate]) VALUES (11, 'Chainsaw', 12.5);
INSERT INTO [NonTaxAllowName] ([NonTaxNameID], [NonTaxallowname], [NonTaxRate]) VALUES (10, 'Own Motorbike', 35);
INSERT INTO [NonTaxAllowName] ([NonTaxNameID], [NonTaxallowname], [NonTaxRate]) VALUES (11, 'Dog Food', 11.25);
