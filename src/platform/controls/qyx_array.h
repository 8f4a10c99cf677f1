#pragma once

#include "platform/runtime/variant.h"

#include <vector>

namespace quillary::controls {

// A table of cells in memory behind grids that are not bound. Rows and columns run between bounds. One
// that was sized without rows keeps its columns: UpperBound(1) is then one below the lower bound and
// UpperBound(2) the last column; before the first ReDim both are -1. Everything outside the bounds raises 9.
class QYxArray {
public:
    // Keeps the cells that lie within both the old and the new bounds; new cells are Empty. An upper bound
    // one below its lower bound gives no rows (or columns); lower still raises 9.
    void ReDim(long rowLow, long rowHigh, long columnLow, long columnHigh);
    void Clear(); // as before the first ReDim

    runtime::Variant& Value(long row, long column);
    const runtime::Variant& Value(long row, long column) const;
    runtime::Variant& operator()(long row, long column) { return Value(row, column); }
    const runtime::Variant& operator()(long row, long column) const { return Value(row, column); }

    // dimension: 1 rows, 2 columns
    long LowerBound(int dimension) const;
    long UpperBound(int dimension) const;
    long Count(int dimension) const { return UpperBound(dimension) - LowerBound(dimension) + 1; }

    // before: an existing row, or the place behind the last one.
    void InsertRows(long before, long count = 1);
    void AppendRows(long count = 1);
    void DeleteRows(long first, long count = 1);

private:
    void CheckRow(long row) const;
    long rowLow_ = 0, columnLow_ = 0, columns_ = 0;
    bool sized_ = false;
    std::vector<std::vector<runtime::Variant>> rows_;
};

} // namespace quillary::controls
