#pragma once

#include "platform/runtime/variant.h"

#include <string>
#include <string_view>

// Small checks and conversions of what users type.
namespace quillary::common {

// The value as a "csng", "ccur" (two decimals), "cdbl" or, for any other kind, a long. 0 (16 bits) for
// what is no number, for Null and for an empty text; also, with a report, for what the kind cannot hold.
runtime::Variant GetVal(const runtime::Variant& value, std::string_view kind);

// Kinds of OutOfRange; the limits are its own, see there.
inline constexpr int kRangeInteger = 3; // 16 bits
inline constexpr int kRangeWhole = 4;
inline constexpr int kRangeSingle = 6;
// True for what is no number, and for a number outside the kind's range, whose limits belong to it.
bool OutOfRange(const runtime::Variant& value, int kind, bool allowNegative = false);

// True when the entry is refused: too many characters, with a message, or empty though required, without
// one. An empty entry that is not required becomes "".
bool TooLong(runtime::Variant& value, int limit, bool required);

// Every apostrophe becomes a backtick: for names that go into SQL text.
std::string ReplaceApostrophes(std::string_view text);

// Two decimals, halves to even. 13 for what is no number, 6 for what a currency cannot hold.
runtime::Currency RoundCurrency(const runtime::Variant& value);

runtime::Variant NullToZero(const runtime::Variant& value);

// One key event to the system. keyCode: the old system's virtual key.
void PressKey(int keyCode, bool down);

} // namespace quillary::common
