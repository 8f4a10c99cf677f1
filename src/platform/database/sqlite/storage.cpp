#include "platform/database/sqlite/storage.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <charconv>
#include <limits>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

[[noreturn]] void RaiseWrongType(std::string_view fieldName) {
    Raise(kErrWrongType, "Data type conversion error in field '" + std::string(fieldName) + "'.");
}

Variant ByteOf(const Variant& value) {
    const std::int16_t number = runtime::CInt(value);
    if (number < 0 || number > 255) {
        throw runtime::RunTimeError(runtime::kErrOverflow);
    }
    return number;
}

Variant TextOf(const Variant& value, int size, std::string_view fieldName) {
    std::string text = runtime::CStr(value);
    // Bytes first: a text that has few enough of them has few enough characters.
    if (size > 0 && text.size() > static_cast<std::size_t>(size) &&
        runtime::CharCount(text) > static_cast<std::size_t>(size)) {
        Raise(kErrFieldTooSmall, "The field '" + std::string(fieldName) + "' is too small for the text: " +
                                     std::to_string(size) + " characters at most.");
    }
    return text;
}

Variant Convert(const Variant& value, FieldType type, int size, std::string_view fieldName) {
    switch (type) {
    case FieldType::Boolean:
        return runtime::CBool(value);
    case FieldType::Byte:
        return ByteOf(value);
    case FieldType::Integer:
        return runtime::CInt(value);
    case FieldType::Long:
        return runtime::CLng(value);
    case FieldType::Currency:
        return runtime::CCur(value);
    case FieldType::Single:
        return runtime::CSng(value);
    case FieldType::Double:
        return runtime::CDbl(value);
    case FieldType::Date:
        return runtime::CDate(value);
    case FieldType::Text:
        return TextOf(value, size, fieldName);
    default:
        return TextOf(value, 0, fieldName);
    }
}

void BindText(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void BindDate(sqlite3_stmt* statement, int index, runtime::Date date) {
    const std::string text = runtime::IsoText(date);
    sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

struct TypeName {
    std::string_view name;
    FieldType type;
};

// The first of a type is the word that the file is given.
constexpr TypeName kTypeNames[] = {
    {"BIT", FieldType::Boolean},       {"BOOLEAN", FieldType::Boolean},
    {"BOOL", FieldType::Boolean},      {"YESNO", FieldType::Boolean},
    {"BYTE", FieldType::Byte},         {"TINYINT", FieldType::Byte},
    {"SHORT", FieldType::Integer},     {"SMALLINT", FieldType::Integer},
    {"LONG", FieldType::Long},         {"INTEGER", FieldType::Long},
    {"INT", FieldType::Long},          {"MEDIUMINT", FieldType::Long},
    {"CURRENCY", FieldType::Currency}, {"SINGLE REAL", FieldType::Single},
    {"DOUBLE", FieldType::Double},     {"REAL", FieldType::Double},
    {"FLOAT", FieldType::Double},      {"NUMERIC", FieldType::Double},
    {"DECIMAL", FieldType::Double},    {"BIGINT", FieldType::Double},
    {"DATETIME", FieldType::Date},     {"DATE", FieldType::Date},
    {"TIMESTAMP", FieldType::Date},    {"BINARY", FieldType::Binary},
    {"VARBINARY", FieldType::Binary},  {"TEXT", FieldType::Text},
    {"VARCHAR", FieldType::Text},      {"CHAR", FieldType::Text},
    {"NVARCHAR", FieldType::Text},     {"LONGBINARY", FieldType::LongBinary},
    {"BLOB", FieldType::LongBinary},   {"LONGTEXT", FieldType::Memo},
    {"MEMO", FieldType::Memo},         {"CLOB", FieldType::Memo},
    {"GUID", FieldType::Guid},
};

int BytesOf(FieldType type) {
    switch (type) {
    case FieldType::Boolean:
    case FieldType::Byte:
        return 1;
    case FieldType::Integer:
        return 2;
    case FieldType::Long:
    case FieldType::Single:
        return 4;
    case FieldType::Currency:
    case FieldType::Double:
    case FieldType::Date:
        return 8;
    case FieldType::Guid:
        return 16;
    default:
        return 0;
    }
}

constexpr int kLongestText = 255;

} // namespace

Variant ConvertForField(const Variant& value, FieldType type, int size, std::string_view fieldName) {
    if (value.IsNull() || value.IsEmpty()) {
        return Variant::Null();
    }
    try {
        return Convert(value, type, size, fieldName);
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() == runtime::kErrTypeMismatch) {
            RaiseWrongType(fieldName);
        }
        throw;
    }
}

