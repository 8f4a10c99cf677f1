#include "platform/runtime/dates.h"

#include "platform/runtime/conversions.h"
#include "platform/runtime/format_parts.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace quillary::runtime {
namespace {

constexpr long kEpoch = 25569; // 1 January 1970
constexpr long kSecondsPerDay = 86400;
constexpr long kFirstDay = -657434; // 1 January 100
constexpr long kLastDay = 2958465;  // 31 December 9999

long DayNumber(int year, int month, int day) {
    // Years from March, so that the leap day is the last one; eras of 400 years.
    const long y = year - (month <= 2 ? 1 : 0);
    const long era = (y >= 0 ? y : y - 399) / 400;
    const long yearOfEra = y - era * 400;
    const long dayOfYear = (153L * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468 + kEpoch;
}

void SplitDay(long number, DateParts& parts) {
    const long z = number - kEpoch + 719468;
    const long era = (z >= 0 ? z : z - 146096) / 146097;
    const long dayOfEra = z - era * 146097;
    const long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long m = (5 * dayOfYear + 2) / 153;
    parts.day = static_cast<int>(dayOfYear - (153 * m + 2) / 5 + 1);
    parts.month = static_cast<int>(m + (m < 10 ? 3 : -9));
    parts.year = static_cast<int>(yearOfEra + era * 400 + (parts.month <= 2 ? 1 : 0));
}

// Whole days and the seconds of the day, to the nearest second.
struct Moment {
    long day;
    long second;
};

Moment MomentOf(Date date) {
    if (!DateOfDays(date.days)) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    const double whole = std::trunc(date.days);
    Moment moment{static_cast<long>(whole), std::lround(std::fabs(date.days - whole) * kSecondsPerDay)};
    if (moment.second == kSecondsPerDay) {
        moment.second = 0;
        ++moment.day;
    }
    return moment;
}

Date DateOf(Moment moment) {
    if (moment.day < kFirstDay || moment.day > kLastDay) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    const double fraction = static_cast<double>(moment.second) / kSecondsPerDay;
    const auto day = static_cast<double>(moment.day);
    return Date{moment.day < 0 ? day - fraction : day + fraction};
}

long Linear(Moment moment) {
    return moment.day * kSecondsPerDay + moment.second;
}

long FloorDivide(long value, long by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

Date FromLinear(double seconds) {
    if (!(std::fabs(seconds) < 1e12)) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    const long whole = std::lround(seconds);
    const long day = FloorDivide(whole, kSecondsPerDay);
    return DateOf({day, whole - day * kSecondsPerDay});
}

bool IsLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// The day of a month that may lie beyond its year; days beyond the month's end are its last.
Date MonthsOn(Date date, double months) {
    if (!(std::fabs(months) < 1e6)) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    const Moment moment = MomentOf(date);
    DateParts parts;
    SplitDay(moment.day, parts);
    const long index = parts.year * 12L + parts.month - 1 + std::lround(months);
    const int year = static_cast<int>(FloorDivide(index, 12));
    const int month = static_cast<int>(index - year * 12L) + 1;
    return DateOf({DayNumber(year, month, std::min(parts.day, DaysInMonth(year, month))), moment.second});
}

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Interval IntervalOf(std::string_view name) {
    struct Entry {
        const char* name;
        Interval interval;
    };
    constexpr Entry kEntries[] = {
        {"yyyy", Interval::Year},   {"q", Interval::Quarter}, {"m", Interval::Month},
        {"y", Interval::DayOfYear}, {"d", Interval::Day},     {"w", Interval::Weekday},
        {"ww", Interval::Week},     {"h", Interval::Hour},    {"n", Interval::Minute},
        {"s", Interval::Second},
    };
    for (const Entry& entry : kEntries) {
        if (EqualName(name, entry.name)) {
            return entry.interval;
        }
    }
    throw RunTimeError(kErrInvalidProcedureCall);
}

Weeks Checked(Weeks weeks) {
    if (weeks.firstDay < 0 || weeks.firstDay > 7 || weeks.firstWeek < 0 || weeks.firstWeek > 3) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    return {std::max(weeks.firstDay, 1), std::max(weeks.firstWeek, 1)};
}

// The number of a day's week; day 1 was a Sunday.
long WeekOf(long day, const Weeks& weeks) {
    return FloorDivide(day - weeks.firstDay, 7);
}

long FirstWeekOf(int year, const Weeks& weeks) {
    const long january = DayNumber(year, 1, 1);
    const long week = WeekOf(january, weeks);
    const long before = january - (week * 7 + weeks.firstDay); // its days in the old year
    const bool next = (weeks.firstWeek == 2 && before > 3) || (weeks.firstWeek == 3 && before > 0);
    return next ? week + 1 : week;
}

int WeekOfYear(long day, int year, const Weeks& weeks) {
    const long week = WeekOf(day, weeks);
    long first = FirstWeekOf(year, weeks);
    if (week < first) {
        first = FirstWeekOf(year - 1, weeks);
    } else if (weeks.firstWeek != 1 && week >= FirstWeekOf(year + 1, weeks)) {
        first = FirstWeekOf(year + 1, weeks);
    }
    return static_cast<int>(week - first) + 1;
}

Date SystemClock() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                    std::min(local.tm_sec, 59));
}

Clock clockInUse = SystemClock;

} // namespace

