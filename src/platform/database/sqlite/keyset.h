#pragma once

#include "platform/database/sqlite/recordset.h"

#include <limits>
#include <string>
#include <vector>

// The rows of a dynaset: their addresses (a rowid for each table) are read at opening and kept; the values
// are read when they are wanted, a page of rows at a time, and are read again once something was written.
namespace quillary::database::sqlite {

// The address of the missing side of an outer join, or of a table to which an added row gave nothing.
inline constexpr std::int64_t kNoRow = std::numeric_limits<std::int64_t>::min();

class Keyset final : public RowSet {
public:
    Keyset(std::shared_ptr<Connection> connection, const OpenedQuery& query);

    CellRow Read(std::size_t row) override;
    const std::uint64_t& Writes() const override { return connection_->OwnWrites(); }

    std::int64_t Key(std::size_t row, int table) const {
        return keys_[row * tables_ + static_cast<std::size_t>(table)];
    }
    // Reads one row as it lies in the file now; false when it is gone. Needs an open scope.
    bool ReadNow(std::size_t row, CellBlock& cells);
    // A new row at the end, with an address for each table.
    std::size_t Add(const std::vector<std::int64_t>& keys);
    // A row's address has changed, in every row that holds it.
    void Replace(int table, std::int64_t from, std::int64_t to);
    // Whether each row of the table stands in one row of the set only.
    bool IsOnce(int table) const;

private:
    struct Page {
        Page(std::size_t start, int columns) : first(start), cells(columns) {}
        std::size_t first;
        std::size_t count = 0;
        CellBlock cells;
        std::vector<bool> gone;
        Connection::Stamp stamp;

        bool Holds(std::size_t row) const { return row - first < count; } // below first it wraps around
        CellRow At(std::size_t row) const { return gone[row - first] ? CellRow() : cells.Row(row - first); }
    };

    Page* Find(std::size_t row);
    const Page& Fetch(std::size_t row, const Connection::Stamp& now);
    void FillByRange(Page& page);
    void FillOneByOne(Page& page);
    bool IsRange(const Page& page) const;
    void Bind(sqlite3_stmt* statement) const;
    // A statement in use that reads rows by their addresses, with the places of those among its parameters.
    struct RowReader;
    bool ReadOne(RowReader& reader, std::size_t row, CellBlock& cells);
    bool HasAllKeys(std::size_t row) const;
    void WriteTexts(const OpenedQuery& query);

    std::shared_ptr<Connection> connection_;
    std::vector<ParameterUse> parameterUses_;
    std::vector<Variant> parameters_;
    int columns_;
    std::size_t tables_;
    std::vector<std::int64_t> keys_;
    std::string rangeSql_; // a stretch of rows of the one table
    std::string rowSql_;   // a row with an address for every table
    std::string partSql_;  // a row without some of them: the outer side of a join, or an added row
    std::vector<std::unique_ptr<Page>> pages_; // the one used last stands at the end
    std::size_t pageSize_;
    std::size_t nextRow_ = 0; // behind the page fetched last
};

} // namespace quillary::database::sqlite
