#include "platform/controls/controls.h"
#include "platform/database/errors.h"
#include "platform/runtime/dates.h"
#include "stored_table.h"
#include "trace.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using runtime::Variant;
using testing::NumberOf;
using testing::StoredTable;
using testing::Trace;

// Two rows of a farm table with text boxes bound to its fields.
struct Screen {
    StoredTable table{{"Farm Details",
                       {{"Farm Name", database::FieldType::Text, 10, false, true, false, {}},
                        {"Effective Area", database::FieldType::Single, 0, false, true, false, {}},
                        {"GST Start Date", database::FieldType::Date, 0, false, true, false, {}},
                        {"Phone", database::FieldType::Text, 25, false, false, false, {}},
                        {"CashBasis", database::FieldType::Boolean, 0, false, true, false, {}},
                        {"ID", database::FieldType::Long, 0, false, true, true, {}}},
                       {}}};
    Form form{"frm_setup"};
    DataControl dat{form, "dat_FarmDetails"};
    TextBox name{form, "txt_FarmName"}, area{form, "txt_area"}, date{form, "txt_date"},
        phone{form, "txt_phone"};
    CheckBox cash{form, "chk_cash"};
    Label shown{form, "lbl_shown"};

    Screen() {
        table.Execute(
            "INSERT INTO [Farm Details] ([Farm Name], [Effective Area], [GST Start Date], CashBasis) "
            "VALUES ('Hill', 12.5, #4/1/2007#, True)");
        table.Execute(
            "INSERT INTO [Farm Details] ([Farm Name], [Effective Area], Phone) VALUES ('Flat', 8, '123')");
        name.Bind(dat, "Farm Name");
        area.Bind(dat, "effective area");
        date.Bind(dat, "GST Start Date");
        phone.Bind(dat, "Phone");
        cash.Bind(dat, "CashBasis");
        shown.Bind(dat, "Farm Name");
        dat.DatabaseName = table.path;
        dat.RecordSource = "Farm Details";
        dat.Reposition = [] {};
        dat.Refresh();
        form.Show();
    }
};

TEST(DataControl, ShowsTheCurrentRecord) {
    Screen s;
    EXPECT_EQ(s.name.Text, "Hill");
    EXPECT_EQ(s.area.Text, "12.5");
    EXPECT_EQ(s.date.Text, "1/04/2007");
    EXPECT_EQ(s.phone.Text, "");
    EXPECT_EQ(s.cash.Value, 1);
    EXPECT_EQ(s.shown.Caption, "Hill");
    Trace trace;
    s.dat.Recordset().MoveNext();
    EXPECT_EQ(trace.Take(), "dat_FarmDetails_Reposition ");
    EXPECT_EQ(s.name.Text, "Flat");
    EXPECT_EQ(s.cash.Value, 0);
    EXPECT_FALSE(s.name.DataChanged);
    s.dat.Recordset().MoveNext(); // beyond the end there is no record
    EXPECT_EQ(s.name.Text, "");
    EXPECT_TRUE(s.dat.FieldOrNull("Farm Name").IsNull());
    s.dat.UpdateRecord(); // and nothing to write to
    s.dat.Recordset().FindFirst("[Farm Name]='Hill'");
    EXPECT_EQ(s.name.Text, "Hill");
}

TEST(DataControl, UpdateRecordWritesWhatChanged) {
    Screen s;
    s.dat.Validate = [](int&, bool&) {};
    s.name.TypeText("O`Brien");
    s.area.TypeText("20,000.5");
    s.date.TypeText("15 Aug 08");
    s.cash.Check(false);
    EXPECT_EQ(s.table.Text(0, 0), "Hill"); // leaving the box has written nothing
    EXPECT_TRUE(s.name.DataChanged);
    // Another program writes a field that no box has changed.
    s.table.Execute("UPDATE [Farm Details] SET Phone = '555' WHERE ID = 1");
    Trace trace;
    s.dat.UpdateRecord();
    EXPECT_EQ(trace.Take(), ""); // without Validate
    EXPECT_EQ(s.table.Text(0, 0), "O`Brien");
    EXPECT_EQ(s.table.Text(0, 1), "20000.5");
    EXPECT_EQ(s.table.Text(0, 2), "15/08/2008");
    EXPECT_EQ(s.table.Text(0, 4), "False");
    EXPECT_EQ(s.phone.Text, "555"); // the row is shown as it now is
    EXPECT_EQ(s.shown.Caption, "O`Brien");
    EXPECT_FALSE(s.name.DataChanged);
    // A text set from code counts as a change as well.
    s.name.Text = "Code";
    s.dat.UpdateRecord();
    EXPECT_EQ(s.table.Text(0, 0), "Code");
    // Another program deletes the row: nothing is shown, and nothing breaks.
    s.table.Execute("DELETE FROM [Farm Details] WHERE ID = 1");
    s.dat.UpdateControls();
    EXPECT_EQ(s.name.Text, "");
    s.dat.Recordset().MoveLast();
    EXPECT_EQ(s.name.Text, "Flat");
}

TEST(DataControl, EmptyTextByTheKindOfField) {
    Screen s;
    s.dat.Recordset().MoveNext();
    for (TextBox* box : {&s.name, &s.area, &s.phone})
        box->TypeText("");
    s.dat.UpdateRecord();
    EXPECT_EQ(s.table.Text(1, 0), "");       // text that takes the empty text
    EXPECT_EQ(s.table.Text(1, 1), "(null)"); // a number
    EXPECT_EQ(s.table.Text(1, 3), "(null)"); // text that refuses it
}

