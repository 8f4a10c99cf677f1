#pragma once

#include <array>
#include <string>

// What only formats and the reading of dates need of the regional settings. Of this room alone.
namespace quillary::runtime {

struct LocaleDetails {
    std::array<std::string, 12> months;
    std::array<std::string, 12> monthsShort;
    std::array<std::string, 12> monthsAlone; // as they read without a day beside them
    std::array<std::string, 7> weekdays;     // Sunday first
    std::array<std::string, 7> weekdaysShort;
    std::string am;
    std::string pm;
    std::string longTime;        // "h:mm:ss a", ICU letters
    std::string currencyPicture; // "$"#,##0.00, a picture of Format
};

// Those of CurrentLocale(), read when first asked for.
const LocaleDetails& CurrentDetails();
// English names, with abbreviations of three letters.
const LocaleDetails& EnglishDetails();

} // namespace quillary::runtime
