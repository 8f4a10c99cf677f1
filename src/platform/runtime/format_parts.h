#pragma once

#include "platform/runtime/dates.h"
#include "platform/runtime/variant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The parts that Format is made of. Of this room alone.
namespace quillary::runtime {

// The sections of a picture, parted by ";" outside quotes.
std::vector<std::string_view> Sections(std::string_view picture);

// A number's plain text with the local decimal sign.
std::string WithLocalDecimal(std::string text);

// Days as a date; nothing beyond the years 100 to 9999.
std::optional<Date> DateOfDays(double days);

// Short date, long time or both, whichever the value has: CStr of a date.
std::string GeneralDate(Date date);
// A date by a pattern of ICU letters and local names.
std::string FormatPattern(Date date, std::string_view pattern);
// A date by a picture of Format (dd mmm yyyy hh:nn:ss AM/PM ...).
std::string FormatDatePicture(Date date, std::string_view picture, Weeks weeks = {});

// A number (not a text) by a picture of Format (#,##0.00;(0.00);zero;null); Null takes the fourth section.
std::string FormatNumberPicture(const Variant& number, std::string_view picture);

} // namespace quillary::runtime
