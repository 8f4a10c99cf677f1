// What the user does in a grid.
#include "platform/controls/characters.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>

namespace quillary::controls {

namespace {

constexpr long kPageStep = 20;

} // namespace

template <class F>
void Grid::Moving(F move) {
    const BookmarkType lastRow = ReadBookmark();
    const int lastCol = col_;
    move();
    ShowAround();
    Tell(Aspect::Row);
    if (ReadBookmark() != lastRow || col_ != lastCol)
        RowColChange.Raise(lastRow, lastCol);
}

Outcome Grid::GoToRow(long row) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (row < 0 || row >= RowCount())
        return Outcome::Impossible(FullName() + " has no row " + std::to_string(row) + ", it has " +
                                   std::to_string(RowCount()));
    if (!LeaveCell())
        return Outcome::Refused(FullName() + " refused the edit");
    if (row == ReadRow())
        return Outcome::Done();
    if (!TryCommit())
        return Outcome::Refused(FullName() + " did not write its row");
    Moving([&] {
        onNewRow_ = false;
        rows_->SetCurrent(row);
    });
    return Outcome::Done();
}

Outcome Grid::GoToNewRow() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (!HasNewRow()) {
        if (AllowAddNew)
            TellReadOnly();
        return Outcome::Impossible(FullName() + " takes no new rows");
    }
    if (!LeaveCell())
        return Outcome::Refused(FullName() + " refused the edit");
    if (onNewRow_ && !HasPending())
        return Outcome::Done();
    if (!TryCommit())
        return Outcome::Refused(FullName() + " did not write its row");
    Moving([&] { onNewRow_ = true; });
    return Outcome::Done();
}

Outcome Grid::MoveToColumn(int col) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (col < 0 || col >= ColumnCount() || !Columns(col).Visible)
        return Outcome::Impossible(FullName() + " shows no column " + std::to_string(col));
    if (!LeaveCell())
        return Outcome::Refused(FullName() + " refused the edit");
    if (col != col_)
        Moving([&] { col_ = col; });
    return Outcome::Done();
}

Outcome Grid::BeginEdit(int col, int character) {
    if (edit_ && edit_->col == col)
        return Outcome::Done();
    if (Outcome moved = MoveToColumn(col); !moved)
        return moved;
    if (ReadRow() < 0 && HasNewRow())
        Moving([&] { onNewRow_ = true; });
    if (ReadRow() < 0)
        return Outcome::Impossible(FullName() + " has no current row");
    if (!CellEditable(col)) {
        if (!Columns(col).Locked)
            TellReadOnly();
        return Outcome::Refused(FullName() + ": column " + std::to_string(col) + " cannot be edited");
    }
    bool cancel = false;
    BeforeColEdit.Raise(col, character, cancel);
    if (cancel || !StartRow())
        return Outcome::Refused(FullName() + " refused the edit");
    edit_ = CellEdit{col, Columns(col).Text, false};
    Tell(Aspect::Cells);
    return Outcome::Done();
}

void Grid::SetEditText(std::string text) {
    if (!edit_)
        return;
    edit_->text = std::move(text);
    edit_->typed = true;
    Tell(Aspect::Cells);
}

Outcome Grid::EndEdit() {
    return LeaveCell() ? Outcome::Done() : Outcome::Refused(FullName() + " refused the edit");
}

void Grid::CancelEdit() {
    if (edit_)
        edit_.reset();
    else
        DropPending();
    Tell(Aspect::Cells);
}

Outcome Grid::EditCell(int col, std::string_view text) {
    if (Outcome moved = MoveToColumn(col); !moved)
        return moved;
    const Column& column = Columns(col);
    if (column.ShowsPictures())
        return text == " " ? ToggleCell(col)
                           : Outcome::Impossible(FullName() + ": column " + std::to_string(col) +
                                                 " shows pictures, which are clicked");
    // An entry of a list is picked, not typed.
    if (column.ValueItems.Translate && column.ValueItems.FindShown(text) >= 0) {
        if (Outcome begun = BeginEdit(col); !begun)
            return begun;
        SetEditText(std::string(text));
        return EndEdit();
    }
    if (text.empty()) {
        if (Outcome begun = BeginEdit(col); !begun)
            return begun;
        SetEditText({});
        return EndEdit();
    }
    std::string typed;
    int length = 0;
    for (char32_t character : Characters(text)) {
        const Key key = GetForm().FilterKey(*this, KeyOfCharacter(character));
        if (key.character == 0)
            continue;
        if (!edit_)
            if (Outcome begun = BeginEdit(col, key.character); !begun)
                return begun;
        if (column.MaxLength > 0 && length >= column.MaxLength)
            continue;
        ++length;
        typed += Utf8(static_cast<char32_t>(key.character));
        SetEditText(typed);
    }
    return EndEdit();
}

Outcome Grid::ToggleCell(int col) {
    if (Outcome moved = MoveToColumn(col); !moved)
        return moved;
    if (!Columns(col).ShowsPictures())
        return Outcome::Impossible(FullName() + ": column " + std::to_string(col) + " shows no pictures");
    if (Outcome begun = BeginEdit(col, ' '); !begun)
        return begun;
    SetEditText(" "); // a click is an edit whose text is one blank
    return EndEdit();
}

