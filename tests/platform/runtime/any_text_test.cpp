#include "platform/runtime/conversions.h"
#include "platform/runtime/fixtures.h"
#include "platform/runtime/format.h"

#include <cmath>
#include <iterator>
#include <random>

namespace quillary::runtime {
namespace {

class AnyText : public RuntimeTest {};

// Whatever is typed or stored: an answer or a run-time error, and the answers agree with each other.
TEST_F(AnyText, EndsInAnAnswerOrAnError) {
    const std::string_view pieces[] = {
        "1",     "29",     "2007", "0",  "99999", "/",   "-",   ".",  ",",      ":",   " ",   "e",    "E+5",
        "d-3",   "&H",     "&O",   "F",  "(",     ")",   "$",   "am", "p.m.",   "Feb", "may", "\xC4", "é",
        "\t",    "\u202F", "'",    "\"", "\\",    "#",   "0.0", ";",  "%",      "@",   "&",   "yyyy", "ttttt",
        "AM/PM", "!",      "<",    "q",  "w",     "\0x", "c",   "_",  "\u20AC", "E-0", "de"};
    std::mt19937 random(5);
    const char* locales[] = {"en_NZ", "de_DE", "fr_FR", "sv_SE", "fi_FI", "ar_EG"};
    int numbers = 0;
    int dates = 0;
    for (int round = 0; round < 20'000; ++round) {
        SetLocale(locales[round % std::size(locales)]);
        std::string text;
        std::string picture;
        for (unsigned length = random() % 7; length > 0; --length) {
            text += pieces[random() % std::size(pieces)];
            picture += pieces[random() % std::size(pieces)];
        }
        SCOPED_TRACE(testing::Message() << '[' << text << "] [" << picture << "] " << CurrentLocale().name);
        const auto number = ParseNumber(text);
        const int numberError = ErrorOf([&] { EXPECT_EQ(CDbl(text), number); });
        EXPECT_EQ(number.has_value(), numberError == 0);
        EXPECT_TRUE(numberError == 0 || numberError == kErrTypeMismatch || numberError == kErrOverflow);
        const auto date = ParseDate(text);
        const int dateError = ErrorOf([&] { EXPECT_EQ(CDate(text), date); });
        EXPECT_EQ(dateError, date ? 0 : kErrTypeMismatch);
        if (date) {
            EXPECT_EQ(Shown(ParseDate(CStr(*date))), Shown(date));
        }
        if (number && std::abs(*number) < 1e14) {
            EXPECT_EQ(NumberText(ParseNumber(CStr(*number)).value_or(-1)), NumberText(*number));
        }
        ErrorOf([&] { Val(text); });
        ErrorOf([&] { CLng(text); });
        ErrorOf([&] { CCur(text); });
        for (const Variant& value :
             {Variant(text), Variant(-1234.5), Variant(MakeDate(2008, 8, 15)), Variant::Null()}) {
            ErrorOf([&] { Format(value, picture); });
        }
        EXPECT_TRUE(EqualText(text, text));
        numbers += number ? 1 : 0;
        dates += date ? 1 : 0;
    }
    EXPECT_GT(numbers, 200); // or the pieces prove nothing
    EXPECT_GT(dates, 30);
}

} // namespace
} // namespace quillary::runtime
