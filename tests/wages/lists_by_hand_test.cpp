#include "config/configuration_fixture.h"
#include "config/installation.h"
#include "platform/controls/data_control.h"
#include "platform/database/errors.h"
#include "platform/database/sqlite/connection.h"
#include "wages/wages_page.h"

#include <sqlite3.h>

// What no button does: the lists of an occupation worked by double click and by dragging, and while another
// program holds the database.
namespace quillary::wages {

namespace {

using controls::Grid;

constexpr int kUsualBusyTimeout = 3000;

class ListsByHandTest : public test::ConfigurationTest, public common::Screen {
protected:
    ListsByHandTest() {
        database::sqlite::SetBusyTimeout(50); // before a connection is opened
        system::TheServices().errorReports = reports_;
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(root_ / "documents");
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        controls::DataControl::SetEngine([]() -> database::Engine& { return config::DbEngine(); });
        wage_ = config::DbEngine().OpenDatabase((root_ / "documents") + "/data/Wage32.mdb");
        Run("INSERT INTO EmployeeAwardType (EmployeetypeID, Employeetype, Unitofpay) VALUES (1, 'Cook', "
            "'Day')");
        for (const char* name : {"A", "B", "C", "D", "E"})
            Run("INSERT INTO PaymentNames (PayUnitname) VALUES ('" + std::string(name) + "')");
        for (const char* row : {"1, 0", "2, 1", "3, 2"})
            Run("INSERT INTO PaymentTypes (PaymentNameID, [Order], EmployeetypeID) VALUES (" +
                std::string(row) + ", 1)");
        page_ = std::make_unique<WagesPage>(*this, panel_);
        form_.Show();
        int frame = 0;
        page_->SetUp(frame);
        page_->tab_wage.PickTab(1);
        selected_ = static_cast<Grid*>(form_.Find("tgrd_selected"));
        master_ = static_cast<Grid*>(form_.Find("tgrd_master"));
    }
    ~ListsByHandTest() override {
        page_.reset();
        wage_.reset();
        config::DbEngine().ReleaseIdle();
        controls::DataControl::SetEngine({});
        database::sqlite::SetBusyTimeout(kUsualBusyTimeout);
    }

    controls::Form& ScreenForm() override { return form_; }
    controls::DataControl& FarmDetails() override { return dat_; }
    controls::DataControl& BudgetStarts() override { return dat_; }
    std::string CurrentTabName() override { return {}; }
    bool LeaveCurrentPage() override { return true; }
    common::Page* PageOf(int) override { return nullptr; }
    void Decorate(controls::Form&) override {}

