#include "platform/runtime/locale.h"

#include "platform/runtime/fixtures.h"
#include "platform/runtime/format.h"
#include "platform/runtime/locale_details.h"

#include <unicode/decimfmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/ucol.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace quillary::runtime {
namespace {

class Locales : public RuntimeTest {};

// The collator itself, which the fast way must follow.
int CollatorOrder(const std::string& left, const std::string& right) {
    static const std::unique_ptr<UCollator, decltype(&ucol_close)> collator = [] {
        UErrorCode code = U_ZERO_ERROR;
        UCollator* opened = ucol_open("root", &code);
        ucol_setStrength(opened, UCOL_SECONDARY);
        ucol_setAttribute(opened, UCOL_NORMALIZATION_MODE, UCOL_ON, &code);
        return std::unique_ptr<UCollator, decltype(&ucol_close)>(opened, ucol_close);
    }();
    const auto a = icu::UnicodeString::fromUTF8(left);
    const auto b = icu::UnicodeString::fromUTF8(right);
    return ucol_strcoll(collator.get(), a.getBuffer(), a.length(), b.getBuffer(), b.length());
}

std::string Stripped(std::string_view text) {
    std::string result(RTrim(text));
    std::erase_if(result, [](char c) { return c == '-' || c == '\''; });
    return result;
}

TEST_F(Locales, PlainLettersFollowTheCollator) {
    for (char a = 1; a > 0 && a < 127; ++a) {
        for (char b = 1; b > 0 && b < 127; ++b) {
            const std::string left = std::string("x") + a + "y";
            const std::string right = std::string("x") + b + "y";
            if (Stripped(left) == left && Stripped(right) == right) {
                ASSERT_EQ(CompareText(left, right), CollatorOrder(left, right)) << int{a} << ' ' << int{b};
            }
        }
    }
}

// Random texts of plain and other letters: the collator's order, one order for any three, and a key that
// is equal exactly for equal texts.
TEST_F(Locales, MixedTextsHaveOneOrder) {
    const std::string letters[] = {"a",      "A",       "b",      "l",      "s",      "ss",     "1",
                                   " ",      "-",       "'",      "$",      "_",      "\x01",   "\u00E9",
                                   "e",      "e\u0301", "\u0301", "\u0101", "\u00DF", "\u00B7", "\u00AD",
                                   "\u2019", "\u00C6",  "ae",     "\uFF21", "\u0416", "\u4E2D", "\U0001F411"};
    std::mt19937 random(20080815);
    std::vector<std::string> texts = {"", "-", "co-op", "coop", "coo-p", "co'op"};
    while (texts.size() < 200) {
        std::string text;
        for (unsigned length = random() % 5; length > 0; --length) {
            text += letters[random() % std::size(letters)];
        }
        texts.push_back(text);
    }
    const std::size_t count = texts.size();
    std::vector<int> order(count * count);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            const int got = order[i * count + j] = CompareText(texts[i], texts[j]);
            const int expected = CollatorOrder(Stripped(texts[i]), Stripped(texts[j]));
            if (expected != 0) {
                ASSERT_EQ(got, expected) << texts[i] << '|' << texts[j];
            }
            ASSERT_EQ(got == 0, FoldText(texts[i]) == FoldText(texts[j])) << texts[i] << '|' << texts[j];
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            ASSERT_EQ(order[i * count + j], -order[j * count + i]) << texts[i] << '|' << texts[j];
            for (std::size_t k = 0; k < count; ++k) {
                if (order[i * count + j] <= 0 && order[j * count + k] <= 0) {
                    ASSERT_LE(order[i * count + k], 0) << texts[i] << '|' << texts[j] << '|' << texts[k];
                }
            }
        }
    }
}

