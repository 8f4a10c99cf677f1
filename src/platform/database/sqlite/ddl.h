#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/sqlite/connection.h"

#include <string>
#include <string_view>

// Statements that define tables, indexes, relations and saved queries.
namespace quillary::database::sqlite {

// CREATE TABLE, ALTER TABLE, CREATE INDEX, DROP, CREATE VIEW and PROCEDURE.
bool IsDefinition(const jet_sql::Statement& statement);

// Runs one, whole or not at all. sql: its text, for the saved query behind AS.
// 3010 the table is there already, 3012 the query is, 3125 a bad name, 3211 the table is in use, 3259 a bad
// type, 3265 no such query, 3280 the field is part of an index, 3281 something is part of a relation, 3283
// there is a primary key already, 3368 a relation between fields of different types, 3371 no such table or
// constraint, 3372 no such index, 3375 the index is there already, 3376 no such table, 3378 the relation is
// there already, 3380 the field is, 3381 no such field, 3409 a relation to fields that are no key.
void RunDefinition(Connection& connection, const jet_sql::Statement& statement, std::string_view sql);

// Makes a table as SELECT INTO wants it: no key, no counter. file: in an attached file. Within an open
// write scope.
void CreateTable(Connection& connection, const TableDef& table, const AttachedFiles::File* file = nullptr);

// 3125.
void CheckName(std::string_view name);

} // namespace quillary::database::sqlite
