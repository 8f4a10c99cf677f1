#pragma once

#include "platform/database/sqlite/cells.h"
#include "platform/database/sqlite/connection.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// The rows of a recordset and its clones, numbered from 0 in their order: those of the opening, then those
// added. A number stays with its row; deleted rows keep theirs.
namespace quillary::database::sqlite {

class RowSet {
public:
    virtual ~RowSet() = default;
    RowSet(const RowSet&) = delete;
    RowSet& operator=(const RowSet&) = delete;

    // The cells of a row; empty when the row is not in the file any more. They stay valid as long as
    // neither Epoch nor Writes changes.
    virtual CellRow Read(std::size_t row) = 0;
    // Counts the pages that were thrown away.
    const std::uint64_t& Epoch() const { return epoch_; }
    // Counts the writes that may have made what was read out of date.
    virtual const std::uint64_t& Writes() const = 0;

    std::size_t Count() const { return count_; }       // with the deleted ones
    std::size_t Original() const { return original_; } // of the opening

    bool IsDeleted(std::size_t row) const;
    void MarkDeleted(std::size_t row);
    // Deleted ones before this row.
    std::size_t DeletedBefore(std::size_t row) const;
    std::size_t Remaining() const { return count_ - deleted_.size(); }
    // The first row from here on, or the last one up to here, that is not deleted; Count() when there is
    // none.
    std::size_t NextFrom(std::size_t row) const;
    std::size_t LastUpTo(std::size_t row) const;
    // The row with this many undeleted ones before it; Count() when there is none.
    std::size_t Nth(std::size_t position) const;

protected:
    RowSet() = default;

    std::size_t count_ = 0;
    std::size_t original_ = 0;
    std::uint64_t epoch_ = 0;

private:
    std::vector<std::size_t> deleted_; // ascending
};

} // namespace quillary::database::sqlite
