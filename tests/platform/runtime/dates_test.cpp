#include "platform/runtime/dates.h"

#include "platform/runtime/conversions.h"
#include "platform/runtime/fixtures.h"
#include "platform/runtime/format.h"

#include <unicode/locid.h>

namespace quillary::runtime {
namespace {

class Dates : public RuntimeTest {};

TEST_F(Dates, TextReadAsADate) {
    struct Case {
        const char* locale;
        const char* text;
        const char* expected; // "-": no date
    };
    const Case cases[] = {
        {"en_NZ", "1/7/2007", "2007-07-01"},
        {"en_NZ", "01/07/2007", "2007-07-01"},
        {"en_NZ", "1-7-07", "2007-07-01"},
        {"en_NZ", "1.7.2007", "2007-07-01"},
        {"en_NZ", " 1 7 2007 ", "2007-07-01"},
        {"en_NZ", "1 / 7 / 2007", "2007-07-01"},
        {"en_NZ", "2007-07-01", "2007-07-01"},
        {"en_NZ", "2007/7/1", "2007-07-01"},
        {"en_NZ", "1 July 2007", "2007-07-01"},
        {"en_NZ", "1 july 2007", "2007-07-01"},
        {"en_NZ", "July 1, 2007", "2007-07-01"},
        {"en_NZ", "1 Jul 07", "2007-07-01"},
        {"en_NZ", "1-Jul-07", "2007-07-01"},
        {"en_NZ", "1jul2007", "2007-07-01"},
        {"en_NZ", "2007 July 1", "2007-07-01"},
        {"en_NZ", "3 Sept. 2007", "2007-09-03"},
        {"en_NZ", "July 2007", "2007-07-01"},
        {"en_NZ", "7/2007", "2007-07-01"},
        {"en_NZ", "2007/7", "2007-07-01"},
        {"en_NZ", "1/7", "2008-07-01"},
        {"en_NZ", "1 July", "2008-07-01"},
        {"en_NZ", "July 1", "2008-07-01"},
        {"en_NZ", "7/25/2007", "2007-07-25"},
        {"en_NZ", "7/25", "2008-07-25"},
        {"en_NZ", "13/25", "-"},
        {"en_NZ", "13/13/2007", "-"},
        {"en_NZ", "30/2/2007", "-"},
        {"en_NZ", "29/2/2007", "-"},
        {"en_NZ", "29/2/2008", "2008-02-29"},
        {"en_NZ", "31 June 2007", "-"},
        {"en_NZ", "31/6/07", "-"},
        {"en_NZ", "1/7/29", "2029-07-01"},
        {"en_NZ", "1/7/30", "1930-07-01"},
        {"en_NZ", "1/7/00", "2000-07-01"},
        {"en_NZ", "1/7/99", "1999-07-01"},
        {"en_NZ", "1/7/100", "0100-07-01"},
        {"en_NZ", "1/7/099", "-"},
        {"en_NZ", "1/7/9999", "9999-07-01"},
        {"en_NZ", "1/7/10000", "-"},
        {"en_NZ", "0/7/2007", "-"},
        {"en_NZ", "1/7/2007 10:30", "2007-07-01 10:30:00"},
        {"en_NZ", "1/7/2007, 10:30:15 PM", "2007-07-01 22:30:15"},
        {"en_NZ", "10:30 pm 1 July 2007", "2007-07-01 22:30:00"},
        {"en_NZ", "1/7/2007 10.30 p.m.", "2007-07-01 22:30:00"},
        {"en_NZ", "1/7/1066 6:00", "1066-07-01 06:00:00"},
        {"en_NZ", "10:30 pm", "1899-12-30 22:30:00"},
        {"en_NZ", "10pm", "1899-12-30 22:00:00"},
        {"en_NZ", "12:30 am", "1899-12-30 00:30:00"},
        {"en_NZ", "12:30 pm", "1899-12-30 12:30:00"},
        {"en_NZ", "0:00", "1899-12-30"},
        {"en_NZ", "24:00", "-"},
        {"en_NZ", "13:00 pm", "-"},
        {"en_NZ", "10:60", "-"},
        {"en_NZ", "10:", "-"},
        {"en_NZ", "10:30:15:20", "-"},
        {"en_NZ", "10:30 1/7/2007 10:30", "-"},
        {"en_NZ", "", "-"},
        {"en_NZ", " ", "-"},
        {"en_NZ", "5", "-"},
        {"en_NZ", "2007", "-"},
        {"en_NZ", "20070701", "-"},
        {"en_NZ", "1.5", "-"},
        {"en_NZ", "1,5", "-"},
        {"en_NZ", "1,7,2007", "-"},
        {"en_NZ", "1 7", "-"},
        {"en_NZ", "1/7/2007x", "-"},
        {"en_NZ", "1/7/2007/", "-"},
        {"en_NZ", "/1/7/2007", "-"},
        {"en_NZ", "1//7/2007", "-"},
        {"en_NZ", "1/7/2007/5", "-"},
        {"en_NZ", "July", "-"},
        {"en_NZ", "July August 2007", "-"},
        {"en_NZ", "ju 2007", "-"},
        {"en_NZ", "abc", "-"},
        {"en_NZ", "(1/7/2007)", "-"},
        {"en_NZ", "Friday, 15 August 2008", "-"}, // a day of the week never counted as a date
        {"en_US", "1/7/2007", "2007-01-07"},
        {"en_US", "25/7/2007", "2007-07-25"},
        {"en_US", "1/7", "2008-01-07"},
        {"sv_SE", "07-06-05", "2007-06-05"},
        {"sv_SE", "5/6/2007", "2007-06-05"},
        {"de_DE", "01.07.2007", "2007-07-01"},
        {"de_DE", "1.7.", "2008-07-01"},
        {"de_DE", "1. M\u00E4rz 2007", "2007-03-01"},
        {"de_DE", "1. M\u00C4RZ 2007", "2007-03-01"},
        {"de_DE", "1 December 2007", "2007-12-01"},
        {"fr_FR", "1 ao\u00FBt 2007", "2007-08-01"},
        {"fr_FR", "14 juil. 2007", "2007-07-14"},
        {"fr_FR", "14 jui 2007", "-"}, // June or July
        {"es_ES", "1 de julio de 2007", "2007-07-01"},
        {"fi_FI", "1.7.2007 10.30", "2007-07-01 10:30:00"},
    };
    for (const Case& c : cases) {
        SetLocale(c.locale);
        EXPECT_EQ(Shown(ParseDate(c.text)), c.expected) << c.locale << " [" << c.text << "]";
    }
}

// What a locale writes as short date, it reads.
TEST_F(Dates, ShortDatesOfAllLocalesAreRead) {
    int32_t count = 0;
    const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
    ASSERT_GT(count, 100);
    for (int32_t i = 0; i < count; ++i) {
        SetLocale(locales[i].getName());
        for (const Date date : {MakeDate(2008, 8, 5), MakeDate(1931, 12, 31), MakeDate(2029, 2, 3)}) {
            EXPECT_EQ(Shown(ParseDate(ShortDate(date))), IsoText(date))
                << locales[i].getName() << ShortDate(date);
        }
    }
}

TEST_F(Dates, PartsAndBack) {
    EXPECT_EQ(MakeDate(2008, 8, 15).days, 39675);
    EXPECT_EQ(MakeDate(1899, 12, 31).days, 1);
    EXPECT_EQ(MakeDate(1899, 12, 29, 6).days, -1.25);
    EXPECT_EQ(IsoText(Date{-1.25}), "1899-12-29 06:00:00");
    EXPECT_EQ(IsoText(Date{39675.9999999}), "2008-08-16"); // the nearest second
    EXPECT_EQ(IsoText(Date{-1.9999999}), "1899-12-30");
    long days = -657434;
    for (int year = 100; year <= 9999; ++year) {
        for (int month = 1; month <= 12; ++month) {
            ASSERT_EQ(MakeDate(year, month, 1).days, static_cast<double>(days)) << year << '-' << month;
            days += DaysInMonth(year, month);
            const DateParts last = Split(Date{static_cast<double>(days - 1)});
            ASSERT_EQ(last.year * 10000 + last.month * 100 + last.day,
                      year * 10000 + month * 100 + DaysInMonth(year, month));
        }
    }
    EXPECT_EQ(days, 2958466);
    EXPECT_EQ(Weekday(MakeDate(2008, 8, 15)), 6);
    EXPECT_EQ(Weekday(Date{1}), 1);
    EXPECT_EQ(Weekday(Date{-6}), 1);
    EXPECT_EQ(ErrorOf([] { MakeDate(99, 1, 1); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { MakeDate(2007, 2, 29); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { MakeDate(2007, 1, 1, 24); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { Split(Date{3e6}); }), kErrInvalidProcedureCall);
}

TEST_F(Dates, Serials) {
    EXPECT_EQ(IsoText(DateSerial(2007, 13, 1)), "2008-01-01");
    EXPECT_EQ(IsoText(DateSerial(2007, 0, 1)), "2006-12-01");
    EXPECT_EQ(IsoText(DateSerial(2007, -11, 1)), "2006-01-01");
    EXPECT_EQ(IsoText(DateSerial(2008, 3, 0)), "2008-02-29");
    EXPECT_EQ(IsoText(DateSerial(2008, 1, 400)), "2009-02-03");
    EXPECT_EQ(IsoText(DateSerial(29, 1, 1)), "2029-01-01");
    EXPECT_EQ(IsoText(DateSerial(30, 1, 1)), "1930-01-01");
    EXPECT_EQ(ErrorOf([] { DateSerial(9999, 12, 32); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { DateSerial(-1, 1, 1); }), kErrInvalidProcedureCall);
}

TEST_F(Dates, IsoTexts) {
    for (const char* text : {"2008-08-15", "0100-01-01", "9999-12-31", "2008-02-29", "2008-08-15 14:05:09"}) {
        EXPECT_EQ(Shown(ParseIso(text)), text);
    }
    EXPECT_EQ(Shown(ParseIso("2008-08-15 00:00:00")), "2008-08-15");
    for (const char* text :
         {"", "2008-8-15", "2008-08-15 ", "2008-08-15 14:05", "2008-08-15T14:05:09", "0099-01-01",
          "2007-02-29", "2008-13-01", "2008-08-15 24:00:00", "2008-08-15 14:60:00"}) {
        EXPECT_FALSE(ParseIso(text)) << text;
    }
}

TEST_F(Dates, AddingAndCounting) {
    struct Added {
        const char* interval;
        double number;
        const char* from;
        const char* expected;
    };
    const Added added[] = {
        {"yyyy", 1, "2008-02-29", "2009-02-28"},
        {"q", -1, "2008-05-31", "2008-02-29"},
        {"m", 1, "2008-01-31", "2008-02-29"},
        {"M", -13, "2008-01-15", "2006-12-15"},
        {"d", 1, "2008-02-28 10:00:00", "2008-02-29 10:00:00"},
        {"y", 2.5, "2008-02-28", "2008-03-01"},
        {"w", 1, "2008-08-15", "2008-08-16"},
        {"ww", -1, "2008-08-15", "2008-08-08"},
        {"h", 30, "2008-08-15 20:00:00", "2008-08-17 02:00:00"},
        {"n", -1, "1899-12-30", "1899-12-29 23:59:00"},
        {"s", 86400, "1899-12-29 06:00:00", "1899-12-30 06:00:00"},
    };
    for (const Added& c : added) {
        EXPECT_EQ(IsoText(DateAdd(c.interval, c.number, *ParseIso(c.from))), c.expected)
            << c.interval << c.from;
    }
    EXPECT_EQ(ErrorOf([] { DateAdd("x", 1, Date{1}); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { DateAdd("d", 1, MakeDate(9999, 12, 31)); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { DateAdd("yyyy", 1e300, Date{1}); }), kErrInvalidProcedureCall);
    EXPECT_EQ(ErrorOf([] { DateAdd("s", 1e300, Date{1}); }), kErrInvalidProcedureCall);

    struct Counted {
        const char* interval;
        const char* from;
        const char* to;
        long expected;
    };
    const Counted counted[] = {
        {"yyyy", "2007-12-31", "2008-01-01", 1},
        {"q", "2007-12-31", "2008-04-01", 2},
        {"m", "2008-03-31", "2008-02-01", -1},
        {"d", "2008-08-14 23:59:00", "2008-08-15 00:01:00", 1},
        {"y", "2008-08-15", "2008-08-10", -5},
        {"w", "2008-08-15", "2008-08-28", 1},
        {"ww", "2008-08-16", "2008-08-17", 1}, // a Sunday came
        {"ww", "2008-08-17", "2008-08-23", 0},
        {"h", "2008-08-15 10:59:00", "2008-08-15 11:01:00", 1},
        {"n", "1899-12-29 23:59:30", "1899-12-30 00:01:00", 2},
        {"s", "2008-08-15", "2008-08-16", 86400},
    };
    for (const Counted& c : counted) {
        EXPECT_EQ(DateDiff(c.interval, *ParseIso(c.from), *ParseIso(c.to)), c.expected)
            << c.interval << c.from;
    }
    EXPECT_EQ(ErrorOf([] { DateDiff("", Date{1}, Date{2}); }), kErrInvalidProcedureCall);

    const Date moment = MakeDate(2008, 8, 15, 14, 5, 9);
    const std::pair<const char*, int> parts[] = {{"yyyy", 2008}, {"q", 3},   {"m", 8},  {"y", 228}, {"d", 15},
                                                 {"w", 6},       {"ww", 33}, {"h", 14}, {"n", 5},   {"s", 9}};
    for (const auto& [interval, expected] : parts) {
        EXPECT_EQ(DatePart(interval, moment), expected) << interval;
    }
    EXPECT_EQ(ErrorOf([] { DatePart("yy", Date{1}); }), kErrInvalidProcedureCall);
}

TEST_F(Dates, TheClock) {
    EXPECT_EQ(IsoText(Now()), "2008-08-15 14:30:00");
    EXPECT_EQ(IsoText(Today()), "2008-08-15");
    SetClock(nullptr);
    EXPECT_GT(Now().days, MakeDate(2020, 1, 1).days);
}

} // namespace
} // namespace quillary::runtime
