// The data control and the grid over a join, beside another program.
#include "platform/controls/controls.h"
#include "platform/database/errors.h"
#include "stored_table.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using database::FieldType;
using testing::NumberOf;

class OnDatabase : public ::testing::Test {
protected:
    OnDatabase() {
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
            table_.Execute(sql);
        SetControlMessage([this](const std::string& text) { messages_ += text + "\n"; });
        for (const char* field : {"Class Name", "Individual", "Number", "Account Level"}) {
            Column& column = grid_.AddColumn();
            column.Caption = field;
            column.DataField = field;
        }
        grid_.SetDataSource(&dat_);
        name_.Bind(dat_, "Class Name");
        dat_.DatabaseName = table_.path;
        dat_.RecordSource =
            "SELECT DISTINCTROW [Stock Class Names].*, [Stock Types].[Account Level] FROM "
            "[Stock Class Names] LEFT JOIN [Stock Types] ON [Stock Class Names].[Stock Type ID] "
            "= [Stock Types].[Type ID] ORDER BY [Stock Class Names].[Class Name];";
        dat_.Refresh();
        form_.Show();
    }
    ~OnDatabase() override {
        SetControlMessage({});
        dat_.Abandon();
    }
    std::string Property(const char* property) { return grid_.PropertyText(property).value_or("(none)"); }
    // Name, number and mark of all rows in the file.
    std::string Stored() {
        const auto rows =
            table_.Open("SELECT [Class Name] & '=' & [Number] & [Individual] FROM [Stock Class Names] "
                        "ORDER BY [Class ID]");
        std::string all;
        for (; !rows->EOF_(); rows->MoveNext())
            all += (*rows)[0].Value().Get<std::string>() + " ";
        return all;
    }

    testing::StoredTable table_{{"Other", {{"ID", FieldType::Long, 0, false, true, true, {}}}, {}}};
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

TEST_F(OnDatabase, AnotherProgramWritesAndDeletes) {
    name_.TypeText("Two-tooths");
    table_.Execute("UPDATE [Stock Class Names] SET [Number] = 7 WHERE [Class Name] = 'Ewes'");
    dat_.UpdateRecord();
    EXPECT_EQ(Stored(), "Two-tooths=70 Rams=60 ");
    EXPECT_EQ(Property("Cell(0,2)"), "7");
    name_.TypeText("Rams");
    EXPECT_EQ(NumberOf([&] { dat_.Recordset().MoveLast(); }), database::kErrDuplicateValue);
    dat_.UpdateControls();
    // The row vanishes: nothing is shown, and nothing breaks.
    table_.Execute("DELETE FROM [Stock Class Names] WHERE [Class Name] = 'Two-tooths'");
    dat_.UpdateControls();
    EXPECT_EQ(name_.Text, "");
    EXPECT_EQ(Property("Shown(0,0)"), "");
    dat_.Recordset().MoveLast();
    EXPECT_EQ(name_.Text, "Rams");
    table_.Execute("DELETE FROM [Stock Class Names]");
    dat_.Refresh();
    EXPECT_EQ(Property("Row"), "-1");
    dat_.UpdateRecord(); // without a record it does nothing
}

} // namespace
} // namespace quillary::controls
