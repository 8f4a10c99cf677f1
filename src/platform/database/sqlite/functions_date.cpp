#include "platform/database/sqlite/function_call.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/format.h"
#include "platform/runtime/run_time_error.h"

#include <cmath>
#include <string>

// The functions of dates and times, on ISO texts.
namespace quillary::database::sqlite {
namespace {

using runtime::Date;
using runtime::RunTimeError;

[[noreturn]] void RaiseInvalidCall() {
    throw RunTimeError(runtime::kErrInvalidProcedureCall);
}

Date DayOf(Date date) {
    const runtime::DateParts parts = runtime::Split(date);
    return runtime::MakeDate(parts.year, parts.month, parts.day);
}

Date TimeOf(Date date) {
    const runtime::DateParts parts = runtime::Split(date);
    return runtime::MakeDate(1899, 12, 30, parts.hour, parts.minute, parts.second);
}

void Today(const FunctionCall& call) {
    call.Return(runtime::Today());
}

void Now(const FunctionCall& call) {
    call.Return(runtime::Now());
}

void TimeNow(const FunctionCall& call) {
    call.Return(TimeOf(runtime::Now()));
}

// Seconds since midnight.
void Timer(const FunctionCall& call) {
    const double days = runtime::Now().days;
    call.ReturnNumber(SingleValue((days - std::floor(days)) * 86400));
}

template <int runtime::DateParts::*part>
void Part(const FunctionCall& call) {
    call.ReturnWhole(runtime::Split(call.DateAt(0)).*part);
}

void Weekday(const FunctionCall& call) {
    call.ReturnWhole(runtime::Weekday(call.DateAt(0), call.WeeksFrom(1).firstDay));
}

void DateAdd(const FunctionCall& call) {
    call.Return(runtime::DateAdd(call.Text(0), call.Number(1), call.DateAt(2)));
}

// DateDiff(interval, from, to [, first day of the week [, first week of the year]])
void DateDiff(const FunctionCall& call) {
    call.ReturnWhole(runtime::DateDiff(call.Text(0), call.DateAt(1), call.DateAt(2), call.WeeksFrom(3)));
}

// DatePart(interval, date [, first day of the week [, first week of the year]])
void DatePart(const FunctionCall& call) {
    call.ReturnWhole(runtime::DatePart(call.Text(0), call.DateAt(1), call.WeeksFrom(2)));
}

int Part32(long long value) {
    if (value < -1'000'000 || value > 1'000'000) {
        throw RunTimeError(runtime::kErrOverflow);
    }
    return static_cast<int>(value);
}

void DateSerial(const FunctionCall& call) {
    call.Return(runtime::DateSerial(Part32(call.Whole(0)), Part32(call.Whole(1)), Part32(call.Whole(2))));
}

void TimeSerial(const FunctionCall& call) {
    const double seconds = static_cast<double>(call.Whole(0)) * 3600 +
                           static_cast<double>(call.Whole(1)) * 60 + static_cast<double>(call.Whole(2));
    const double days = std::floor(seconds / 86400);
    const int rest = static_cast<int>(seconds - days * 86400);
    const Date time = runtime::MakeDate(1899, 12, 30, rest / 3600, rest / 60 % 60, rest % 60);
    call.Return(runtime::CDate(Variant(days + time.days)));
}

void DateValue(const FunctionCall& call) {
    call.Return(DayOf(runtime::CDate(call.Value(0))));
}

void TimeValue(const FunctionCall& call) {
    call.Return(TimeOf(runtime::CDate(call.Value(0))));
}

// MonthName(month [, abbreviated])
void MonthName(const FunctionCall& call) {
    const long long month = call.Whole(0);
    if (month < 1 || month > 12) {
        RaiseInvalidCall();
    }
    call.ReturnText(runtime::Format(runtime::MakeDate(2000, static_cast<int>(month), 1),
                                    call.Whole(1, 0) != 0 ? "mmm" : "mmmm"));
}

// WeekdayName(day [, abbreviated [, first day of the week]])
void WeekdayName(const FunctionCall& call) {
    const long long day = call.Whole(0);
    if (day < 1 || day > 7) {
        RaiseInvalidCall();
    }
    const Date any = runtime::MakeDate(2000, 1, 2);
    const auto daysOn = static_cast<int>(day) - runtime::Weekday(any, call.WeeksFrom(2).firstDay);
    const Date date{any.days + daysOn};
    call.ReturnText(runtime::Format(date, call.Whole(1, 0) != 0 ? "ddd" : "dddd"));
}

// What is told of the present moment holds for a whole statement.
constexpr FunctionEntry kEntries[] = {
    {"qy_today", 0, Today},
    {"qy_now", 0, Now},
    {"qy_timenow", 0, TimeNow},
    {"qy_timer", 0, Timer},
    {"qy_year", 1, Part<&runtime::DateParts::year>},
    {"qy_month", 1, Part<&runtime::DateParts::month>},
    {"qy_day", 1, Part<&runtime::DateParts::day>},
    {"qy_hour", 1, Part<&runtime::DateParts::hour>},
    {"qy_minute", 1, Part<&runtime::DateParts::minute>},
    {"qy_second", 1, Part<&runtime::DateParts::second>},
    {"qy_weekday", 1, Weekday},
    {"qy_weekday", 2, Weekday},
    {"qy_dateadd", 3, DateAdd},
    {"qy_datediff", 3, DateDiff},
    {"qy_datediff", 4, DateDiff},
    {"qy_datediff", 5, DateDiff},
    {"qy_datepart", 2, DatePart},
    {"qy_datepart", 3, DatePart},
    {"qy_datepart", 4, DatePart},
    {"qy_dateserial", 3, DateSerial},
    {"qy_timeserial", 3, TimeSerial},
    {"qy_datevalue", 2, DateValue},
    {"qy_timevalue", 2, TimeValue},
    {"qy_monthname", 1, MonthName},
    {"qy_monthname", 2, MonthName},
    {"qy_weekdayname", 1, WeekdayName},
    {"qy_weekdayname", 2, WeekdayName},
    {"qy_weekdayname", 3, WeekdayName},
};

} // namespace

void RegisterDateFunctions(sqlite3* connection) {
    RegisterEntries(connection, kEntries);
}

} // namespace quillary::database::sqlite
