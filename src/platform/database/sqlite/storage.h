#pragma once

#include "platform/database/engine.h"
#include "platform/runtime/variant.h"

#include <optional>
#include <string>
#include <string_view>

struct sqlite3_stmt;

// Values on their way into the file. How they lie there is told in translation.h.
namespace quillary::database::sqlite {

// The value as the field holds it: a Variant of the field's own kind, or Null (Empty counts as Null).
// 3421 for a value of the wrong kind, 6 beyond the field's range, 3163 for a text longer than the field.
Variant ConvertForField(const Variant& value, FieldType type, int size, std::string_view fieldName);

// Binds a converted value in its stored form. A text is not copied: it has to live until the statement has
// been stepped.
void BindStored(sqlite3_stmt* statement, int index, const Variant& value, FieldType type);
// The same in the stored form of the value's own kind, for a parameter of unknown type.
void BindByKind(sqlite3_stmt* statement, int index, const Variant& value);

// A converted value as a literal of SQLite.
std::string StoredLiteral(const Variant& value, FieldType type);

// A single as the double nearest to its seven-digit text.
double StoredSingle(float value);

// The date in the stored text "YYYY-MM-DD" or "YYYY-MM-DD HH:MM:SS"; nullopt for another text.
std::optional<runtime::Date> DateOfStored(std::string_view text);

// Name of a type as it stands in the file: TEXT(50), DATETIME, CURRENCY, ...
std::string DeclaredType(const FieldDef& field);
// The other way round; a type of another program is taken by its likeness.
void SetDeclaredType(FieldDef& field, std::string_view declared);

} // namespace quillary::database::sqlite
