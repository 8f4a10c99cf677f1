#include "platform/runtime/dates.h"
#include "platform/runtime/format.h"
#include "platform/runtime/format_parts.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/locale_details.h"

#include <cmath>

namespace quillary::runtime {
namespace {

void AppendNumber(std::string& text, int value, std::size_t digits) {
    const std::string number = std::to_string(value);
    if (number.size() < digits) {
        text.append(digits - number.size(), '0');
    }
    text += number;
}

const std::string& MonthName(const DateParts& parts, bool full) {
    const LocaleDetails& names = CurrentDetails();
    return (full ? names.months : names.monthsShort)[static_cast<std::size_t>(parts.month - 1)];
}

const std::string& DayName(Date date, bool full) {
    const LocaleDetails& names = CurrentDetails();
    return (full ? names.weekdays : names.weekdaysShort)[static_cast<std::size_t>(Weekday(date) - 1)];
}

int TwelveHour(int hour) {
    return hour % 12 == 0 ? 12 : hour % 12;
}

std::size_t RunLength(std::string_view text, std::size_t from) {
    std::size_t to = from + 1;
    while (to < text.size() && (text[to] | 0x20) == (text[from] | 0x20)) {
        ++to;
    }
    return to - from;
}

// One field of an ICU pattern.
void AppendField(std::string& text, char letter, std::size_t count, Date date, const DateParts& parts) {
    switch (letter) {
    case 'y':
        AppendNumber(text, count == 2 ? parts.year % 100 : parts.year, count);
        break;
    case 'M':
    case 'L':
        if (count <= 2) {
            AppendNumber(text, parts.month, count);
        } else if (letter == 'L' && count > 3) {
            text += CurrentDetails().monthsAlone[static_cast<std::size_t>(parts.month - 1)];
        } else {
            text += MonthName(parts, count > 3);
        }
        break;
    case 'd':
        AppendNumber(text, parts.day, count);
        break;
    case 'E':
    case 'c':
    case 'e':
        text += DayName(date, count > 3);
        break;
    case 'H':
        AppendNumber(text, parts.hour, count);
        break;
    case 'k':
        AppendNumber(text, parts.hour == 0 ? 24 : parts.hour, count);
        break;
    case 'h':
        AppendNumber(text, TwelveHour(parts.hour), count);
        break;
    case 'K':
        AppendNumber(text, parts.hour % 12, count);
        break;
    case 'm':
        AppendNumber(text, parts.minute, count);
        break;
    case 's':
        AppendNumber(text, parts.second, count);
        break;
    case 'a':
    case 'b':
    case 'B':
        text += parts.hour < 12 ? CurrentDetails().am : CurrentDetails().pm;
        break;
    default:
        break;
    }
}

// A picture of Format on its way through a date.
class DatePicture {
public:
    DatePicture(Date date, std::string_view picture, Weeks weeks)
        : date_(date), parts_(Split(date)), picture_(picture), weeks_(weeks), twelve_(HasHalfDay()) {}

    std::string Text() {
        for (at_ = 0; at_ < picture_.size();) {
            Step();
        }
        return text_;
    }

private:
    struct HalfDay {
        std::string_view sign;
        std::string_view am;
        std::string_view pm;
    };
    static constexpr HalfDay kHalfDays[] = {
        {"AM/PM", "AM", "PM"}, {"am/pm", "am", "pm"}, {"A/P", "A", "P"}, {"a/p", "a", "p"}};

    const HalfDay* HalfDayAt(std::size_t at) const {
        const std::string_view rest = picture_.substr(at);
        for (const HalfDay& half : kHalfDays) {
            if (rest.starts_with(half.sign)) {
                return &half;
            }
        }
        // Mixed case reads as capitals.
        for (const HalfDay& half : {kHalfDays[0], kHalfDays[2]}) {
            if (EqualName(rest.substr(0, half.sign.size()), half.sign)) {
                return half.sign.size() == 5 ? &kHalfDays[0] : &kHalfDays[2];
            }
        }
        return nullptr;
    }

    bool IsLocalHalfDay(std::size_t at) const { return EqualName(picture_.substr(at, 4), "AMPM"); }

    bool HasHalfDay() const {
        for (std::size_t i = 0; i < picture_.size(); ++i) {
            if (picture_[i] == '\\') {
                ++i;
            } else if (picture_[i] == '"') {
                i = std::min(picture_.find('"', i + 1), picture_.size());
            } else if (HalfDayAt(i) != nullptr || IsLocalHalfDay(i)) {
                return true;
            }
        }
        return false;
    }

