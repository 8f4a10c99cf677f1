#pragma once

#include "platform/runtime/variant.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillary::runtime {

// A moment on the calendar, taken apart. Years 100 to 9999.
struct DateParts {
    int year = 1899;
    int month = 12; // 1 to 12
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

Date MakeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
// DateSerial: months and days beyond their range carry over (month 13 is January of the next year).
Date DateSerial(int year, int month, int day);
DateParts Split(Date date);
// How weeks are counted: the day that they begin with, 1 Sunday to 7 Saturday, and which is a year's first:
// that of 1 January (1), the first with four days of the year (2), or the first whole one (3). 0, the
// system's, is the same as 1; anything else raises 5.
struct Weeks {
    int firstDay = 1;
    int firstWeek = 1;
};

// 1 for the first day of the week, as a rule Sunday, to 7.
int Weekday(Date date, int firstDay = 1);
int DaysInMonth(int year, int month);

// A date or time as a user types it under the regional settings: short and long forms, month names and
// their abbreviations, two-digit years (00 to 29 are 2000 to 2029), no year (the present one, by the
// clock given to SetClock), time alone (on day 0), day and month swapped where only that gives a date.
// nullopt when it is none.
std::optional<Date> ParseDate(std::string_view text);

// "2008-08-15", "2008-08-15 14:05:09" where there is a time, both ways. Another text gives nullopt.
std::string IsoText(Date date);
std::optional<Date> ParseIso(std::string_view text);

// DateAdd and DateDiff of the old run time. interval: yyyy q m y d w ww h n s; another one raises 5.
Date DateAdd(std::string_view interval, double number, Date date);
long DateDiff(std::string_view interval, Date from, Date to, Weeks weeks = {});
int DatePart(std::string_view interval, Date date, Weeks weeks = {});

// The present moment. The default clock is the system's; tests and the scenario driver set their own.
Date Now();
Date Today();
using Clock = Date (*)();
void SetClock(Clock clock); // nullptr: back to the system's

} // namespace quillary::runtime
