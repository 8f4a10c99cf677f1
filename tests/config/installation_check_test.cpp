#include "config/installation_check.h"
#include "config/installation_fixture.h"

#include "config/data_loader.h"
#include "platform/runtime/run_time_error.h"

#include <functional>

namespace quillary::config {

namespace fs = std::filesystem;

namespace {

std::string Told(const std::vector<FileCheck>& checks) {
    std::string told;
    for (const FileCheck& check : checks) {
        for (const std::string& problem : check.problems) {
            told += check.file.filename().string() + ": " + problem + "\n";
        }
    }
    return told;
}

} // namespace

TEST_F(InstallationTest, CheckTellsWhatIsMissingOrBroken) {
    struct Case {
        const char* what;
        std::function<void()> harm;
        const char* told; // the first problem's beginning
    };
    const Case cases[] = {
        {"whole", [] {}, ""},
        {"no ini file", [&] { fs::remove(layout_.common / "Quillary.ini"); },
         "Quillary.ini: the file is missing"},
        {"no database", [&] { fs::remove(FileOf("diary")); }, "Diary.mdb: error 3024: "},
        {"another kind of file", [&] { Write(FileOf("wage"), std::string(5000, 'x')); },
         "Wage32.mdb: error 3343: "},
        {"no table", [&] { ErrorOf("farm", "DROP TABLE [TaxTypes]"); },
         "Farm32.mdb: table TaxTypes is missing"},
        {"no field", [&] { ErrorOf("modules", "ALTER TABLE Setup DROP COLUMN [Order]"); },
         "Modules.mdb: field Order of table Setup is missing"},
        {"narrow field",
         [&] {
             ErrorOf("farm", "DROP TABLE [Feed Demand]");
             ErrorOf("farm", "CREATE TABLE [Feed Demand] ([Stock Name] TEXT(20))");
         },
         "Farm32.mdb: field Stock Name of table Feed Demand is a text of 20, not a text of 50"},
        {"wider fields and more of them",
         [&] {
             ErrorOf("farm", "DROP TABLE [Feed Demand]");
             ErrorOf("farm", "CREATE TABLE [Feed Demand] ([Notes] MEMO, [stock name] TEXT(80))");
         },
         ""},
        {"no saved query", [&] { Db("farm").DeleteQueryDef("qry_UpdateAccountantsCode"); },
         "Farm32.mdb: saved query qry_UpdateAccountantsCode is missing"},
        {"a saved query that comes back by itself",
         [&] { Db("farm").DeleteQueryDef("qry Update Secondary heading names"); }, ""},
        {"no unique key",
         [&] {
             ErrorOf("farm", "DROP TABLE TaxRates");
             ErrorOf("farm", "CREATE TABLE TaxRates (TaxRateNumber LONG, [Rate %] SINGLE)");
         },
         "Farm32.mdb: table TaxRates has no unique index on TaxRateNumber"},
        {"damaged pages",
         [&] {
             CloseAll();
             std::fstream file(FileOf("diary"), std::ios::in | std::ios::out | std::ios::binary);
             file.seekp(static_cast<std::streamoff>(fs::file_size(FileOf("diary")) / 4096 * 4096 - 4096));
             file << std::string(3000, '\x7f');
         },
         "Diary.mdb: "},
    };
    int number = 0;
    for (const Case& c : cases) {
        layout_ = ScenarioLayout(folder_ / std::to_string(number++));
        Make(InstallationLevel::Empty);
        c.harm();
        CloseAll();
        const std::string told = Told(CheckInstallation(layout_.data.parent_path()));
        if (*c.told == '\0') {
            EXPECT_EQ(told, "") << c.what;
        } else {
            EXPECT_TRUE(told.starts_with(c.told)) << c.what << ": " << told;
        }
    }
}

TEST_F(InstallationTest, CheckFollowsTheIniFile) {
    layout_ = DocumentsLayout(folder_);
    Make(InstallationLevel::Empty);
    fs::create_directories(folder_ / "moved");
    fs::rename(FileOf("wage"), folder_ / "moved" / "Pay.mdb");
    EXPECT_TRUE(Told(CheckInstallation(folder_)).starts_with("Wage32.mdb: error 3024"));
    std::string ini = Ini();
    const std::string old = FileOf("wage").string();
    ini.replace(ini.find(old), old.size(), (folder_ / "moved\\Pay.mdb").string());
    Write(layout_.common / "Quillary.ini", ini);
    EXPECT_EQ(Told(CheckInstallation(folder_)), "");
}

TEST(DataLoader, PlaceholdersAreReplacedByWord) {
    const Placeholders values{{"season", "2026"}, {"season+1", "2027"}, {"none", ""}};
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"#7/1/{season}#", "#7/1/2026#"},
        {"{season}{season+1}{none}.", "20262027."},
        {"{unknown} {season", "{unknown} {season"},
        {"a } b {", "a } b {"},
    };
    for (const auto& [text, filled] : cases) {
        EXPECT_EQ(FillPlaceholders(text, values), filled) << text;
    }
}

TEST_F(InstallationTest, FaultsInDataFilesNameFileAndLine) {
    Make(InstallationLevel::Empty);
    struct Case {
        const char* file;
        const char* text;
        int number;
        const char* line; // nullptr: it loads
    };
    const Case cases[] = {
        {"1-good.sql", "-- a note\n\nINSERT INTO TaxReturns (RtnType)\nVALUES (1); DELETE * FROM TaxReturns;",
         0, nullptr},
        {"1-TaxReturns.tsv", "StartDate\tRtnType\r\n2026-01-31\t1\r\n\t2\r\n", 0, nullptr},
        {"2-bad.sql", "UPDATE TaxReturns SET RtnType = RtnType;\nDELETE * FROM Nowhere;", 3078, "line 2"},
        {"2-Nowhere.tsv", "A\n1\n", 3078, "Nowhere"},
        {"2-TaxReturns.tsv", "StartDate\tKind\n", 3265, "line 1"},
        {"2-TaxReturns.tsv", "StartDate\tRtnType\n2026-01-31\n", 3421, "line 2"},
        {"2-TaxReturns.tsv", "StartDate\n\n31/1/2026\n", 3421, "line 3"},
        {"2-TaxReturns.tsv", "RtnType\n1); DELETE * FROM TaxReturns\n", 3421, "line 2"},
    };
    for (const Case& c : cases) {
        const fs::path file = folder_ / c.file;
        Write(file, c.text);
        try {
            LoadFile(Db("farm"), file, {});
            EXPECT_EQ(c.number, 0) << c.text;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.Number(), c.number) << c.text << ": " << error.Description();
            EXPECT_NE(error.Description().find(file.string()), std::string::npos) << error.Description();
            EXPECT_TRUE(c.line != nullptr && error.Description().find(c.line) != std::string::npos)
                << error.Description();
        }
    }
    EXPECT_EQ(Rows("farm", "SELECT StartDate, RtnType FROM TaxReturns ORDER BY RtnType"),
              (std::vector<std::string>{"2026-01-31|1", "|2"}));
}

} // namespace quillary::config
