#include "platform/runtime/format.h"

#include "platform/runtime/conversions.h"
#include "platform/runtime/fixtures.h"

namespace quillary::runtime {
namespace {

struct Case {
    Variant value;
    const char* format;
    const char* expected;
    const char* locale = "en_NZ";
};

class Formats : public RuntimeTest {
protected:
    template <std::size_t N>
    static void Check(const Case (&cases)[N]) {
        for (const Case& c : cases) {
            SetLocale(c.locale);
            EXPECT_EQ(Format(c.value, c.format), c.expected) << TextOf(c.value) << " as " << c.format;
        }
    }
};

TEST_F(Formats, NamedNumbers) {
    const Case cases[] = {
        {1234.5678, "General Number", "1234.5678"},
        {"1,234.50", "general number", "1234.5"},
        {MakeDate(2007, 7, 1), "General Number", "39264"},
        {1234.5678, "Currency", "$1,234.57"},
        {-1234.5678, "currency", "-$1,234.57"},
        {Currency{12345}, "Currency", "$1.23"},
        {1234.5678, "Fixed", "1234.57"},
        {".5", "FIXED", "0.50"},
        {-0.001, "Fixed", "0.00"},
        {1234567.891, "Standard", "1,234,567.89"},
        {0.125, "Percent", "12.50%"},
        {0.47, "Percent", "47.00%"},
        {1234.5678, "Scientific", "1.23E+03"},
        {0.000999999, "Scientific", "1.00E-03"},
        {0, "Scientific", "0.00E+00"},
        {true, "Yes/No", "Yes"},
        {0, "yes/no", "No"},
        {"False", "True/False", "False"},
        {"x", "On/Off", "x"},
        {2, "On/Off", "On"},
        {"abc", "Fixed", "abc"},
        {"", "Fixed", ""},
        {Variant::Null(), "Fixed", ""},
        {Variant(), "Currency", ""},
        {1234.5, "", "1234.5"},
        {1234.5678, "Currency", "1.234,57 \u20AC", "de_DE"},
        {1234.5678, "Standard", "1.234,57", "de_DE"},
        {1234.5678, "Currency", "$1,234.57", "en_US"},
        {-1234.5678, "Currency", "-\u00A31,234.57", "en_GB"},
        {1234.5678, "Currency", "\uFFE51,235", "ja_JP"},
    };
    Check(cases);
}

TEST_F(Formats, PicturesOfNumbers) {
    const Case cases[] = {
        {5, "0", "5"},
        {2.5, "0", "3"}, // a format rounds halves up, a conversion to even
        {-2.5, "0", "-3"},
        {1.005, "0.00", "1.01"},
        {0.125F, "0.00", "0.13"},
        {9.995, "0.00", "10.00"},
        {0.0049, "0.00", "0.00"},
        {-0.0049, "0.00", "0.00"},
        {5, "000", "005"},
        {5, "#.##", "5."},
        {0, "#", ""},
        {0.5, "#.##", ".5"},
        {5.25, ".00", "5.25"},
        {1.5, "0.0##", "1.5"},
        {1.23456, "0.0##", "1.235"},
        {1234567, "#,##0", "1,234,567"},
        {12, "#,##0", "12"},
        {1234567, "###,###,##0", "1,234,567"},
        {12, "0,000", "0,012"},
        {1e20, "#,##0", "100,000,000,000,000,000,000"},
        {1234567, "0,", "1235"},
        {1234567890, "#,##0,,", "1,235"},
        {0.4567, "#0.00%", "45.67%"},
        {12345.678, "0.00E+00", "1.23E+04"},
        {12345.678, "0.0E-0", "1.2E4"},
        {0.00012, "0.0e-00", "1.2e-04"},
        {99.99, "0.0E+0", "1.0E+2"},
        {5, "$0.00", "$5.00"},
        {-5, "$0.00", "-$5.00"},
        {-5, "0.00;(0.00)", "(5.00)"},
        {0, "0.00;(0.00);nil", "nil"},
        {-5, "0.0;;\\z", "-5.0"},
        {0, "0.0;;", "0.0"},
        {Variant::Null(), "0;0;0;\"none\"", "none"},
        {Variant::Null(), "0", ""},
        {5, "\"No; \"0", "No; 5"},
        {5, "0 \\k\\g", "5 kg"},
        {1234567, "(00) 000-00", "(12) 345-67"},
        {Currency{9223372036854775807}, "0.0000", "922337203685477.5807"},
        {"1,234.5", "0.00", "1234.50"},
        {"1/7/2007", "0", "39264"},
        {"abc", "0.00", "abc"},
        {true, "0", "-1"},
        {1234.5, "#,##0.00", "1.234,50", "de_DE"},
    };
    Check(cases);
}

TEST_F(Formats, Dates) {
    const Variant moment = MakeDate(2008, 8, 15, 14, 5, 9);
    const Variant day = MakeDate(2008, 8, 15);
    const Case cases[] = {
        {day, "Short Date", "15/08/2008"},
        {MakeDate(2007, 7, 1), "short date", "1/07/2007"},
        {"1 July 2007", "Short Date", "1/07/2007"},
        {39264, "Short Date", "1/07/2007"},
        {"39264", "Short Date", "1/07/2007"},
        {"99999999", "Short Date", "99999999"},
        {"not set", "Short Date", "not set"},
        {Variant::Null(), "Short Date", ""},
        {moment, "Long Date", "Friday, 15 August 2008"},
        {moment, "Medium Date", "15-Aug-08"},
        {moment, "General Date", "15/08/2008 2:05:09 pm"},
        {day, "General Date", "15/08/2008"},
        {moment, "Long Time", "2:05:09 pm"},
        {moment, "Medium Time", "02:05 pm"},
        {moment, "Short Time", "14:05"},
        {moment, "dd/mm/yyyy", "15/08/2008"},
        {moment, "mm/dd/yyyy", "08/15/2008"},
        {moment, "d-m-yy", "15-8-08"},
        {moment, "ddd dddd mmm mmmm", "Fri Friday Aug August"},
        {moment, "w ww q y", "6 33 3 228"},
        {moment, "hh:mm:ss", "14:05:09"},
        {moment, "h:n:s", "14:5:9"},
        {moment, "h:mm AM/PM", "2:05 PM"},
        {moment, "hh:nn a/p", "02:05 p"},
        {moment, "h AMPM", "2 pm"},
        {MakeDate(2008, 8, 15, 0, 5), "h:nn am/pm", "12:05 am"},
        {moment, "ddddd ttttt", "15/08/2008 2:05:09 pm"},
        {moment, "c", "15/08/2008 2:05:09 pm"},
        {moment, "yyyy\\y \"day\" d", "2008y day 15"},
        {MakeDate(2008, 9, 1), "d mmm", "1 Sep"},
        {day, "Short Date", "15.08.2008", "de_DE"},
        {day, "dd/mm/yyyy", "15.08.2008", "de_DE"},
        {day, "d mmmm", "15 August", "de_DE"},
        {day, "dddd", "vendredi", "fr_FR"},
        {day, "Long Date", "Freitag, 15. August 2008", "de_DE"},
        {day, "Short Date", "8/15/2008", "en_US"},
        {MakeDate(2008, 8, 5), "Short Date", "5.8.2008", "fi_FI"},
        {day, "Short Date", "15/8/2008", "th_TH"}, // Gregorian there too
        {day, "Short Date", "15/8/2008", "ar_EG"}, // and with plain digits
    };
    Check(cases);
    SetLocale("en_NZ");
    EXPECT_EQ(ErrorOf([] { Format(1e10, "Short Date"); }), kErrOverflow);
    EXPECT_EQ(ShortDate("1 jul 7"), "1/07/2007");
    EXPECT_EQ(ErrorOf([] { ShortDate("x"); }), kErrTypeMismatch);
    EXPECT_EQ(ErrorOf([] { ShortDate(Variant::Null()); }), kErrInvalidUseOfNull);
}

TEST_F(Formats, Texts) {
    const Case cases[] = {
        {"abc", "@@@@@", "  abc"},      {"abc", "!@@@@@", "abc  "},  {"abc", "&&&&&", "abc"},
        {"abcdef", "@@@", "abcdef"},    {"abc", "@-@", "ab-c"},      {"6421234", "(@@) @@@@", "(642) 1234"},
        {"abcd", "!@-@", "a-bcd"},      {"Wool", ">", "WOOL"},       {"M\u0101ori", ">", "M\u0100ORI"},
        {"M\u0101", "@@@", " M\u0101"}, {"Wool", "<\"x\"", "xwool"}, {"", "@;none", "none"},
        {"", "@\";\";none", "none"},    {5, "@@@", "  5"},
    };
    Check(cases);
}

} // namespace
} // namespace quillary::runtime
