// The data control and the grid on the database engine itself: what they rely on must hold there.
#include "platform/controls/controls.h"
#include "platform/database/errors.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace quillary::controls {
namespace {

using runtime::RunTimeError;
using runtime::Variant;

class OnDatabase : public ::testing::Test {
protected:
    OnDatabase() {
        runtime::SetLocale("en_NZ");
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        db_ = engine_->CreateDatabase(path_);
        for (const char* sql : {
                 "CREATE TABLE [Stock Types] ([Type ID] LONG PRIMARY KEY, [Account Level] TEXT(20))",
                 "CREATE TABLE [Stock Class Names] ([Class ID] COUNTER PRIMARY KEY, "
                 "[Class Name] TEXT(12) NOT NULL, [Stock Type ID] LONG, Individual BIT, [Number] SHORT)",
                 "CREATE UNIQUE INDEX ClassName ON [Stock Class Names] ([Class Name])",
                 "INSERT INTO [Stock Types] VALUES (1, 'Sheep')",
                 "INSERT INTO [Stock Class Names] ([Class Name], [Stock Type ID], [Number]) VALUES ('Ewes', "
                 "1, 5)",
                 "INSERT INTO [Stock Class Names] ([Class Name], [Stock Type ID], [Number]) VALUES ('Rams', "
                 "1, 6)",
             })
            db_->Execute(sql, database::kFailOnError);
        DataControl::SetEngine([this]() -> database::Engine& { return *engine_; });
        SetControlMessage([this](const std::string& text) { messages_ += text + "\n"; });
        for (const char* field : {"Class Name", "Individual", "Number", "Account Level"}) {
            Column& column = grid_.AddColumn();
            column.Caption = field;
            column.DataField = field;
        }
        grid_.SetDataSource(&dat_);
        name_.Bind(dat_, "Class Name");
        dat_.DatabaseName = path_;
        dat_.RecordSource =
            "SELECT DISTINCTROW [Stock Class Names].*, [Stock Types].[Account Level] FROM "
            "[Stock Class Names] LEFT JOIN [Stock Types] ON [Stock Class Names].[Stock Type ID] "
            "= [Stock Types].[Type ID] ORDER BY [Stock Class Names].[Class Name];";
        dat_.Refresh();
        form_.Show();
    }
    ~OnDatabase() override {
        DataControl::SetEngine({});
        SetControlMessage({});
        dat_.Abandon();
        db_.reset();
        engine_->ReleaseIdle();
        std::filesystem::remove_all(folder_);
    }
    std::string Property(const char* property) { return grid_.PropertyText(property).value_or("(none)"); }
    // All names in the file, as another connection reads them.
    std::string Stored() {
        auto rows = engine_->OpenDatabase(path_)->OpenRecordset(
            "SELECT [Class Name] & '=' & [Number] & [Individual] AS Line FROM [Stock Class Names] ORDER BY "
            "[Class ID]");
        std::string all;
        for (; !rows->EOF_(); rows->MoveNext())
            all += (*rows)[0].Value().Get<std::string>() + " ";
        return all;
    }

