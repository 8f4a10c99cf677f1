#pragma once

#include "platform/runtime/dates.h"
#include "platform/runtime/variant.h"

#include <string>
#include <string_view>

namespace quillary::runtime {

// Format of the old run time. Named formats, case does not count: "General Number", "Currency", "Fixed",
// "Standard", "Percent", "Scientific", "Yes/No", "True/False", "On/Off", "General Date", "Long Date",
// "Medium Date", "Short Date", "Long Time", "Medium Time", "Short Time". Picture formats for numbers
// (0 # . , % E+ \ "..." and up to four sections), dates (d m y h n s q w ww, AM/PM, / and : by the
// locale) and text (@ & < > !). An empty format gives CStr. Null and Empty give "" or the fourth section.
// Halves are rounded away from zero (a conversion rounds them to even). A text that reads as a number or
// date is formatted as such under a number or date format, else returned as it is. Raises 6 for a number
// beyond the dates under a date format. weeks: for w and ww.
std::string Format(const Variant& value, std::string_view format = {}, Weeks weeks = {});

// "Short Date" of a value that is a date (CDate): en_NZ d/MM/yyyy, the year always four digits.
std::string ShortDate(const Variant& value);

} // namespace quillary::runtime