TEST_F(Locales, TextOrder) {
    // Each is less than the next one; those within one line are equal.
    const std::vector<std::vector<const char*>> rising = {
        {"", " ", "\x01"},
        {"'"},
        {"-"},
        {"_x"},
        {"(x)"},
        {"$5"},
        {"10"},
        {"9"},
        {"coop", "COOP", "Coop   ", "co\u00ADop"},
        {"c-oop"},
        {"co'op"},
        {"co-op", "CO-OP "},
        {"co-o-p"},
        {"coops"},
        {"Maori", "MAORI"},
        {"M\u0101ori", "m\u0100ori", "ma\u0304ori"},
        {"Maoris"},
        {"we'll"},
        {"Wells"},
        {"wool"},
        {"wool  x"},
        {"wool x"},
        {"Zebra"},
        {"\u00E9t\u00E9", "e\u0301te\u0301", "\u00C9T\u00C9"},
    };
    std::vector<std::vector<const char*>> lines = rising;
    lines.pop_back(); // with its e it stands elsewhere
    for (std::size_t i = 0; i < rising.size(); ++i) {
        for (const char* left : rising[i]) {
            for (const char* right : rising[i]) {
                EXPECT_TRUE(EqualText(left, right)) << left << '|' << right;
            }
            if (i + 1 < lines.size()) {
                EXPECT_EQ(CompareText(left, lines[i + 1].front()), -1) << left << '|' << lines[i + 1].front();
                EXPECT_EQ(CompareText(lines[i + 1].front(), left), 1) << left << '|' << lines[i + 1].front();
            }
        }
    }
    EXPECT_FALSE(EqualText("resume", "r\u00E9sum\u00E9"));
    EXPECT_NE(CompareText("\xFF\xFE", "a"), 0); // broken bytes have a place, too
}

std::string IcuPattern(icu::DateFormat* format) {
    const std::unique_ptr<icu::DateFormat> owner(format);
    icu::UnicodeString pattern;
    dynamic_cast<icu::SimpleDateFormat&>(*format).toPattern(pattern);
    std::string text;
    return pattern.findAndReplace(u"\u202F", u" ").toUTF8String(text);
}

// Home's settings are written down in the program, to spare the start ICU's data.
TEST_F(Locales, HomeIsAsIcuHasIt) {
    using icu::DateFormat;
    const icu::Locale home("en_NZ");
    const RegionalSettings& settings = CurrentLocale();
    std::string shortDate = settings.shortDate;
    EXPECT_EQ(shortDate.erase(shortDate.find("yy"), 2),
              IcuPattern(DateFormat::createDateInstance(DateFormat::kShort, home)));
    EXPECT_EQ(settings.longDate, IcuPattern(DateFormat::createDateInstance(DateFormat::kFull, home)));
    EXPECT_EQ(CurrentDetails().longTime,
              IcuPattern(DateFormat::createTimeInstance(DateFormat::kMedium, home)));
    UErrorCode code = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> currency(icu::NumberFormat::createCurrencyInstance(home, code));
    const std::unique_ptr<icu::SimpleDateFormat> words(
        new icu::SimpleDateFormat("EEEE EEE MMMM a", home, code));
    ASSERT_TRUE(U_SUCCESS(code));
    words->setTimeZone(*icu::TimeZone::getGMT());
    for (const double number : {1234.5, -0.25}) {
        icu::UnicodeString shown;
        std::string text;
        EXPECT_EQ(Format(number, "Currency"), currency->format(number, shown).toUTF8String(text));
    }
    for (int month = 1; month <= 12; ++month) {
        const Date date = MakeDate(2008, month, month, month * 2 - 1);
        icu::UnicodeString shown;
        std::string text;
        words->format((date.days - 25569) * 86'400'000.0, shown).toUTF8String(text);
        EXPECT_EQ(Format(date, "dddd ddd mmmm AMPM"), text);
    }
}

