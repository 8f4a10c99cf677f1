#pragma once

#include "platform/runtime/variant.h"

#include <iosfwd>
#include <string>

namespace quillary::database {
class Recordset;
}

// Rows as text, the same under every locale: Boolean -1 or 0, dates YYYY-MM-DD with the time behind it
// where there is one, numbers in their shortest form, bytes of a binary field in hexadecimal digits.
namespace quillary::tools {

// Null gives the empty text.
std::string PlainText(const runtime::Variant& value);
// Null gives null; numbers and Booleans stand bare.
std::string JsonText(const runtime::Variant& value);

// All rows from the first one on. A table has the names of the fields above its columns; a line break
// within a value is shown as \n there.
void PrintTable(database::Recordset& rows, std::ostream& out);
void PrintJson(database::Recordset& rows, std::ostream& out);

} // namespace quillary::tools
