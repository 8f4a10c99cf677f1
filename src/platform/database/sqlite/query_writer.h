#pragma once

#include "platform/database/sqlite/scope.h"

#include <string>
#include <vector>

// Queries within a statement: in FROM, in expressions, as parts of a union, as the source of an INSERT.
namespace quillary::database::sqlite {

enum class QueryUse {
    Derived, // its columns are called c0, c1, ...; its order counts
    Set,     // the same, but the order is nobody's business
};

struct QueryText {
    std::string sql;
    std::vector<DerivedColumn> columns;
    bool grouped = false; // its rows are no longer records of tables
    bool oneRow = false;  // one row at most
};

QueryText WriteQuery(Context& context, const jet_sql::Query& query, Scope* outer, QueryUse use);

} // namespace quillary::database::sqlite
