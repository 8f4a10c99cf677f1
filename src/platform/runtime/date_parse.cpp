#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/locale_details.h"

#include <algorithm>
#include <span>
#include <vector>

namespace quillary::runtime {
namespace {

enum class Kind { Number, Month, HalfDay, Separator };

struct Token {
    Kind kind;
    int value = 0;            // of a number; month 1 to 12; half day 0 or 1; the separator's character
    int digits = 0;           // of a number
    bool blankBefore = false; // or at the start
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

// A word as it is looked for: small letters, no full stops.
std::string Bare(std::string_view word) {
    std::string bare = LCase(word);
    std::erase(bare, '.');
    return bare;
}

// Exact names count first, then a beginning of at least three letters that fits one month alone.
int MonthOf(const std::string& word, const LocaleDetails& names) {
    int beginning = 0;
    for (int month = 1; month <= 12; ++month) {
        const auto at = static_cast<std::size_t>(month - 1);
        for (const auto* list : {&names.months, &names.monthsShort, &names.monthsAlone}) {
            const std::string name = Bare((*list)[at]);
            if (name.empty()) {
                continue;
            }
            if (name == word) {
                return month;
            }
            if (CharCount(word) >= 3 && name.starts_with(word)) {
                beginning = beginning == 0 || beginning == month ? month : -1;
            }
        }
    }
    return std::max(beginning, 0);
}

// The words that a date pattern puts between its fields: "de", "г".
bool IsPatternWord(const std::string& word, std::string_view pattern) {
    for (std::size_t from = pattern.find('\''); from != pattern.npos; from = pattern.find('\'', from + 1)) {
        const std::size_t to = pattern.find('\'', from + 1);
        if (to == pattern.npos) {
            return false;
        }
        if (Bare(Trim(pattern.substr(from + 1, to - from - 1))) == word) {
            return true;
        }
        from = to;
    }
    return false;
}

class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    // False where a character or word belongs to no date.
    bool Run(std::vector<Token>& tokens) {
        bool blank = true;
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (c == ' ' || c == '\t') {
                blank = true;
                ++at_;
                continue;
            }
            if (IsBlankBeyondAscii()) {
                blank = true;
                continue;
            }
            Token token{Kind::Separator};
            token.blankBefore = blank;
            blank = false;
            if (IsDigit(c)) {
                if (!ReadNumber(token)) {
                    return false;
                }
            } else if (IsLetter(c)) {
                bool skip = false;
                if (!ReadWord(token, skip)) {
                    return false;
                }
                if (skip) {
                    blank = true;
                    continue;
                }
            } else if (std::string_view("/-.,:").find(c) != std::string_view::npos) {
                token.value = static_cast<unsigned char>(c);
                ++at_;
            } else {
                return false;
            }
            tokens.push_back(token);
        }
        return true;
    }

private:
    bool IsBlankBeyondAscii() {
        for (const std::string_view blank : {"\u00A0", "\u202F"}) {
            if (text_.substr(at_).starts_with(blank)) {
                at_ += blank.size();
                return true;
            }
        }
        return false;
    }

    bool ReadNumber(Token& token) {
        token.kind = Kind::Number;
        for (; at_ < text_.size() && IsDigit(text_[at_]); ++at_) {
            token.value = token.value * 10 + (text_[at_] - '0');
            if (++token.digits > 4) {
                return false;
            }
        }
        return true;
    }

