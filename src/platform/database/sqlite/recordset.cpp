#include "platform/database/sqlite/recordset.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/criteria.h"
#include "platform/database/sqlite/piece.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

[[noreturn]] void RaiseNoCurrentRecord() {
    Raise(kErrNoCurrentRecord, "No current record.");
}

[[noreturn]] void RaiseDeleted() {
    Raise(kErrRecordDeleted, "Record is deleted.");
}

} // namespace

bool RecordsetField::Updatable() const {
    return owner_.CanSet(position_);
}

Variant RecordsetField::Value() const {
    return owner_.editing_ == EditMode::None ? owner_.StoredValue(position_) : owner_.FieldValue(position_);
}

void RecordsetField::SetValue(const Variant& value) {
    owner_.SetField(position_, value);
}

RecordsetBase::RecordsetBase(std::shared_ptr<Connection> connection, std::shared_ptr<const OpenedQuery> query,
                             std::shared_ptr<RowSet> rows, RecordsetType type)
    : connection_(std::move(connection)), query_(std::move(query)), columns_(query_->columns), type_(type) {
    TakeRows(std::move(rows));
    MakeFields();
    GoFirst();
}

RecordsetBase::RecordsetBase(const RecordsetBase& other, int)
    : connection_(other.connection_), query_(other.query_), columns_(other.columns_), type_(other.type_) {
    TakeRows(other.rows_);
    MakeFields();
    GoFirst();
    visited_ = other.visited_;
}

void RecordsetBase::MakeFields() {
    fields_.clear();
    fields_.reserve(static_cast<std::size_t>(columns_->Count()));
    for (int i = 0; i < columns_->Count(); ++i) {
        fields_.emplace_back(*this, (*columns_)[i], i);
    }
}

void RecordsetBase::TakeRows(std::shared_ptr<RowSet> rows) {
    rows_ = std::move(rows);
    writes_ = &rows_->Writes();
    epoch_ = &rows_->Epoch();
    cells_ = {};
}

// ------------------------------------------------------------------------------------------- position

void RecordsetBase::CheckOpen() const {
    if (closed_) {
        Raise(kErrObjectClosed, "Object invalid or no longer set.");
    }
}

void RecordsetBase::RequireCurrent() const {
    CheckOpen();
    if (place_ != Place::On) {
        RaiseNoCurrentRecord();
    }
}

const CellRow& RecordsetBase::CurrentCells() const {
    RequireCurrent();
    const CellRow cells = rows_->IsDeleted(row_) ? CellRow() : rows_->Read(row_);
    if (!cells) {
        RaiseDeleted();
    }
    cells_ = cells;
    cellsWrites_ = *writes_;
    cellsEpoch_ = *epoch_;
    return cells_;
}

bool RecordsetBase::BOF() const {
    CheckOpen();
    return place_ == Place::Before || (place_ == Place::After && rows_->Remaining() == 0);
}

bool RecordsetBase::EOF_() const {
    CheckOpen();
    return place_ == Place::After || (place_ == Place::Before && rows_->Remaining() == 0);
}

void RecordsetBase::Visit(std::size_t row) {
    if (row < rows_->Original()) {
        visited_ = std::max(visited_, row + 1);
    }
}

void RecordsetBase::GoTo(std::size_t row) {
    row_ = row;
    place_ = Place::On;
    cells_ = {};
    Visit(row);
}

void RecordsetBase::GoFirst() {
    const std::size_t first = rows_->NextFrom(0);
    if (first < rows_->Count()) {
        GoTo(first);
    } else {
        place_ = Place::After;
        cells_ = {};
    }
}

void RecordsetBase::MoveFirst() {
    CheckOpen();
    DropEdit();
    if (rows_->Remaining() == 0) {
        RaiseNoCurrentRecord();
    }
    GoFirst();
}

void RecordsetBase::MoveLast() {
    CheckOpen();
    DropEdit();
    if (rows_->Remaining() == 0) {
        RaiseNoCurrentRecord();
    }
    GoTo(rows_->LastUpTo(rows_->Count() - 1));
    visited_ = rows_->Original();
}

void RecordsetBase::MoveNext() {
    CheckOpen();
    DropEdit();
    if (place_ == Place::After || rows_->Count() == 0) {
        RaiseNoCurrentRecord();
    }
    const std::size_t next = rows_->NextFrom(place_ == Place::Before ? 0 : row_ + 1);
    if (next < rows_->Count()) {
        GoTo(next);
    } else {
        place_ = Place::After;
        cells_ = {};
        visited_ = rows_->Original();
    }
}

void RecordsetBase::MovePrevious() {
    CheckOpen();
    DropEdit();
    if (place_ == Place::Before || rows_->Count() == 0) {
        RaiseNoCurrentRecord();
    }
    const std::size_t from = place_ == Place::After ? rows_->Count() : row_;
    const std::size_t previous = from == 0 ? rows_->Count() : rows_->LastUpTo(from - 1);
    if (previous < rows_->Count()) {
        GoTo(previous);
    } else {
        place_ = Place::Before;
        cells_ = {};
    }
}

