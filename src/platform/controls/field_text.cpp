#include "platform/controls/field_text.h"

#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <cmath>
#include <limits>

namespace quillary::controls {

namespace {

using database::FieldType;
using runtime::Variant;

[[noreturn]] void WrongKind(const database::Field& field, const Variant& typed) {
    throw runtime::RunTimeError(database::kErrWrongType, "Controls",
                                "'" + runtime::TextOf(typed) + "' cannot be stored in '" + field.Name() +
                                    "'");
}

std::optional<bool> ParseBoolean(std::string_view text) {
    for (std::string_view word : {"True", "Yes", "On"})
        if (runtime::EqualName(text, word))
            return true;
    for (std::string_view word : {"False", "No", "Off"})
        if (runtime::EqualName(text, word))
            return false;
    if (std::optional<double> number = runtime::ParseNumber(text))
        return *number != 0;
    return std::nullopt;
}

bool IsText(FieldType type) {
    return type == FieldType::Text || type == FieldType::Memo || type == FieldType::Guid;
}

// The number of a typed value under the regional settings; nullopt where it is none.
std::optional<double> NumberOf(const Variant& typed) {
    if (const auto* text = typed.GetIf<std::string>())
        return runtime::ParseNumber(*text);
    return runtime::CDbl(typed);
}

template <class Whole>
std::optional<Whole> WholeWithin(std::optional<double> number, double low, double high) {
    if (!number)
        return std::nullopt;
    const double whole = runtime::RoundHalfEven(*number);
    if (!(whole >= low && whole <= high))
        return std::nullopt;
    return static_cast<Whole>(whole);
}

std::optional<Variant> Converted(FieldType type, const Variant& typed) {
    auto optional = [](const auto& value) -> std::optional<Variant> {
        if (!value)
            return std::nullopt;
        return Variant(*value);
    };
    const std::string* text = typed.GetIf<std::string>();
    switch (type) {
    case FieldType::Boolean:
        return text ? optional(ParseBoolean(runtime::Trim(*text))) : Variant(runtime::CBool(typed));
    case FieldType::Byte:
        return optional(WholeWithin<std::int16_t>(NumberOf(typed), 0, 255));
    case FieldType::Integer:
        return optional(WholeWithin<std::int16_t>(NumberOf(typed), -32768, 32767));
    case FieldType::Long:
        return optional(WholeWithin<std::int32_t>(NumberOf(typed), -2147483648.0, 2147483647.0));
    case FieldType::Single:
        if (std::optional<double> number = NumberOf(typed);
            number && std::abs(*number) <= std::numeric_limits<float>::max())
            return Variant(static_cast<float>(*number));
        return std::nullopt;
    case FieldType::Double:
        return optional(NumberOf(typed));
    case FieldType::Currency:
        return text ? optional(runtime::ParseCurrency(*text)) : Variant(runtime::CCur(typed));
    case FieldType::Date:
        return text ? optional(runtime::ParseDate(*text)) : Variant(runtime::CDate(typed));
    default:
        return typed;
    }
}

} // namespace

Variant FieldValue(const database::Field& field, const Variant& typed, bool zeroLength) {
    const FieldType type = field.Type();
    if (IsText(type)) {
        if (typed.IsNull())
            return typed;
        std::string text = runtime::TextOf(typed);
        return text.empty() && !zeroLength ? Variant::Null() : Variant(std::move(text));
    }
    const std::string* text = typed.GetIf<std::string>();
    if (typed.IsNull() || typed.IsEmpty() || (text && runtime::Trim(*text).empty()))
        return type == FieldType::Boolean ? Variant(false) : Variant::Null();
    std::optional<Variant> value;
    try {
        value = Converted(type, typed);
    } catch (const runtime::RunTimeError&) {
        // overflow, mismatch: told as one below
    }
    if (!value)
        WrongKind(field, typed);
    return *value;
}

} // namespace quillary::controls