    std::string folder_ = std::filesystem::temp_directory_path() / ("controls" + std::to_string(getpid()));
    std::string path_ = folder_ + "/Farm32.mdb";
    std::unique_ptr<database::Engine> engine_ = database::CreateSqliteEngine();
    std::shared_ptr<database::Database> db_;
    std::string messages_;
    Form form_{"frm_setup"};
    DataControl dat_{form_, "dat_Stock"};
    Grid grid_{form_, "tgrd_StockNames"};
    TextBox name_{form_, "txt_name"};
};

TEST_F(OnDatabase, GridWritesThroughAJoin) {
    EXPECT_EQ(Property("Shown(0,3)"), "Sheep");
    EXPECT_TRUE(grid_.EditCell(0, "Hoggets"));
    EXPECT_TRUE(grid_.EditCell(1, "Yes"));
    EXPECT_TRUE(grid_.GoToRow(1));
    EXPECT_EQ(Stored(), "Hoggets=5-1 Rams=60 ");
    EXPECT_EQ(name_.Text, "Rams");
    // A new row stands at the end, whatever the sort, and is current.
    grid_.AllowAddNew = true;
    EXPECT_TRUE(grid_.GoToNewRow());
    EXPECT_TRUE(grid_.EditCell(0, "Aged"));
    EXPECT_TRUE(grid_.CommitRow());
    EXPECT_EQ(Property("Row") + Property("RowCount"), "23");
    EXPECT_EQ(Stored(), "Hoggets=5-1 Rams=60 Aged=0 ");
    EXPECT_EQ(name_.Text, "Aged");
    grid_.AllowDelete = true;
    grid_.GoToRow(0);
    EXPECT_TRUE(grid_.DeleteRow());
    EXPECT_EQ(Stored(), "Rams=60 Aged=0 ");
    EXPECT_EQ(Property("Shown(0,0)"), "Rams");
    EXPECT_EQ(messages_, "");
}

TEST_F(OnDatabase, RefusalsKeepTheRowInEdit) {
    std::string errors;
    grid_.Error = [&](int number, int& response) {
        errors += std::to_string(number) + " ";
        response = 0;
    };
    for (const char* text : {"RAMS", "", "a name beyond twelve"}) {
        EXPECT_TRUE(grid_.EditCell(0, text)) << text;
        EXPECT_TRUE(grid_.CommitRow().IsRefused()) << text;
        EXPECT_EQ(Property("Shown(0,0)"), text);
    }
    EXPECT_EQ(errors, "16389 3314 3163 ");
    grid_.CancelEdit();
    EXPECT_TRUE(grid_.EditCell(2, "40000").IsRefused()); // no 16-bit number: the cell has its old value
    EXPECT_EQ(Property("Shown(0,2)"), "5");
    EXPECT_TRUE(grid_.CommitRow());
    EXPECT_EQ(Stored(), "Ewes=50 Rams=60 ");
}

TEST_F(OnDatabase, UpdateRecordAndItsErrors) {
    name_.TypeText("Two-tooths");
    // Another program changes another field meanwhile.
    db_->Execute("UPDATE [Stock Class Names] SET [Number] = 7 WHERE [Class Name] = 'Ewes'",
                 database::kFailOnError);
    dat_.UpdateRecord();
    EXPECT_EQ(Stored(), "Two-tooths=70 Rams=60 ");
    EXPECT_EQ(Property("Cell(0,2)"), "7");
    name_.TypeText("far too long a name");
    try {
        dat_.UpdateRecord();
        ADD_FAILURE();
    } catch (const RunTimeError& error) {
        EXPECT_EQ(error.Number(), 524);
    }
    name_.TypeText("Rams");
    try {
        dat_.Recordset().MoveLast();
        ADD_FAILURE();
    } catch (const RunTimeError& error) {
        EXPECT_EQ(error.Number(), database::kErrDuplicateValue);
    }
    dat_.UpdateControls();
    // The row vanishes: nothing is shown, and nothing breaks.
    db_->Execute("DELETE FROM [Stock Class Names] WHERE [Class Name] = 'Two-tooths'", database::kFailOnError);
    dat_.UpdateControls();
    EXPECT_EQ(name_.Text, "");
    EXPECT_EQ(Property("Shown(0,0)"), "");
    dat_.Recordset().MoveLast();
    EXPECT_EQ(name_.Text, "Rams");
    db_->Execute("DELETE FROM [Stock Class Names]", database::kFailOnError);
    dat_.Refresh();
    EXPECT_EQ(Property("Row"), "-1");
    dat_.UpdateRecord(); // without a record it does nothing
}

TEST_F(OnDatabase, CodeAddsAndDeletes) {
    database::Recordset& records = dat_.Recordset();
    records.AddNew();
    records["Class Name"] = Variant("Wethers");
    dat_.UpdateRecord();
    records.MoveLast();
    EXPECT_EQ(Property("Row"), "2");
    EXPECT_EQ(grid_.Columns(0).Text, "Wethers");
    EXPECT_GT(records["Class ID"].Value().Get<std::int32_t>(), 2);
    records.Delete();
    EXPECT_EQ(Property("Row") + Property("RowCount"), "-12");
    EXPECT_EQ(name_.Text, "");
    records.MoveLast();
    EXPECT_EQ(name_.Text, "Rams");
    records.FindFirst("[Class Name]='ewes'");
    EXPECT_FALSE(records.NoMatch());
    EXPECT_EQ(Property("Row"), "0");
}

} // namespace
} // namespace quillary::controls
