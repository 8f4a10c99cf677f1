#include "platform/database/sqlite/conversion_writer.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/stored_value.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quillary::database::sqlite {
namespace {

using runtime::VarType;

std::string Call(std::string_view function, std::string_view argument) {
    std::string sql(function);
    sql += '(';
    sql += argument;
    sql += ')';
    return sql;
}

std::string TypeCode(FieldType type) {
    return std::to_string(static_cast<int>(type));
}

// The range of a whole type.
std::pair<double, double> RangeOf(FieldType type) {
    switch (type) {
    case FieldType::Byte:
        return {0, 255};
    case FieldType::Integer:
        return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    default:
        return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    }
}

// Whether a value of one type is stored in a field of the other as it is.
bool FitsAsIs(FieldType from, FieldType to) {
    if (from == to) {
        return true;
    }
    switch (to) {
    case FieldType::Long:
    case FieldType::Integer:
    case FieldType::Byte:
        return IsWhole(from); // the field's own check refuses what is beyond its range
    case FieldType::Single:
        return IsWhole(from) && from != FieldType::Long;
    case FieldType::Double:
        return IsWhole(from) || from == FieldType::Single;
    default:
        return IsText(from) && IsText(to);
    }
}

// A literal as text for a numeric field; nullopt for a literal that is no number.
std::optional<std::string> LiteralFor(const Piece& piece, FieldType type) {
    const auto number = LiteralNumber(piece);
    if (!number) {
        return std::nullopt;
    }
    switch (type) {
    case FieldType::Boolean:
        return *number != 0 ? "-1" : "0";
    case FieldType::Byte:
    case FieldType::Integer:
    case FieldType::Long: {
        const double whole = runtime::RoundHalfEven(*number);
        const auto [low, high] = RangeOf(type);
        if (!(whole >= low && whole <= high)) {
            throw runtime::RunTimeError(runtime::kErrOverflow);
        }
        return std::to_string(static_cast<std::int64_t>(whole));
    }
    case FieldType::Currency:
        return std::to_string(runtime::CCur(Variant(*number)).scaled);
    case FieldType::Single:
        return RealLiteral(SingleValue(*number));
    case FieldType::Double:
        return RealLiteral(*number);
    case FieldType::Date:
        return TextLiteral(runtime::IsoText(runtime::CDate(Variant(*number))));
    default:
        return std::nullopt;
    }
}

} // namespace

void RaiseMismatch(Mismatch mismatch) {
    if (mismatch == Mismatch::Join) {
        Raise(3615, "Type mismatch in expression.");
    }
    Raise(kErrTypeMismatchInCriterion, "Data type mismatch in criteria expression.");
}

std::string Collated(const Piece& piece) {
    return IsText(piece.type) && !piece.collated && !piece.untyped ? piece.sql + " COLLATE JET" : piece.sql;
}

std::optional<double> LiteralNumber(const Piece& piece) {
    if (!piece.literal || piece.literal->IsNull() || !IsNumber(piece.type)) {
        return std::nullopt;
    }
    return runtime::CDbl(*piece.literal);
}

std::string ScaledLiteral(double value) {
    const double scaled = std::nearbyint(value * 10000);
    if (scaled / 10000 == value && std::fabs(scaled) < 9e15) {
        return std::to_string(static_cast<std::int64_t>(scaled));
    }
    return RealLiteral(value * 10000);
}

std::string AsOperandText(Context& context, Piece piece) {
    context.GiveType(piece, FieldType::Text);
    switch (piece.type) {
    case FieldType::Currency:
    case FieldType::Single:
    case FieldType::Double:
    case FieldType::Date:
        if (!piece.untyped) {
            return Call("qy_text", piece.sql + ", " + TypeCode(piece.type));
        }
        break;
    default:
        break;
    }
    return std::move(piece.sql);
}

std::string AsText(Context& context, Piece piece) {
    const bool whole = IsWhole(piece.type) && !piece.untyped;
    std::string sql = AsOperandText(context, std::move(piece));
    return whole ? "CAST(" + sql + " AS TEXT)" : sql;
}

std::string AsNumber(Context& context, Piece piece) {
    context.GiveType(piece, FieldType::Double);
    if (piece.untyped) {
        return std::move(piece.sql);
    }
    if (piece.type == FieldType::Currency) {
        return "(" + piece.sql + " / 10000.0)";
    }
    if (IsDate(piece.type)) {
        return Call("qy_days", piece.sql);
    }
    if (!IsNumber(piece.type)) {
        return Call("qy_number", piece.sql);
    }
    return std::move(piece.sql);
}

