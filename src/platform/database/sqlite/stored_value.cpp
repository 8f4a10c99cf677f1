#include "platform/database/sqlite/stored_value.h"

#include "platform/database/sqlite/storage.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/run_time_error.h"

#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

std::string_view TextOf(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return text == nullptr ? std::string_view{}
                           : std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

std::int32_t WholeOf(sqlite3_value* value) {
    const sqlite3_int64 whole = sqlite3_value_int64(value);
    if (whole < INT32_MIN || whole > INT32_MAX) {
        throw runtime::RunTimeError(runtime::kErrOverflow);
    }
    return static_cast<std::int32_t>(whole);
}

} // namespace

double SingleValue(double value) {
    return StoredSingle(runtime::CSng(Variant(value)));
}

Variant FromStored(sqlite3_value* value, FieldType type) {
    if (sqlite3_value_type(value) == SQLITE_NULL) {
        return Variant::Null();
    }
    switch (type) {
    case FieldType::Boolean:
        return sqlite3_value_double(value) != 0;
    case FieldType::Byte:
    case FieldType::Integer:
    case FieldType::Long:
        return WholeOf(value);
    case FieldType::Currency:
        return runtime::Currency{sqlite3_value_int64(value)};
    case FieldType::Single:
        return static_cast<float>(sqlite3_value_double(value));
    case FieldType::Double:
        return sqlite3_value_double(value);
    case FieldType::Date:
        if (sqlite3_value_type(value) == SQLITE_TEXT) {
            return runtime::ParseIso(TextOf(value)).value_or(runtime::Date{});
        }
        return runtime::Date{sqlite3_value_double(value)};
    default:
        return TextOf(value);
    }
}

void ReturnStored(sqlite3_context* context, const Variant& value) {
    switch (value.Type()) {
    case runtime::VarType::Empty:
    case runtime::VarType::Null:
        sqlite3_result_null(context);
        break;
    case runtime::VarType::Boolean:
        sqlite3_result_int(context, value.Get<bool>() ? -1 : 0);
        break;
    case runtime::VarType::Integer:
        sqlite3_result_int(context, value.Get<std::int16_t>());
        break;
    case runtime::VarType::Long:
        sqlite3_result_int(context, value.Get<std::int32_t>());
        break;
    case runtime::VarType::Single:
        sqlite3_result_double(context, StoredSingle(value.Get<float>()));
        break;
    case runtime::VarType::Double:
        sqlite3_result_double(context, value.Get<double>());
        break;
    case runtime::VarType::Currency:
        sqlite3_result_int64(context, value.Get<runtime::Currency>().scaled);
        break;
    case runtime::VarType::Date: {
        const std::string text = runtime::IsoText(value.Get<runtime::Date>());
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        break;
    }
    case runtime::VarType::String: {
        const auto& text = value.Get<std::string>();
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        break;
    }
    }
}

} // namespace quillary::database::sqlite
