#pragma once

#include "platform/controls/control.h"
#include "platform/controls/data_bound.h"
#include "platform/controls/grid_columns.h"
#include "platform/controls/grid_rows.h"
#include "platform/controls/qyx_array.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace quillary::controls {

class DataControl;

// The number that the Error event carries for a value that must be unique (3022); any other error comes
// under the engine's own number.
inline constexpr int kGridDuplicate = 16389;

struct CellStyle {
    int foreColor = kDefaultColour;
    int backColor = kDefaultColour;
    bool bold = false;
    bool locked = false;
};

// A table that the user edits: rows of a data control or of a QYxArray under columns. A cell that was
// edited and left stays pending in its row; the row is written when it is left, by Update, or when the grid
// loses the focus. An edit of a cell raises, in this order: BeforeColEdit, then AfterColEdit, then, when the
// text has changed, BeforeColUpdate and AfterColUpdate. The writing of a row: BeforeUpdate, AfterUpdate,
// and AfterInsert for a new one. A hundred thousand rows cost no more than the few that are shown.
class Grid : public Control, private DataBound {
public:
    using BookmarkType = std::optional<std::int64_t>; // without a value: Null

    Grid(Form& form, std::string name, int index = kNoIndex);
    ~Grid() override;

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<bool> AllowAddNew{*this, Aspect::Rows, false};  // an empty row at the foot takes new rows
    Property<bool> AllowDelete{*this, Aspect::Other, false}; // by the Delete key
    Property<bool> AllowUpdate{*this, Aspect::Limits, true};
    // The user may take hold of a row and let it go over this grid, or another one of the form.
    Property<bool> DragRows{*this, Aspect::Other, false};
    Property<int> HeadLines{*this, Aspect::Columns, 1};
    Property<int> HeadForeColor{*this, Aspect::Colour, kDefaultColour};
    Property<int> HeadBackColor{*this, Aspect::Colour, kDefaultColour};
    Property<int> Width{*this, Aspect::Place, 0}; // twips; 0: the layout's
    Property<int> Left{*this, Aspect::Place, 0};

    Event<int, int, bool&> BeforeColEdit{*this, "BeforeColEdit"}; // col, keyAscii (0: not by a key), cancel
    Event<int> AfterColEdit{*this, "AfterColEdit"};
    Event<int, runtime::Variant&, bool&> BeforeColUpdate{*this, "BeforeColUpdate"}; // col, oldValue, cancel
    Event<int> AfterColUpdate{*this, "AfterColUpdate"};
    Event<bool&> BeforeUpdate{*this, "BeforeUpdate"};
    Event<> AfterUpdate{*this, "AfterUpdate"};
    Event<bool&> BeforeInsert{*this, "BeforeInsert"}; // the first edit in the row at the foot
    Event<> AfterInsert{*this, "AfterInsert"};
    Event<> OnAddNew{*this, "OnAddNew"};
    // The first edit in the row at the foot of a grid on a QYxArray: the routine inserts the row at this
    // place and the edit goes on in it. Without a routine the grid appends the row when it is written.
    Event<long> ClassicAdd{*this, "ClassicAdd"};
    Event<bool&> BeforeDelete{*this, "BeforeDelete"};
    Event<> AfterDelete{*this, "AfterDelete"};
    Event<BookmarkType, int> RowColChange{*this, "RowColChange"}; // lastRow, lastCol
    Event<int, int, std::int64_t, int, CellStyle&> FetchCellStyle{
        *this, "FetchCellStyle"};                 // condition, split, bookmark, col, cellStyle
    Event<int, int&> Error{*this, "Error"};       // dataError, response: 0 keeps the grid silent
    Event<int> HeadClick{*this, "HeadClick"};     // col
    Event<int> ButtonClick{*this, "ButtonClick"}; // col
    // A row was let go over this grid: where it came from (its current row), and the row before which it was
    // let go; RowCount() behind the last one.
    Event<Grid&, long> RowDropped{*this, "RowDropped"}; // from, before

    // ---- Columns

    int ColumnCount() const noexcept { return static_cast<int>(columns_.size()); }
    Column& Columns(int index) const;                       // 9
    Column& Columns(std::string_view captionOrField) const; // 9
    int FindColumn(std::string_view captionOrField) const;  // without case; -1
    Column& AddColumn(int at);
    Column& AddColumn() { return AddColumn(ColumnCount()); }
    void RemoveColumn(int index);

    // ---- Data

    // One or the other. Nothing is read before ReBind, or the data control's next Refresh.
    void SetDataSource(DataControl* source);
    DataControl* DataSource() const noexcept { return source_; }

private:
    std::shared_ptr<QYxArray> ReadArray() const { return array_; }
    void WriteArray(std::shared_ptr<QYxArray> array);
    BookmarkType ReadBookmark() const;
    void WriteBookmark(BookmarkType bookmark);
    long ReadRow() const;
    void WriteRow(long row);
    int ReadCol() const { return col_; }
    void WriteCol(int col);
    bool ReadDataChanged() const;
    void WriteDataChanged(bool changed);
    bool ReadEditActive() const { return edit_.has_value(); }
    void WriteEditActive(bool active);

public:
    ComputedProperty<std::shared_ptr<QYxArray>, Grid, &Grid::ReadArray, &Grid::WriteArray> Array{*this};
    // The current row: beside a data control a place of its recordset, beside an array the row's index.
    // Null without a row, and in the empty row at the foot. Setting Null or a place that is gone raises 3167.
    ComputedProperty<BookmarkType, Grid, &Grid::ReadBookmark, &Grid::WriteBookmark> Bookmark{*this};
    // The current row's number from 0; -1 without one, RowCount() in the empty row at the foot. Set from
    // code it writes a pending row first; 9 for a row that does not exist.
    ComputedProperty<long, Grid, &Grid::ReadRow, &Grid::WriteRow> Row{*this};
    ComputedProperty<int, Grid, &Grid::ReadCol, &Grid::WriteCol> Col{*this};
    // The current row holds edits that are not written. False drops them; True marks the row.
    ComputedProperty<bool, Grid, &Grid::ReadDataChanged, &Grid::WriteDataChanged> DataChanged{*this};
    // A cell is in edit. True starts the edit of the current cell, False ends it and keeps what was typed
    // in the row; neither raises an event.
    ComputedProperty<bool, Grid, &Grid::ReadEditActive, &Grid::WriteEditActive> EditActive{*this};