std::string AsWhole(Context& context, Piece piece) {
    context.GiveType(piece, FieldType::Long);
    if (IsWhole(piece.type) || piece.untyped) {
        return std::move(piece.sql);
    }
    if (piece.literal) {
        if (const auto number = LiteralNumber(piece)) {
            return std::to_string(runtime::CLng(Variant(*number)));
        }
    }
    return Call("qy_long", AsNumber(context, std::move(piece)));
}

std::string AsDate(Context& context, Piece piece) {
    context.GiveType(piece, FieldType::Date);
    if (IsDate(piece.type) || piece.untyped) {
        return std::move(piece.sql);
    }
    if (IsNumber(piece.type)) {
        if (auto literal = LiteralFor(piece, FieldType::Date)) {
            return *std::move(literal);
        }
        return Call("qy_date", AsNumber(context, std::move(piece)));
    }
    // Not settled here even for a literal: the order of day and month is the machine's at each run.
    return Call("qy_datetext", piece.sql);
}

std::string AsCurrency(Context& context, Piece piece) {
    context.GiveType(piece, FieldType::Currency);
    if (piece.type == FieldType::Currency || piece.untyped) {
        return std::move(piece.sql);
    }
    if (auto literal = LiteralFor(piece, FieldType::Currency)) {
        return *std::move(literal);
    }
    if (IsWhole(piece.type)) {
        return "(" + piece.sql + " * 10000)";
    }
    return Call("qy_currency", AsNumber(context, std::move(piece)));
}

FieldType Unify(const Piece& left, const Piece& right) {
    if (left.untyped || left.type == right.type) {
        return right.type;
    }
    if (right.untyped) {
        return left.type;
    }
    const FieldType a = left.type;
    const FieldType b = right.type;
    if (IsNumber(a) && IsNumber(b)) {
        const auto either = [&](FieldType type) { return a == type || b == type; };
        if (either(FieldType::Double)) {
            return FieldType::Double;
        }
        if (either(FieldType::Currency)) {
            return IsFloat(a) || IsFloat(b) ? FieldType::Double : FieldType::Currency;
        }
        if (either(FieldType::Single)) {
            return either(FieldType::Long) ? FieldType::Double : FieldType::Single;
        }
        return either(FieldType::Long) ? FieldType::Long : FieldType::Integer;
    }
    if ((IsDate(a) && IsNumber(b)) || (IsNumber(a) && IsDate(b))) {
        return FieldType::Date;
    }
    return a == FieldType::Memo || b == FieldType::Memo ? FieldType::Memo : FieldType::Text;
}

std::string AsType(Context& context, Piece piece, FieldType type) {
    if (piece.untyped) {
        context.GiveType(piece, type);
        return std::move(piece.sql);
    }
    if (piece.type == type) {
        return std::move(piece.sql);
    }
    switch (type) {
    case FieldType::Currency:
        return AsCurrency(context, std::move(piece));
    case FieldType::Date:
        return AsDate(context, std::move(piece));
    case FieldType::Text:
    case FieldType::Memo:
        return AsText(context, std::move(piece));
    case FieldType::Single:
    case FieldType::Double:
    case FieldType::Boolean:
    case FieldType::Byte:
    case FieldType::Integer:
    case FieldType::Long:
        return AsNumber(context, std::move(piece));
    default:
        return std::move(piece.sql);
    }
}

