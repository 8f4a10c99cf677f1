#include "platform/controls/grid.h"

#include "platform/controls/data_control.h"
#include "platform/controls/property_text.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>

// The grid's columns, rows and what it shows. Editing stands in grid_editing.cpp, the user's gestures in
// grid_gestures.cpp.
namespace quillary::controls {

using runtime::RunTimeError;
using runtime::Variant;

namespace {

// Rows that a grid shows at once, as long as no view says otherwise: they count as visited.
constexpr long kPageRows = 20;

} // namespace

Grid::Grid(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::Grid, index) {}

Grid::~Grid() {
    if (source_)
        source_->Detach(*this);
}

void Grid::OnPropertySet(Aspect aspect) {
    if (aspect != Aspect::Columns)
        return;
    if (rows_)
        rows_->Remap();
    // The keyboard never stands in a column that is not shown.
    if (col_ < ColumnCount() && !Columns(col_).Visible)
        for (int col = 0; col < ColumnCount(); ++col)
            if (Columns(col).Visible) {
                col_ = col;
                break;
            }
}

// ---- Columns

Column& Grid::Columns(int index) const {
    if (index < 0 || index >= ColumnCount())
        throw RunTimeError(runtime::kErrSubscriptOutOfRange, FullName(),
                           FullName() + " has no column " + std::to_string(index));
    return *columns_[static_cast<std::size_t>(index)];
}

Column& Grid::Columns(std::string_view captionOrField) const {
    const int found = FindColumn(captionOrField);
    if (found < 0)
        throw RunTimeError(runtime::kErrSubscriptOutOfRange, FullName(),
                           FullName() + " has no column '" + std::string(captionOrField) + "'");
    return Columns(found);
}

int Grid::FindColumn(std::string_view captionOrField) const {
    for (int index = 0; index < ColumnCount(); ++index)
        if (runtime::EqualText(Columns(index).Caption, captionOrField))
            return index;
    for (int index = 0; index < ColumnCount(); ++index)
        if (runtime::EqualName(Columns(index).DataField, captionOrField))
            return index;
    return -1;
}

int Grid::PositionOf(const Column& column) const {
    for (int index = 0; index < ColumnCount(); ++index)
        if (columns_[static_cast<std::size_t>(index)].get() == &column)
            return index;
    return -1;
}

Column& Grid::AddColumn(int at) {
    at = std::clamp(at, 0, ColumnCount());
    DropPending();
    auto added = columns_.insert(columns_.begin() + at, std::make_unique<Column>(*this));
    Column& column = **added;
    PropertySet(Aspect::Columns);
    return column;
}

void Grid::RemoveColumn(int index) {
    Columns(index);
    DropPending();
    columns_.erase(columns_.begin() + index);
    col_ = std::clamp(col_, 0, std::max(0, ColumnCount() - 1));
    PropertySet(Aspect::Columns);
}

// ---- Data

void Grid::SetDataSource(DataControl* source) {
    if (source_)
        source_->Detach(*this);
    DropPending();
    onNewRow_ = false;
    array_.reset();
    rows_.reset();
    source_ = source;
    if (source_) {
        rows_ = RowsOf(*this, *source_);
        source_->Attach(*this);
    }
    Tell(Aspect::Rows);
}

void Grid::WriteArray(std::shared_ptr<QYxArray> array) {
    if (source_)
        SetDataSource(nullptr);
    DropPending();
    onNewRow_ = false;
    array_ = std::move(array);
    rows_ = array_ ? RowsOf(array_) : nullptr;
    Tell(Aspect::Rows);
}

void Grid::SourceGone() {
    source_ = nullptr;
    rows_.reset();
    DropPending();
    onNewRow_ = false;
}

void Grid::RowsChanged(database::Recordset*) {
    if (writing_)
        return;
    DropPending();
    onNewRow_ = false;
    if (rows_)
        rows_->Remap();
    ShowAround();
    Tell(Aspect::Rows);
}

void Grid::ShowRecord(database::Recordset*) {
    if (writing_ || leavingCell_)
        return;
    DropPending();
    onNewRow_ = false;
    ShowAround();
    Tell(Aspect::Row);
}

void Grid::ReBind() {
    DropPending();
    onNewRow_ = false;
    if (rows_)
        rows_->Remap();
    ShowAround();
    Tell(Aspect::Rows);
}

void Grid::Refresh() {
    Tell(Aspect::Rows);
}

long Grid::RowCount() const {
    return rows_ ? rows_->Count() : 0;
}

bool Grid::HasNewRow() const {
    return AllowAddNew && AllowUpdate && rows_ && rows_->Writable();
}

void Grid::ShowAround() {
    if (const long count = RowCount(); count > 0)
        rows_->Showing(std::min(count - 1, std::max(rows_->Current(), kPageRows - 1)));
}

void Grid::RowsShown(long, long last) {
    if (const long count = RowCount(); count > 0 && last >= 0)
        rows_->Showing(std::min(last, count - 1));
}

// ---- The current row

long Grid::ReadRow() const {
    if (!rows_)
        return -1;
    return onNewRow_ ? RowCount() : rows_->Current();
}

void Grid::WriteRow(long row) {
    if (row == ReadRow())
        return;
    if (row < 0 || row >= RowCount())
        throw RunTimeError(runtime::kErrSubscriptOutOfRange, FullName(),
                           FullName() + " has no row " + std::to_string(row));
    if (!Update())
        return;
    onNewRow_ = false;
    rows_->SetCurrent(row);
    ShowAround();
    Tell(Aspect::Row);
}

Grid::BookmarkType Grid::ReadBookmark() const {
    if (!rows_ || onNewRow_)
        return std::nullopt;
    const long row = rows_->Current();
    return row < 0 ? BookmarkType() : rows_->BookmarkAt(row);
}

void Grid::WriteBookmark(BookmarkType bookmark) {
    const long row = rows_ && bookmark ? rows_->RowOf(*bookmark) : -1;
    if (row < 0)
        throw RunTimeError(database::kErrRecordDeleted, FullName(), "The row is no longer there");
    WriteRow(row);
}

void Grid::WriteCol(int col) {
    Columns(col);
    if (col == col_)
        return;
    WriteEditActive(false);
    col_ = col;
    Tell(Aspect::Row);
}

void Grid::MoveFirst() {
    if (RowCount() > 0)
        WriteRow(0);
}

void Grid::MoveLast() {
    if (RowCount() > 0)
        WriteRow(RowCount() - 1);
}

void Grid::MoveNext() {
    if (ReadRow() + 1 < RowCount())
        WriteRow(ReadRow() + 1);
}

void Grid::MovePrevious() {
    if (ReadRow() > 0)
        WriteRow(ReadRow() - 1);
}

// ---- What is shown

Variant Grid::CellValue(long row, int col) const {
    if (!rows_ || row < 0)
        return Variant::Null();
    if (row == ReadRow())
        if (auto found = pending_.find(col); found != pending_.end())
            return found->second;
    return rows_->Value(row, col);
}

std::string Grid::Shown(long row, int col) const {
    return Columns(col).Shown(CellValue(row, col));
}

int Grid::CellPicture(long row, int col) const {
    const Column& column = Columns(col);
    if (!column.ShowsPictures() || row < 0 || row >= RowCount() + (onNewRow_ ? 1 : 0))
        return 0;
    const int item = column.ValueItems.FindValue(CellValue(row, col));
    return item < 0 ? 0 : column.ValueItems[item].picture;
}

CellStyle Grid::StyleOf(long row, int col) const {
    CellStyle style;
    if (FetchCellStyle && Columns(col).FetchStyle && row >= 0 && row < RowCount())
        FetchCellStyle.RaiseUntraced(0, 0, rows_->BookmarkAt(row), col, style);
    return style;
}

bool Grid::CellEditable(int col) const {
    return AllowUpdate && rows_ && col >= 0 && col < ColumnCount() && !Columns(col).Locked &&
           rows_->ColumnWritable(col);
}

std::optional<std::string> Grid::PropertyText(std::string_view property) const {
    const PropertyName asked = ParsePropertyName(property);
    const auto& arguments = asked.arguments;
    auto columnAt = [&](std::size_t position) {
        if (position >= arguments.size())
            return -1;
        if (std::optional<int> number = WholeNumber(arguments[position]))
            return *number >= 0 && *number < ColumnCount() ? *number : -1;
        return FindColumn(arguments[position]);
    };
    if (asked.name == "rowcount")
        return std::to_string(RowCount());
    if (asked.name == "row")
        return std::to_string(ReadRow());
    if (asked.name == "col")
        return std::to_string(col_);
    if (asked.name == "caption")
        return Caption.Get();
    if (asked.name == "datachanged")
        return BoolText(ReadDataChanged());
    if (asked.name == "editactive")
        return BoolText(ReadEditActive());
    if (asked.name == "allowaddnew")
        return BoolText(AllowAddNew);
    if (asked.name == "headlines")
        return std::to_string(HeadLines.Get());
    if (asked.name == "captions") {
        std::string all;
        for (int index = 0; index < ColumnCount(); ++index)
            all += (index ? "|" : "") + Columns(index).Caption.Get();
        return all;
    }
    if (asked.name == "cell" || asked.name == "shown") {
        const std::optional<int> row = WholeNumber(arguments.empty() ? "" : arguments.front());
        const int col = columnAt(1);
        const long rows = RowCount() + (onNewRow_ ? 1 : 0);
        if (!row || *row < 0 || *row >= rows || col < 0)
            return std::nullopt;
        return asked.name == "cell" ? runtime::TextOf(CellValue(*row, col)) : Shown(*row, col);
    }
    if (asked.name == "columnvisible" || asked.name == "columnwidth" || asked.name == "valueitems") {
        const int col = columnAt(0);
        if (col < 0)
            return std::nullopt;
        const Column& column = Columns(col);
        if (asked.name == "columnvisible")
            return BoolText(column.Visible);
        if (asked.name == "columnwidth")
            return std::to_string(column.Width.Get());
        std::string all;
        for (int item = 0; item < column.ValueItems.Count(); ++item)
            all += (item ? "|" : "") + column.ValueItems[item].displayValue;
        return all;
    }
    return Control::PropertyText(property);
}

} // namespace quillary::controls