// ------------------------------------------------------------------------------------- counts, places

long RecordsetBase::RecordCount() const {
    CheckOpen();
    const std::size_t original = type_ == RecordsetType::Table ? rows_->Original() : visited_;
    const std::size_t added = rows_->Count() - rows_->Original();
    const std::size_t addedDeleted =
        rows_->DeletedBefore(rows_->Count()) - rows_->DeletedBefore(rows_->Original());
    return static_cast<long>(original - rows_->DeletedBefore(original) + added - addedDeleted);
}

long RecordsetBase::RowTotal() const {
    CheckOpen();
    return static_cast<long>(rows_->Remaining());
}

database::Bookmark RecordsetBase::BookmarkAt(long row) const {
    CheckOpen();
    const std::size_t found = row < 0 ? rows_->Count() : rows_->Nth(static_cast<std::size_t>(row));
    if (found >= rows_->Count()) {
        RaiseNoCurrentRecord();
    }
    return static_cast<database::Bookmark>(found);
}

long RecordsetBase::RowOf(database::Bookmark bookmark) const {
    CheckOpen();
    const auto row = static_cast<std::size_t>(bookmark);
    if (bookmark < 0 || row >= rows_->Count() || rows_->IsDeleted(row)) {
        return -1;
    }
    return static_cast<long>(row - rows_->DeletedBefore(row));
}

std::size_t RecordsetBase::RowOfBookmark(database::Bookmark bookmark) const {
    if (RowOf(bookmark) < 0) {
        RaiseDeleted();
    }
    return static_cast<std::size_t>(bookmark);
}

const std::vector<Variant>& RecordsetBase::ReadRow(database::Bookmark bookmark) const {
    rowValues_.clear();
    if (RowOf(bookmark) < 0) {
        return rowValues_;
    }
    const CellRow cells = rows_->Read(static_cast<std::size_t>(bookmark));
    if (cells) {
        rowValues_.reserve(fields_.size());
        for (int i = 0; i < columns_->Count(); ++i) {
            rowValues_.push_back(ReadCell(cells[i], (*columns_)[i].type));
        }
    }
    return rowValues_;
}

void RecordsetBase::CountVisited(long row) {
    CheckOpen();
    if (row >= 0 && rows_->Remaining() > 0) {
        Visit(rows_->Nth(std::min(static_cast<std::size_t>(row), rows_->Remaining() - 1)));
    }
}

std::optional<database::Bookmark> RecordsetBase::Bookmark() const {
    CheckOpen();
    if (place_ != Place::On) {
        return std::nullopt;
    }
    return static_cast<database::Bookmark>(row_);
}

void RecordsetBase::SetBookmark(database::Bookmark bookmark) {
    const std::size_t row = RowOfBookmark(bookmark);
    DropEdit();
    GoTo(row);
}

// -------------------------------------------------------------------------------------------- search

void RecordsetBase::Find(std::string_view criteria, bool fromStart) {
    CheckOpen();
    DropEdit();
    if (rows_->Remaining() == 0) {
        noMatch_ = true; // no error: meant
        return;
    }
    if (!fromStart) {
        RequireCurrent();
    }
    const RowFilter filter(*connection_, query_->selection.columns, criteria);
    for (std::size_t row = rows_->NextFrom(fromStart ? 0 : row_ + 1); row < rows_->Count();
         row = rows_->NextFrom(row + 1)) {
        const CellRow cells = rows_->Read(row);
        if (cells && filter.Holds(cells)) {
            noMatch_ = false;
            GoTo(row);
            return;
        }
    }
    noMatch_ = true;
    visited_ = rows_->Original();
}

// -------------------------------------------------------------------------------------- fields, ends

Field& RecordsetBase::operator[](int position) {
    CheckOpen();
    if (position < 0 || position >= columns_->Count()) {
        Raise(kErrItemNotFound, "Item not found in this collection.");
    }
    return fields_[static_cast<std::size_t>(position)];
}

Field& RecordsetBase::operator[](std::string_view name) {
    CheckOpen();
    // Most loops ask for the fields in the order in which they stand.
    const int position = columns_->IsNamed(nextNamed_, name) ? nextNamed_ : columns_->Find(name);
    nextNamed_ = position + 1;
    if (position < 0) {
        Raise(kErrItemNotFound, "Item '" + std::string(name) + "' not found in this collection.");
    }
    return fields_[static_cast<std::size_t>(position)];
}

void RecordsetBase::Requery() {
    CheckOpen();
    DropEdit();
    const ReadScope scope(*connection_);
    std::shared_ptr<const OpenedQuery> query = connection_->Statements().OpenAgain(query_);
    TakeRows(OpenRows(*query));
    if (query->columns != columns_) {
        columns_ = query->columns;
        MakeFields();
    }
    query_ = std::move(query);
    visited_ = 0;
    noMatch_ = false;
    lastModified_.reset();
    GoFirst();
}

void RecordsetBase::Close() {
    DropEdit();
    closed_ = true;
    cells_ = {};
    place_ = Place::After;
}

} // namespace quillary::database::sqlite
