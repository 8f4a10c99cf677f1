// Adding, deleting and saving grid rows, on the tables of a new installation's wage book.
#include "common/recordset_editing.h"

#include "common/messages.h"
#include "config/configuration_fixture.h"
#include "config/installation.h"
#include "platform/controls/form.h"
#include "platform/runtime/conversions.h"

#include <deque>

namespace quillary::common {

namespace {

struct ScriptedInput : system::InputBoxes {
    std::deque<std::optional<std::string>> answers;
    std::string asked; // title|prompt|limit of the last box
    std::optional<std::string> Ask(const system::InputRequest& request) override {
        asked = request.title + "|" + request.prompt + "|" + std::to_string(request.maxLength);
        auto answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class RecordsetEditingTest : public test::ConfigurationTest {
protected:
    RecordsetEditingTest() {
        auto& services = system::TheServices();
        services.messageBoxes = messages_;
        services.errorReports = reports_;
        services.inputBoxes = input_;
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(root_ / "documents");
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        db_ = config::DbEngine().OpenDatabase(wages_);
        controls::DataControl::SetEngine([]() -> database::Engine& { return config::DbEngine(); });
        grid_.AddColumn().DataField = "DeductionName";
        grid_.SetDataSource(&dat_);
        dat_.DatabaseName = wages_;
        dat_.RecordSource = "Select distinctrow * from DeductNames";
        dat_.Refresh();
        form_.Show();
    }
    ~RecordsetEditingTest() override {
        dat_.Abandon();
        controls::DataControl::SetEngine({});
        db_.reset();
        config::DbEngine().ReleaseIdle();
    }

    std::string Stored() {
        auto rows = db_->OpenRecordset("SELECT DeductionName & '=' & Percentage & '/' & CountryPhone AS Line "
                                       "FROM DeductNames ORDER BY DeductNameID");
        std::string all;
        for (; !rows->EOF_(); rows->MoveNext())
            all += runtime::TextOf((*rows)[0].Value()) + " ";
        return all;
    }
    void Add(std::initializer_list<std::optional<std::string>> answers, std::vector<FieldPrompt> fields) {
        input_->answers = answers;
        AddRecordsetRecord(dat_, fields, "Deductions");
    }

    std::string wages_ = (root_ / "documents") + "/data/Wage32.mdb";
    std::shared_ptr<test::RecordedMessages> messages_ = std::make_shared<test::RecordedMessages>();
    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::shared_ptr<ScriptedInput> input_ = std::make_shared<ScriptedInput>();
    std::shared_ptr<database::Database> db_;
    controls::Form form_{"frm_setup"};
    controls::DataControl dat_{form_, "dat_deductions"};
    controls::Grid grid_{form_, "tgrd_deductions"};
    const FieldPrompt name_{"Deductionname", {}, kPromptText, "Deduction", 30};
};

TEST_F(RecordsetEditingTest, AnAddedRowIsAskedForAndBecomesCurrent) {
    Add({std::nullopt}, {name_}); // into the empty table
    EXPECT_EQ(input_->asked, "Add Deduction|Enter Deduction Name|30");
    EXPECT_EQ(Stored(), "");
    EXPECT_EQ(dat_.Recordset().Editing(), database::EditMode::None);

    Add({"Union"}, {{"", "skipped", kPromptText, "", 0}, name_});
    Add({"Club"}, {name_, {"Percentage", "7", kPromptLong, "Percentage", 0}}); // given, so not asked for
    Add({""}, {name_});
    Add({"  "}, {name_});
    EXPECT_EQ(Stored(), "Union=0/0 Club=7/0 ");
    EXPECT_EQ(runtime::TextOf(dat_.FieldOrNull("DeductionName")), "Club");
    EXPECT_EQ(grid_.RowCount(), 2);

    EXPECT_TRUE(messages_->shown.empty());
    Add({"Fund", "x"}, {name_, {"Percentage", {}, 5, "Percentage", 0}});
    ASSERT_EQ(messages_->shown.size(), 1u);
    EXPECT_EQ(messages_->shown[0].prompt, "need another case statement");
    EXPECT_EQ(Stored(), "Union=0/0 Club=7/0 Fund=0/0 ");
    EXPECT_TRUE(reports_->reports.empty());
}

TEST_F(RecordsetEditingTest, ARowThatCannotBeAddedIsReportedAndLeavesNothingBehind) {
    Add({"Union"}, {name_});
    Add({std::string(300, 'x')}, {name_});
    Add({"Club", "many"}, {name_, {"Percentage", {}, kPromptLong, "Percentage", 0}});
    ASSERT_EQ(reports_->reports.size(), 2u);
    EXPECT_EQ(reports_->reports[0].routine, "AddRecordsetRecord");
    EXPECT_EQ(dat_.Recordset().Editing(), database::EditMode::None);
    EXPECT_EQ(Stored(), "Union=0/0 ");
}

TEST_F(RecordsetEditingTest, DeletingAsksAndKeepsTheOnlyRowAndRowsInUse) {
    Add({"Union"}, {name_});
    DeleteRecordsetRecord(dat_, "DeductionName", "Deduction");
    EXPECT_TRUE(messages_->shown.empty());
    Add({"Club"}, {name_});
    Add({"Fund"}, {name_});

    messages_->answer = kAnswerNo;
    dat_.Recordset().MoveFirst();
    DeleteRecordsetRecord(dat_, "DeductionName", "Deduction");
    ASSERT_EQ(messages_->shown.size(), 1u);
    EXPECT_EQ(messages_->shown[0].prompt, "Delete Union?");
    EXPECT_EQ(messages_->shown[0].heading, "Confirm Deduction Deletion");
    EXPECT_EQ(messages_->shown[0].icon, kIconQuestion);
    EXPECT_EQ(Stored(), "Union=0/0 Club=0/0 Fund=0/0 ");

    messages_->answer = kAnswerYes;
    db_->Execute("INSERT INTO EmployeeDeductions (DeductNameID) SELECT DeductNameID FROM DeductNames WHERE "
                 "DeductionName = 'Union'",
                 database::kFailOnError);
    DeleteRecordsetRecord(dat_, "DeductionName", "Deduction");
    EXPECT_EQ(messages_->shown.back().prompt,
              "Union can't be deleted as it is being used in a wage calculation");
    EXPECT_EQ(messages_->shown.back().heading, "Invalid Selection");
    EXPECT_EQ(runtime::TextOf(dat_.FieldOrNull("DeductionName")), "Fund"); // the move took place

    DeleteRecordsetRecord(dat_, "DeductionName", "Deduction");
    EXPECT_EQ(Stored(), "Union=0/0 Club=0/0 ");
    EXPECT_EQ(runtime::TextOf(dat_.FieldOrNull("DeductionName")), "Club");

    // Without a field, or with a Null in it, the row goes unasked.
    const std::size_t boxes = messages_->shown.size();
    DeleteRecordsetRecord(dat_, "", "Deduction");
    EXPECT_EQ(messages_->shown.size(), boxes);
    EXPECT_EQ(Stored(), "Union=0/0 ");
    EXPECT_TRUE(reports_->reports.empty());
}

TEST_F(RecordsetEditingTest, ARowThatAnotherProgramDeletedIsReported) {
    Add({"Union"}, {name_});
    Add({"Club"}, {name_});
    db_->Execute("DELETE FROM DeductNames WHERE DeductionName = 'Club'", database::kFailOnError);
    messages_->answer = kAnswerYes;
    DeleteRecordsetRecord(dat_, "DeductionName", "Deduction");
    ASSERT_FALSE(reports_->reports.empty());
    EXPECT_EQ(reports_->reports[0].routine, "DeleteRecordsetRecord");
    EXPECT_EQ(Stored(), "Union=0/0 ");
    EXPECT_TRUE(messages_->shown.empty());
}

TEST_F(RecordsetEditingTest, APendingGridRowIsWrittenAndStaysCurrent) {
    Add({"Union"}, {name_});
    Add({"Club"}, {name_});
    grid_.GoToRow(0);
    grid_.EditCell(0, "Guild");
    EXPECT_EQ(Stored(), "Union=0/0 Club=0/0 ");
    SaveGridRecordset(grid_, dat_);
    EXPECT_EQ(Stored(), "Guild=0/0 Club=0/0 ");
    EXPECT_EQ(grid_.Row, 0);
    EXPECT_FALSE(grid_.DataChanged);

    db_->Execute("UPDATE DeductNames SET DeductionName = 'Other' WHERE DeductionName = 'Guild'",
                 database::kFailOnError);
    SaveGridRecordset(grid_, dat_); // nothing pending, nothing written
    EXPECT_EQ(Stored(), "Other=0/0 Club=0/0 ");

    // A row that another program has deleted meanwhile is told of, and what was typed is still there.
    grid_.EditCell(0, "Lodge");
    db_->Execute("DELETE FROM DeductNames WHERE DeductionName = 'Other'", database::kFailOnError);
    SaveGridRecordset(grid_, dat_);
    ASSERT_EQ(reports_->reports.size(), 1u);
    EXPECT_EQ(reports_->reports[0].routine, "SaveGridRecordset");
    EXPECT_EQ(grid_.PropertyText("Cell(0,0)"), "Lodge");
    EXPECT_EQ(Stored(), "Club=0/0 ");
}

} // namespace

} // namespace quillary::common