    bool ReadWord(Token& token, bool& skip) {
        const std::size_t from = at_;
        while (at_ < text_.size() && (IsLetter(text_[at_]) || (text_[at_] == '.' && at_ + 1 < text_.size() &&
                                                               IsLetter(text_[at_ + 1])))) {
            ++at_;
        }
        const std::string word = Bare(text_.substr(from, at_ - from));
        if (at_ < text_.size() && text_[at_] == '.') {
            ++at_;
        }
        const RegionalSettings& settings = CurrentLocale();
        const LocaleDetails& local = CurrentDetails();
        if (word == "am" || word == "a" || word == Bare(local.am)) {
            token.kind = Kind::HalfDay;
            return true;
        }
        if (word == "pm" || word == "p" || word == Bare(local.pm)) {
            token.kind = Kind::HalfDay;
            token.value = 1;
            return true;
        }
        token.kind = Kind::Month;
        token.value = MonthOf(word, local);
        if (token.value == 0) {
            token.value = MonthOf(word, EnglishDetails());
        }
        // The day of the week makes a text no date, as ever: only the pattern's own words are passed over.
        skip = token.value == 0 &&
               (IsPatternWord(word, settings.shortDate) || IsPatternWord(word, settings.longDate));
        return token.value != 0 || skip;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

bool IsSeparator(const Token& token, char c) {
    return token.kind == Kind::Separator && token.value == c;
}

using Tokens = std::span<const Token>;

// The time at the start of some tokens: how many belong to it (0: none), and its seconds; -1 for a time
// that cannot be.
struct TimeReading {
    std::size_t length = 0;
    int seconds = -1;
};

// separator: what may stand between the numbers. A single number needs am or pm behind it.
TimeReading ReadTime(Tokens tokens, char separator, bool needsHalfDay) {
    int fields[3] = {0, 0, 0};
    std::size_t count = 0;
    std::size_t at = 0;
    while (at < tokens.size() && tokens[at].kind == Kind::Number && count < 3) {
        if (tokens[at].digits > 2) {
            return {};
        }
        fields[count++] = tokens[at++].value;
        if (at + 1 < tokens.size() && IsSeparator(tokens[at], separator) &&
            tokens[at + 1].kind == Kind::Number && count < 3) {
            ++at;
        } else {
            break;
        }
    }
    if (count == 0) {
        return {};
    }
    const bool half = at < tokens.size() && tokens[at].kind == Kind::HalfDay;
    if (!half && (needsHalfDay || count == 1)) {
        return {};
    }
    TimeReading reading{at + (half ? 1 : 0)};
    int hour = fields[0];
    if (half) {
        if (hour > 12) {
            return reading;
        }
        hour = hour % 12 + (tokens[at].value == 1 ? 12 : 0);
    }
    if (hour < 24 && fields[1] < 60 && fields[2] < 60) {
        reading.seconds = hour * 3600 + fields[1] * 60 + fields[2];
    }
    return reading;
}

// A year as typed: two digits are 2000 to 2029 and 1930 to 1999. 0 when it cannot be one.
int YearOf(const Token& token) {
    if (token.kind != Kind::Number) {
        return 0;
    }
    if (token.digits <= 2) {
        return token.value + (token.value < 30 ? 2000 : 1900);
    }
    return token.value >= 100 ? token.value : 0;
}

std::optional<Date> DayOf(int year, int month, int day) {
    if (year < 100 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month)) {
        return std::nullopt;
    }
    return MakeDate(year, month, day);
}

bool IsYearOnly(const Token& token) {
    return token.digits > 2 || token.value > 31;
}

// Year, month and day of tokens, whichever of the two last is the month.
std::optional<Date> EitherOrder(int year, const Token& month, const Token& day) {
    if (IsYearOnly(month) || IsYearOnly(day)) {
        return std::nullopt;
    }
    const auto date = DayOf(year, month.value, day.value);
    return date ? date : DayOf(year, day.value, month.value);
}

int PresentYear() {
    return Split(Today()).year;
}

// With the month in words: the other one or two are the day and the year.
std::optional<Date> NamedMonthDate(Tokens parts) {
    std::vector<Token> numbers;
    int month = 0;
    for (const Token& part : parts) {
        if (part.kind == Kind::Number) {
            numbers.push_back(part);
        } else if (month != 0) {
            return std::nullopt;
        } else {
            month = part.value;
        }
    }
    if (numbers.size() == 1) {
        const Token& number = numbers[0];
        return IsYearOnly(number) ? DayOf(YearOf(number), month, 1)
                                  : DayOf(PresentYear(), month, number.value);
    }
    const bool yearFirst = IsYearOnly(numbers[0]);
    const Token& year = numbers[yearFirst ? 0 : 1];
    const Token& day = numbers[yearFirst ? 1 : 0];
    return IsYearOnly(day) ? std::nullopt : DayOf(YearOf(year), month, day.value);
}

std::optional<Date> NumericDate(Tokens parts) {
    const int order = CurrentLocale().dateOrder;
    const bool monthFirst = order == 0;
    if (parts.size() == 2) {
        const Token& first = parts[0];
        const Token& second = parts[1];
        if (IsYearOnly(first) || IsYearOnly(second)) {
            const Token& year = IsYearOnly(first) ? first : second;
            const Token& month = IsYearOnly(first) ? second : first;
            return IsYearOnly(month) ? std::nullopt : DayOf(YearOf(year), month.value, 1);
        }
        return order == 1 ? EitherOrder(PresentYear(), second, first)
                          : EitherOrder(PresentYear(), first, second);
    }
    if (IsYearOnly(parts[0]) || (order == 2 && !IsYearOnly(parts[2]))) {
        return EitherOrder(YearOf(parts[0]), parts[1], parts[2]);
    }
    return monthFirst ? EitherOrder(YearOf(parts[2]), parts[0], parts[1])
                      : EitherOrder(YearOf(parts[2]), parts[1], parts[0]);
}

std::optional<Date> ReadDay(Tokens tokens) {
    std::vector<Token> parts;
    bool named = false;
    bool onlyBlanks = true;
    char separator = 0; // the last one, waiting for what follows it
    char firstSeparator = 0;
    for (const Token& token : tokens) {
        if (token.kind == Kind::HalfDay || IsSeparator(token, ':')) {
            return std::nullopt;
        }
        if (token.kind == Kind::Separator) {
            if (separator != 0 || parts.empty()) {
                return std::nullopt;
            }
            separator = static_cast<char>(token.value);
            firstSeparator = firstSeparator == 0 ? separator : firstSeparator;
            onlyBlanks = false;
            continue;
        }
        separator = 0;
        named = named || token.kind == Kind::Month;
        parts.push_back(token);
        if (parts.size() > 3) {
            return std::nullopt;
        }
    }
    const bool closed = separator == '.' && CurrentLocale().dateSeparator.starts_with('.');
    if (parts.size() < 2 || (separator != 0 && !closed)) {
        return std::nullopt;
    }
    if (named) {
        return NamedMonthDate(parts);
    }
    const bool commas =
        std::any_of(tokens.begin(), tokens.end(), [](const Token& t) { return IsSeparator(t, ','); });
    // "1.5", "1,5" and "1 000" are numbers.
    const bool number = parts.size() == 2 && !closed && (onlyBlanks || firstSeparator == '.');
    return commas || number ? std::nullopt : NumericDate(parts);
}

} // namespace

std::optional<Date> ParseDate(std::string_view text) {
    std::vector<Token> tokens;
    tokens.reserve(8);
    if (!Lexer(text).Run(tokens) || tokens.empty()) {
        return std::nullopt;
    }
    const bool stopsInTimes = CurrentLocale().timeSeparator == ".";
    Tokens all(tokens);
    Tokens day = all;
    TimeReading time;
    for (std::size_t i = 0; i < all.size() && time.length == 0; ++i) {
        if (all[i].kind != Kind::Number || !all[i].blankBefore) {
            continue;
        }
        const Tokens rest = all.subspan(i);
        time = ReadTime(rest, ':', false);
        if (time.length == 0) {
            // 10.30 is a time with am or pm behind it, or behind a day where times are written so.
            time = ReadTime(rest, '.', !(stopsInTimes && i >= 3));
        }
        if (time.length > 0) {
            if (time.seconds < 0 || (i > 0 && i + time.length < all.size())) {
                return std::nullopt;
            }
            day = i > 0 ? all.first(i) : all.subspan(time.length);
        }
    }
    if (time.length == 0) {
        return ReadDay(day);
    }
    const double fraction = time.seconds / 86400.0;
    if (day.empty()) {
        return Date{fraction};
    }
    if (IsSeparator(day.back(), ',')) {
        day = day.first(day.size() - 1);
    }
    const auto date = ReadDay(day);
    if (!date) {
        return std::nullopt;
    }
    return Date{date->days < 0 ? date->days - fraction : date->days + fraction};
}

} // namespace quillary::runtime
