#include "config/module_catalogue.h"

#include "config/configuration_fixture.h"
#include "platform/database/engine.h"
#include "platform/database/errors.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::config {

class ModuleCatalogueTest : public test::ConfigurationTest {
protected:
    ModuleCatalogueTest() { WriteIni("[QUILLARY]\nModuleFileName=" + root_.Path() + "\\Modules.mdb\n"); }
    ~ModuleCatalogueTest() override { DbEngine().ReleaseIdle(); }

    void Make() {
        const auto database = DbEngine().CreateDatabase(root_.Path() + "\\Modules.mdb");
        for (const char* sql :
             {"CREATE TABLE Catalogue (ModuleNumber LONG, ModuleKey TEXT(50), ProgramPath TEXT(255))",
              "CREATE TABLE MenuEntries (Caption TEXT(50), Visible BIT, [Group] TEXT(20), FileName "
              "TEXT(100), "
              "HelpType LONG, [Order] LONG)",
              "CREATE TABLE HelpContexts ([Number] LONG PRIMARY KEY, FormContext LONG, HowDoIContext LONG)"})
            database->Execute(sql, database::kFailOnError);
    }
    void Execute(const std::string& sql) {
        DbEngine().OpenDatabase(root_.Path() + "\\Modules.mdb")->Execute(sql, database::kFailOnError);
    }
};

TEST_F(ModuleCatalogueTest, TellsMenusAndContexts) {
    Make();
    {
        const ModuleCatalogue empty;
        EXPECT_EQ(empty.ModuleNumber(), 0);
        EXPECT_EQ(empty.ModuleKey(), "");
        EXPECT_EQ(empty.ProgramPath(), "");
        EXPECT_TRUE(empty.MenuEntries().empty());
        EXPECT_EQ(empty.FormContext(8), 0);
    }
    Execute("INSERT INTO Catalogue VALUES (14, 'FARM', 'C:\\x')");
    Execute("INSERT INTO MenuEntries VALUES ('&Contents  ', False, 'Help', 'QYFarm.chm', 0, 20)");
    Execute("INSERT INTO MenuEntries VALUES ('&Help', True, 'Help', 'QYFarm.chm ', 1, 10)");
    Execute("INSERT INTO MenuEntries (Caption, [Order]) VALUES ('Bare', 30)");
    Execute("INSERT INTO HelpContexts VALUES (8, 800, Null)");
    const ModuleCatalogue catalogue;
    EXPECT_EQ(catalogue.ModuleNumber(), 14);
    EXPECT_EQ(catalogue.ModuleKey(), "FARM");
    EXPECT_EQ(catalogue.ProgramPath(), "C:\\x");
    std::string shown;
    for (const MenuEntry& entry : catalogue.MenuEntries())
        shown += entry.caption + "|" + (entry.visible ? "shown" : "hidden") + "|" + entry.group + "|" +
                 entry.fileName + "|" + std::to_string(entry.helpType) + "\n";
    EXPECT_EQ(shown,
              "&Help|shown|Help|QYFarm.chm |1\n&Contents  |hidden|Help|QYFarm.chm|0\nBare|hidden|||0\n");
    MenuEntry entry;
    EXPECT_TRUE(catalogue.FindEntryByCaption("&contents", entry));
    EXPECT_EQ(entry.fileName, "QYFarm.chm");
    EXPECT_FALSE(catalogue.FindEntryByCaption("Contents", entry));
    EXPECT_EQ(entry.caption, "&Contents  ");
    EXPECT_EQ(catalogue.FormContext(8), 800);
    EXPECT_EQ(catalogue.HowDoIContext(8), 0);
    EXPECT_EQ(catalogue.FormContext(9), 0);
}

TEST_F(ModuleCatalogueTest, GivesTheEditionAndItsKey) {
    Make();
    Execute("INSERT INTO Catalogue (ModuleNumber) VALUES (0)");
    const struct {
        int number;
        const char *stored, *key;
    } cases[] = {{11, "MONEY", "MONEY"}, {14, "FARM", "FARM"},  {16, "other", "CB_WAGE_PAY"},
                 {18, "other", "DIARY"}, {12, "other", "kept"}, {0, "other", "kept"}};
    for (const auto& c : cases) {
        Execute("UPDATE Catalogue SET ModuleNumber = " + std::to_string(c.number) + ", ModuleKey = '" +
                c.stored + "'");
        gModuleKey = "kept";
        ReadmenuOptions();
        EXPECT_EQ(gModuleID, c.number);
        EXPECT_EQ(gModuleKey, c.key) << c.number;
    }
}

TEST_F(ModuleCatalogueTest, ReportsThatItIsMissing) {
    int number = 0;
    std::string place, text;
    LoadGlobalVars([&](const runtime::RunTimeError& error, std::string_view routine) {
        number = error.Number();
        text = error.Description();
        place = routine;
    });
    EXPECT_EQ(number, database::kErrFileNotFound);
    EXPECT_EQ(place, "frm_setup.LoadGlobalVars");
    EXPECT_TRUE(text.starts_with("qyLoadGlobals - ReadmenuOptions\r\n")) << text;
    EXPECT_EQ(gModuleID, 0);
}

TEST(FrameRecords, AreCutToTheirSizes) {
    const FrameRecord record = MakeFrameRecord("A caption of more than twenty-five characters", "FX", 10);
    EXPECT_EQ(record.Name, "A caption of more than tw");
    EXPECT_EQ(record.Key, "F");
}

} // namespace quillary::config
