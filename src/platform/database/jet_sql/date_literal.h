#pragma once

#include "platform/runtime/variant.h"

#include <optional>
#include <string_view>

namespace quillary::database::jet_sql {

// What stands between the "#" of a date literal: month/day/year whatever the locale (a first number above
// 12 is the day), year-month-day, English month names in any place, each with or without a time; a time
// alone is on day 0, a date without year in the present one. nullopt when it is no date.
std::optional<runtime::Date> ParseDateLiteral(std::string_view text);

} // namespace quillary::database::jet_sql
