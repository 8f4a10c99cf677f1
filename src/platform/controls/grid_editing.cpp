// The grid's edits: a cell in edit, the pending row, its writing, and what is refused.
#include "platform/controls/data_control.h"
#include "platform/controls/form_host.h"
#include "platform/controls/grid.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::controls {

using runtime::RunTimeError;
using runtime::Variant;

// ---- State

bool Grid::ReadDataChanged() const {
    return HasPending();
}

void Grid::WriteDataChanged(bool changed) {
    if (changed) {
        rowMarked_ = ReadRow() >= 0;
    } else {
        DropPending();
        Tell(Aspect::Cells);
    }
}

void Grid::WriteEditActive(bool active) {
    if (active == ReadEditActive())
        return;
    if (active) {
        if (ReadRow() < 0 || ColumnCount() == 0)
            return;
        edit_ = CellEdit{col_, Columns(col_).Text, false};
    } else {
        const CellEdit edit = *std::exchange(edit_, std::nullopt);
        if (edit.typed)
            SetPending(edit.col, Columns(edit.col).Typed(edit.text));
    }
    Tell(Aspect::Cells);
}

const std::string& Grid::EditText() const {
    static const std::string none;
    return edit_ ? edit_->text : none;
}

void Grid::DropPending() {
    pending_.clear();
    edit_.reset();
    rowMarked_ = false;
    inserting_ = false;
}

bool Grid::SameAsStored(int col, const Variant& value) const {
    if (onNewRow_)
        return false;
    try {
        const Variant stored = rows_->Value(ReadRow(), col);
        return runtime::TextOf(rows_->Convert(col, value)) == runtime::TextOf(stored);
    } catch (const RunTimeError&) {
        return false; // it cannot even be stored
    }
}

void Grid::SetPending(int col, Variant value) {
    if (ReadRow() < 0)
        throw RunTimeError(database::kErrNoCurrentRecord, FullName(), "No current row");
    Columns(col);
    if (SameAsStored(col, value))
        pending_.erase(col);
    else
        pending_[col] = std::move(value);
    Tell(Aspect::Cells);
}

// ---- The data control's side

bool Grid::HasChanges() const {
    return HasPending() && !leavingCell_;
}

void Grid::WriteChanges(database::Recordset& record) {
    for (const auto& [col, typed] : pending_) {
        const std::string& name = Columns(col).DataField;
        if (record.FindField(name) < 0)
            continue;
        database::Field& field = record[name];
        field.SetValue(source_->ValueFor(field, typed));
    }
}

void Grid::ChangesWritten() {
    if (leavingCell_)
        return;
    DropPending();
    onNewRow_ = false;
}

// ---- A cell

bool Grid::StartRow() {
    if (!onNewRow_ || inserting_)
        return true;
    bool cancel = false;
    BeforeInsert.Raise(cancel);
    if (cancel)
        return false;
    if (array_ && ClassicAdd) {
        // The routine makes the row itself and the edit goes on in it. It finds the last row current.
        const long added = RowCount();
        onNewRow_ = false;
        rows_->SetCurrent(added - 1);
        ClassicAdd.Raise(static_cast<long>(rows_->BookmarkAt(added)));
        if (added < RowCount()) {
            rows_->SetCurrent(added);
            return true;
        }
        onNewRow_ = true;
        return false;
    }
    OnAddNew.Raise();
    inserting_ = true;
    for (int col = 0; col < ColumnCount(); ++col)
        if (const Variant& value = Columns(col).DefaultValue; !value.IsEmpty())
            pending_.emplace(col, value);
    return true;
}

bool Grid::LeaveCell() {
    if (!edit_ || leavingCell_)
        return true;
    leavingCell_ = true;
    try {
        const bool left = EndCell();
        leavingCell_ = false;
        return left;
    } catch (...) {
        leavingCell_ = false;
        throw;
    }
}