Outcome Grid::CommitRow() {
    return TryCommit() ? Outcome::Done() : Outcome::Refused(FullName() + " did not write its row");
}

Outcome Grid::DeleteRow() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (!AllowDelete)
        return Outcome::Refused(FullName() + " deletes no rows by hand");
    if (onNewRow_) {
        DropPending();
        Tell(Aspect::Cells);
        return Outcome::Done();
    }
    if (ReadRow() < 0)
        return Outcome::Impossible(FullName() + " has no current row");
    bool cancel = false;
    BeforeDelete.Raise(cancel);
    if (cancel)
        return Outcome::Refused(FullName() + " kept the row");
    try {
        Delete();
    } catch (const runtime::RunTimeError& error) {
        ReportError(error.Number(), error.Description());
        return Outcome::Refused(error.Description());
    }
    AfterDelete.Raise();
    return Outcome::Done();
}

Outcome Grid::PressHead(int col) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (col < 0 || col >= ColumnCount() || !Columns(col).Visible)
        return Outcome::Impossible(FullName() + " shows no column " + std::to_string(col));
    HeadClick.Raise(col);
    return Outcome::Done();
}

Outcome Grid::PressCellButton(int col) {
    if (Outcome moved = MoveToColumn(col); !moved)
        return moved;
    if (!Columns(col).Button)
        return Outcome::Impossible(FullName() + ": column " + std::to_string(col) + " has no button");
    ButtonClick.Raise(col);
    return Outcome::Done();
}

Outcome Grid::DoublePress() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (ReadRow() < 0 || onNewRow_)
        return Outcome::Impossible(FullName() + " has no current row");
    DblClick.Raise();
    return Outcome::Done();
}

Outcome Grid::DropRow(Grid& from, long row, long before) {
    if (!from.DragRows)
        return Outcome::Impossible(from.FullName() + " lets no rows be dragged");
    if (!IsShown() || !IsEnabled() || before < 0)
        return Outcome::Impossible(FullName() + " has no such place");
    // To take hold of a row is to go to it.
    if (Outcome taken = from.GoToRow(row); !taken)
        return taken;
    RowDropped.Raise(from, std::min(before, RowCount()));
    return Outcome::Done();
}

bool Grid::ApplyKey(const Key& key) {
    const bool ctrl = key.shift & kCtrlMask;
    const int code = key.character > 32 ? 0 : key.code;
    const bool toEnd = code == kKeyHome || code == kKeyEnd;
    if ((key.shift & kAltMask) || (ctrl && !toEnd))
        return false;
    if (toEnd && edit_)
        return true; // within the text
    const long row = ReadRow();
    auto goTo = [&](long target) {
        if (target >= RowCount() && HasNewRow() && row < RowCount())
            GoToNewRow();
        else if (RowCount() > 0)
            GoToRow(std::clamp(target, 0L, RowCount() - 1));
        return true;
    };
    auto sideways = [&](int from, int step) {
        for (int col = from; col >= 0 && col < ColumnCount(); col += step)
            if (Columns(col).Visible) {
                MoveToColumn(col);
                break;
            }
        return true;
    };
    switch (code) {
    case kKeyUp:
        return goTo(row - 1);
    case kKeyDown:
        return goTo(row + 1);
    case kKeyPageUp:
        return goTo(row - kPageStep);
    case kKeyPageDown:
        return goTo(std::min(row + kPageStep, std::max(row, RowCount() - 1)));
    case kKeyLeft:
        return sideways(col_ - 1, -1);
    case kKeyRight:
        return sideways(col_ + 1, 1);
    case kKeyHome:
        return ctrl ? goTo(0) : sideways(0, 1);
    case kKeyEnd:
        return ctrl ? goTo(RowCount() - 1) : sideways(ColumnCount() - 1, -1);
    case kKeyReturn:
        if (!edit_)
            return false;
        EndEdit();
        return true;
    case kKeyEscape:
        if (!edit_ && !HasPending())
            return false;
        CancelEdit();
        return true;
    case kKeyF1 + 1: // F2
        BeginEdit(col_);
        return true;
    case kKeyDelete:
        if (edit_)
            SetEditText({});
        else
            DeleteRow();
        return true;
    case kKeyBack:
        if (edit_ || BeginEdit(col_))
            SetEditText(std::string(runtime::LeftChars(
                edit_->text, std::max<std::size_t>(runtime::CharCount(edit_->text), 1) - 1)));
        return true;
    default:
        break;
    }
    if (key.character < 32 || ColumnCount() == 0)
        return false;
    const Column& column = Columns(std::min(col_, ColumnCount() - 1));
    if (column.ShowsPictures()) {
        if (key.character == ' ')
            ToggleCell(col_);
        return true;
    }
    const bool goesOn = edit_ && edit_->typed;
    if (!edit_ && !BeginEdit(col_, key.character))
        return true;
    std::string text = goesOn ? edit_->text : std::string();
    if (column.MaxLength == 0 || runtime::CharCount(text) < static_cast<std::size_t>(column.MaxLength))
        text += Utf8(static_cast<char32_t>(key.character));
    SetEditText(std::move(text));
    return true;
}

} // namespace quillary::controls
