#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/sqlite/translation.h"

#include <string_view>
#include <vector>

// Turns the syntax tree of a statement into text for SQLite. Names are settled here, against the
// catalogue, before anything runs; an unknown column becomes a parameter (the engine raises 3061 when it
// has no value for it). Raised: 3078 unknown table or query, 3079 ambiguous column, 3085 undefined
// function, 3103 circular alias, 3102 queries that use each other, 3122 a column that is not grouped,
// 3464 and 3615 kinds that do not compare, 3073 a subquery in SET or a target that cannot be changed,
// 3127 and 3346 columns of an insert that do not fit, 3128 and 3086 no table to delete from, 3307 union
// parts of different width, 3360 too complex, and others of the dialect where they stand.
namespace quillary::database::sqlite {

// Whether the statement changes data (SELECT ... INTO does).
bool IsAction(const jet_sql::Statement& statement);

// A statement that gives rows. headings is needed for a crosstab without fixed headings.
Selection TranslateSelect(const jet_sql::Statement& statement, const SchemaView& schema,
                          const HeadingQuery& headings = {});

// All fields of all rows of a table, in table order, as the table type gives them.
Selection TranslateTable(const TableDef& table, const SchemaView& schema);

// UPDATE, DELETE, INSERT, SELECT ... INTO.
Action TranslateAction(const jet_sql::Statement& statement, const SchemaView& schema,
                       const HeadingQuery& headings = {});

// A WHERE expression on the columns of a recordset. 3070 for a name that is none of them.
Criterion TranslateCriterion(const jet_sql::Expr& criterion, const std::vector<ResultColumn>& columns);

} // namespace quillary::database::sqlite
