#include "text/row_text.h"

#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <vector>

namespace quillary::tools {

using database::FieldType;
using runtime::Variant;
using runtime::VarType;

namespace {

constexpr std::size_t kRowsMeasured = 1000; // the widths of a table's columns follow from its first rows

// The value of a field as it is printed: bytes that are no text in hexadecimal digits.
Variant Printed(const database::Field& field) {
    Variant value = field.Value();
    const bool bytes = field.Type() == FieldType::Binary || field.Type() == FieldType::LongBinary;
    if (!bytes || value.Type() != VarType::String) {
        return value;
    }
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : value.Get<std::string>()) {
        text += kDigits[static_cast<unsigned char>(c) >> 4];
        text += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return Variant(std::move(text));
}

bool IsNumber(FieldType type) {
    switch (type) {
    case FieldType::Date:
    case FieldType::Text:
    case FieldType::Memo:
    case FieldType::Guid:
    case FieldType::Binary:
    case FieldType::LongBinary:
        return false;
    default:
        return true;
    }
}

std::string CellText(const Variant& value) {
    std::string text;
    for (char c : PlainText(value)) {
        switch (c) {
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        case '\t':
            text += "\\t";
            break;
        default:
            text += c;
        }
    }
    return text;
}

void PrintCell(std::ostream& out, const std::string& text, std::size_t width, bool right, bool last) {
    const std::size_t length = runtime::CharCount(text);
    const std::string blanks(width > length ? width - length : 0, ' ');
    if (right) {
        out << blanks << text;
    } else {
        out << text << (last ? "" : blanks);
    }
    out << (last ? "\n" : "  ");
}

} // namespace

std::string PlainText(const Variant& value) {
    switch (value.Type()) {
    case VarType::Empty:
    case VarType::Null:
        return "";
    case VarType::Boolean:
        return value.Get<bool>() ? "-1" : "0";
    case VarType::Integer:
        return std::to_string(value.Get<std::int16_t>());
    case VarType::Long:
        return std::to_string(value.Get<std::int32_t>());
    case VarType::Single:
        return runtime::NumberText(value.Get<float>());
    case VarType::Double:
        return runtime::NumberText(value.Get<double>());
    case VarType::Currency:
        return runtime::NumberText(value.Get<runtime::Currency>());
    case VarType::Date:
        return runtime::IsoText(value.Get<runtime::Date>());
    case VarType::String:
        return value.Get<std::string>();
    }
    return "";
}

std::string JsonText(const Variant& value) {
    if (value.IsEmpty() || value.IsNull()) {
        return "null";
    }
    std::string text = PlainText(value);
    if (value.Type() != VarType::String && value.Type() != VarType::Date) {
        return text;
    }
    std::string json = "\"";
    for (char c : text) {
        switch (c) {
        case '"':
            json += "\\\"";
            break;
        case '\\':
            json += "\\\\";
            break;
        case '\n':
            json += "\\n";
            break;
        case '\r':
            json += "\\r";
            break;
        case '\t':
            json += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
                json += escape;
            } else {
                json += c;
            }
        }
    }
    return json + "\"";
}

void PrintTable(database::Recordset& rows, std::ostream& out) {
    const int count = rows.FieldCount();
    std::vector<std::size_t> widths;
    std::vector<bool> right;
    for (int i = 0; i < count; ++i) {
        widths.push_back(runtime::CharCount(rows[i].Name()));
        right.push_back(IsNumber(rows[i].Type()));
    }
    std::vector<std::vector<std::string>> measured;
    const auto read = [&] {
        std::vector<std::string> row;
        row.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            row.push_back(CellText(Printed(rows[i])));
        }
        rows.MoveNext();
        return row;
    };
    while (!rows.EOF_() && measured.size() < kRowsMeasured) {
        measured.push_back(read());
        for (int i = 0; i < count; ++i) {
            widths[i] = std::max(widths[i], runtime::CharCount(measured.back()[i]));
        }
    }
    const auto print = [&](const std::vector<std::string>& row) {
        for (int i = 0; i < count; ++i) {
            PrintCell(out, row[i], widths[i], right[i], i == count - 1);
        }
    };
    std::vector<std::string> names, rules;
    for (int i = 0; i < count; ++i) {
        names.push_back(rows[i].Name());
        rules.emplace_back(widths[i], '-');
    }
    print(names);
    print(rules);
    for (const auto& row : measured) {
        print(row);
    }
    while (!rows.EOF_()) {
        print(read());
    }
}

void PrintJson(database::Recordset& rows, std::ostream& out) {
    const int count = rows.FieldCount();
    for (; !rows.EOF_(); rows.MoveNext()) {
        // Whole before it is printed: a value that cannot be worked out must not leave half a row.
        std::string line = "[";
        for (int i = 0; i < count; ++i) {
            line += i == 0 ? "" : ",";
            line += JsonText(Printed(rows[i]));
        }
        out << line << "]\n";
    }
}

} // namespace quillary::tools
