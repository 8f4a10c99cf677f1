#pragma once

#include "platform/database/engine.h"

struct sqlite3_context;
struct sqlite3_value;

// Values between their stored forms (see translation.h) and the run time's.
namespace quillary::database::sqlite {

// The double nearest to the value's seven-digit decimal text, as a Single is stored. 6 beyond its range.
double SingleValue(double value);

// What a function of SQLite was given, as a value of this type. A text that should be a date is read as
// one (day 0 when it is none).
Variant FromStored(sqlite3_value* value, FieldType type);

// Gives a value back in its stored form.
void ReturnStored(sqlite3_context* context, const Variant& value);

} // namespace quillary::database::sqlite
