#include "platform/runtime/conversions.h"

#include "platform/runtime/dates.h"
#include "platform/runtime/format_parts.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/number_reading.h"
#include "platform/runtime/run_time_error.h"

#include <cmath>
#include <limits>

namespace quillary::runtime {
namespace {

constexpr double kFirstDay = -657434;    // 1 January 100
constexpr double kPastLastDay = 2958466; // the day after 31 December 9999

[[noreturn]] void Raise(int number) {
    throw RunTimeError(number);
}

double Checked(ReadStatus status, double value) {
    if (status != ReadStatus::Good) {
        Raise(status == ReadStatus::Overflow ? kErrOverflow : kErrTypeMismatch);
    }
    return value;
}

double NumberOfText(std::string_view text) {
    double value = 0;
    const ReadStatus status = ReadNumber(text).ToDouble(value);
    return Checked(status, value);
}

double CurrencyToDouble(Currency value) {
    return static_cast<double>(value.scaled) / 10000.0;
}

std::int64_t CurrencyToWhole(Currency value) {
    std::int64_t whole = value.scaled / 10000;
    const std::int64_t rest = std::abs(value.scaled % 10000);
    if (rest > 5000 || (rest == 5000 && whole % 2 != 0)) {
        whole += value.scaled < 0 ? -1 : 1;
    }
    return whole;
}

template <class Int>
Int WholeOf(double value) {
    const double whole = RoundHalfEven(value);
    // Written so that what is no number at all fails as well.
    if (!(whole >= std::numeric_limits<Int>::min() && whole <= std::numeric_limits<Int>::max())) {
        Raise(kErrOverflow);
    }
    return static_cast<Int>(whole);
}

template <class Int>
Int WholeOfText(std::string_view text) {
    const NumberReading reading = ReadNumber(text);
    // Hex and octal give the bits, the sign bit too: &HFFFF is -1 in 16 bits.
    if (reading.valid && reading.radix &&
        reading.bits <= std::numeric_limits<std::make_unsigned_t<Int>>::max()) {
        return static_cast<Int>(reading.bits);
    }
    double value = 0;
    const ReadStatus status = reading.ToDouble(value);
    return WholeOf<Int>(Checked(status, value));
}

template <class Int>
Int ToWhole(const Variant& value) {
    switch (value.Type()) {
    case VarType::Integer:
        return value.Get<std::int16_t>();
    case VarType::Long: {
        const std::int32_t held = value.Get<std::int32_t>();
        if (held < std::numeric_limits<Int>::min() || held > std::numeric_limits<Int>::max()) {
            Raise(kErrOverflow);
        }
        return static_cast<Int>(held);
    }
    case VarType::Currency:
        return WholeOf<Int>(static_cast<double>(CurrencyToWhole(value.Get<Currency>())));
    case VarType::String:
        return WholeOfText<Int>(value.Get<std::string>());
    default:
        return WholeOf<Int>(CDbl(value));
    }
}

template <class T>
int Order(T left, T right) {
    return left < right ? -1 : (right < left ? 1 : 0);
}

// A currency value against another number: the other becomes currency where it can.
std::optional<int> CompareAsCurrency(const Variant& left, const Variant& right) {
    const auto scaled = [](const Variant& value) -> std::optional<std::int64_t> {
        if (const auto* held = value.GetIf<Currency>()) {
            return held->scaled;
        }
        const double number = CDbl(value);
        if (std::fabs(number) > 9e14) {
            return std::nullopt;
        }
        return CCur(number).scaled;
    };
    const auto a = scaled(left);
    const auto b = scaled(right);
    if (!a || !b) {
        return std::nullopt;
    }
    return Order(*a, *b);
}

int CompareNumbers(const Variant& left, const Variant& right) {
    const VarType a = left.Type();
    const VarType b = right.Type();
    if (a == VarType::Currency || b == VarType::Currency) {
        if (const auto order = CompareAsCurrency(left, right)) {
            return *order;
        }
    }
    // A single meets a double with a single's digits: 0.1 kept as a single equals 0.1.
    const bool single =
        (a == VarType::Single && b == VarType::Double) || (a == VarType::Double && b == VarType::Single);
    const double x = CDbl(left);
    const double y = CDbl(right);
    if (single && std::fabs(x) <= std::numeric_limits<float>::max() &&
        std::fabs(y) <= std::numeric_limits<float>::max()) {
        return Order(static_cast<float>(x), static_cast<float>(y));
    }
    return Order(x, y);
}

} // namespace

bool CBool(const Variant& value) {
    switch (value.Type()) {
    case VarType::Boolean:
        return value.Get<bool>();
    case VarType::Currency:
        return value.Get<Currency>().scaled != 0;
    case VarType::String: {
        const std::string_view text = Trim(value.Get<std::string>());
        if (EqualName(text, "True") || EqualName(text, "#TRUE#")) {
            return true;
        }
        if (EqualName(text, "False") || EqualName(text, "#FALSE#")) {
            return false;
        }
        return NumberOfText(text) != 0;
    }
    default:
        return CDbl(value) != 0;
    }
}

std::int16_t CInt(const Variant& value) {
    return ToWhole<std::int16_t>(value);
}

std::int32_t CLng(const Variant& value) {
    return ToWhole<std::int32_t>(value);
}

float CSng(const Variant& value) {
    if (const auto* held = value.GetIf<float>()) {
        return *held;
    }
    const double number = CDbl(value);
    const auto single = static_cast<float>(number);
    if (std::isinf(single)) {
        Raise(kErrOverflow);
    }
    return single;
}

double CDbl(const Variant& value) {
    switch (value.Type()) {
    case VarType::Empty:
        return 0;
    case VarType::Boolean:
        return value.Get<bool>() ? -1 : 0;
    case VarType::Integer:
        return value.Get<std::int16_t>();
    case VarType::Long:
        return value.Get<std::int32_t>();
    case VarType::Single:
        return static_cast<double>(value.Get<float>());
    case VarType::Double:
        return value.Get<double>();
    case VarType::Currency:
        return CurrencyToDouble(value.Get<Currency>());
    case VarType::Date:
        return value.Get<Date>().days;
    case VarType::String:
        return NumberOfText(value.Get<std::string>());
    case VarType::Null:
        break;
    }
    Raise(kErrInvalidUseOfNull);
}

Currency CCur(const Variant& value) {
    if (const auto* held = value.GetIf<Currency>()) {
        return *held;
    }
    Currency result;
    if (const auto* text = value.GetIf<std::string>()) {
        const ReadStatus status = ReadNumber(*text).ToCurrency(result.scaled);
        Checked(status, 0);
        return result;
    }
    const double number = CDbl(value);
    const double scaled = number * 10000.0;
    constexpr double kLimit = 9223372036854775808.0;
    if (!(scaled >= -kLimit && scaled < kLimit)) {
        Raise(kErrOverflow);
    }
    constexpr double kExact = 4503599627370496.0; // beyond it the product has no place for a fraction
    if (std::abs(scaled) < kExact) {
        result.scaled = static_cast<std::int64_t>(RoundHalfEven(scaled));
    } else {
        const double whole = std::trunc(number);
        result.scaled = static_cast<std::int64_t>(whole) * 10000 +
                        static_cast<std::int64_t>(RoundHalfEven((number - whole) * 10000.0));
    }
    return result;
}

Date CDate(const Variant& value) {
    if (const auto* held = value.GetIf<Date>()) {
        return *held;
    }
    if (const auto* text = value.GetIf<std::string>()) {
        const auto date = ParseDate(*text);
        if (!date) {
            Raise(kErrTypeMismatch);
        }
        return *date;
    }
    const auto date = DateOfDays(CDbl(value));
    if (!date) {
        Raise(kErrOverflow);
    }
    return *date;
}

std::string CStr(const Variant& value) {
    switch (value.Type()) {
    case VarType::Empty:
        return {};
    case VarType::Null:
        break;
    case VarType::Boolean:
        return value.Get<bool>() ? "True" : "False";
    case VarType::Integer:
        return std::to_string(value.Get<std::int16_t>());
    case VarType::Long:
        return std::to_string(value.Get<std::int32_t>());
    case VarType::Single:
        return WithLocalDecimal(NumberText(value.Get<float>()));
    case VarType::Double:
        return WithLocalDecimal(NumberText(value.Get<double>()));
    case VarType::Currency:
        return WithLocalDecimal(NumberText(value.Get<Currency>()));
    case VarType::Date:
        return GeneralDate(value.Get<Date>());
    case VarType::String:
        return value.Get<std::string>();
    }
    Raise(kErrInvalidUseOfNull);
}

std::string TextOf(const Variant& value) {
    return value.IsNull() ? std::string() : CStr(value);
}

Variant ConvertTo(const Variant& value, VarType type) {
    if (value.IsNull() || value.IsEmpty() || value.Type() == type) {
        return value;
    }
    switch (type) {
    case VarType::Empty:
        return {};
    case VarType::Null:
        return Variant::Null();
    case VarType::Boolean:
        return CBool(value);
    case VarType::Integer:
        return CInt(value);
    case VarType::Long:
        return CLng(value);
    case VarType::Single:
        return CSng(value);
    case VarType::Double:
        return CDbl(value);
    case VarType::Currency:
        return CCur(value);
    case VarType::Date:
        return CDate(value);
    case VarType::String:
        return CStr(value);
    }
    Raise(kErrTypeMismatch);
}

bool IsNumeric(const Variant& value) {
    switch (value.Type()) {
    case VarType::Null:
    case VarType::Date:
        return false;
    case VarType::String:
        return ParseNumber(value.Get<std::string>()).has_value();
    default:
        return true;
    }
}

bool IsDate(const Variant& value) {
    if (const auto* text = value.GetIf<std::string>()) {
        return ParseDate(*text).has_value();
    }
    return value.Type() == VarType::Date;
}

std::optional<int> Compare(const Variant& left, const Variant& right) {
    if (left.IsNull() || right.IsNull()) {
        return std::nullopt;
    }
    if (left.IsString() || right.IsString()) {
        const auto* a = left.GetIf<std::string>();
        const auto* b = right.GetIf<std::string>();
        return CompareText(a != nullptr ? std::string_view(*a) : std::string_view(CStr(left)),
                           b != nullptr ? std::string_view(*b) : std::string_view(CStr(right)));
    }
    return CompareNumbers(left, right);
}

} // namespace quillary::runtime
