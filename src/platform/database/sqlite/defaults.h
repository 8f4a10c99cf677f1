#pragma once

#include "platform/database/engine.h"
#include "platform/database/jet_sql/ast.h"

#include <string>
#include <string_view>

// Default values of fields: the SQL behind DEFAULT in the table's text, and the value that a new row shows.
namespace quillary::database::sqlite {

// The SQL of a default as the dialect writes it: a literal of the field's kind, or Now(), Date() or Time().
// 3301 for another expression; the errors of ConvertForField for a value that the field cannot take.
std::string DefaultText(const jet_sql::Expr& expression, const FieldDef& field);

// The value of that SQL at this moment; Null where there is none.
Variant DefaultOf(std::string_view sql, FieldType type);

// The same as a FieldDef tells it: Empty where there is none, the function's text for a moment.
Variant DescribedDefault(std::string_view sql, FieldType type);

} // namespace quillary::database::sqlite
