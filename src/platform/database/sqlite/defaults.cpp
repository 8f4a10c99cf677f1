#include "platform/database/sqlite/defaults.h"

#include "platform/database/sqlite/cells.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/storage.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <charconv>
#include <cmath>

namespace quillary::database::sqlite {
namespace {

constexpr int kErrInvalidDefault = 3301;

struct Moment {
    std::string_view function;
    std::string_view sql;
    runtime::Date (*value)();
};

runtime::Date TimeOfNow() {
    const double days = runtime::Now().days;
    return {days - std::floor(days)};
}

constexpr Moment kMoments[] = {
    {"Now", "(replace(datetime('now', 'localtime'), ' 00:00:00', ''))", runtime::Now},
    {"Date", "(date('now', 'localtime'))", runtime::Today},
    {"Time", "(replace('1899-12-30 ' || time('now', 'localtime'), ' 00:00:00', ''))", TimeOfNow},
};

Variant LiteralOf(const jet_sql::Expr& expression) {
    if (const auto* literal = expression.As<jet_sql::Literal>()) {
        return literal->value;
    }
    if (const auto* minus = expression.As<jet_sql::Unary>();
        minus != nullptr && minus->op == jet_sql::UnaryOp::Negate) {
        const Variant value = LiteralOf(*minus->operand);
        if (const auto* whole = value.GetIf<std::int32_t>(); whole != nullptr && *whole != INT32_MIN) {
            return -*whole;
        }
        if (const auto* real = value.GetIf<double>()) {
            return -*real;
        }
    }
    Raise(kErrInvalidDefault, "The default value has to be a literal, Now(), Date() or Time().");
}

std::string Unquoted(std::string_view sql) {
    std::string text;
    for (std::size_t i = 1; i + 1 < sql.size(); ++i) {
        text += sql[i];
        i += sql[i] == '\'' ? 1 : 0;
    }
    return text;
}

} // namespace

std::string DefaultText(const jet_sql::Expr& expression, const FieldDef& field) {
    if (const auto* call = expression.As<jet_sql::Call>(); call != nullptr && call->args.empty()) {
        for (const auto& each : kMoments) {
            if (runtime::EqualName(each.function, call->name)) {
                return std::string(each.sql);
            }
        }
    }
    const Variant value = ConvertForField(LiteralOf(expression), field.type, field.size, field.name);
    return value.IsNull() ? std::string() : StoredLiteral(value, field.type);
}

Variant DescribedDefault(std::string_view sql, FieldType type) {
    for (const auto& each : kMoments) {
        if (each.sql == sql) {
            return std::string(each.function) + "()";
        }
    }
    return sql.empty() ? Variant() : DefaultOf(sql, type);
}

Variant DefaultOf(std::string_view sql, FieldType type) {
    if (sql.empty() || runtime::EqualName(sql, "NULL")) {
        return Variant::Null();
    }
    for (const auto& each : kMoments) {
        if (each.sql == sql) {
            return each.value();
        }
    }
    Cell cell{};
    std::string text;
    std::int64_t whole = 0;
    const char* const end = sql.data() + sql.size();
    if (sql.front() == '\'') {
        text = Unquoted(sql);
        cell.kind = CellKind::Text;
        cell.text = text.data();
        cell.length = static_cast<std::uint32_t>(text.size());
        return ReadCell(cell, type);
    }
    if (const auto read = std::from_chars(sql.data(), end, whole);
        read.ec == std::errc() && read.ptr == end) {
        cell.kind = CellKind::Whole;
        cell.whole = whole;
        return ReadCell(cell, type);
    }
    double real = 0;
    if (const auto read = std::from_chars(sql.data(), end, real); read.ec == std::errc() && read.ptr == end) {
        cell.kind = CellKind::Real;
        cell.real = real;
        return ReadCell(cell, type);
    }
    return Variant::Null(); // another program's expression: it shows once the row is written
}

} // namespace quillary::database::sqlite
