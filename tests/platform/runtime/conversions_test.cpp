#include "platform/runtime/conversions.h"

#include "platform/runtime/fixtures.h"

#include <limits>

namespace quillary::runtime {
namespace {

class Conversions : public RuntimeTest {};

std::string Number(std::string_view text) {
    const auto value = ParseNumber(text);
    return value ? NumberText(*value) : "-";
}

TEST_F(Conversions, TextReadAsANumber) {
    struct Case {
        const char* locale;
        const char* text;
        const char* expected; // "-": no number
    };
    const Case cases[] = {
        {"en_NZ", "", "-"},
        {"en_NZ", " ", "-"},
        {"en_NZ", "12", "12"},
        {"en_NZ", " \t12\r\n", "12"},
        {"en_NZ", "1,000", "1000"},
        {"en_NZ", "1,5", "15"},
        {"en_NZ", "1,2,3.4", "123.4"},
        {"en_NZ", ",5", "-"},
        {"en_NZ", "1.5,0", "-"},
        {"en_NZ", "1.2.3", "-"},
        {"en_NZ", ".", "-"},
        {"en_NZ", "5.", "5"},
        {"en_NZ", ".5", "0.5"},
        {"en_NZ", "-7", "-7"},
        {"en_NZ", "- 7", "-7"},
        {"en_NZ", "7-", "-7"},
        {"en_NZ", "+7", "7"},
        {"en_NZ", "7 +", "7"},
        {"en_NZ", "-7-", "-"},
        {"en_NZ", "--7", "-"},
        {"en_NZ", "-", "-"},
        {"en_NZ", "(7)", "-7"},
        {"en_NZ", "($7.50)", "-7.5"},
        {"en_NZ", "$(7)", "-7"},
        {"en_NZ", "(-7)", "-"},
        {"en_NZ", "(7", "-"},
        {"en_NZ", "7)", "-"},
        {"en_NZ", "()", "-"},
        {"en_NZ", "$1,234.50", "1234.5"},
        {"en_NZ", "-$5", "-5"},
        {"en_NZ", "$-5", "-5"},
        {"en_NZ", "5 $", "5"},
        {"en_NZ", "$5$", "-"},
        {"en_NZ", "$", "-"},
        {"en_NZ", "\u20AC5", "-"},
        {"en_NZ", "1e3", "1000"},
        {"en_NZ", "1D3", "1000"},
        {"en_NZ", "2.5E-3", "0.0025"},
        {"en_NZ", "1e+20", "1E+20"},
        {"en_NZ", "1e", "-"},
        {"en_NZ", "1e+", "-"},
        {"en_NZ", "1 e3", "-"},
        {"en_NZ", "e3", "-"},
        {"en_NZ", "1e308", "1E+308"},
        {"en_NZ", "1e309", "-"},
        {"en_NZ", "1e99999999999999999999", "-"},
        {"en_NZ", "0e99999999999999999999", "0"},
        {"en_NZ", "1e-400", "0"},
        {"en_NZ", "0.00000000000000000000000000000000000000000000000000000000000000000000000000001e78", "10"},
        {"en_NZ", "&H10", "16"},
        {"en_NZ", "&hff ", "255"},
        {"en_NZ", "&O17", "15"},
        {"en_NZ", "&HFFFF", "65535"},
        {"en_NZ", "&H", "-"},
        {"en_NZ", "&HG", "-"},
        {"en_NZ", "&O8", "-"},
        {"en_NZ", "&H11112222333344445", "-"},
        {"en_NZ", "12abc", "-"},
        {"en_NZ", "abc", "-"},
        {"en_NZ", "5%", "-"},
        {"en_NZ", "1 000", "-"},
        {"en_NZ", "1/7", "-"},
        {"en_NZ", "True", "-"},
        {"de_DE", "1.234,5", "1234.5"},
        {"de_DE", "1.5", "15"},
        {"de_DE", "12,50 \u20AC", "12.5"},
        {"de_CH", "1'234.5", "1234.5"},
        {"fr_FR", "1 234,5", "1234.5"},
        {"fr_FR", "1\u202F234\u00A0567,5 ", "1234567.5"},
        {"fr_FR", "1 ", "1"},
        {"fr_FR", "1.5", "-"},
    };
    for (const Case& c : cases) {
        SetLocale(c.locale);
        EXPECT_EQ(Number(c.text), c.expected) << c.locale << " [" << c.text << "]";
    }
}

TEST_F(Conversions, LeadingNumber) {
    struct Case {
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"", "0"},
        {"abc", "0"},
        {"12abc", "12"},
        {" 1 615 198th St", "1615198"},
        {"24 and 57", "24"},
        {"1,000", "1"},
        {"$5", "0"},
        {"-12.5kg", "-12.5"},
        {"- 3", "-3"},
        {"+3", "3"},
        {"--3", "0"},
        {"1.2.3", "1.2"},
        {".5", "0.5"},
        {".", "0"},
        {"5.", "5"},
        {"1e3x", "1000"},
        {"1d2", "100"},
        {"1e", "1"},
        {"1e+", "1"},
        {"e5", "0"},
        {"1 e 3", "1000"},
        {"1e-400", "0"},
        {"&H10", "16"},
        {"&HFFFF", "-1"},
        {"&HFFFF&", "65535"},
        {"&H10000", "65536"},
        {"&HFFFFFFFF", "-1"},
        {"&O17", "15"},
        {"&17", "15"},
        {"&", "0"},
        {"&H", "0"},
        {"(5)", "0"},
        {"12\t3\n4", "1234"},
        {"108", "108"},
        {"0.1", "0.1"},
        {"5%", "5"},
    };
    SetLocale("de_DE"); // the decimal sign is "." whatever the locale
    for (const Case& c : cases) {
        EXPECT_EQ(NumberText(Val(c.text)), c.expected) << c.text;
    }
    EXPECT_EQ(ErrorOf([] { Val("1e400"); }), kErrOverflow);
    EXPECT_EQ(ErrorOf([] { Val("&H100000000"); }), kErrOverflow);
}

TEST_F(Conversions, WholeNumbers) {
    struct Case {
        Variant value;
        long asInteger; // or the error's number, negative and below -1,000,000
        long asLong;
    };
    constexpr long kError = -1'000'000'000'000;
    const Case cases[] = {
        {Variant(), 0, 0},
        {true, -1, -1},
        {0.5, 0, 0},
        {1.5, 2, 2},
        {2.5, 2, 2},
        {-2.5, -2, -2},
        {-3.5, -4, -4},
        {3.5F, 4, 4},
        {Currency{25000}, 2, 2},
        {Currency{25001}, 3, 3},
        {Currency{-35000}, -4, -4},
        {32767.4, 32767, 32767},
        {32767.5, kError - 6, 32768},
        {-32768.5, -32768, -32768},
        {-32769, kError - 6, -32769},
        {2147483647.4, kError - 6, 2147483647},
        {2147483647.5, kError - 6, kError - 6},
        {-2147483648.5, kError - 6, -2147483648L},
        {std::numeric_limits<double>::quiet_NaN(), kError - 6, kError - 6},
        {1e300, kError - 6, kError - 6},
        {Currency{std::numeric_limits<std::int64_t>::min()}, kError - 6, kError - 6},
        {Date{-1.25}, -1, -1},
        {Date{39264.5}, kError - 6, 39264},
        {"2.5", 2, 2},
        {"1,000", 1000, 1000},
        {"(4)", -4, -4},
        {"&HFFFF", -1, 65535},
        {"&H10000", kError - 6, 65536},
        {"&HFFFFFFFF", kError - 6, -1},
        {"&H100000000", kError - 6, kError - 6},
        {"1e309", kError - 6, kError - 6},
        {"", kError - 13, kError - 13},
        {" ", kError - 13, kError - 13},
        {"12abc", kError - 13, kError - 13},
        {"True", kError - 13, kError - 13},
        {"1/7/2007", kError - 13, kError - 13},
        {Variant::Null(), kError - 94, kError - 94},
    };
    const auto result = [](auto convert, const Variant& value) -> long {
        long converted = 0;
        const int error = ErrorOf([&] { converted = convert(value); });
        return error == 0 ? converted : kError - error;
    };
    for (const Case& c : cases) {
        EXPECT_EQ(result(CInt, c.value), c.asInteger) << TextOf(c.value);
        EXPECT_EQ(result(CLng, c.value), c.asLong) << TextOf(c.value);
    }
}

TEST_F(Conversions, OtherNumbers) {
    EXPECT_EQ(CDbl(0.25F), 0.25);
    EXPECT_EQ(CDbl(Currency{-12345}), -1.2345);
    EXPECT_EQ(CDbl("$1,234.5"), 1234.5);
    EXPECT_EQ(CSng("0.105"), 0.105F);
    EXPECT_EQ(CDbl(Date{-1.25}), -1.25);
    EXPECT_EQ(ErrorOf([] { CSng(3.5e38); }), kErrOverflow);
    EXPECT_EQ(ErrorOf([] { CSng("x"); }), kErrTypeMismatch);
    EXPECT_EQ(ErrorOf([] { CDbl("1e309"); }), kErrOverflow);
    EXPECT_EQ(ErrorOf([] { CDbl(Variant::Null()); }), kErrInvalidUseOfNull);

    struct Case {
        Variant value;
        const char* expected; // the error's number after "!"
    };
    const Case cases[] = {
        {"12.34565", "12.3456"}, // an exact half goes to even
        {"12.34575", "12.3458"},
        {"12.345650000000000000000001", "12.3457"},
        {"-0.00005", "0"},
        {"0.00004", "0"},
        {"0.00006", "0.0001"},
        {"922337203685477.5807", "922337203685477.5807"},
        {"-922337203685477.5808", "-922337203685477.5808"},
        {"922337203685477.5808", "!6"},
        {"1e3", "1000"},
        {"&H10", "16"},
        {"&H7FFFFFFFFFFFFFFF", "!6"},
        {"abc", "!13"},
        {Variant::Null(), "!94"},
        {1e15, "!6"},
        {-1e300, "!6"},
        {0.105F, "0.105"},
        {true, "-1"},
        {Variant(), "0"},
    };
    for (const Case& c : cases) {
        std::string text;
        const int error = ErrorOf([&] { text = NumberText(CCur(c.value)); });
        EXPECT_EQ(error == 0 ? text : "!" + std::to_string(error), c.expected) << TextOf(c.value);
    }
}

TEST_F(Conversions, Truth) {
    for (const char* text : {"True", "tRUE ", "#TRUE#", "-1", "0.1", "&H1"}) {
        EXPECT_TRUE(CBool(text)) << text;
    }
    for (const char* text : {"False", "#false#", "0", "0.0", "$0"}) {
        EXPECT_FALSE(CBool(text)) << text;
    }
    EXPECT_TRUE(CBool(Currency{1}));
    EXPECT_TRUE(CBool(0.4));
    EXPECT_FALSE(CBool(Variant()));
    for (const char* text : {"", "Yes", "T"}) {
        EXPECT_EQ(ErrorOf([&] { CBool(text); }), kErrTypeMismatch) << text;
    }
    EXPECT_EQ(ErrorOf([] { CBool(Variant::Null()); }), kErrInvalidUseOfNull);
}

TEST_F(Conversions, TextOfValues) {
    struct Case {
        const char* locale;
        Variant value;
        const char* expected;
    };
    const Case cases[] = {
        {"en_NZ", Variant(), ""},
        {"en_NZ", Variant::Null(), ""},
        {"en_NZ", true, "True"},
        {"en_NZ", false, "False"},
        {"en_NZ", std::int16_t{-5}, "-5"},
        {"en_NZ", -2147483647 - 1, "-2147483648"},
        {"en_NZ", 1234.5, "1234.5"},
        {"en_NZ", -0.0, "0"},
        {"en_NZ", 0.1 + 0.2, "0.3"},
        {"en_NZ", 1.0 / 3, "0.333333333333333"},
        {"en_NZ", 999999999999999.0, "999999999999999"},
        {"en_NZ", 1e15, "1E+15"},
        {"en_NZ", -1e20, "-1E+20"},
        {"en_NZ", 1234567890123456.0, "1.23456789012346E+15"},
        {"en_NZ", 0.0001, "0.0001"},
        {"en_NZ", 0.00001, "1E-05"},
        {"en_NZ", 0.105F, "0.105"},
        {"en_NZ", 1234567.8F, "1234568"},
        {"en_NZ", 1e7F, "1E+07"},
        {"en_NZ", Currency{-15000}, "-1.5"},
        {"en_NZ", Currency{1}, "0.0001"},
        {"en_NZ", Currency{std::numeric_limits<std::int64_t>::min()}, "-922337203685477.5808"},
        {"en_NZ", MakeDate(2007, 7, 1), "1/07/2007"},
        {"en_NZ", MakeDate(2007, 7, 1, 0, 5, 9), "1/07/2007 12:05:09 am"},
        {"en_NZ", MakeDate(1899, 12, 30, 14, 5), "2:05:00 pm"},
        {"en_NZ", Date{0}, "12:00:00 am"},
        {"en_NZ", MakeDate(1066, 10, 14), "14/10/1066"},
        {"en_NZ", "x ", "x "},
        {"de_DE", 1234.5, "1234,5"},
        {"de_DE", 1.5e20, "1,5E+20"},
        {"de_DE", Currency{15000}, "1,5"},
        {"de_DE", MakeDate(2007, 7, 1, 14, 5), "01.07.2007 14:05:00"},
        {"en_US", MakeDate(2007, 7, 1), "7/1/2007"},
        {"sv_SE", MakeDate(2007, 7, 1), "2007-07-01"},
    };
    for (const Case& c : cases) {
        SetLocale(c.locale);
        EXPECT_EQ(TextOf(c.value), c.expected);
    }
    EXPECT_EQ(NumberText(1234.5), "1234.5"); // without the locale, which is still another
    EXPECT_EQ(ErrorOf([] { CStr(Variant::Null()); }), kErrInvalidUseOfNull);
}

TEST_F(Conversions, WhatIsANumberOrADate) {
    struct Case {
        Variant value;
        bool numeric;
        bool date;
    };
    const Case cases[] = {
        {Variant(), true, false},  {Variant::Null(), false, false},
        {true, true, false},       {std::int16_t{5}, true, false},
        {5.5, true, false},        {Currency{5}, true, false},
        {Date{5}, false, true},    {"5", true, false},
        {"1/7/2007", false, true}, {"1.5", true, false},
        {"", false, false},        {"abc", false, false},
        {"10:30 pm", false, true}, {"12abc", false, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IsNumeric(c.value), c.numeric) << TextOf(c.value);
        EXPECT_EQ(IsDate(c.value), c.date) << TextOf(c.value);
    }
}

TEST_F(Conversions, Dates) {
    EXPECT_EQ(CDate(39264), MakeDate(2007, 7, 1));
    EXPECT_EQ(CDate("1/7/2007"), MakeDate(2007, 7, 1));
    EXPECT_EQ(CDate(Variant()), Date{0});
    EXPECT_EQ(CDate(-657434), MakeDate(100, 1, 1));
    EXPECT_EQ(Shown(CDate(2958465.99)), "9999-12-31 23:45:36");
    for (const double days : {-657435.0, 2958466.0, 1e300}) {
        EXPECT_EQ(ErrorOf([&] { CDate(days); }), kErrOverflow) << days;
    }
    for (const char* text : {"", "abc", "30/2/2007", "5"}) {
        EXPECT_EQ(ErrorOf([&] { CDate(text); }), kErrTypeMismatch) << text;
    }
    EXPECT_EQ(ErrorOf([] { CDate(Variant::Null()); }), kErrInvalidUseOfNull);
}

TEST_F(Conversions, ToAnotherKind) {
    const Variant held("1.5");
    EXPECT_EQ(ConvertTo(held, VarType::Integer), Variant(std::int16_t{2}));
    EXPECT_EQ(ConvertTo(held, VarType::Long), Variant(2));
    EXPECT_EQ(ConvertTo(held, VarType::Single), Variant(1.5F));
    EXPECT_EQ(ConvertTo(held, VarType::Double), Variant(1.5));
    EXPECT_EQ(ConvertTo(held, VarType::Currency), Variant(Currency{15000}));
    EXPECT_EQ(ConvertTo(held, VarType::Boolean), Variant(true));
    EXPECT_EQ(ConvertTo(1.5, VarType::Date), Variant(Date{1.5}));
    EXPECT_EQ(ConvertTo(true, VarType::String), Variant("True"));
    EXPECT_TRUE(ConvertTo(Variant::Null(), VarType::Long).IsNull());
    EXPECT_TRUE(ConvertTo(Variant(), VarType::String).IsEmpty());
}

TEST_F(Conversions, Comparing) {
    struct Case {
        Variant left;
        Variant right;
        int expected; // 2: unknown
    };
    const Case cases[] = {
        {Variant::Null(), Variant::Null(), 2},
        {Variant::Null(), "", 2},
        {Variant(), 0, 0},
        {Variant(), "", 0},
        {true, -1, 0},
        {true, false, -1},
        {std::int16_t{3}, 2.5, 1},
        {0.105F, 0.105, 0}, // with a single's digits
        {0.105F, 0.1050001, -1},
        {1e300, 1.0F, 1},
        {Currency{10000}, 1.00004, 0}, // with a currency's digits
        {Currency{10000}, 1.0001, -1},
        {Currency{10000}, 1e300, -1},
        {Currency{9007199254740993}, Currency{9007199254740992}, 1},
        {MakeDate(2007, 7, 1), MakeDate(2007, 7, 1, 12), -1},
        {MakeDate(2007, 7, 1), 39264, 0},
        {"wool", "Wool ", 0},
        {"lambs", "Wool", -1},
        {"10", 9, -1}, // as texts
        {5, "5", 0},
        {true, "true", 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Compare(c.left, c.right).value_or(2), c.expected)
            << TextOf(c.left) << " : " << TextOf(c.right);
        const int turned = c.expected == 2 ? 2 : -c.expected;
        EXPECT_EQ(Compare(c.right, c.left).value_or(2), turned) << TextOf(c.right) << " : " << TextOf(c.left);
    }
}

} // namespace
} // namespace quillary::runtime
