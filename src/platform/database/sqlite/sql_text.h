#pragma once

#include "platform/database/engine.h"

#include <string>
#include <string_view>

// Names and literals as SQLite reads them.
namespace quillary::database::sqlite {

// A name in double quotes, quotes inside doubled.
std::string Quote(std::string_view name);

// A text in apostrophes; one that holds a zero byte is written by its bytes.
std::string TextLiteral(std::string_view text);

// Always read back as a REAL, with every digit that counts.
std::string RealLiteral(double value);

// The name by which the table's row address can be reached: rowid, unless a field is called so.
std::string_view RowIdName(const TableDef& table);

// alias.rowid
std::string RowId(const TableDef& table, std::string_view alias);

// Position of a field, -1 when there is none. Case does not count.
int FindField(const TableDef& table, std::string_view name);

} // namespace quillary::database::sqlite
