#include "platform/database/sqlite/sql_text.h"

#include "platform/runtime/locale.h"

#include <charconv>
#include <cmath>

namespace quillary::database::sqlite {
namespace {

std::string Enclosed(std::string_view text, char mark) {
    std::string result;
    result.reserve(text.size() + 2);
    result += mark;
    for (const char c : text) {
        if (c == mark) {
            result += mark;
        }
        result += c;
    }
    result += mark;
    return result;
}

} // namespace

std::string Quote(std::string_view name) {
    return Enclosed(name, '"');
}

std::string TextLiteral(std::string_view text) {
    if (text.find('\0') == std::string_view::npos) {
        return Enclosed(text, '\'');
    }
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string result = "CAST(x'";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        result += kDigits[byte >> 4];
        result += kDigits[byte & 15];
    }
    return result + "' AS TEXT)";
}

std::string RealLiteral(double value) {
    if (!std::isfinite(value)) {
        return value > 0 ? "9e999" : value < 0 ? "-9e999" : "NULL";
    }
    char buffer[40];
    char* const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    std::string result(buffer, end);
    if (result.find_first_of(".e") == std::string::npos) {
        result += ".0";
    }
    return result;
}

std::string_view RowIdName(const TableDef& table) {
    for (const std::string_view name : {"rowid", "_rowid_"}) {
        if (FindField(table, name) < 0) {
            return name;
        }
    }
    return "oid";
}

std::string RowId(const TableDef& table, std::string_view alias) {
    std::string result(alias);
    result += '.';
    result += RowIdName(table);
    return result;
}

int FindField(const TableDef& table, std::string_view name) {
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        if (runtime::EqualName(table.fields[i].name, name)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace quillary::database::sqlite