    void Run(const std::string& statement) { wage_->Execute(statement, database::kFailOnError); }
    static std::string Names(const Grid& grid) {
        std::string names;
        for (long row = 0; row < grid.RowCount(); ++row)
            names += grid.Shown(row, 1);
        return names;
    }
    std::string Lists() const { return Names(*selected_) + "|" + Names(*master_); }

    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::shared_ptr<database::Database> wage_;
    controls::Form form_{"frm_setup"};
    controls::DataControl dat_{form_, "dat_FarmDetails"};
    controls::Panel panel_{form_, "vse_frame", 8};
    std::unique_ptr<WagesPage> page_;
    Grid* selected_ = nullptr;
    Grid* master_ = nullptr;
};

} // namespace

TEST_F(ListsByHandTest, ADoubleClickAddsOrRemovesTheRow) {
    EXPECT_EQ(Lists(), "ABC|DE");
    master_->GoToRow(1);
    EXPECT_TRUE(master_->DoublePress());
    EXPECT_EQ(Lists(), "ABCE|D");
    selected_->GoToRow(1);
    EXPECT_TRUE(selected_->DoublePress());
    EXPECT_EQ(Lists(), "ACE|BD");
    // Cells are not edited by hand.
    EXPECT_FALSE(selected_->EditCell(1, "X"));
    master_->GoToRow(0);
    master_->DoublePress();
    master_->DoublePress();
    EXPECT_EQ(Lists(), "ACEBD|");
    EXPECT_TRUE(master_->DoublePress().IsImpossible());
}

TEST_F(ListsByHandTest, ADragDoesWhatTheButtonsDo) {
    const struct {
        const char* what;
        bool fromMaster;
        long row;
        bool toMaster;
        long before;
        const char* lists;
    } cases[] = {
        {"down by one", false, 0, false, 2, "BAC|DE"},
        {"down to the end", false, 1, false, 3, "BCA|DE"},
        {"up", false, 2, false, 0, "ABC|DE"},
        {"before itself", false, 1, false, 1, "ABC|DE"},
        {"behind itself", false, 1, false, 2, "ABC|DE"},
        {"removed", false, 2, true, 0, "AB|CDE"},
        {"within the master list, which goes by names", true, 0, true, 2, "AB|CDE"},
        {"added behind the last one, wherever it is let go", true, 2, false, 0, "ABE|CD"},
        {"added", true, 0, false, 3, "ABEC|D"},
    };
    for (const auto& c : cases) {
        Grid& from = c.fromMaster ? *master_ : *selected_;
        Grid& to = c.toMaster ? *master_ : *selected_;
        EXPECT_TRUE(to.DropRow(from, c.row, c.before)) << c.what;
        EXPECT_EQ(Lists(), c.lists) << c.what;
    }
    EXPECT_FALSE(selected_->DropRow(*master_, 5, 0)) << "there is no such row";
}

TEST_F(ListsByHandTest, WhileAnotherProgramWritesNothingIsLost) {
    Run("INSERT INTO EmployeeAwardType (EmployeetypeID, Employeetype, Unitofpay) VALUES (2, 'Fencer', "
        "'Day')");
    page_->ReleaseSelectionArrays();
    config::gDeductionsLoaded = false;
    int frame = 0;
    page_->SetUp(frame);
    page_->tab_wage.PickTab(1);
    auto& com_award = static_cast<controls::ComboBox&>(*form_.Find("com_award"));
    ASSERT_EQ(com_award.ListCount(), 2);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(((root_ / "documents") + "/data/Wage32.mdb").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    // With nothing to lose the other occupations can be looked at.
    com_award.Choose(1);
    EXPECT_EQ(Lists(), "|ABCDE");
    com_award.Choose(0);
    EXPECT_EQ(Lists(), "ABC|DE");
    EXPECT_FALSE(reports_->reports.empty());
    // A move stays until it can be written.
    selected_->DropRow(*selected_, 0, 3);
    reports_->reports.clear();
    com_award.Choose(1);
    EXPECT_EQ(com_award.ListIndex, 0);
    EXPECT_EQ(Lists(), "BCA|DE");
    master_->DoublePress();
    EXPECT_EQ(Lists(), "BCA|DE");
    ASSERT_EQ(reports_->reports.size(), 3U); // the pick, leaving the box, the add
    for (const auto& report : reports_->reports) {
        EXPECT_EQ(report.routine, "DeleteAll");
        EXPECT_EQ(report.number, database::kErrCannotLock) << report.description;
    }
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    com_award.Choose(1);
    EXPECT_EQ(com_award.ListIndex, 1);
    com_award.Choose(0);
    EXPECT_EQ(Lists(), "BCA|DE");
    EXPECT_EQ(reports_->reports.size(), 3U);
}

TEST_F(ListsByHandTest, ABookThatCanOnlyBeReadIsLookedIntoInSilence) {
    const std::string file = (root_ / "documents") + "/data/Wage32.mdb";
    auto& com_award = static_cast<controls::ComboBox&>(*form_.Find("com_award"));
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    com_award.Choose(0);
    page_->SaveSelections();
    EXPECT_TRUE(reports_->reports.empty());
    master_->DoublePress();
    EXPECT_EQ(Lists(), "ABC|DE");
    selected_->DropRow(*selected_, 0, 3);
    com_award.Choose(0);
    EXPECT_EQ(Lists(), "BCA|DE") << "a move is not given up";
    ASSERT_GE(reports_->reports.size(), 2U);
    for (const auto& report : reports_->reports)
        EXPECT_EQ(report.number, database::kErrReadOnly) << report.description;
    std::filesystem::permissions(file,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

} // namespace quillary::wages
