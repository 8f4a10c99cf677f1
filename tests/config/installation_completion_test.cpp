#include "config/installation_completion.h"

#include "config/installation_check.h"
#include "config/installation_fixture.h"

namespace quillary::config {

// What an installation of another machine lacks is added; what it has stays.
TEST_F(InstallationTest, DatabasesFromElsewhereAreCompleted) {
    Make(InstallationLevel::New);
    EXPECT_EQ(ErrorOf("farm", "DROP PROCEDURE [qry_UpdateAccountantsCode]"), 0);
    EXPECT_EQ(ErrorOf("farm", "DROP TABLE [Feed Demand]"), 0);
    EXPECT_EQ(ErrorOf("farm", "ALTER TABLE [Farm Details] DROP COLUMN [OD Interest Rate]"), 0);
    for (const char* table : {"Catalogue", "MenuEntries", "HelpContexts"}) {
        EXPECT_EQ(ErrorOf("modules", "DROP TABLE [" + std::string(table) + "]"), 0);
    }
    EXPECT_EQ(ErrorOf("modules", "UPDATE [Setup] SET [modules] = 'QYM' WHERE [modules] = 'BUSINESS'"), 0);
    CloseAll();
    InstallationOptions options;
    options.layout = layout_;
    options.moduleNumber = kBusinessEdition;
    EXPECT_EQ(CompleteDatabase(FileOf("farm"), "Farm32.mdb", options, false),
              (std::vector<std::string>{"Farm32.mdb: field OD Interest Rate of table Farm Details",
                                        "Farm32.mdb: table Feed Demand",
                                        "Farm32.mdb: saved query qry_UpdateAccountantsCode"}));
    EXPECT_EQ(CompleteDatabase(FileOf("modules"), "MODULES.MDB", options, false).size(), 3U);
    EXPECT_TRUE(CompleteDatabase(FileOf("wage"), "Wage32.mdb", options, false).empty());
    EXPECT_TRUE(CompleteDatabase(FileOf("wage"), "Cashbook.mdb", options, false).empty());
    EXPECT_EQ(Rows("modules", "SELECT ModuleNumber, ModuleKey, ProgramPath FROM [Catalogue]"),
              (std::vector<std::string>{"11|QYM|" + layout_.program.string()}));
    EXPECT_EQ(Rows("modules", "SELECT Count(*) FROM [MenuEntries]"), (std::vector<std::string>{"9"}));
    CloseAll();
    // A catalogue that is there answers another edition only where that was asked for.
    options.moduleNumber = kFarmEdition;
    CompleteDatabase(FileOf("modules"), "Modules.mdb", options, false);
    EXPECT_EQ(Rows("modules", "SELECT ModuleNumber FROM [Catalogue]"), (std::vector<std::string>{"11"}));
    CloseAll();
    CompleteDatabase(FileOf("modules"), "Modules.mdb", options, true);
    EXPECT_EQ(Rows("modules", "SELECT ModuleNumber, ModuleKey FROM [Catalogue]"),
              (std::vector<std::string>{"14|FARM"}));
    CloseAll();
    for (const FileCheck& check : CheckInstallation(folder_)) {
        EXPECT_TRUE(check.problems.empty()) << check.file << ": " << check.problems.front();
    }
}

TEST_F(InstallationTest, SettingsFromElsewhereKeepAllButTheirPaths) {
    const auto from = folder_ / "old.ini";
    Write(from,
          "; C:\\Farm stays in a "
          "note\r\n[QUILLARY]\r\nDataRoot=C:\\Farm\r\nProgramDirectory=\"C:\\Farm\\Program\\\"\r\n"
          "ModuleFileName=D:\\Shared\\Modules.mdb\r\nExportFileName=c:\\farm\\out\\Export.mdb\r\n"
          "[START]\r\nLogo=C:\\Farm\\Program\\logo.bmp\r\nFarmer=C:\\Farmer\r\nFirm=M\xFCller\r\nEmpty=\r\n");
    std::filesystem::create_directories(layout_.common);
    TakeOverSettings(from, layout_);
    const std::string data = layout_.data.string(), program = layout_.program.string();
    EXPECT_EQ(Ini(), "; C:\\Farm stays in a note\r\n[QUILLARY]\r\nDataRoot=" + data +
                         "\r\nProgramDirectory=" + program + "\r\nModuleFileName=" + layout_.common.string() +
                         "/Modules.mdb\r\nExportFileName=" + data +
                         "/out/Export.mdb\r\nDataFileName=" + data + "/Farm32.mdb\r\nDiaryFileName=" + data +
                         "/Diary.mdb\r\nWageFileName=" + data + "/Wage32.mdb\r\n[START]\r\nLogo=" + program +
                         "/logo.bmp\r\nFarmer=C:\\Farmer\r\nFirm=M\xC3\xBCller\r\nEmpty=\r\n");
    EXPECT_FALSE(std::filesystem::exists(layout_.common / "Quillary.ini.part"));
}

} // namespace quillary::config