bool Grid::EndCell() {
    const CellEdit edit = *std::exchange(edit_, std::nullopt);
    const int col = edit.col;
    const Column& column = Columns(col);
    Variant oldValue = CellValue(ReadRow(), col);
    const auto held = pending_.find(col);
    const std::optional<Variant> former = held == pending_.end() ? std::nullopt : std::optional(held->second);
    auto restore = [&] {
        pending_.erase(col);
        if (former)
            pending_[col] = *former;
        Tell(Aspect::Cells);
    };
    if (edit.typed && column.ShowsPictures() && edit.text == " ") {
        // A click is no value: it is there for AfterColEdit to see, even where a blank would be stored as
        // False.
        pending_[col] = Variant(edit.text);
        Tell(Aspect::Cells);
    } else if (edit.typed) {
        SetPending(col, column.Typed(edit.text));
    }
    AfterColEdit.Raise(col);
    if (ReadRow() < 0)
        return true; // the routine has taken the row away
    // A clicked picture that AfterColEdit left as it was clicked makes its next value.
    if (column.ShowsPictures() && column.ValueItems.Count() > 0 && edit.typed && edit.text == " " &&
        runtime::TextOf(CellValue(ReadRow(), col)) == " ") {
        const int item = column.ValueItems.CycleOnClick ? column.ValueItems.FindValue(oldValue) : -1;
        if (!column.ValueItems.CycleOnClick)
            restore();
        else
            SetPending(col, column.ValueItems[(item + 1) % column.ValueItems.Count()].value);
    }
    Tell(Aspect::Cells);
    const Variant newValue = CellValue(ReadRow(), col);
    const bool changed = runtime::TextOf(newValue) != runtime::TextOf(oldValue);
    if (!changed) {
        if (onNewRow_) {
            restore(); // a blank typed into the empty row is no row yet
            inserting_ = HasPending();
        }
        return true;
    }
    bool cancel = false;
    BeforeColUpdate.Raise(col, oldValue, cancel);
    if (cancel) {
        restore();
        return false;
    }
    if (ReadRow() < 0)
        return true;
    try {
        rows_->Convert(col, CellValue(ReadRow(), col));
    } catch (const RunTimeError& error) {
        restore();
        ReportError(error.Number(), error.Description());
        return false;
    }
    leavingCell_ = false; // from here on a routine may write the row
    AfterColUpdate.Raise(col);
    Tell(Aspect::Cells);
    return true;
}

// ---- The row

bool Grid::WriteRowPending(bool fromCode) {
    if (!HasPending())
        return true;
    bool cancel = false;
    BeforeUpdate.Raise(cancel);
    if (cancel)
        return false;
    const bool adding = onNewRow_;
    std::optional<RunTimeError> refused;
    bool written = false;
    writing_ = true;
    try {
        written = adding ? rows_->Append(pending_) : rows_->Write(pending_);
    } catch (const RunTimeError& error) {
        refused = error;
    } catch (...) {
        writing_ = false;
        throw;
    }
    writing_ = false;
    if (refused && fromCode)
        throw *refused;
    if (refused)
        ReportError(refused->Number(), refused->Description());
    if (!written) // the row stays in edit with what was typed
        return false;
    DropPending();
    onNewRow_ = false;
    if (source_)
        source_->ShowRecord();
    if (adding)
        ShowAround();
    Tell(adding ? Aspect::Rows : Aspect::Row);
    AfterUpdate.Raise();
    if (adding)
        AfterInsert.Raise();
    return true;
}

void Grid::ReportError(int number, const std::string& text) {
    int response = 1;
    Error.Raise(number == database::kErrDuplicateValue ? kGridDuplicate : number, response);
    if (response != 0)
        ShowControlMessage(text);
}

void Grid::TellReadOnly() {
    const std::string name = AllowUpdate && rows_ ? rows_->ReadOnlyDatabase() : std::string();
    if (!name.empty())
        ReportError(database::kErrReadOnly,
                    "The database '" + name +
                        "' is read-only. Nothing can be changed here until its file can be written to.");
}

bool Grid::Update() {
    return leavingCell_ || (LeaveCell() && WriteRowPending(true));
}

bool Grid::TryCommit() {
    return LeaveCell() && WriteRowPending(false);
}

bool Grid::LeavingFocus() {
    return TryCommit();
}

void Grid::Delete() {
    if (!rows_ || onNewRow_ || rows_->Current() < 0)
        throw RunTimeError(database::kErrNoCurrentRecord, FullName(), "No current row");
    DropPending();
    rows_->DeleteCurrent();
    Tell(Aspect::Rows);
}

} // namespace quillary::controls
