#include "common/restore_points.h"
#include "config/configuration_fixture.h"
#include "config/installation.h"
#include "platform/database/engine.h"
#include "platform/database/sqlite/connection.h"
#include "platform/runtime/conversions.h"
#include "stock/delete_mob.h"

#include <sqlite3.h>

// The cascade where another program has the diary, and what a restore point holds of it.
namespace quillary::stock {

namespace {

namespace fs = std::filesystem;

class NoScreen : public common::Screen {
public:
    controls::Form& ScreenForm() override { return form_; }
    controls::DataControl& FarmDetails() override { return data_; }
    controls::DataControl& BudgetStarts() override { return data_; }
    std::string CurrentTabName() override { return {}; }
    bool LeaveCurrentPage() override { return true; }
    common::Page* PageOf(int) override { return nullptr; }
    void Decorate(controls::Form&) override {}

private:
    controls::Form form_{"frm_setup"};
    controls::DataControl data_{form_, "dat_FarmDetails"};
};

class DeleteMobTest : public test::ConfigurationTest {
protected:
    DeleteMobTest() {
        system::TheServices().errorReports = reports_;
        system::TheServices().messageBoxes = messages_;
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(root_ / "documents");
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        Run(farm_, {"INSERT INTO [Account Codes] ([Account Code], [Account Level]) VALUES (1010, 'Sheep')",
                    "INSERT INTO [Stock Types] ([Type ID], [Account Code]) VALUES (1, 1010)",
                    "INSERT INTO [Stock Class Names] ([Class Name], [Stock Type ID]) VALUES ('Ewes', 1)",
                    "INSERT INTO [Stock Class Names] ([Class Name], [Stock Type ID]) VALUES ('Rams', 1)",
                    "INSERT INTO [Stock Details] ([Class ID], Season) VALUES (1, 2008)",
                    "INSERT INTO [Stock Details] ([Class ID], Season) VALUES (2, 2008)",
                    "INSERT INTO [Feed Demand] ([Stock Name]) VALUES ('Ewes')"});
        Run(diary_, {"INSERT INTO AnimalMultipleList (MobID) VALUES (1)"});
    }
    ~DeleteMobTest() override {
        config::DbEngine().ReleaseIdle();
        database::sqlite::SetBusyTimeout(timeout_);
    }

    static void Run(const std::string& path, std::initializer_list<const char*> statements) {
        auto db = config::DbEngine().OpenDatabase(path);
        for (const char* statement : statements) {
            db->Execute(statement, database::kFailOnError);
        }
    }
    static std::string First(const std::string& path, const char* sql) {
        auto rows = config::DbEngine().OpenDatabase(path)->OpenRecordset(sql);
        return rows->EOF_() ? "no row" : runtime::TextOf((*rows)[0].Value());
    }
    // Name in the feed, number in the diary, and whether the class is there.
    std::string State() const {
        return First(farm_, "SELECT [Stock Name] FROM [Feed Demand]") + " " +
               First(diary_, "SELECT MobID FROM AnimalMultipleList") + " " +
               First(farm_, "SELECT Count(*) FROM [Stock Class Names] WHERE [Class Name] = 'Ewes'");
    }
    // The user picks Rams for Ewes. Whether the deletion is to go on.
    static bool ChooseRams(FarmOfCascade& farm) {
        NoScreen screen;
        FrmChooseMob form(screen, farm);
        form.DeleteMobName = "Ewes";
        form.DelMobID = 1;
        form.Show();
        EXPECT_TRUE(form.lst_mobs.ChooseText("Rams:Sheep"));
        EXPECT_TRUE(form.cmd_Okay.Press());
        EXPECT_FALSE(form.IsOpen());
        return !form.CancelDelete;
    }
    static void DeleteEwes() {
        FarmOfCascade farm;
        EXPECT_TRUE(ChooseRams(farm));
        DeleteTheMob(farm, "Ewes");
    }
    fs::path Points() const { return fs::path(root_ / "documents") / "Quillary/Common/Backup"; }

    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::shared_ptr<test::RecordedMessages> messages_ = std::make_shared<test::RecordedMessages>();
    std::string farm_ = root_ / "documents/data/Farm32.mdb", diary_ = root_ / "documents/data/Diary.mdb";
    int timeout_ = database::sqlite::BusyTimeout();
};

TEST_F(DeleteMobTest, TheRestorePointHoldsBothFilesFromBeforeTheFirstStatement) {
    DeleteEwes();
    EXPECT_EQ(State(), "Rams 2 0");
    const auto points = common::ListRestorePoints(Points());
    ASSERT_EQ(points.size(), 1U);
    EXPECT_EQ(points[0].folder.filename(), "2008-08-15 14.05.09 Deleting Ewes");
    common::ReplaceDatabases(common::CopiedDatabases(points[0], {farm_, diary_}));
    EXPECT_EQ(State(), "Ewes 1 1");
    EXPECT_TRUE(reports_->reports.empty());
}

TEST_F(DeleteMobTest, ADiaryThatAnotherProgramIsWritingStopsTheDeletionHalfWay) {
    config::DbEngine().ReleaseIdle();
    database::sqlite::SetBusyTimeout(50);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(diary_.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    {
        FarmOfCascade farm;
        EXPECT_FALSE(ChooseRams(farm));
    }
    ASSERT_EQ(reports_->reports.size(), 1U); // the diary can be copied all the same
    EXPECT_EQ(reports_->reports[0].routine, "MapDiaryMobs");
    EXPECT_EQ(reports_->reports[0].number, 3218);
    EXPECT_EQ(reports_->reports[0].description, " Problems updating the diary mobs");
    EXPECT_EQ(State(), "Rams 1 1"); // what had run stands

    // Once the other has finished, the same deletion comes to its end.
    ASSERT_EQ(sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    DeleteEwes();
    EXPECT_EQ(State(), "Rams 2 0");
    ASSERT_EQ(common::ListRestorePoints(Points()).size(), 2U);
}

TEST_F(DeleteMobTest, WithoutARestorePointTheDeletionGoesOn) {
    root_.Write("documents/Quillary/Common/Backup", "a file is in the way");
    DeleteEwes();
    EXPECT_EQ(State(), "Rams 2 0");
    ASSERT_EQ(reports_->reports.size(), 1U);
    EXPECT_EQ(reports_->reports[0].routine, "MakeRestorePoint");
    EXPECT_EQ(messages_->shown.size(), 1U);
}

} // namespace

} // namespace quillary::stock
