#pragma once

#include <string>
#include <string_view>

// The system's regional settings, for the report on the About page.
namespace quillary::config {

// kind: system::regional. Empty for an unknown kind.
std::string GetLocaleValue(long kind);
std::string TrimAtNul(std::string_view text);
std::string GetDateOrder(); // "0" month-day-year, "1" day-month-year, "2" year-month-day

} // namespace quillary::config
