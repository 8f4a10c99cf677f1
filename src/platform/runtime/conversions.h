#pragma once

#include "platform/runtime/variant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Conversions between kinds of values, as the old run time makes them. Halves go to even. Text is read
// under the regional settings of runtime::CurrentLocale() unless told otherwise. Raised: 13 (type
// mismatch) for text that is no number or date, 6 (overflow) beyond the kind's range, 94 (invalid use of
// Null) for Null. Empty counts as 0, "" or day 0.
namespace quillary::runtime {

bool CBool(const Variant& value);
std::int16_t CInt(const Variant& value);
std::int32_t CLng(const Variant& value);
float CSng(const Variant& value);
double CDbl(const Variant& value);
Currency CCur(const Variant& value);
Date CDate(const Variant& value);
// The text of a value: True/False, a single with 7 digits, a double with 15, a date in the local short
// form (with the time behind it where there is one), decimal sign by the locale.
std::string CStr(const Variant& value);

// CStr, but Null gives the empty text: what & does with a value.
std::string TextOf(const Variant& value);

// The value as another kind, by the function of that kind; Null and Empty stay what they are.
Variant ConvertTo(const Variant& value, VarType type);

// The number at the start of a text, always with "." as decimal sign: blanks, tabs and line feeds are
// skipped anywhere in it, &H and &O read hex and octal, reading stops at the first character that does
// not belong. "" and "abc" give 0. Never fails but for overflow (6).
double Val(std::string_view text);

// Whether the value is a number or a text that the regional settings read as one (signs before or
// behind, one currency sign, thousands separators, exponents with E or D, brackets for negatives, &H).
// A date is not; Empty is; Null is not.
bool IsNumeric(const Variant& value);
// Whether the value is a date or a text that CDate accepts.
bool IsDate(const Variant& value);

// Number of a text under the regional settings; nullopt when IsNumeric would be False.
std::optional<double> ParseNumber(std::string_view text);
std::optional<Currency> ParseCurrency(std::string_view text);

// Shortest text of a number with at most 7 (single) or 15 (double) digits, "." as decimal sign: for SQL,
// files and checks, where the locale must not show. Str() of the old run time without its leading blank.
std::string NumberText(double value);
std::string NumberText(float value);
std::string NumberText(Currency value);

// -1, 0 or 1: numbers by value (against a single or a currency value with its digits), dates by value, text
// by the locale's collation without case, text against number as text. Null with anything: nullopt (unknown).
std::optional<int> Compare(const Variant& left, const Variant& right);

// Rounds to a whole number, halves to even.
double RoundHalfEven(double value);

} // namespace quillary::runtime