TEST_F(Locales, Settings) {
    struct Case {
        const char* asked;
        const char* name;
        char32_t decimal;
        char32_t group;
        const char* currency;
        const char* shortDate;
        const char* dateSeparator;
        const char* timeSeparator;
        int dateOrder;
    };
    const Case cases[] = {
        {"en_NZ", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"en-NZ", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"C", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"C.UTF-8", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"xx_YY", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"../../etc", "en_NZ", U'.', U',', "$", "d/MM/yyyy", "/", ":", 1},
        {"en_AU.UTF-8", "en_AU", U'.', U',', "$", "d/M/yyyy", "/", ":", 1},
        {"en_US", "en_US", U'.', U',', "$", "M/d/yyyy", "/", ":", 0},
        {"de_DE.UTF-8@euro", "de_DE", U',', U'.', "\u20AC", "dd.MM.yyyy", ".", ":", 1},
        {"de", "de_DE", U',', U'.', "\u20AC", "dd.MM.yyyy", ".", ":", 1},
        {"de_XX", "de_DE", U',', U'.', "\u20AC", "dd.MM.yyyy", ".", ":", 1},
        {"sv_SE", "sv_SE", U',', U'\u00A0', "kr", "yyyy-MM-dd", "-", ":", 2},
        {"fi_FI", "fi_FI", U',', U'\u00A0', "\u20AC", "d.M.yyyy", ".", ".", 1},
        {"zh_CN", "zh_Hans_CN", U'.', U',', "\u00A5", "yyyy/M/d", "/", ":", 2},
    };
    for (const Case& c : cases) {
        SetLocale(c.asked);
        const RegionalSettings& s = CurrentLocale();
        EXPECT_EQ(s.name, c.name) << c.asked;
        EXPECT_EQ(s.decimal, c.decimal) << c.asked;
        EXPECT_EQ(s.group, c.group) << c.asked;
        EXPECT_EQ(s.currencySymbol, c.currency) << c.asked;
        EXPECT_EQ(s.shortDate, c.shortDate) << c.asked;
        EXPECT_EQ(s.dateSeparator, c.dateSeparator) << c.asked;
        EXPECT_EQ(s.timeSeparator, c.timeSeparator) << c.asked;
        EXPECT_EQ(s.dateOrder, c.dateOrder) << c.asked;
    }
}

TEST_F(Locales, Characters) {
    const std::string_view text = "M\u0101\u4E2D\U0001F411x"; // 1, 2, 3, 4 and 1 bytes
    EXPECT_EQ(CharCount(text), 5U);
    EXPECT_EQ(LeftChars(text, 2), "M\u0101");
    EXPECT_EQ(LeftChars(text, 9), text);
    EXPECT_EQ(LeftChars(text, 0), "");
    EXPECT_EQ(RightChars(text, 2), "\U0001F411x");
    EXPECT_EQ(RightChars(text, 5), text);
    EXPECT_EQ(RightChars(text, 0), "");
    EXPECT_EQ(MidChars(text, 2, 2), "\u0101\u4E2D");
    EXPECT_EQ(MidChars(text, 4), "\U0001F411x");
    EXPECT_EQ(MidChars(text, 6), "");
    EXPECT_EQ(MidChars(text, 0, 1), "M");
    EXPECT_EQ(UCase("m\u0101ori \u00DF z"), "M\u0100ORI \u00DF Z");
    EXPECT_EQ(LCase("M\u0100ORI Z"), "m\u0101ori z");
    EXPECT_EQ(UCase("a\xFF\u0101"), "A\xFF\u0100");
    EXPECT_EQ(Trim("  a b \t "), "a b \t");
    EXPECT_EQ(LTrim("   "), "");
    EXPECT_EQ(RTrim(""), "");
    EXPECT_TRUE(EqualName("Farm Name", "FARM name"));
    EXPECT_FALSE(EqualName("Farm", "Farms"));
    EXPECT_FALSE(EqualName("[", "{"));
    EXPECT_FALSE(EqualName("\u0101", "\u0100"));
}

TEST_F(Locales, ErrorTexts) {
    EXPECT_EQ(RunTimeError(94).Description(), "Invalid use of Null");
    EXPECT_EQ(RunTimeError(94).Source(), "QYSettings");
    EXPECT_EQ(ErrorText(6), "Overflow");
    EXPECT_EQ(ErrorText(4711), "Application-defined or object-defined error");
    EXPECT_EQ(ErrorText(482), "Printer error");
}

} // namespace
} // namespace quillary::runtime
