#pragma once

#include "platform/controls/qyx_array.h"
#include "platform/runtime/variant.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace quillary::controls {

class Grid;
class DataControl;

// What lies behind a grid: rows counted from 0, each with a bookmark that stays with it. Nothing is
// copied; a value is fetched when it is asked for.
class GridRows {
public:
    virtual ~GridRows() = default;
    virtual long Count() const = 0;
    virtual runtime::Variant Value(long row, int column) const = 0; // Null where there is none
    virtual std::int64_t BookmarkAt(long row) const = 0;
    virtual long RowOf(std::int64_t bookmark) const = 0; // -1
    virtual long Current() const = 0;                    // -1
    virtual void SetCurrent(long row) = 0;               // -1: none
    // The user sees the rows up to this one.
    virtual void Showing(long) {}
    virtual bool Writable() const = 0;
    // Whose file cannot be written: its name; otherwise "".
    virtual std::string ReadOnlyDatabase() const { return {}; }
    virtual bool ColumnWritable(int column) const = 0;
    // The value that a typed one becomes in this column; raises 3421 when it cannot.
    virtual runtime::Variant Convert(int column, const runtime::Variant& typed) const = 0;
    // Writes the pending cells (grid column -> value) into the current row, or into a new row behind the
    // last, which becomes current. false: the data control's Validate cancelled it. The errors of the
    // engine. Nothing is written in either case.
    virtual bool Write(const std::map<int, runtime::Variant>& pending) = 0;
    virtual bool Append(const std::map<int, runtime::Variant>& pending) = 0;
    virtual void DeleteCurrent() = 0;
    // Columns or fields are others now.
    virtual void Remap() {}
};

std::unique_ptr<GridRows> RowsOf(const Grid& grid, DataControl& source);
std::unique_ptr<GridRows> RowsOf(std::shared_ptr<QYxArray> array);

} // namespace quillary::controls