    void Step() {
        const char c = picture_[at_];
        if (c == '\\') {
            text_ += picture_.substr(at_ + 1, 1);
            at_ += 2;
            return;
        }
        if (c == '"') {
            const std::size_t end = std::min(picture_.find('"', at_ + 1), picture_.size());
            text_ += picture_.substr(at_ + 1, end - at_ - 1);
            at_ = end + 1;
            return;
        }
        if (IsLocalHalfDay(at_)) {
            text_ += parts_.hour < 12 ? CurrentDetails().am : CurrentDetails().pm;
            at_ += 4;
            return;
        }
        if (const HalfDay* half = HalfDayAt(at_)) {
            text_ += parts_.hour < 12 ? half->am : half->pm;
            at_ += half->sign.size();
            return;
        }
        const std::size_t count = RunLength(picture_, at_);
        if (c == '/') {
            text_ += CurrentLocale().dateSeparator;
            ++at_;
        } else if (c == ':') {
            text_ += CurrentLocale().timeSeparator;
            ++at_;
        } else {
            at_ += Field(static_cast<char>(c | 0x20), count);
        }
    }

    // Puts a field; gives how many characters of the picture it took.
    std::size_t Field(char letter, std::size_t count) {
        const bool afterHour = lastField_ == 'h';
        const std::size_t start = at_;
        const auto took = [&](std::size_t most) {
            lastField_ = letter;
            return std::min(count, most);
        };
        switch (letter) {
        case 'c':
            text_ += GeneralDate(date_);
            return took(1);
        case 'd':
            Day(count = took(6));
            return count;
        case 'w':
            AppendNumber(text_, DatePart(count > 1 ? "ww" : "w", date_, weeks_), 1);
            return took(2);
        case 'm':
            count = took(4);
            // Behind the hour these are minutes.
            if (afterHour && count <= 2) {
                AppendNumber(text_, parts_.minute, count);
            } else if (count <= 2) {
                AppendNumber(text_, parts_.month, count);
            } else {
                text_ += MonthName(parts_, count == 4);
            }
            return count;
        case 'q':
            AppendNumber(text_, DatePart("q", date_), 1);
            return took(1);
        case 'y':
            count = took(4);
            if (count == 1) {
                AppendNumber(text_, DatePart("y", date_), 1);
            } else {
                AppendNumber(text_, count == 2 ? parts_.year % 100 : parts_.year, count == 2 ? 2 : 4);
            }
            return count;
        case 'h':
            count = took(2);
            AppendNumber(text_, twelve_ ? TwelveHour(parts_.hour) : parts_.hour, count);
            return count;
        case 'n':
            AppendNumber(text_, parts_.minute, count = took(2));
            return count;
        case 's':
            AppendNumber(text_, parts_.second, count = took(2));
            return count;
        case 't':
            if (count >= 5) {
                text_ += FormatPattern(date_, CurrentDetails().longTime);
                return took(5);
            }
            break;
        default:
            break;
        }
        text_ += picture_[start];
        return 1;
    }

    void Day(std::size_t count) {
        switch (count) {
        case 1:
        case 2:
            AppendNumber(text_, parts_.day, count);
            break;
        case 3:
        case 4:
            text_ += DayName(date_, count == 4);
            break;
        case 5:
            text_ += FormatPattern(date_, CurrentLocale().shortDate);
            break;
        default:
            text_ += FormatPattern(date_, CurrentLocale().longDate);
            break;
        }
    }

    Date date_;
    DateParts parts_;
    std::string_view picture_;
    Weeks weeks_;
    bool twelve_;
    std::size_t at_ = 0;
    char lastField_ = 0;
    std::string text_;
};

} // namespace

std::string FormatPattern(Date date, std::string_view pattern) {
    const DateParts parts = Split(date);
    std::string text;
    for (std::size_t i = 0; i < pattern.size();) {
        const char c = pattern[i];
        if (c == '\'') {
            const std::size_t end = std::min(pattern.find('\'', i + 1), pattern.size());
            text += end == i + 1 ? std::string_view("'") : pattern.substr(i + 1, end - i - 1);
            i = end + 1;
        } else if ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') {
            std::size_t count = 1;
            while (i + count < pattern.size() && pattern[i + count] == c) {
                ++count;
            }
            AppendField(text, c, count, date, parts);
            i += count;
        } else {
            text += c;
            ++i;
        }
    }
    return text;
}

std::string FormatDatePicture(Date date, std::string_view picture, Weeks weeks) {
    return DatePicture(date, picture, weeks).Text();
}

std::string GeneralDate(Date date) {
    const DateParts parts = Split(date);
    const bool time = parts.hour != 0 || parts.minute != 0 || parts.second != 0;
    const bool dayZero = parts.year == 1899 && parts.month == 12 && parts.day == 30;
    std::string text;
    if (!dayZero) {
        text = FormatPattern(date, CurrentLocale().shortDate);
    }
    if (time || dayZero) {
        text += text.empty() ? "" : " ";
        text += FormatPattern(date, CurrentDetails().longTime);
    }
    return text;
}

} // namespace quillary::runtime
