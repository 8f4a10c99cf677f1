#include "platform/database/sqlite/cells.h"

#include "platform/database/sqlite/storage.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <sqlite3.h>
#include <sys/mman.h>

namespace quillary::database::sqlite {

bool SameCell(const Cell& left, const Cell& right) {
    if (left.kind != right.kind) {
        return false;
    }
    switch (left.kind) {
    case CellKind::Null:
        return true;
    case CellKind::Whole:
        return left.whole == right.whole;
    case CellKind::Real:
        return left.real == right.real;
    case CellKind::Text:
    case CellKind::Blob:
        return left.Text() == right.Text();
    }
    return false;
}

void Arena::Free::operator()(char* block) const {
    std::free(block);
}

// Blocks double in size: a few rows take little, and many take few blocks. The largest lie so that the
// system can give them as one page, since touching thousands of small ones costs more than reading the rows.
void Arena::NextBlock(std::size_t size) {
    if (used_ < blocks_.size() && blocks_[used_].size >= size) {
        next_ = blocks_[used_].memory.get();
        left_ = blocks_[used_++].size;
        return;
    }
    blocks_.resize(used_);
    constexpr std::size_t kFirst = 2048;
    constexpr std::size_t kLargest = 2U << 20;
    std::size_t room = blocks_.empty() ? kFirst : std::min(blocks_.back().size * 4, kLargest);
    while (room < size) {
        room *= 2;
    }
    const std::size_t alignment = room >= kLargest ? kLargest : alignof(std::max_align_t);
    auto* const memory = static_cast<char*>(std::aligned_alloc(alignment, room));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    if (room >= kLargest) {
        madvise(memory, room, MADV_HUGEPAGE); // a wish; without it all works the same
    }
    blocks_.push_back({std::unique_ptr<char, Free>(memory), room});
    ++used_;
    next_ = memory;
    left_ = room;
}

void Arena::Clear() {
    used_ = 0;
    next_ = nullptr;
    left_ = 0;
}

char* CellBlock::NextRow() {
    char* const place = arena_.Take(columns_ * (CellRow::kValueSize + 1));
    rows_.push_back(place);
    return place;
}

const char* CellBlock::Keep(const void* text, std::uint32_t length) {
    char* const place = arena_.Take(sizeof length + length);
    std::memcpy(place, &length, sizeof length);
    if (length > 0) {
        std::memcpy(place + sizeof length, text, length);
    }
    return place;
}

void CellBlock::Append(sqlite3_stmt* statement, int firstColumn) {
    char* place = NextRow();
    char* kind = place + columns_ * CellRow::kValueSize;
    const int end = firstColumn + static_cast<int>(columns_);
    for (int column = firstColumn; column < end; ++column, place += CellRow::kValueSize, ++kind) {
        // One call by column and then the value's own functions: cheaper than asking by column each time.
        sqlite3_value* value = sqlite3_column_value(statement, column);
        switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER: {
            *kind = static_cast<char>(CellKind::Whole);
            const std::int64_t whole = sqlite3_value_int64(value);
            std::memcpy(place, &whole, sizeof whole);
            break;
        }
        case SQLITE_FLOAT: {
            *kind = static_cast<char>(CellKind::Real);
            const double real = sqlite3_value_double(value);
            std::memcpy(place, &real, sizeof real);
            break;
        }
        case SQLITE_TEXT: {
            *kind = static_cast<char>(CellKind::Text);
            const void* text = sqlite3_value_text(value);
            text = Keep(text, static_cast<std::uint32_t>(sqlite3_value_bytes(value)));
            std::memcpy(place, &text, sizeof text);
            break;
        }
        case SQLITE_BLOB: {
            *kind = static_cast<char>(CellKind::Blob);
            const void* bytes = sqlite3_value_blob(value);
            bytes = Keep(bytes, static_cast<std::uint32_t>(sqlite3_value_bytes(value)));
            std::memcpy(place, &bytes, sizeof bytes);
            break;
        }
        default:
            *kind = static_cast<char>(CellKind::Null);
            break;
        }
    }
}

void CellBlock::AppendNulls() {
    std::memset(NextRow(), 0, columns_ * (CellRow::kValueSize + 1));
}

void CellBlock::Clear() {
    rows_.clear();
    arena_.Clear();
}

namespace {

template <class T>
Variant Narrow(std::int64_t value) {
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
        throw runtime::RunTimeError(runtime::kErrOverflow);
    }
    return static_cast<T>(value);
}

Variant ReadWhole(std::int64_t value, FieldType type) {
    switch (type) {
    case FieldType::Boolean:
        return value != 0;
    case FieldType::Byte:
    case FieldType::Integer:
        return Narrow<std::int16_t>(value);
    case FieldType::Long:
        return Narrow<std::int32_t>(value);
    case FieldType::Currency:
        return runtime::Currency{value};
    case FieldType::Single:
        return static_cast<float>(value);
    case FieldType::Double:
        return static_cast<double>(value);
    case FieldType::Date:
        return runtime::Date{static_cast<double>(value)};
    default:
        return std::to_string(value);
    }
}

Variant ReadReal(double value, FieldType type) {
    switch (type) {
    case FieldType::Boolean:
        return value != 0;
    case FieldType::Byte:
    case FieldType::Integer:
    case FieldType::Long:
    case FieldType::Currency:
        if (!(std::fabs(value) < 9.2e18)) {
            throw runtime::RunTimeError(runtime::kErrOverflow);
        }
        return ReadWhole(std::llrint(value), type);
    case FieldType::Single:
        return static_cast<float>(value);
    case FieldType::Date:
        return runtime::Date{value};
    case FieldType::Double:
        if (!std::isfinite(value)) { // SQLite multiplies on beyond the range
            throw runtime::RunTimeError(runtime::kErrOverflow);
        }
        return value;
    default:
        return value;
    }
}

} // namespace

Variant ReadCell(const Cell& cell, FieldType type) {
    switch (cell.kind) {
    case CellKind::Null:
        return type == FieldType::Boolean ? Variant(false) : Variant::Null(); // a yes/no is never Null
    case CellKind::Whole:
        return ReadWhole(cell.whole, type);
    case CellKind::Real:
        return ReadReal(cell.real, type);
    case CellKind::Text:
        if (type == FieldType::Date) {
            if (const auto date = DateOfStored(cell.Text())) {
                return *date;
            }
        }
        return cell.Text();
    case CellKind::Blob:
        return cell.Text();
    }
    return Variant::Null();
}

} // namespace quillary::database::sqlite
