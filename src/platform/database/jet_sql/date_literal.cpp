#include "platform/database/jet_sql/date_literal.h"

#include "platform/runtime/dates.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace quillary::database::jet_sql {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"january",   "february", "march",    "april",
                                                      "may",       "june",     "july",     "august",
                                                      "september", "october",  "november", "december"};

struct Part {
    enum Kind { Number, Month, Am, Pm, Sign } kind = Sign;
    int value = 0;  // of a number or month
    int digits = 0; // of a number
    char sign = ' ';
};

class DateReader {
public:
    std::optional<runtime::Date> Read(std::string_view text) {
        if (!Split(text) || count_ == 0)
            return std::nullopt;
        runtime::DateParts parts; // day 0
        if (!TimeFollows()) {
            if (!ReadDate(parts))
                return std::nullopt;
        }
        if (at_ < count_ && !ReadTime(parts))
            return std::nullopt;
        if (at_ < count_ || parts.year < 100 || parts.year > 9999 || parts.month < 1 || parts.month > 12 ||
            parts.day < 1 || parts.day > runtime::DaysInMonth(parts.year, parts.month))
            return std::nullopt;
        return runtime::MakeDate(parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second);
    }

private:
    static constexpr std::size_t kMost = 16; // 1-Jan-2007 10:20:30 PM has eleven

    bool Split(std::string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            const char c = text[at];
            if (c == ' ' || c == '\t') {
                ++at;
                continue;
            }
            if (count_ == kMost)
                return false;
            Part& part = parts_[count_++];
            if (c >= '0' && c <= '9') {
                part.kind = Part::Number;
                for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
                    if (++part.digits > 4)
                        return false;
                    part.value = part.value * 10 + (text[at] - '0');
                }
            } else if (Letter(c)) {
                std::size_t end = at;
                while (end < text.size() && Letter(text[end]))
                    ++end;
                if (!Word(text.substr(at, end - at), part))
                    return false;
                at = end;
            } else if (c == '/' || c == '-' || c == '.' || c == ',' || c == ':') {
                part.kind = Part::Sign;
                part.sign = c;
                ++at;
            } else {
                return false;
            }
        }
        return true;
    }

    static bool Letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

    static bool Word(std::string_view word, Part& part) {
        std::string_view::size_type same = 0;
        const auto startsWith = [&](std::string_view whole) {
            for (same = 0; same < word.size(); ++same) {
                if (same == whole.size() || (word[same] | 0x20) != whole[same])
                    return false;
            }
            return true;
        };
        if (startsWith("am")) {
            part.kind = Part::Am;
            return true;
        }
        if (startsWith("pm")) {
            part.kind = Part::Pm;
            return true;
        }
        for (std::size_t i = 0; i < kMonths.size(); ++i) {
            const bool known =
                word.size() == 3 || word.size() == kMonths[i].size() || (word.size() == 4 && i == 8); // Sept
            if (known && startsWith(kMonths[i])) {
                part.kind = Part::Month;
                part.value = static_cast<int>(i) + 1;
                return true;
            }
        }
        return false;
    }

    bool Is(std::size_t ahead, Part::Kind kind) const {
        return at_ + ahead < count_ && parts_[at_ + ahead].kind == kind;
    }
    bool IsSign(std::size_t ahead, char sign) const {
        return Is(ahead, Part::Sign) && parts_[at_ + ahead].sign == sign;
    }
    const Part& Take() { return parts_[at_++]; }

    bool TimeFollows() const {
        return Is(0, Part::Number) && (IsSign(1, ':') || Is(1, Part::Am) || Is(1, Part::Pm));
    }

    bool SkipSeparator() {
        const bool found = IsSign(0, '/') || IsSign(0, '-') || IsSign(0, '.') || IsSign(0, ',');
        at_ += found ? 1 : 0;
        return found;
    }

    static int FullYear(const Part& year) {
        if (year.digits > 2)
            return year.value;
        return year.value + (year.value < 30 ? 2000 : 1900);
    }

    // Two or three parts, of which at most one is a month's name.
    bool ReadDate(runtime::DateParts& date) {
        Part parts[3];
        int count = 0;
        int named = -1;
        while (count < 3 && (Is(0, Part::Number) || Is(0, Part::Month)) && !(count > 0 && TimeFollows())) {
            if (Is(0, Part::Month)) {
                if (named >= 0)
                    return false;
                named = count;
            }
            parts[count++] = Take();
            if (count < 3 && SkipSeparator() && !Is(0, Part::Number) && !Is(0, Part::Month))
                return false;
        }
        if (count < 2)
            return false;
        if (count == 2)
            return ReadTwo(parts, named, date);
        if (named < 0)
            return ReadThree(parts[0], parts[1], parts[2], date);
        // The two numbers are day and year, in this order unless the first can only be a year.
        const Part& first = parts[named == 0 ? 1 : 0];
        const Part& second = parts[named == 2 ? 1 : 2];
        const bool yearFirst = first.digits > 2;
        date.month = parts[named].value;
        date.day = yearFirst ? second.value : first.value;
        date.year = FullYear(yearFirst ? first : second);
        return true;
    }

    static bool ReadThree(const Part& a, const Part& b, const Part& c, runtime::DateParts& date) {
        if (a.digits > 2) {
            date.year = a.value;
            date.month = b.value;
            date.day = c.value;
            return true;
        }
        date.month = a.value;
        date.day = b.value;
        if (a.value > 12) {
            date.month = b.value;
            date.day = a.value;
        }
        date.year = FullYear(c);
        return true;
    }

    // Month and day of the present year, or month and year.
    static bool ReadTwo(const Part (&parts)[3], int named, runtime::DateParts& date) {
        date.year = runtime::Split(runtime::Today()).year;
        if (named >= 0) {
            date.month = parts[named].value;
            const Part& number = parts[1 - named];
            date.day = number.digits > 2 ? 1 : number.value;
            if (number.digits > 2)
                date.year = number.value;
            return true;
        }
        if (parts[0].digits > 2)
            return false;
        date.month = parts[0].value;
        date.day = parts[1].value;
        if (parts[1].digits > 2) {
            date.day = 1;
            date.year = parts[1].value;
        } else if (date.month > 12) {
            date.month = parts[1].value;
            date.day = parts[0].value;
        }
        return true;
    }

    bool ReadTime(runtime::DateParts& time) {
        if (!TimeFollows())
            return false;
        time.hour = Take().value;
        if (IsSign(0, ':') && Is(1, Part::Number)) {
            ++at_;
            time.minute = Take().value;
            if (IsSign(0, ':') && Is(1, Part::Number)) {
                ++at_;
                time.second = Take().value;
            }
        }
        if (Is(0, Part::Am) || Is(0, Part::Pm)) {
            if (time.hour < 1 || time.hour > 12)
                return false;
            time.hour = time.hour % 12 + (Take().kind == Part::Pm ? 12 : 0);
        }
        return time.hour < 24 && time.minute < 60 && time.second < 60;
    }

    std::array<Part, kMost> parts_{};
    std::size_t count_ = 0;
    std::size_t at_ = 0;
};

} // namespace

std::optional<runtime::Date> ParseDateLiteral(std::string_view text) {
    return DateReader().Read(text);
}

} // namespace quillary::database::jet_sql