TEST(DataControl, ValueThatDoesNotFitIs524AndWritesNothing) {
    struct {
        int box;
        const char* text;
    } cases[] = {{0, "more than ten characters"}, {1, "ten"}, {1, "1e39"}, {2, "31/31/31"}};
    for (const auto& test : cases) {
        Screen s;
        TextBox* boxes[] = {&s.name, &s.area, &s.date};
        s.phone.TypeText("999");
        boxes[test.box]->TypeText(test.text);
        EXPECT_EQ(NumberOf([&] { s.dat.UpdateRecord(); }), 524) << test.text;
        EXPECT_EQ(s.table.Text(0, 3), "(null)") << test.text;
        EXPECT_EQ(boxes[test.box]->Text, test.text);
        EXPECT_EQ(NumberOf([&] { s.dat.Recordset().MoveNext(); }), 524) << test.text;
        EXPECT_EQ(s.dat.Recordset().RowOf(*s.dat.Recordset().Bookmark()), 0) << test.text;
        s.dat.UpdateControls(); // drops it
        EXPECT_EQ(NumberOf([&] { s.dat.Recordset().MoveNext(); }), 0) << test.text;
    }
}

TEST(DataControl, ValidateBeforeEveryActionOfCode) {
    Screen s;
    std::string asked;
    int cancelled = -1;
    bool dropped = false;
    s.dat.Validate = [&](int& action, bool& save) {
        asked += std::to_string(action) + (save ? "s " : " ");
        if (action == cancelled)
            action = 0;
        if (dropped)
            save = false;
    };
    database::Recordset& records = s.dat.Recordset();
    records.MoveNext();
    records.MovePrevious();
    records.MoveLast();
    records.MoveFirst();
    records.FindFirst("[Farm Name]='Flat'");
    records.SetBookmark(records.BookmarkAt(0));
    records.Edit();
    records["Farm Name"] = Variant("Edited");
    records.Update();
    EXPECT_EQ(s.name.Text, "Edited");
    EXPECT_EQ(asked, "3 2 4 1 8 9 6 ");
    asked.clear();
    cancelled = 3;
    records.MoveNext();
    EXPECT_EQ(s.name.Text, "Edited");
    cancelled = -1;
    s.name.TypeText("Typed");
    records.MoveNext(); // a move writes what the boxes hold
    EXPECT_EQ(s.table.Text(0, 0), "Typed");
    dropped = true;
    s.name.TypeText("Dropped");
    records.MoveFirst(); // unless Validate says no
    EXPECT_EQ(s.table.Text(1, 0), "Flat");
    EXPECT_EQ(asked, "3 3s 1s ");
    asked.clear();
    dropped = false;
    cancelled = 7;
    records.Delete();
    EXPECT_EQ(records.RowTotal(), 2);
    cancelled = -1;
    records.Delete();
    EXPECT_EQ(s.name.Text, "");
    EXPECT_FALSE(s.dat.HasRecord());
    records.MoveLast();
    EXPECT_EQ(s.name.Text, "Flat");
    EXPECT_EQ(asked, "7 7 4 ");
}

TEST(DataControl, NewRowsOfCode) {
    Screen s;
    database::Recordset& records = s.dat.Recordset();
    records.AddNew();
    EXPECT_EQ(s.name.Text, ""); // the controls show the new row
    records["Farm Name"] = Variant("New");
    s.dat.UpdateRecord();
    EXPECT_EQ(s.table.Text(2, 0), "New");
    EXPECT_EQ(s.name.Text, "Hill"); // the record before stays current
    records.MoveLast();
    EXPECT_EQ(s.name.Text, "New");
    records.AddNew();
    records["Farm Name"] = Variant("Never");
    records.MoveLast(); // a move drops the pending row without a word
    EXPECT_EQ(records.RowTotal(), 3);
    // What Validate sets goes into the row that is being saved.
    s.dat.Validate = [&](int& action, bool&) {
        if (action == kActionUpdate && records["Phone"].Value().IsNull()) {
            records.Edit();
            records["Phone"] = Variant("000");
            records.Update();
        }
    };
    records.AddNew();
    records["Farm Name"] = Variant("Checked");
    records.Update();
    EXPECT_EQ(s.table.Text(3, 0), "Checked");
    EXPECT_EQ(s.table.Text(3, 3), "000");
    EXPECT_EQ(s.table.Count(), 4);
}

TEST(DataControl, ClosesWithItsForm) {
    Screen s;
    std::string message;
    SetControlMessage([&](const std::string& text) { message = text; });
    s.name.TypeText("Closing");
    EXPECT_TRUE(s.form.UnloadForm());
    EXPECT_EQ(s.table.Text(0, 0), "Closing");
    EXPECT_EQ(NumberOf([&] { s.dat.Recordset(); }), 91);
    s.dat.Refresh();
    s.form.Show();
    s.name.TypeText("much too long a name");
    EXPECT_TRUE(s.form.UnloadForm()); // too late to keep the form: told, and dropped
    EXPECT_NE(message.find("Farm Name"), std::string::npos);
    EXPECT_FALSE(s.dat.HasRecordset());
    SetControlMessage({});
}

TEST(DataControl, RefreshFailsWithTheEnginesNumber) {
    Screen s;
    s.dat.RecordSource = "Nothing";
    EXPECT_EQ(NumberOf([&] { s.dat.Refresh(); }), database::kErrUnknownTable);
    EXPECT_FALSE(s.dat.HasRecordset());
    EXPECT_EQ(s.name.Text, "");
    s.dat.DatabaseName = "missing.mdb";
    EXPECT_EQ(NumberOf([&] { s.dat.Refresh(); }), database::kErrFileNotFound);
}

} // namespace
} // namespace quillary::controls
