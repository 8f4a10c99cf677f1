#include "platform/controls/controls.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "stored_table.h"
#include "trace.h"

#include <gtest/gtest.h>

#include <set>

namespace quillary::controls {
namespace {

using runtime::RunTimeError;
using runtime::Variant;
using testing::StoredTable;
using testing::Trace;

// Stock classes behind a bound grid; every editing event has a routine, so that the trace shows it.
struct Screen {
    StoredTable table{{"Names",
                       {{"ID", database::FieldType::Long, 0, false, true, true, {}},
                        {"Class Name", database::FieldType::Text, 12, true, false, false, {}},
                        {"Number", database::FieldType::Integer, 0, false, true, false, {}},
                        {"Individual", database::FieldType::Boolean, 0, false, true, false, {}},
                        {"Type", database::FieldType::Long, 0, false, true, false, {}}},
                       {{"Key", {"ID"}, true, true, false}, {"Name", {"Class Name"}, false, true, false}}}};
    Form form{"frm_setup"};
    TextBox before{form, "txt_before"};
    DataControl dat{form, "dat_Stock"};
    Grid grid{form, "tgrd_StockNames"};
    std::string messages;
    std::set<std::string> refused; // events that cancel

    Screen() {
        SetControlMessage([this](const std::string& text) { messages += text + "."; });
        for (const char* name : {"Ewes", "Rams", "Lambs"})
            table.Execute("INSERT INTO Names ([Class Name], [Number], Type) VALUES ('" + std::string(name) +
                          "', 10, 1)");
        for (const char* field : {"ID", "Class Name", "Number", "Individual", "Type"}) {
            Column& column = grid.AddColumn();
            column.Caption = std::string("The ") + field;
            column.DataField = field;
        }
        grid.Columns(0).Visible = false;
        grid.Columns(2).NumberFormat = "Fixed";
        grid.Columns(3).ValueItems.Add(Variant(true), "Yes", 102);
        grid.Columns(3).ValueItems.Add(Variant(false), "No", 103);
        grid.Columns(3).ValueItems.Translate = true;
        grid.Columns(4).ValueItems.Add(Variant(1), "Sheep");
        grid.Columns(4).ValueItems.Add(Variant("2"), "Cattle");
        grid.Columns(4).ValueItems.Translate = true;
        auto answer = [this](const char* event) { return refused.contains(event); };
        grid.BeforeColEdit = [=](int, int, bool& cancel) { cancel = answer("BeforeColEdit"); };
        grid.AfterColEdit = [](int) {};
        grid.BeforeColUpdate = [=](int, Variant&, bool& cancel) { cancel = answer("BeforeColUpdate"); };
        grid.AfterColUpdate = [](int) {};
        grid.BeforeUpdate = [=](bool& cancel) { cancel = answer("BeforeUpdate"); };
        grid.AfterUpdate = [] {};
        grid.BeforeInsert = [=](bool& cancel) { cancel = answer("BeforeInsert"); };
        grid.AfterInsert = [] {};
        grid.BeforeDelete = [=](bool& cancel) { cancel = answer("BeforeDelete"); };
        grid.AfterDelete = [] {};
        grid.SetDataSource(&dat);
        dat.DatabaseName = table.path;
        dat.RecordSource = "Names";
        dat.Refresh();
        form.Show();
    }
    ~Screen() { SetControlMessage({}); }
    std::string Property(const char* name) { return grid.PropertyText(name).value_or("(none)"); }
    // The events of what was done, without the grid's name.
    static std::string Events(Trace& trace) {
        std::string text = trace.Take();
        for (std::size_t at; (at = text.find("tgrd_StockNames_")) != std::string::npos;)
            text.erase(at, 16);
        return text;
    }
};

TEST(Grid, ShowsRowsThroughFormatsAndValueLists) {
    Screen s;
    EXPECT_EQ(s.grid.Col, 1) << "the first one that is shown";
    EXPECT_EQ(s.grid.Columns("The Number").Text, "10.00");
    EXPECT_EQ(s.grid.Columns("Number").ColIndex(), 2);
    EXPECT_THROW(s.grid.Columns(5), RunTimeError);
    EXPECT_EQ(s.grid.Columns(1).CellText(*s.grid.Bookmark.Get() + 1), "Rams");

    // A percentage may be typed as it is shown.
    Column& percent = s.grid.Columns(2);
    percent.NumberFormat = "Percent";
    for (const auto& [typed, value] : std::vector<std::pair<const char*, const char*>>{
             {"17.5%", "0.175"}, {" 30 % ", "0.3"}, {"0.4", "0.4"}, {"half%", "half%"}})
        EXPECT_EQ(runtime::TextOf(percent.Typed(typed)), value) << typed;
}

TEST(Grid, EditsWaitInTheRowUntilItIsLeft) {
    Screen s;
    Trace trace;
    EXPECT_TRUE(s.grid.EditCell(1, "Hoggets"));
    EXPECT_TRUE(s.grid.HasFocus());
    EXPECT_EQ(s.Events(trace), "BeforeColEdit AfterColEdit BeforeColUpdate AfterColUpdate ");
    EXPECT_EQ(s.Property("DataChanged"), "True");
    EXPECT_EQ(s.Property("Shown(0,1)"), "Hoggets");
    EXPECT_EQ(s.table.Text(0, 1), "Ewes");
    EXPECT_TRUE(s.grid.EditCell(4, "Cattle")); // what is shown
    EXPECT_TRUE(s.grid.EditCell(3, "-1"));     // no entry reads so: the stored value
    trace.Take();
    EXPECT_TRUE(s.grid.GoToRow(1));
    EXPECT_EQ(s.Events(trace), "BeforeUpdate AfterUpdate ");
    EXPECT_EQ(s.table.Text(0, 1), "Hoggets");
    EXPECT_EQ(s.table.Text(0, 3), "True");
    EXPECT_EQ(s.table.Text(0, 4), "2");
    EXPECT_EQ(s.Property("Row"), "1");
    // The same text again changes nothing.
    EXPECT_TRUE(s.grid.EditCell(2, "10"));
    EXPECT_EQ(s.Events(trace), "BeforeColEdit AfterColEdit ");
    EXPECT_EQ(s.Property("DataChanged"), "False");
    // Leaving the grid writes, after its Validate.
    s.grid.EditCell(2, "25.4");
    s.grid.Validate = [&](bool&) { EXPECT_TRUE(s.grid.DataChanged); };
    s.grid.LostFocus = [&] { EXPECT_FALSE(s.grid.DataChanged); };
    trace.Take();
    EXPECT_TRUE(s.before.Focus());
    EXPECT_EQ(s.Events(trace), "Validate BeforeUpdate AfterUpdate LostFocus ");
    EXPECT_EQ(s.table.Text(1, 2), "25");
    EXPECT_EQ(s.Property("Row"), "1"); // the row stays current
}

TEST(Grid, RefusedEditsShowTheOldValue) {
    struct {
        const char* event;
        const char* events;
    } cases[] = {{"BeforeColEdit", "BeforeColEdit "},
                 {"BeforeColUpdate", "BeforeColEdit AfterColEdit BeforeColUpdate "}};
    for (const auto& test : cases) {
        Screen s;
        s.refused = {test.event};
        Trace trace;
        EXPECT_TRUE(s.grid.EditCell(1, "Hoggets").IsRefused()) << test.event;
        EXPECT_EQ(s.Events(trace), test.events);
        EXPECT_EQ(s.Property("Shown(0,1)"), "Ewes") << test.event;
        EXPECT_FALSE(s.grid.DataChanged) << test.event;
    }
    Screen s;
    // Put back by the routine, without a refusal; a text that the field cannot hold; locked; not there.
    s.grid.BeforeColUpdate = [&](int col, Variant& oldValue, bool&) {
        if (s.grid.Columns(col).Text.empty())
            s.grid.Columns(col).Value = oldValue;
    };
    EXPECT_TRUE(s.grid.EditCell(1, ""));
    EXPECT_EQ(s.Property("Shown(0,1)"), "Ewes");
    EXPECT_FALSE(s.grid.DataChanged);
    for (const char* text : {"ten", "40000"}) { // no number; none of 16 bits
        EXPECT_TRUE(s.grid.EditCell(2, text).IsRefused());
        EXPECT_NE(std::exchange(s.messages, ""), "");
        EXPECT_EQ(s.Property("Shown(0,2)"), "10.00");
    }
    s.grid.Columns(2).Locked = true;
    EXPECT_TRUE(s.grid.EditCell(2, "11").IsRefused());
    EXPECT_TRUE(s.grid.EditCell(0, "11").IsImpossible());
    EXPECT_TRUE(s.grid.GoToRow(3).IsImpossible());
    EXPECT_TRUE(s.grid.ToggleCell(1).IsImpossible());
    EXPECT_TRUE(s.grid.GoToNewRow().IsImpossible());
    // An earlier edit of the cell outlives a refused one.
    s.grid.EditCell(1, "Kept");
    s.refused = {"BeforeColEdit"};
    s.grid.EditCell(1, "Lost");
    EXPECT_EQ(s.Property("Shown(0,1)"), "Kept");
}

TEST(Grid, RefusedRowStaysInEdit) {
    Screen s;
    int dataError = 0;
    s.grid.Error = [&](int number, int& response) {
        dataError = number;
        response = number == kGridDuplicate ? 0 : 1;
    };
    s.grid.EditCell(1, "rams"); // unique without case
    EXPECT_TRUE(s.grid.CommitRow().IsRefused());
    EXPECT_EQ(dataError, kGridDuplicate);
    EXPECT_EQ(s.messages, "");
    EXPECT_EQ(s.Property("Shown(0,1)"), "rams"); // with what was typed
    EXPECT_TRUE(s.grid.DataChanged);
    EXPECT_TRUE(s.grid.GoToRow(2).IsRefused());
    EXPECT_TRUE(s.before.Focus().IsRefused());
    EXPECT_FALSE(s.form.UnloadForm());
    try {
        s.grid.Update();
        ADD_FAILURE();
    } catch (const RunTimeError& error) {
        EXPECT_EQ(error.Number(), database::kErrDuplicateValue); // to code it is an error
    }
    const std::pair<const char*, int> others[] = {{"", database::kErrRequiredField},
                                                  {"a name beyond twelve", database::kErrFieldTooSmall}};
    for (const auto& [text, number] : others) {
        s.grid.EditCell(1, text);
        EXPECT_TRUE(s.grid.CommitRow().IsRefused());
        EXPECT_EQ(dataError, number);
        EXPECT_NE(std::exchange(s.messages, ""), "");
        EXPECT_EQ(s.Property("Shown(0,1)"), text);
    }
    s.grid.PressKey(ParseKey("Escape"));
    EXPECT_EQ(s.Property("Shown(0,1)"), "Ewes");
    EXPECT_TRUE(s.before.Focus());
    s.refused = {"BeforeUpdate"};
    s.grid.EditCell(1, "Hoggets");
    EXPECT_TRUE(s.grid.CommitRow().IsRefused());
    s.grid.DataChanged = false; // code gives the edit up
    EXPECT_EQ(s.Property("Shown(0,1)"), "Ewes");
}

TEST(Grid, AReadOnlyDatabaseIsToldWhenACellIsToChange) {
    Screen s;
    s.table.MakeReadOnly();
    s.dat.Refresh();
    const std::string told = "The database '" + s.table.path +
                             "' is read-only. Nothing can be changed here until its file can be written to..";
    EXPECT_TRUE(s.grid.EditCell(1, "x").IsRefused());
    EXPECT_EQ(std::exchange(s.messages, ""), told);
    EXPECT_TRUE(s.grid.GoToRow(1));
    s.grid.PressKey(ParseKey("a"));
    EXPECT_EQ(std::exchange(s.messages, ""), told);
    EXPECT_FALSE(s.grid.GoToNewRow()); // none is offered
    EXPECT_EQ(s.messages, "");
    s.grid.AllowAddNew = true;
    EXPECT_FALSE(s.grid.GoToNewRow());
    EXPECT_EQ(std::exchange(s.messages, ""), told);
    s.grid.Columns(1).Locked = true; // a column that nobody may change needs no reason
    EXPECT_TRUE(s.grid.EditCell(1, "x").IsRefused());
    EXPECT_EQ(s.messages, "");
}

TEST(Grid, NewRowAtTheFoot) {
    Screen s;
    s.grid.AllowAddNew = true;
    s.grid.Columns(2).DefaultValue = Variant(7);
    EXPECT_EQ(s.Property("RowCount"), "3");
    EXPECT_TRUE(s.grid.GoToNewRow());
    EXPECT_EQ(s.Property("Row"), "3");
    EXPECT_FALSE(s.grid.Bookmark.Get());
    EXPECT_TRUE(s.grid.CommitRow()); // nothing was typed, nothing is added
    EXPECT_EQ(s.table.Count(), 3);
    Trace trace;
    s.refused = {"BeforeInsert"};
    EXPECT_TRUE(s.grid.EditCell(1, "Wethers").IsRefused());
    s.refused = {};
    s.grid.EditCell(1, "Ewes");
    s.grid.EditCell(3, "Yes");
    EXPECT_TRUE(s.grid.CommitRow().IsRefused()); // a duplicate
    s.grid.EditCell(1, "Wethers");
    // Validate finds the new row in edit and adds to it.
    s.dat.Validate = [&](int& action, bool& save) {
        EXPECT_EQ(action, kActionUpdate);
        EXPECT_TRUE(save);
        if (s.dat.Recordset()["Type"].Value().IsNull()) {
            s.dat.Recordset().Edit();
            s.dat.Recordset()["Type"] = Variant(2);
            s.dat.Recordset().Update();
        }
    };
    trace.Take();
    EXPECT_TRUE(s.grid.CommitRow());
    EXPECT_EQ(s.Events(trace), "BeforeUpdate dat_Stock_Validate AfterUpdate AfterInsert ");
    EXPECT_EQ(s.Property("Row"), "3");
    EXPECT_EQ(s.Property("RowCount"), "4");
    EXPECT_EQ(s.table.Text(3, 1) + s.table.Text(3, 2) + s.table.Text(3, 3) + s.table.Text(3, 4),
              "Wethers7True2");
    // Escape gives a new row up.
    s.dat.Validate = nullptr;
    s.grid.GoToNewRow();
    s.grid.EditCell(1, "Given up");
    s.grid.CancelEdit();
    EXPECT_TRUE(s.grid.GoToRow(0));
    EXPECT_EQ(s.table.Count(), 4);
}

TEST(Grid, DeleteKey) {
    Screen s;
    EXPECT_TRUE(s.grid.DeleteRow().IsRefused()); // not allowed
    s.grid.AllowDelete = true;
    s.refused = {"BeforeDelete"};
    EXPECT_TRUE(s.grid.DeleteRow().IsRefused());
    s.refused = {};
    for (int left = 3; left > 0; --left)
        s.grid.PressKey(ParseKey("Delete"));
    EXPECT_EQ(s.table.Count(), 0);
    EXPECT_EQ(s.Property("Row"), "-1");
    EXPECT_TRUE(s.grid.DeleteRow().IsImpossible());
    EXPECT_TRUE(s.grid.EditCell(1, "x").IsImpossible());
    EXPECT_THROW(s.grid.Delete(), RunTimeError);
}

TEST(Grid, CodeBesideTheUser) {
    Screen s;
    // Edit and Update of the recordset write what the grid holds.
    s.grid.EditCell(1, "Hoggets");
    s.dat.Recordset().Edit();
    s.dat.Recordset().Update();
    EXPECT_EQ(s.table.Text(0, 1), "Hoggets");
    s.grid.Bookmark = s.dat.Recordset().LastModified();
    EXPECT_FALSE(s.grid.DataChanged);
    // A move of the recordset moves the grid, and writes as well.
    s.grid.EditCell(2, "99");
    s.dat.Recordset().MoveLast();
    EXPECT_EQ(s.table.Text(0, 2), "99");
    EXPECT_EQ(s.grid.Row, 2);
    // Values set by code are pending too, and no event tells of them.
    Trace trace;
    s.grid.Columns(2).Text = "5";
    s.grid.Row = 1;
    s.grid.Col = 2;
    s.grid.EditActive = true;
    s.grid.EditActive = false;
    EXPECT_EQ(s.Events(trace), "BeforeUpdate AfterUpdate ");
    EXPECT_EQ(s.table.Text(2, 2), "5");
    // Rows that code adds and deletes are there at once.
    s.dat.Recordset().AddNew();
    s.dat.Recordset()["Class Name"] = Variant("Code");
    s.dat.Recordset().Update();
    EXPECT_EQ(s.Property("RowCount"), "4");
    s.dat.Recordset().MoveLast();
    EXPECT_EQ(s.grid.Columns(1).Text, "Code");
    s.dat.Recordset().Delete();
    EXPECT_EQ(s.Property("RowCount"), "3");
    EXPECT_EQ(s.grid.Row, -1);
    EXPECT_THROW(s.grid.Row = 7, RunTimeError);
    EXPECT_THROW(s.grid.Bookmark = Grid::BookmarkType(), RunTimeError);
}

TEST(Grid, CodeThatWritesTheRowWithinACellsEvents) {
    for (bool cancelled : {false, true}) {
        Screen s;
        s.grid.BeforeColUpdate = [&](int col, Variant&, bool& cancel) {
            s.dat.Recordset().Edit();
            s.dat.Recordset()["Type"] = Variant(2);
            s.dat.Recordset().Update();
            EXPECT_EQ(s.grid.Columns(col).Text, "Hoggets"); // still pending
            cancel = cancelled;
        };
        s.grid.EditCell(1, "Hoggets");
        EXPECT_EQ(s.table.Text(0, 1), "Ewes"); // it has not been written with the other field
        EXPECT_EQ(s.table.Text(0, 4), "2");
        EXPECT_EQ(s.grid.DataChanged, !cancelled);
        EXPECT_TRUE(s.grid.CommitRow());
        EXPECT_EQ(s.table.Text(0, 1), cancelled ? "Ewes" : "Hoggets");
    }
}

TEST(Grid, KeysEditAndMove) {
    Screen s;
    std::string keys;
    s.grid.KeyPress = [&](int& keyAscii) {
        keys += static_cast<char>(keyAscii);
        if (keyAscii == '\'')
            keyAscii = 0;
    };
    int started = -1;
    s.grid.BeforeColEdit = [&](int, int keyAscii, bool&) { started = keyAscii; };
    s.grid.EditCell(1, "'O'B");
    EXPECT_EQ(s.grid.Columns(1).Text, "OB");
    EXPECT_EQ(keys, "'O'B");
    EXPECT_EQ(started, 'O');
    s.grid.EditCell(4, "Sheep"); // picked from the list, not typed
    EXPECT_EQ(keys, "'O'B");
    s.grid.Columns(1).MaxLength = 3;
    s.grid.EditCell(1, "abcdef");
    EXPECT_EQ(s.grid.Columns(1).Text, "abc");
    s.grid.MoveToColumn(1);
    for (const char* key : {"N", "e", "x", "Backspace", "w"})
        s.grid.PressKey(ParseKey(key));
    EXPECT_TRUE(s.grid.EditActive);
    EXPECT_EQ(s.grid.EditText(), "New");
    s.grid.PressKey(ParseKey("Down"));
    EXPECT_EQ(s.table.Text(0, 1), "New");
    EXPECT_EQ(s.grid.Row, 1);
    int lastCol = -1;
    s.grid.RowColChange = [&](Grid::BookmarkType, int last) { lastCol = last; };
    s.grid.PressKey(ParseKey("Right"));
    EXPECT_EQ(s.grid.Col, 2);
    EXPECT_EQ(lastCol, 1);
    s.grid.PressKey(ParseKey("4"));
    s.grid.PressKey(ParseKey("Enter"));
    s.grid.PressKey(ParseKey("Up"));
    EXPECT_EQ(s.table.Text(1, 2), "4");
}

TEST(ArrayGrid, NewRowsByTheGridOrByClassicAdd) {
    for (bool classic : {false, true}) {
        Form form{"frm_Rebates"};
        Grid grid{form, "tgrd_data"};
        const auto array = std::make_shared<QYxArray>();
        grid.AddColumn().Caption = "Rebate";
        array->ReDim(0, 1, 0, 0);
        grid.Array = array;
        grid.ReBind();
        grid.AllowAddNew = true;
        if (classic)
            grid.ClassicAdd = [&](long row) {
                grid.Update();
                EXPECT_EQ(grid.Bookmark.Get(), 1);
                array->InsertRows(row);
                grid.ReBind();
            };
        form.Show();
        EXPECT_TRUE(grid.GoToNewRow());
        EXPECT_TRUE(grid.EditCell(0, "Third"));
        EXPECT_EQ(array->UpperBound(1), classic ? 2 : 1);
        EXPECT_TRUE(grid.CommitRow());
        EXPECT_EQ((*array)(2, 0), Variant("Third")) << classic;
        EXPECT_EQ(grid.Row, 2) << classic;
    }
}

TEST(ArrayGrid, RowsComeAndGoWithTheArray) {
    Form form{"frm_Rebates"};
    Grid grid{form, "tgrd_data"};
    const auto array = std::make_shared<QYxArray>();
    for (const char* caption : {"ID", "Rebate", "Quantity"})
        grid.AddColumn().Caption = caption;
    array->ReDim(0, -1, 0, 3);
    grid.Array = array;
    grid.ReBind();
    form.Show();
    EXPECT_FALSE(grid.Bookmark.Get());
    EXPECT_EQ(grid.Row, -1);
    grid.MoveLast();
    array->ReDim(0, 0, 0, 3);
    grid.ReBind();
    EXPECT_EQ(grid.Bookmark.Get(), 0);
    array->InsertRows(0);
    grid.ReBind();
    grid.MoveLast();
    EXPECT_EQ(grid.Bookmark.Get(), 1);
    grid.Columns(1).Value = "named";
    grid.ReBind(); // drops what is pending, keeps the row's number
    EXPECT_EQ(grid.Bookmark.Get(), 1);
    EXPECT_TRUE((*array)(1, 1).IsEmpty());
    grid.Delete(); // the last row: none is current then
    EXPECT_FALSE(grid.Bookmark.Get());
    EXPECT_EQ(array->UpperBound(1), 0);
    grid.MoveLast();
    EXPECT_EQ(grid.Bookmark.Get(), 0);
    array->ReDim(5, 6, 1, 3); // bookmarks are the array's own indexes
    grid.ReBind();
    grid.Bookmark = 6;
    EXPECT_EQ(grid.Row, 1);
}

TEST(Grid, RowsAreVisitedOnlyWhereTheyAreShown) {
    Screen s;
    for (int times = 0; times < 13; ++times)
        s.table.Execute(
            "INSERT INTO Names ([Class Name], Type) SELECT 'Mob ' & (ID + (SELECT Max(ID) FROM Names)), 1 "
            "FROM Names");
    const long last = s.table.Count() - 1;
    s.dat.Refresh();
    EXPECT_EQ(s.dat.Recordset().RecordCount(), 20); // a page of rows counts as visited
    s.grid.Shown(last / 2, 1);
    EXPECT_EQ(s.dat.Recordset().RecordCount(), 20);
    s.grid.GoToRow(last);
    EXPECT_EQ(s.grid.Columns(1).Text, "Mob " + std::to_string(last + 1));
    EXPECT_EQ(s.Property("RowCount"), std::to_string(last + 1));
    EXPECT_EQ(s.dat.Recordset().RecordCount(), last + 1);
}

} // namespace
} // namespace quillary::controls