    long RowCount() const; // without the empty row at the foot
    bool OnNewRow() const noexcept { return onNewRow_; }
    // Whether the empty row at the foot is there for the user.
    bool HasNewRow() const;

    // Ends the edit of a cell (with its events) and writes the pending row. true when nothing is pending
    // any more; false when an event cancelled it. The engine's errors are raised; the row stays pending.
    // Within the events of a cell, up to BeforeColUpdate, it does nothing.
    bool Update();
    // Takes columns and rows anew; pending edits are dropped. The current row keeps its number where
    // that exists, else it is the first.
    void ReBind();
    // Draws anew what the data holds; pending edits stay.
    void Refresh();
    // Deletes the current row, as the Delete key does but for its checks. The engine's errors; 3021.
    void Delete();
    // Write a pending row first. Nothing happens beyond the ends, or without rows.
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();

    // ---- What is shown

    runtime::Variant CellValue(long row, int col) const; // stored, or pending in the current row
    std::string Shown(long row, int col) const;
    int CellPicture(long row, int col) const; // 0: none
    CellStyle StyleOf(long row, int col) const;
    // The text in the cell in edit.
    const std::string& EditText() const;
    // The view scrolled: these rows are seen, and count as visited.
    void RowsShown(long first, long last);
    bool CellEditable(int col) const;

    // ---- Gestures

    Outcome GoToRow(long row);
    Outcome GoToNewRow();
    Outcome MoveToColumn(int col);
    // Edits the cell and leaves it; the row stays pending.
    Outcome EditCell(int col, std::string_view text);
    // Clicks a picture cell: an edit whose text is one blank.
    Outcome ToggleCell(int col);
    Outcome CommitRow();
    Outcome DeleteRow();
    Outcome PressHead(int col);
    Outcome PressCellButton(int col);
    Outcome DoublePress() override; // the current row
    // Lets go a row of another grid, or of this one, over a row of this grid.
    Outcome DropRow(Grid& from, long row, long before);
    // The parts of EditCell, for views with an editor of their own. character: what started it, or 0.
    Outcome BeginEdit(int col, int character = 0);
    void SetEditText(std::string text);
    Outcome EndEdit();
    void CancelEdit(); // Escape: the cell in edit first, then the pending row

    std::optional<std::string> PropertyText(std::string_view property) const override;

    // For columns.
    int PositionOf(const Column& column) const;
    const GridRows* Rows() const noexcept { return rows_.get(); }
    void ColumnSet(Aspect aspect) { PropertySet(aspect); }

protected:
    bool TakesFocus() const override { return true; }
    void OnPropertySet(Aspect aspect) override;
    bool ApplyKey(const Key& key) override; // arrows, Home, End, typing, F2, Escape, Delete, Enter
    bool LeavingFocus() override;

private:
    friend class Column;
    struct CellEdit {
        int col = 0;
        std::string text;
        bool typed = false;
    };

    bool HasChanges() const override;
    void WriteChanges(database::Recordset& record) override;
    void ChangesWritten() override;
    void ShowRecord(database::Recordset* record) override;
    void RowsChanged(database::Recordset* record) override;
    bool IsAdding() const override { return onNewRow_; }
    void SourceGone() override;

    bool HasPending() const { return !pending_.empty() || rowMarked_; }
    void SetPending(int col, runtime::Variant value);
    bool SameAsStored(int col, const runtime::Variant& value) const;
    void DropPending();
    bool StartRow(); // the first edit of the row at the foot; false: BeforeInsert refused it
    // Leaves the cell: AfterColEdit and the update events. false: refused, the old value is back.
    bool LeaveCell();
    bool EndCell();
    // Events and write. The engine's errors are raised for code, and go to the Error event for the user.
    // false: the row stays pending.
    bool WriteRowPending(bool fromCode);
    // Leaves the cell and writes the row, for a gesture.
    bool TryCommit();
    void ReportError(int number, const std::string& text);
    // Tells the user who wants to change something that the file below cannot be written.
    void TellReadOnly();
    // Runs what changes row or column and raises RowColChange after it.
    template <class F>
    void Moving(F move);
    void ShowAround();

    std::vector<std::unique_ptr<Column>> columns_;
    DataControl* source_ = nullptr;
    std::shared_ptr<QYxArray> array_;
    std::unique_ptr<GridRows> rows_;
    std::map<int, runtime::Variant> pending_; // column -> typed value
    std::optional<CellEdit> edit_;
    bool rowMarked_ = false;   // DataChanged was set from code
    bool leavingCell_ = false; // within the events of a cell: the row is not to be written
    bool onNewRow_ = false, inserting_ = false, writing_ = false;
    int col_ = 0;
};

using GridArray = ControlArray<Grid>;

} // namespace quillary::controls
