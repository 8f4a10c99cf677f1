#include "common/value_checks.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/services.h"

#include <algorithm>
#include <cmath>

namespace quillary::common {

using runtime::Variant;

namespace {

// Meant: the limits stand one place off from the numbers of the types.
double UpperLimit(int kind) {
    switch (kind) {
    case 3:
        return 32767;
    case 4:
        return 2147483647;
    case 5:
        return 922337203685471;
    case 6:
        return 3.4E+38;
    case 7:
        return 1.7E+308;
    default:
        return 0;
    }
}

} // namespace

Variant GetVal(const Variant& value, std::string_view kind) {
    try {
        if (!runtime::IsNumeric(value) || runtime::TextOf(value).empty())
            return std::int16_t{0};
        const std::string name = runtime::LCase(kind);
        if (name == "csng")
            return runtime::CSng(value);
        if (name == "ccur")
            return RoundCurrency(value);
        if (name == "cdbl")
            return runtime::CDbl(value);
        return runtime::CLng(value);
    } catch (const runtime::RunTimeError& error) {
        ReportError(error, "GetVal");
        return std::int16_t{0};
    }
}

bool OutOfRange(const Variant& value, int kind, bool allowNegative) {
    try {
        if (!runtime::IsNumeric(value))
            return true;
        const double number = runtime::CDbl(value);
        const double upper = UpperLimit(kind);
        return number < (allowNegative ? -upper : 0) || number > upper;
    } catch (const runtime::RunTimeError&) {
        return true; // beyond every range
    }
}

bool TooLong(Variant& value, int limit, bool required) {
    const std::string text = runtime::TextOf(value);
    if (text.empty()) {
        if (!required)
            value = "";
        return required;
    }
    if (runtime::CharCount(text) <= static_cast<std::size_t>(std::max(limit, 0)))
        return false;
    ShowMessage(Message(config::TranslateTokens("|0| is too long, please enter less than |1| characters",
                                                std::vector{text, std::to_string(limit)}),
                        "Entry Too Long"));
    return true;
}

std::string ReplaceApostrophes(std::string_view text) {
    std::string replaced(text);
    std::replace(replaced.begin(), replaced.end(), '\'', '`');
    return replaced;
}

runtime::Currency RoundCurrency(const Variant& value) {
    const std::string text(runtime::Trim(runtime::TextOf(value)));
    // To the 15 digits that a number shows: 0.575 times 100 is to be 57.5, not a trifle less.
    const double cents = runtime::CDbl(text) * 100;
    if (!std::isfinite(cents))
        throw runtime::RunTimeError(runtime::kErrOverflow);
    const double x = runtime::Val(runtime::NumberText(cents));
    const double sign = x > 0 ? 1 : x < 0 ? -1 : 0;
    double y = std::trunc(x + sign * 0.5);
    if (std::abs(y - x) == 0.5 && std::fmod(y, 2) != 0)
        y -= sign;
    return runtime::CCur(y / 100);
}

Variant NullToZero(const Variant& value) {
    return value.IsNull() ? Variant(std::int16_t{0}) : value;
}

void PressKey(int keyCode, bool down) {
    system::TheServices().keyboard->SendKey(keyCode, down);
}

} // namespace quillary::common