Date MakeDate(int year, int month, int day, int hour, int minute, int second) {
    if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) ||
        hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    return DateOf({DayNumber(year, month, day), hour * 3600L + minute * 60L + second});
}

Date DateSerial(int year, int month, int day) {
    if (year >= 0 && year < 100) {
        year += year < 30 ? 2000 : 1900;
    }
    const long index = year * 12L + month - 1;
    const long realYear = FloorDivide(index, 12);
    if (realYear < 0 || realYear > 10000) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    const int realMonth = static_cast<int>(index - realYear * 12) + 1;
    return DateOf({DayNumber(static_cast<int>(realYear), realMonth, 1) + day - 1L, 0});
}

DateParts Split(Date date) {
    const Moment moment = MomentOf(date);
    DateParts parts;
    SplitDay(moment.day, parts);
    parts.hour = static_cast<int>(moment.second / 3600);
    parts.minute = static_cast<int>(moment.second / 60 % 60);
    parts.second = static_cast<int>(moment.second % 60);
    return parts;
}

int Weekday(Date date, int firstDay) {
    const long day = MomentOf(date).day - Checked({firstDay, 1}).firstDay; // day 1 was a Sunday
    return static_cast<int>(day - FloorDivide(day, 7) * 7) + 1;
}

int DaysInMonth(int year, int month) {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) {
        throw RunTimeError(kErrInvalidProcedureCall);
    }
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

std::string IsoText(Date date) {
    const DateParts parts = Split(date);
    std::string text = "0000-00-00";
    const auto put = [&text](std::size_t at, int value, int digits) {
        for (int i = digits - 1; i >= 0; --i, value /= 10) {
            text[at + static_cast<std::size_t>(i)] = static_cast<char>('0' + value % 10);
        }
    };
    put(0, parts.year, 4);
    put(5, parts.month, 2);
    put(8, parts.day, 2);
    if (parts.hour != 0 || parts.minute != 0 || parts.second != 0) {
        text += " 00:00:00";
        put(11, parts.hour, 2);
        put(14, parts.minute, 2);
        put(17, parts.second, 2);
    }
    return text;
}

std::optional<Date> ParseIso(std::string_view text) {
    if (text.size() != 10 && text.size() != 19) {
        return std::nullopt;
    }
    constexpr std::string_view kShape = "0000-00-00 00:00:00";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool good = kShape[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == kShape[i];
        if (!good) {
            return std::nullopt;
        }
    }
    const auto number = [text](std::size_t at, int digits) {
        int value = 0;
        for (int i = 0; i < digits; ++i) {
            value = value * 10 + (text[at + static_cast<std::size_t>(i)] - '0');
        }
        return value;
    };
    const DateParts parts{number(0, 4), number(5, 2), number(8, 2)};
    if (parts.year < 100 || parts.month < 1 || parts.month > 12 || parts.day < 1 ||
        parts.day > DaysInMonth(parts.year, parts.month)) {
        return std::nullopt;
    }
    long second = 0;
    if (text.size() == 19) {
        const int hours = number(11, 2);
        const int minutes = number(14, 2);
        const int seconds = number(17, 2);
        if (hours > 23 || minutes > 59 || seconds > 59) {
            return std::nullopt;
        }
        second = hours * 3600L + minutes * 60L + seconds;
    }
    return DateOf({DayNumber(parts.year, parts.month, parts.day), second});
}

