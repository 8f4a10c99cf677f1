#include "config/installation_fixture.h"

#include "platform/runtime/dates.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/services.h"

#include <utility>

namespace quillary::config {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

// What the tables must refuse, and what they must let pass, whatever the rows are.
TEST_F(InstallationTest, SchemaKeepsItsRules) {
    Make(InstallationLevel::Empty);
    struct Case {
        const char* database;
        const char* statement;
        int number;
    };
    const Case cases[] = {
        {"farm", "INSERT INTO [Stock Class Names] ([Class Name]) VALUES ('Ewes')", 0},
        {"farm", "INSERT INTO [Stock Class Names] ([Class Name]) VALUES ('EWES')", 3022},
        {"farm", "INSERT INTO [Stock Class Names] ([Sex]) VALUES ('F')", 3314},
        {"farm", "INSERT INTO [Account Codes] ([Account Code]) VALUES (6100)", 0},
        {"farm", "INSERT INTO [Account Codes] ([Account Code]) VALUES (6100)", 3022},
        {"farm", "INSERT INTO [Secondary Codes] ([Secondary Codes ID]) VALUES (610000)", 0},
        {"farm", "INSERT INTO [Secondary Codes] ([Secondary Codes ID]) VALUES (610000)", 3022},
        {"farm", "INSERT INTO [tbl no Enterprises] ([Code], [Name]) VALUES (1, '--- none ---')", 0},
        {"farm", "INSERT INTO [tbl no Enterprises] ([Code]) VALUES (1)", 3022},
        {"farm", "INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (1, 15)", 0},
        {"farm", "INSERT INTO [TaxRates] ([TaxRateNumber], [Rate %]) VALUES (1, 10)", 3022},
        {"farm", "INSERT INTO [TaxRebates] ([RebateName]) VALUES ('Fuel')", 0},
        {"farm", "INSERT INTO [TaxRebates] ([RebateName]) VALUES ('fuel')", 3022},
        {"farm", "INSERT INTO [TaxRebates] ([Rate]) VALUES (1)", 3314},
        {"farm", "INSERT INTO [TransactionRebates] ([RebateID]) VALUES (1)", 0},
        {"farm", "INSERT INTO [TransactionRebates] ([RebateID]) VALUES (77)", 3201},
        {"farm", "DELETE * FROM [TaxRebates]", 3200},
        // Relations that are not kept on purpose.
        {"farm", "INSERT INTO [TaxTypes] ([TaxRateNumber], [TaxNumber]) VALUES (0, 1)", 0},
        {"farm", "INSERT INTO [TaxTypes] ([TaxRateNumber], [TaxNumber]) VALUES (0, 1)", 0},
        {"farm", "INSERT INTO [TransactionDetails] ([Account Code], [TaxReturnID]) VALUES (1, 99)", 0},
        {"farm", "UPDATE [Stock Class Names] SET [Stock Type ID] = 0", 0},
        {"farm", "INSERT INTO [PayeInfo] ([PayeAccount], [PayeAddressID]) VALUES (401001, 0)", 0},
        {"wage", "INSERT INTO [TaxTypes] ([TaxName]) VALUES ('Own rate')", 0},
        {"wage", "INSERT INTO [TaxTypes] ([Order]) VALUES (1)", 3314},
        {"wage", "INSERT INTO [TaxSteps] ([upperlimit], [taxrate], [taxtypeID]) VALUES (100, 10.5, 1)", 0},
        {"wage", "INSERT INTO [EmployeeTaxTypes] ([TaxTypeID]) VALUES (1)", 0},
        {"wage", "DELETE * FROM [TaxTypes]", 3200},
        {"wage", "DELETE * FROM [EmployeeTaxTypes]", 0},
        {"wage", "DELETE * FROM [TaxTypes]", 0}, // the steps go with the rate
        {"wage", "INSERT INTO [DeductNames] ([DeductionName]) VALUES ('Rent')", 0},
        {"wage", "INSERT INTO [EmployeeDeductions] ([DeductNameID]) VALUES (1)", 0},
        {"wage", "DELETE * FROM [DeductNames]", 3200},
        {"wage", "INSERT INTO [ContributionNames] ([ContributionName]) VALUES ('Super')", 0},
        {"wage", "INSERT INTO [EmployeeContributions] ([ContributionNameID]) VALUES (1)", 0},
        {"wage", "DELETE * FROM [ContributionNames]", 3200},
        {"diary", "INSERT INTO [Field Definition] ([Field Caption], [Unit]) VALUES ('Rain', 'mm')", 3314},
        {"diary", "INSERT INTO [AnimalMultipleList] ([MobID]) VALUES (4711)", 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ErrorOf(c.database, c.statement), c.number) << c.statement;
    }
    struct Query {
        const char* database;
        const char* sql;
        Strings rows;
    };
    const Query queries[] = {
        {"wage", "SELECT Count(*) FROM [TaxSteps]", {"0"}},
        {"wage", "SELECT CountryPhone, Amount FROM [ContributionNames]", {"0|0"}},
        {"wage", "SELECT CountryPhone, Percentage FROM [DeductNames]", {"0|"}},
        {"farm", "SELECT WageAccount, PayeNonCash, PayeStart FROM [PayeInfo]", {"|0|"}},
        {"farm", "SELECT PAYERtnID, IncomeTaxRtnID FROM [TransactionDetails]", {"0|0"}},
        {"farm", "SELECT [Country] FROM [TaxTypes] WHERE TaxTypeID = 1", {""}},
    };
    for (const Query& q : queries) {
        EXPECT_EQ(Rows(q.database, q.sql), q.rows) << q.sql;
    }
    for (const char* name : {"qry cb collect Changed AccCodes", "qry_UpdateAccountantsCode"}) {
        EXPECT_EQ(ErrorOf("farm", name), 0) << name;
    }
}

TEST_F(InstallationTest, EmptyHasTheCatalogueAlone) {
    Make(InstallationLevel::Empty);
    for (const char* database : {"farm", "wage", "diary", "modules"}) {
        for (const auto& table : Db(database).TableDefs()) {
            const bool catalogue =
                table.name == "Catalogue" || table.name == "MenuEntries" || table.name == "HelpContexts";
            EXPECT_EQ(Rows(database, "SELECT * FROM [" + table.name + "]").empty(), !catalogue) << table.name;
        }
    }
    const std::string folder = folder_.string();
    EXPECT_EQ(Ini(), "[QUILLARY]\nProgramDirectory=" + folder + "/program\nDataRoot=" + folder +
                         "/data\nDataFileName=" + folder + "/data/Farm32.mdb\nDiaryFileName=" + folder +
                         "/data/Diary.mdb\nWageFileName=" + folder +
                         "/data/Wage32.mdb\nModuleFileName=" + folder + "/common/Modules.mdb\n");
    EXPECT_EQ(Rows("modules", "SELECT ModuleNumber, ModuleKey, ProgramPath FROM Catalogue"),
              Strings{"14|FARM|" + folder + "/program"});
    for (const char* file :
         {"program/Resources/sheep.png", "program/Help/QYFarm/index.html", "program/titletle.jpg"}) {
        EXPECT_TRUE(fs::exists(folder_ / file)) << file;
    }
}

TEST_F(InstallationTest, MinimalIsTheScenariosFarm) {
    Make(InstallationLevel::Minimal);
    EXPECT_EQ(Rows("farm", "SELECT * FROM [Farm Details]"),
              Strings{"Test Farm||||||||M|10|108|2007-07-01|2008-07-01|2007-04-01|15||2||||0|"});
    EXPECT_EQ(
        Rows("modules", "SELECT [modules], [Name], [Key], [Frame] FROM Setup ORDER BY [Order]"),
        (Strings{"ALL|Farm|F|0", "ALL|Headings|H|10", "ALL|Enterprises|E|2", "ALL|GST|G|9", "ALL|Planner|P|4",
                 "ALL|Taxation|X|5", "ALL|Stock|S|6", "ALL|Wages|W|8", "ALL|About|A|7"}));
    EXPECT_EQ(Rows("farm", "SELECT * FROM [Tax Periods]"),
              (Strings{"1|Monthly", "2|Two monthly", "6|Six monthly", "12|Yearly"}));
    EXPECT_EQ(
        Rows("farm",
             "SELECT [Account Code], [Account Name], [Show in Cashbk], [IncomeTax] FROM [Account Codes]"),
        Strings{"6100|Cashbook|-1|0"});
    EXPECT_TRUE(Ini().ends_with("\n\n[TAX]\nValueAddedTax=Y\n"));
}

// Each edition and country: pages, headings and tax types that fit together.
TEST_F(InstallationTest, NewInstallationsAreWholeInEveryEditionAndCountry) {
    struct Country {
        std::int32_t code;
        const char* language;
        const char* wages;
        const char* standardRate;
    };
    const Country countries[] = {{kNewZealand, "English", "Wages", "15"},
                                 {kAustralia, "English", "Wages", "10"},
                                 {kBrazil, "Portuguese", "Salários", "17"},
                                 {kUruguay, "Spanish", "Salarios", "23"}};
    const std::int32_t editions[] = {kFarmEdition, kBusinessEdition, kClubEdition, kDiaryEdition};
    for (int i = 0; i < 4; ++i) {
        const Country& country = countries[i];
        const std::int32_t edition = editions[i];
        SCOPED_TRACE(country.code);
        CloseAll();
        layout_ = ScenarioLayout(folder_ / std::to_string(i));
        Make(InstallationLevel::New, edition, country.code, 2025);
        const std::string key(EditionKey(edition));
        EXPECT_EQ(Rows("modules", "SELECT ModuleNumber, ModuleKey FROM Catalogue"),
                  Strings{std::to_string(edition) + "|" + key});
        for (const char* other : {"ALL", "FARM", "BUSINESS", "CB_WAGE_PAY", "DIARY"}) {
            const auto frames =
                Rows("modules", std::string("SELECT [Frame], [Key] FROM Setup WHERE [modules] = '") + other +
                                    "' ORDER BY [Order]");
            ASSERT_GE(frames.size(), 6u) << other;
            EXPECT_EQ(frames[3], "9|G") << other; // the fourth tab takes the name of the tax
            EXPECT_EQ(Rows("modules", std::string("SELECT [Key] FROM Setup WHERE [modules] = '") + other +
                                          "' GROUP BY [Key]")
                          .size(),
                      frames.size())
                << other;
        }
        EXPECT_EQ(Rows("farm", "SELECT [Farm Name], [GST Rate], [Diary Units], [Current Season], [Financial "
                               "Year] FROM [Farm Details]"),
                  Strings{"|||125|2025-07-01"});
        EXPECT_EQ(Rows("farm", "SELECT [Season], [Use] FROM [Map Layers]"),
                  (Strings{"125|C", "126|C", "127|C", "128|C", "129|C"}));
        EXPECT_EQ(Rows("farm", "SELECT Max([Season]), Max([BgtStartDate]) FROM [BudgetStart]"),
                  Strings{"2029|2029-07-01"});
        EXPECT_EQ(Rows("farm", "SELECT [Account Name] FROM [Account Codes] WHERE [Account Code] = 4010"),
                  Strings{country.wages});
        EXPECT_EQ(
            Rows("farm", "SELECT [Cached Name] FROM [Secondary Codes] WHERE [Secondary Codes ID] = 401000"),
            Strings{std::string(country.wages) + " : "});
        EXPECT_EQ(Rows("farm", "SELECT [Rate %] FROM TaxRates WHERE TaxRateNumber = 2"),
                  Strings{country.standardRate});
        const std::string code = std::to_string(country.code);
        // Each heading's tax type is one of the country's, and each type's rate is there.
        EXPECT_EQ(Rows("farm", "SELECT [Account Code] FROM [Account Codes] WHERE [TaxNumber] NOT IN (SELECT "
                               "[TaxNumber] FROM TaxTypes WHERE Hidden = False AND Country = " +
                                   code + ")"),
                  Strings{});
        EXPECT_EQ(Rows("farm", "SELECT TaxTypeID FROM TaxTypes WHERE Country = " + code +
                                   " AND TaxRateNumber NOT IN (SELECT TaxRateNumber FROM TaxRates)"),
                  Strings{});
        EXPECT_EQ(Rows("farm",
                       "SELECT [Account Level] FROM [Stock Types] INNER JOIN [Account Codes] ON [Stock "
                       "Types].[Account Code] = [Account Codes].[Account Code] ORDER BY [Type ID]"),
                  (Strings{"Sheep", "Cattle", "Deer", "Dairy", "Other"}));
        EXPECT_FALSE(Rows("wage", "SELECT TaxTypeID FROM TaxTypes WHERE CountryPhone = " + code).empty());
        EXPECT_FALSE(
            Rows("wage", "SELECT DeductNameID FROM DeductNames WHERE CountryPhone = " + code).empty());
        EXPECT_EQ(Rows("wage", "SELECT Rate FROM ESCT WHERE Rate >= 1"),
                  Strings{}); // shares, shown as percent
        EXPECT_NE(Ini().find("\nCountry=" + code + "\nLanguage=" + country.language + "\n"),
                  std::string::npos);
    }
}

TEST_F(InstallationTest, SampleFarmFitsTogether) {
    Make(InstallationLevel::Sample);
    // Rows that point at nothing, for each link between the tables.
    const std::pair<const char*, const char*> none[] = {
        {"farm", "SELECT TransactionDetails.[Account Code] FROM TransactionDetails LEFT JOIN [Secondary "
                 "Codes] ON TransactionDetails.[Account Code] = [Secondary Codes].[Secondary Codes ID] WHERE "
                 "[Secondary Codes].[Secondary Codes ID] Is Null"},
        {"farm", "SELECT [Secondary Codes ID] FROM [Secondary Codes] LEFT JOIN [Account Codes] ON [Secondary "
                 "Codes].[Main Code ID] = [Account Codes].[Account Code] WHERE [Account Codes].[Account "
                 "Code] Is Null OR [Secondary Codes ID] \\ 100 <> [Main Code ID]"},
        {"farm", "SELECT [Secondary Codes ID] FROM [Secondary Codes] INNER JOIN [Account Codes] ON "
                 "[Secondary Codes].[Main Code ID] = [Account Codes].[Account Code] WHERE [Cached Name] Is "
                 "Null OR [Cached Name] <> [Account Name] & ' : ' & [Name]"},
        {"farm", "SELECT [Account Code] FROM [Account Codes] WHERE [Account Name] Is Null OR ([Planner Use "
                 "ID] <= 2 AND ([Account Level] Is Null OR [Accountants Code] Is Null)) OR [Account Category "
                 "ID] NOT IN (SELECT [Account Category ID] FROM [Account Categories]) OR [Planner Use ID] "
                 "NOT IN (SELECT [Planner Use ID] FROM [Planner Use])"},
        {"farm", "SELECT [Mob Details ID] FROM [Stock Details] WHERE [Class ID] NOT IN (SELECT [Class ID] "
                 "FROM [Stock Class Names])"},
        {"farm", "SELECT [Class ID], [Season] FROM [Stock Details] GROUP BY [Class ID], [Season] HAVING "
                 "Count(*) > 1"},
        {"farm", "SELECT [Class ID] FROM [Stock Class Names] WHERE [Stock Type ID] NOT IN (SELECT [Type ID] "
                 "FROM [Stock Types])"},
        {"farm", "SELECT [Stock Name] FROM [Feed Demand] WHERE [Stock Name] NOT IN (SELECT [Class Name] FROM "
                 "[Stock Class Names])"},
        {"farm", "SELECT [Class Name] FROM [Feed Profile] WHERE [Class Name] NOT IN (SELECT [Class Name] "
                 "FROM [Stock Class Names])"},
        {"farm", "SELECT [Class Name] FROM [Stock Reconciliations] WHERE [Class Name] NOT IN (SELECT [Class "
                 "Name] FROM [Stock Class Names])"},
        {"farm", "SELECT [Account Code] FROM [Budget Details] WHERE [Account Code] NOT IN (SELECT [Account "
                 "Code] FROM [Account Codes])"},
        {"farm", "SELECT TaxReturnID FROM TransactionDetails WHERE TaxReturnID <> 0 AND TaxReturnID NOT IN "
                 "(SELECT TaxReturnID FROM TaxReturns WHERE RtnType = 0)"},
        {"farm", "SELECT PAYERtnID FROM TransactionDetails WHERE PAYERtnID <> 0 AND PAYERtnID NOT IN (SELECT "
                 "TaxReturnID FROM TaxReturns WHERE RtnType = 1)"},
        {"farm", "SELECT IncomeTaxRtnID FROM TransactionDetails WHERE IncomeTaxRtnID <> 0 AND IncomeTaxRtnID "
                 "NOT IN (SELECT TaxReturnID FROM TaxReturns WHERE RtnType = 2)"},
        {"farm", "SELECT RebateID FROM TaxRebates WHERE SecCode NOT IN (SELECT [Secondary Codes ID] FROM "
                 "[Secondary Codes])"},
        {"farm", "SELECT PayeAccount FROM PayeInfo WHERE PayeAccount NOT IN (SELECT [Secondary Codes ID] "
                 "FROM [Secondary Codes]) OR PayeAddressID NOT IN (SELECT AddressID FROM Addresses WHERE "
                 "BusinessFlag = True)"},
        {"wage", "SELECT EmployeetypeID FROM PaymentTypes WHERE EmployeetypeID NOT IN (SELECT EmployeetypeID "
                 "FROM EmployeeAwardType) OR PaymentNameID NOT IN (SELECT PaymentNameID FROM PaymentNames)"},
        {"wage", "SELECT EmployeetypeID FROM TaxAllowTypes WHERE TaxNameID NOT IN (SELECT TaxNameID FROM "
                 "TaxAllowName)"},
        {"wage", "SELECT EmployeetypeID FROM NonTaxAllowTypes WHERE NonTaxNameID NOT IN (SELECT NonTaxNameID "
                 "FROM NonTaxAllowName)"},
        {"diary", "SELECT [Unit] FROM [Field Definition] WHERE [ImperialFieldCaption] Is Null OR "
                  "[ImperialFieldUnits] Is Null OR [ImperialFieldEquation] Is Null OR [MetricFieldCaption] "
                  "Is Null OR [MetricFieldUnits] Is Null OR [MetricFieldEquation] Is Null"},
    };
    for (const auto& [database, sql] : none) {
        EXPECT_EQ(Rows(database, sql), Strings{}) << sql;
    }
    const std::tuple<const char*, const char*, long> least[] = {{"farm", "TransactionDetails", 4500},
                                                                {"farm", "Account Codes", 140},
                                                                {"farm", "Secondary Codes", 500},
                                                                {"farm", "Stock Class Names", 35},
                                                                {"farm", "TaxReturns", 50},
                                                                {"farm", "Addresses", 30},
                                                                {"farm", "Partners", 3},
                                                                {"wage", "TaxSteps", 40},
                                                                {"wage", "EmployeeAwardType", 10},
                                                                {"diary", "AnimalMultipleList", 500},
                                                                {"diary", "Field Definition", 30}};
    for (const auto& [database, table, count] : least) {
        EXPECT_GE(std::stol(Rows(database, std::string("SELECT Count(*) FROM [") + table + "]").at(0)), count)
            << table;
    }
    EXPECT_EQ(Rows("farm", "SELECT [Farm Name], [Effective Area], [Diary Units], [Current Season], [Budget "
                           "Open Balance] FROM [Farm Details]"),
              Strings{"Kōwhai Downs|412.5|M|126|-42350.75"});
    EXPECT_EQ(Rows("farm", "SELECT Min(Season), Max(Season) FROM [Map Layers] WHERE [Use] = 'C'"),
              Strings{"122|126"});
    EXPECT_EQ(Rows("farm", "SELECT [Name] FROM [tbl no Enterprises]").at(0), "--- none ---");
}

TEST_F(InstallationTest, WithoutASeasonItIsThePresentYear) {
    struct February : system::Clock {
        runtime::Date Now() override { return runtime::MakeDate(2012, 2, 3); }
    };
    const auto former = std::exchange(system::TheServices().clock, std::make_shared<February>());
    Make(InstallationLevel::New, kFarmEdition, kNewZealand, 0);
    system::TheServices().clock = former;
    EXPECT_EQ(Rows("farm", "SELECT [Current Season], [Budget Year] FROM [Farm Details]"),
              Strings{"112|2012-07-01"});
}

TEST_F(InstallationTest, WhatIsThereIsKept) {
    Make(InstallationLevel::New);
    ASSERT_EQ(ErrorOf("farm", "UPDATE [Farm Details] SET [Farm Name] = 'Mine'"), 0);
    CloseAll();
    Write(layout_.common / "Quillary.ini", "[QUILLARY]\nDataRoot=/elsewhere\n");
    Write(layout_.program / "Resources" / "own.bmp", "x");
    fs::remove(FileOf("wage"));

    const auto report = Make(InstallationLevel::Sample);
    EXPECT_EQ(report.made, std::vector<fs::path>{FileOf("wage")});
    EXPECT_EQ(report.kept.size(), 4u);
    EXPECT_EQ(Rows("farm", "SELECT [Farm Name] FROM [Farm Details]"), Strings{"Mine"});
    EXPECT_FALSE(Rows("wage", "SELECT * FROM EmployeeTaxTypes").empty());
    EXPECT_EQ(Ini(), "[QUILLARY]\nDataRoot=/elsewhere\n");
    EXPECT_TRUE(fs::exists(layout_.program / "Resources" / "own.bmp"));
}

TEST_F(InstallationTest, AFolderThatCannotBeMadeIsTold) {
    Write(folder_ / "file", "x");
    layout_ = ScenarioLayout(folder_ / "file");
    try {
        Make(InstallationLevel::Empty);
        FAIL();
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.Number(), 75);
        EXPECT_NE(error.Description().find((folder_ / "file").string()), std::string::npos);
    }
}

} // namespace quillary::config
