-- A mixed farm in the hills of Canterbury, New Zealand: sheep, beef, deer, a small dairy herd and crops.
UPDATE [Farm Details] SET [Farm Name] = 'Kōwhai Downs', [Address1] = '418 Rātā Valley Road', [Address2] = 'RD 3', [Address3] = 'Marewa 7483',
    [Phone] = '03 555 0142', [Fax] = '03 555 0143', [Email] = 'office@kowhaidowns.example', [Diary Units] = 'M', [Effective Area] = 412.5,
    [GST Start Date] = #11/1/2023#, [GST Rate] = 15, [GST Reg Number] = '48-213-907', [GST Period] = 2,
    [OD Interest Rate] = 9.85, [ODLimit] = -150000, [Budget Open Balance] = -42350.75, [Budget GST] = True, [Bgt GST Account] = 4670;

-- Layers of five seasons: C crops, S soils, P paddocks, W water.
DELETE * FROM [Map Layers];
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('122', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('122', 'P');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('122', 'S');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('123', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('123', 'P');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('124', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('124', 'P');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('124', 'W');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('125', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('125', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('125', 'P');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('126', 'C');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('126', 'P');
INSERT INTO [Map Layers] ([Season], [Use]) VALUES ('126', 'S');

DELETE * FROM [BudgetStart];
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES (2022, #7/1/2022#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES (2023, #7/1/2023#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES (2024, #7/1/2024#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES (2025, #7/1/2025#);
INSERT INTO [BudgetStart] ([Season], [BgtStartDate]) VALUES (2026, #7/1/2026#);

INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (2, 'Breeding Ewes');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (3, 'Lamb Finishing');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (4, 'Beef Cows');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (5, 'Bull Beef');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (6, 'Velvet & Venison');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (7, 'Dairy Herd');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (8, 'Heifer Grazing');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (9, 'Wheat');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (10, 'Barley');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (11, 'Clover Seed');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (13, 'Mānuka Honey');
INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (14, 'Farm Stay');

-- Codes up to 96000 belong to other lists of the suite.
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (95010, 'Overheads');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96000, 'Season enterprises');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96001, 'Wheat - Front Terrace');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96002, 'Barley - Airstrip');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96003, 'White Clover - River Flat');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96004, 'Kale - Winter Cows');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96005, 'Fodder Beet - Bulls');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96006, 'Ryegrass Seed - O''Brien''s Block');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96007, 'Lucerne & Plantain');
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96008, Null);
INSERT INTO [Enterprises] ([Enterprise Codes], [Enterprise Name]) VALUES (96009, 'Garden Peas - Tōtara Flat');

-- The first entity carries the farm's name and number. The program keeps an apostrophe in a name as a backtick.
INSERT INTO [Partners] ([PartnerID], [PartnerName], [PartnerGSTNum], [PartnerDefault], [PartnerTaxRate]) VALUES (1, 'Kōwhai Downs', '48-213-907', True, 28);
INSERT INTO [Partners] ([PartnerID], [PartnerName], [PartnerGSTNum], [PartnerDefault], [PartnerTaxRate]) VALUES (2, 'Dan O`Brien', '31-770-456', False, 33);
INSERT INTO [Partners] ([PartnerID], [PartnerName], [PartnerGSTNum], [PartnerDefault], [PartnerTaxRate]) VALUES (3, 'Mere Rangihuna', '52-118-064', False, 30);
INSERT INTO [Partners] ([PartnerID], [PartnerName], [PartnerGSTNum], [PartnerDefault], [PartnerTaxRate]) VALUES (5, 'Rātā Valley Family Trust', '90-402-331', False, 39);

INSERT INTO [PayeInfo] ([PayeAccount], [WageAccount], [PaymentAccount], [AdjustAccount], [PayeFreq], [PayeStart], [PayeNonCash], [PayeAddressID], [TaxFreq], [ITaxStart])
VALUES (401002, 401001, 401005, 401008, 1, #11/1/2023#, True, 1, 12, #4/1/2023#);

INSERT INTO [TaxRebates] ([RebateID], [RebateName], [SecCode], [Rate], [IsQuantity], [Country]) VALUES (4, 'Excise Refund - Petrol', 443002, 0.77, True, 64);
INSERT INTO [TaxRebates] ([RebateID], [RebateName], [SecCode], [Rate], [IsQuantity], [Country]) VALUES (5, 'Road User Charges Off Road', 445003, 0.076, True, 64);
INSERT INTO [TaxRebates] ([RebateID], [RebateName], [SecCode], [Rate], [IsQuantity], [Country]) VALUES (6, 'Donation Credit', 473000, 33.33, False, 64);