Date DateAdd(std::string_view interval, double number, Date date) {
    number = RoundHalfEven(number);
    switch (IntervalOf(interval)) {
    case Interval::Year:
        return MonthsOn(date, number * 12);
    case Interval::Quarter:
        return MonthsOn(date, number * 3);
    case Interval::Month:
        return MonthsOn(date, number);
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday: // a weekday is a day here, the weekend too
        number *= kSecondsPerDay;
        break;
    case Interval::Week:
        number *= 7.0 * kSecondsPerDay;
        break;
    case Interval::Hour:
        number *= 3600;
        break;
    case Interval::Minute:
        number *= 60;
        break;
    case Interval::Second:
        break;
    }
    return FromLinear(static_cast<double>(Linear(MomentOf(date))) + number);
}

long DateDiff(std::string_view interval, Date from, Date to, Weeks weeks) {
    const Interval kind = IntervalOf(interval);
    const Moment a = MomentOf(from);
    const Moment b = MomentOf(to);
    DateParts first;
    DateParts last;
    SplitDay(a.day, first);
    SplitDay(b.day, last);
    switch (kind) {
    case Interval::Year:
        return last.year - first.year;
    case Interval::Quarter:
        return (last.year - first.year) * 4L + (last.month - 1) / 3 - (first.month - 1) / 3;
    case Interval::Month:
        return (last.year - first.year) * 12L + last.month - first.month;
    case Interval::DayOfYear:
    case Interval::Day:
        return b.day - a.day;
    case Interval::Weekday: // whole weeks
        return (b.day - a.day) / 7;
    case Interval::Week: // first days of a week passed
        return WeekOf(b.day, Checked(weeks)) - WeekOf(a.day, Checked(weeks));
    case Interval::Hour: // hours of the clock begun since, not hours gone by; minutes the same
        return FloorDivide(Linear(b), 3600) - FloorDivide(Linear(a), 3600);
    case Interval::Minute:
        return FloorDivide(Linear(b), 60) - FloorDivide(Linear(a), 60);
    case Interval::Second:
        break;
    }
    return Linear(b) - Linear(a);
}

int DatePart(std::string_view interval, Date date, Weeks weeks) {
    const DateParts parts = Split(date);
    const long dayOfYear = MomentOf(date).day - DayNumber(parts.year, 1, 1) + 1;
    switch (IntervalOf(interval)) {
    case Interval::Year:
        return parts.year;
    case Interval::Quarter:
        return (parts.month - 1) / 3 + 1;
    case Interval::Month:
        return parts.month;
    case Interval::DayOfYear:
        return static_cast<int>(dayOfYear);
    case Interval::Day:
        return parts.day;
    case Interval::Weekday:
        return Weekday(date, weeks.firstDay);
    case Interval::Week:
        return WeekOfYear(MomentOf(date).day, parts.year, Checked(weeks));
    case Interval::Hour:
        return parts.hour;
    case Interval::Minute:
        return parts.minute;
    case Interval::Second:
        break;
    }
    return parts.second;
}

std::optional<Date> DateOfDays(double days) {
    if (!(days > kFirstDay - 1 && days < kLastDay + 1)) {
        return std::nullopt;
    }
    return Date{days};
}

Date Now() {
    return clockInUse();
}

Date Today() {
    return Date{static_cast<double>(MomentOf(Now()).day)};
}

void SetClock(Clock clock) {
    clockInUse = clock != nullptr ? clock : SystemClock;
}

} // namespace quillary::runtime
