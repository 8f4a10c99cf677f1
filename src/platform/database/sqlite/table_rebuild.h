#pragma once

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/table_text.h"

#include <vector>

namespace quillary::database::sqlite {

// Gives a table another definition where SQLite itself cannot: a new table is made and filled, and takes
// the old one's place, its rows' addresses, its counter and its indexes. Needs a write scope begun with
// foreign keys switched off (see ForeignKeysOff). The errors are those of the rows that do not fit the new
// definition: 3163, 3314, 3421, 3022, ...
//
// sources: for each field of the new table its position in the old one; -1 for a new field.
void RebuildTable(Connection& connection, const TableInfo& before, const TableInfo& after,
                  const std::vector<int>& sources);

// Each field as it is.
std::vector<int> SameFields(const TableInfo& table);

// SQLite checks no foreign keys while this lives, so that a table can be dropped and made anew. To be made
// before the write scope: within one it would have no effect.
class ForeignKeysOff {
public:
    explicit ForeignKeysOff(Connection& connection);
    ~ForeignKeysOff();
    ForeignKeysOff(const ForeignKeysOff&) = delete;
    ForeignKeysOff& operator=(const ForeignKeysOff&) = delete;

private:
    Connection& connection_;
};

} // namespace quillary::database::sqlite
