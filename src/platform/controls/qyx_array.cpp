#include "platform/controls/qyx_array.h"

#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <utility>

namespace quillary::controls {

namespace {

[[noreturn]] void Outside() {
    throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
}

} // namespace

void QYxArray::ReDim(long rowLow, long rowHigh, long columnLow, long columnHigh) {
    if (rowHigh < rowLow - 1 || columnHigh < columnLow - 1)
        Outside();
    const long columns = columnHigh - columnLow + 1;
    std::vector<std::vector<runtime::Variant>> rows(static_cast<std::size_t>(rowHigh - rowLow + 1));
    for (long row = rowLow; row <= rowHigh; ++row) {
        auto& cells = rows[static_cast<std::size_t>(row - rowLow)];
        const bool kept = row >= rowLow_ && row - rowLow_ < static_cast<long>(rows_.size());
        if (kept && columnLow == columnLow_)
            cells = std::move(rows_[static_cast<std::size_t>(row - rowLow_)]);
        cells.resize(static_cast<std::size_t>(columns));
        if (kept && columnLow != columnLow_)
            for (long column = std::max(columnLow, columnLow_);
                 column < std::min(columnLow + columns, columnLow_ + columns_); ++column)
                cells[static_cast<std::size_t>(column - columnLow)] =
                    std::move(rows_[static_cast<std::size_t>(row - rowLow_)]
                                   [static_cast<std::size_t>(column - columnLow_)]);
    }
    rows_ = std::move(rows);
    rowLow_ = rowLow;
    columnLow_ = columnLow;
    columns_ = columns;
    sized_ = true;
}

void QYxArray::Clear() {
    *this = QYxArray();
}

void QYxArray::CheckRow(long row) const {
    if (row < rowLow_ || row - rowLow_ >= static_cast<long>(rows_.size()))
        Outside();
}

const runtime::Variant& QYxArray::Value(long row, long column) const {
    CheckRow(row);
    if (column < columnLow_ || column - columnLow_ >= columns_)
        Outside();
    return rows_[static_cast<std::size_t>(row - rowLow_)][static_cast<std::size_t>(column - columnLow_)];
}

runtime::Variant& QYxArray::Value(long row, long column) {
    return const_cast<runtime::Variant&>(std::as_const(*this).Value(row, column));
}

long QYxArray::LowerBound(int dimension) const {
    if (dimension != 1 && dimension != 2)
        Outside();
    return dimension == 1 ? rowLow_ : columnLow_;
}

long QYxArray::UpperBound(int dimension) const {
    if (dimension != 1 && dimension != 2)
        Outside();
    if (!sized_)
        return -1;
    return dimension == 1 ? rowLow_ + static_cast<long>(rows_.size()) - 1 : columnLow_ + columns_ - 1;
}

void QYxArray::InsertRows(long before, long count) {
    if (before != UpperBound(1) + 1 || !sized_)
        CheckRow(before);
    if (count < 0)
        Outside();
    rows_.insert(rows_.begin() + (before - rowLow_), static_cast<std::size_t>(count),
                 std::vector<runtime::Variant>(static_cast<std::size_t>(columns_)));
}

void QYxArray::AppendRows(long count) {
    InsertRows(UpperBound(1) + 1, count);
}

void QYxArray::DeleteRows(long first, long count) {
    CheckRow(first);
    if (count < 0)
        Outside();
    if (count > 0)
        CheckRow(first + count - 1);
    rows_.erase(rows_.begin() + (first - rowLow_), rows_.begin() + (first - rowLow_ + count));
}

} // namespace quillary::controls
