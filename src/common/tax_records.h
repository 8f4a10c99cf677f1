#pragma once

#include "platform/database/engine.h"
#include "platform/runtime/variant.h"

#include <string_view>

// The records that the farm page, the tax pages and the first run share: the first row of "Partners" and
// the one record of "PayeInfo".
namespace quillary::common {

// Writes one text field of the first tax entity in table order; an empty table gets its default entity.
// Apostrophes become backticks; Null writes nothing. Errors are reported under "UpdatePartnerTable".
void UpdatePartnerField(const runtime::Variant& value, std::string_view fieldName);

// A value of "PayeInfo", or defaultValue when there is no record, or the field is Null or empty text. An
// error (a bad key, a missing table) shows the error box and gives the default.
runtime::Variant payeinfo(database::Database& db, std::string_view key, const runtime::Variant& defaultValue);

// Stores a value in "PayeInfo", making the record when there is none. Only Long, Text, Date and Boolean
// fields are stored into, others are passed over in silence. An error shows the error box.
void savepayeinfo(database::Database& db, std::string_view key, const runtime::Variant& value);

} // namespace quillary::common
