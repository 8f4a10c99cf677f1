#pragma once

#include <string>
#include <string_view>

// Regional settings of the process, and text as people compare it. ICU supplies both.
namespace quillary::runtime {

struct RegionalSettings {
    std::string name; // "en_NZ"
    char32_t decimal = U'.';
    char32_t group = U',';
    std::string currencySymbol; // "$"
    std::string shortDate;      // "d/MM/yyyy": ICU letters, the year always yyyy
    std::string longDate;
    std::string dateSeparator; // "/"
    std::string timeSeparator; // ":"
    int dateOrder = 1;         // 0 month-day-year, 1 day-month-year, 2 year-month-day
};

// The settings in force; at first those of the environment's locale.
const RegionalSettings& CurrentLocale();
// Takes a POSIX or BCP 47 name (en_NZ, en-NZ, de_DE.UTF-8). An unknown name falls back to its language,
// then to en_NZ. Everything of runtime follows from then on.
void SetLocale(std::string_view name);

// Text order of the suite: without case, accents count, blanks at the end do not, hyphens and apostrophes
// are looked at last (a word sort). Fast for plain ASCII. -1, 0, 1. The order is one for all locales, so
// that an index made under one locale is valid under another.
int CompareText(std::string_view left, std::string_view right);
bool EqualText(std::string_view left, std::string_view right);

// A key for hashing that is equal exactly where EqualText holds.
std::string FoldText(std::string_view text);

std::string UCase(std::string_view text);
std::string LCase(std::string_view text);

// Characters (code points), not bytes: what Len, Left, Mid and field sizes count.
std::size_t CharCount(std::string_view text);
std::string_view LeftChars(std::string_view text, std::size_t count);
std::string_view MidChars(std::string_view text, std::size_t start,
                          std::size_t count = std::string_view::npos); // start from 1
std::string_view RightChars(std::string_view text, std::size_t count);
std::string_view LTrim(std::string_view text); // blanks only
std::string_view RTrim(std::string_view text);
std::string_view Trim(std::string_view text);

// Case-insensitive for A to Z alone: names of fields, keywords, sections.
bool EqualName(std::string_view left, std::string_view right) noexcept;

} // namespace quillary::runtime