double StoredSingle(float value) {
    const std::string text = runtime::NumberText(value);
    double result = static_cast<double>(value);
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

void BindByKind(sqlite3_stmt* statement, int index, const Variant& value) {
    switch (value.Type()) {
    case runtime::VarType::Empty:
    case runtime::VarType::Null:
        sqlite3_bind_null(statement, index);
        break;
    case runtime::VarType::Boolean:
        sqlite3_bind_int(statement, index, value.Get<bool>() ? -1 : 0);
        break;
    case runtime::VarType::Integer:
        sqlite3_bind_int(statement, index, value.Get<std::int16_t>());
        break;
    case runtime::VarType::Long:
        sqlite3_bind_int(statement, index, value.Get<std::int32_t>());
        break;
    case runtime::VarType::Single:
        sqlite3_bind_double(statement, index, StoredSingle(value.Get<float>()));
        break;
    case runtime::VarType::Double:
        sqlite3_bind_double(statement, index, value.Get<double>());
        break;
    case runtime::VarType::Currency:
        sqlite3_bind_int64(statement, index, value.Get<runtime::Currency>().scaled);
        break;
    case runtime::VarType::Date:
        BindDate(statement, index, value.Get<runtime::Date>());
        break;
    case runtime::VarType::String:
        BindText(statement, index, value.Get<std::string>());
        break;
    }
}

void BindStored(sqlite3_stmt* statement, int index, const Variant& value, FieldType type) {
    const bool bytes = type == FieldType::Binary || type == FieldType::LongBinary;
    if (const auto* text = value.GetIf<std::string>(); text != nullptr && bytes) {
        sqlite3_bind_blob64(statement, index, text->data(), text->size(), SQLITE_STATIC);
    } else {
        BindByKind(statement, index, value);
    }
}

std::string StoredLiteral(const Variant& value, FieldType type) {
    switch (value.Type()) {
    case runtime::VarType::Boolean:
        return value.Get<bool>() ? "-1" : "0";
    case runtime::VarType::Integer:
        return std::to_string(value.Get<std::int16_t>());
    case runtime::VarType::Long:
        return std::to_string(value.Get<std::int32_t>());
    case runtime::VarType::Single:
        return RealLiteral(StoredSingle(value.Get<float>()));
    case runtime::VarType::Double:
        return RealLiteral(value.Get<double>());
    case runtime::VarType::Currency:
        return std::to_string(value.Get<runtime::Currency>().scaled);
    case runtime::VarType::Date:
        return TextLiteral(runtime::IsoText(value.Get<runtime::Date>()));
    case runtime::VarType::String:
        return TextLiteral(value.Get<std::string>());
    case runtime::VarType::Empty:
    case runtime::VarType::Null:
        break;
    }
    return type == FieldType::Boolean ? "0" : "NULL";
}

std::optional<runtime::Date> DateOfStored(std::string_view text) {
    return runtime::ParseIso(text);
}

std::string DeclaredType(const FieldDef& field) {
    std::string result;
    for (const auto& each : kTypeNames) {
        if (each.type == field.type) {
            result = each.name;
            break;
        }
    }
    if (field.size > 0 && (field.type == FieldType::Text || field.type == FieldType::Binary)) {
        result += "(" + std::to_string(field.size) + ")";
    }
    return result;
}

void SetDeclaredType(FieldDef& field, std::string_view declared) {
    const std::size_t bracket = declared.find('(');
    const std::string_view word = runtime::RTrim(declared.substr(0, bracket));
    int size = 0;
    if (bracket != std::string_view::npos) {
        const std::string_view number = runtime::LTrim(declared.substr(bracket + 1));
        std::from_chars(number.data(), number.data() + number.size(), size);
    }
    field.type = FieldType::Memo;
    for (const auto& each : kTypeNames) {
        if (runtime::EqualName(each.name, word)) {
            field.type = each.type;
            break;
        }
    }
    field.size = BytesOf(field.type);
    if (field.type == FieldType::Binary) {
        field.size = size;
    } else if (field.type == FieldType::Text) {
        // Other programs' texts have no limit, or a larger one.
        if (size > 0 && size <= kLongestText) {
            field.size = size;
        } else {
            field.type = FieldType::Memo;
        }
    }
}

} // namespace quillary::database::sqlite