void MakeComparable(Context& context, Piece& left, Piece& right, Mismatch mismatch) {
    if (left.untyped || right.untyped) {
        if (!left.untyped) {
            context.GiveType(right, left.type);
        } else if (!right.untyped) {
            context.GiveType(left, right.type);
        }
        return;
    }
    const auto apply = [](Piece& piece, FieldType type, std::string sql) {
        piece.sql = std::move(sql);
        piece.type = type;
        piece.literal.reset();
        piece.column = piece.collated = false;
    };
    if (IsText(left.type) && IsText(right.type)) {
        if (!left.collated && !right.collated) {
            left.sql += " COLLATE JET";
            left.collated = true;
        }
        return;
    }
    if (IsNumber(left.type) && IsNumber(right.type)) {
        const bool leftScaled = left.type == FieldType::Currency;
        const bool rightScaled = right.type == FieldType::Currency;
        if (leftScaled == rightScaled) {
            return;
        }
        Piece& scaled = leftScaled ? left : right;
        Piece& plain = leftScaled ? right : left;
        if (const auto number = LiteralNumber(plain)) {
            apply(plain, FieldType::Currency, ScaledLiteral(*number));
        } else if (IsWhole(plain.type)) {
            apply(plain, FieldType::Currency, "(" + plain.sql + " * 10000)");
        } else {
            // Division by a power of ten gives the double nearest to the decimal: equal where the texts are.
            apply(scaled, FieldType::Double, "(" + scaled.sql + " / 10000.0)");
        }
        return;
    }
    const auto settled = [](const Piece& piece) { return piece.column; };
    const auto oneDate = [&](Piece& date, Piece& other) {
        if (!IsDate(date.type) || IsDate(other.type)) {
            return false;
        }
        if (IsText(other.type) && settled(other)) {
            RaiseMismatch(mismatch);
        }
        apply(other, FieldType::Date, AsDate(context, other));
        return true;
    };
    if (IsDate(left.type) && IsDate(right.type)) {
        return;
    }
    if (IsDate(left.type) ? oneDate(left, right) : oneDate(right, left)) {
        return;
    }
    const auto oneText = [&](Piece& text, Piece& other) {
        if (!IsText(text.type) || !IsNumber(other.type)) {
            return false;
        }
        if (settled(text) || text.literal) {
            RaiseMismatch(mismatch);
        }
        apply(text, FieldType::Double, AsNumber(context, text));
        if (other.type == FieldType::Currency) {
            apply(other, FieldType::Double, AsNumber(context, other));
        }
        return true;
    };
    if (oneText(left, right) || oneText(right, left)) {
        return;
    }
    const auto isBytes = [](FieldType type) {
        return type == FieldType::Binary || type == FieldType::LongBinary;
    };
    if (isBytes(left.type) != isBytes(right.type) || IsNumber(left.type) || IsNumber(right.type)) {
        RaiseMismatch(mismatch);
    }
}

std::string AsStored(Context& context, Piece piece, const FieldDef& field) {
    const FieldType to = field.type;
    const bool nullable = piece.nullable;
    if (piece.IsNullLiteral()) {
        return to == FieldType::Boolean ? "0" : "NULL";
    }
    context.GiveType(piece, to);
    if (auto literal = LiteralFor(piece, to)) {
        return *std::move(literal);
    }
    std::string sql;
    if (to == FieldType::Double && piece.type == to && piece.field < 0 && !piece.untyped) {
        sql = Call("qy_finite", piece.sql);
    } else if (FitsAsIs(piece.type, to)) {
        sql = std::move(piece.sql);
    } else if (to == FieldType::Boolean && IsNumber(piece.type)) {
        sql = "-(" + piece.sql + " <> 0)";
    } else if (to == FieldType::Currency && IsWhole(piece.type)) {
        sql = AsCurrency(context, std::move(piece));
    } else if (to == FieldType::Double && piece.type == FieldType::Currency) {
        sql = AsNumber(context, std::move(piece));
    } else if (IsText(to) && piece.type != FieldType::Binary && piece.type != FieldType::LongBinary) {
        sql = AsText(context, std::move(piece));
    } else {
        sql = Call("qy_store", piece.sql + ", " + TypeCode(piece.type) + ", " + TypeCode(to) + ", " +
                                   TextLiteral(field.name));
    }
    // A Yes/No field is never Null.
    return to == FieldType::Boolean && nullable ? Call("coalesce", sql + ", 0") : sql;
}

bool IsRowIdKey(const TableDef& table, const FieldDef& field) {
    return !field.counter && field.type == FieldType::Long &&
           std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
               return index.primary && index.fields.size() == 1 &&
                      runtime::EqualName(index.fields.front(), field.name);
           });
}

std::string RequiredFieldText(const TableDef& table, const FieldDef& field) {
    return "The field '" + table.name + "." + field.name +
           "' cannot contain a Null value because the Required property for this field is set to True.  "
           "Enter a value in this field.";
}

std::string AsAssigned(Context& context, Piece piece, const TableDef& table, const FieldDef& field) {
    const bool guarded = piece.nullable && IsRowIdKey(table, field);
    std::string sql = AsStored(context, std::move(piece), field);
    return guarded ? "coalesce(" + sql + ", qy_raise(" + std::to_string(kErrRequiredField) + ", " +
                         TextLiteral(RequiredFieldText(table, field)) + "))"
                   : sql;
}

} // namespace quillary::database::sqlite
