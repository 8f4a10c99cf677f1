#include "platform/database/sqlite/expression_writer.h"
#include "platform/database/sqlite/sql_text.h"

#include <cmath>
#include <limits>

// +, -, *, /, \, Mod and ^ over the kinds of values.
namespace quillary::database::sqlite {

using jet_sql::BinaryOp;

namespace {

std::string Infix(std::string_view left, std::string_view sign, std::string_view right) {
    std::string sql = "(";
    sql += left;
    sql += sign;
    sql += right;
    sql += ')';
    return sql;
}

// The left operand of + and - (rank '+') or of * (rank '*'): what binds as tight needs no brackets, and
// SQLite bounds how deep they go.
std::string_view LeftOf(const Piece& piece, char rank) {
    std::string_view sql = piece.sql;
    const bool goesOn = piece.chain == '*' || (piece.chain == '+' && rank == '+');
    return goesOn ? sql.substr(1, sql.size() - 2) : sql;
}

std::string Call(std::string_view function, std::string_view first, std::string_view second) {
    std::string sql(function);
    sql += '(';
    sql += first;
    sql += ", ";
    sql += second;
    sql += ')';
    return sql;
}

// The type as far as arithmetic goes: a literal that fits is a 16-bit number.
FieldType Width(const Piece& piece) {
    if (piece.type == FieldType::Long && piece.literal) {
        const auto number = LiteralNumber(piece);
        if (number && std::fabs(*number) <= std::numeric_limits<std::int16_t>::max()) {
            return FieldType::Integer;
        }
    }
    return piece.type;
}

// A result without Currency: whole numbers stay whole, a single with a long gives a double.
FieldType PlainResult(const Piece& left, const Piece& right) {
    const FieldType a = Width(left);
    const FieldType b = Width(right);
    if (IsWhole(a) && IsWhole(b)) {
        return FieldType::Long;
    }
    const bool large =
        a == FieldType::Double || b == FieldType::Double || a == FieldType::Long || b == FieldType::Long;
    return large ? FieldType::Double : FieldType::Single;
}

// A computed single has seven digits again.
Piece PlainPiece(std::string sql, FieldType type, bool nullable, char rank) {
    if (type == FieldType::Single) {
        sql = "qy_single" + sql;
    }
    Piece piece = Computed(std::move(sql), type, nullable);
    piece.wide = type == FieldType::Long;
    piece.chain = type == FieldType::Single ? '\0' : rank;
    return piece;
}

} // namespace

Piece ExpressionWriter::Arithmetic(BinaryOp op, Piece left, Piece right) {
    if (left.IsNullLiteral() || right.IsNullLiteral()) {
        return NullPiece();
    }
    const auto settle = [&](Piece& piece, const Piece& other) {
        if (piece.untyped) {
            context_.GiveType(piece, other.untyped ? FieldType::Double : other.type);
        }
    };
    settle(left, right);
    settle(right, left);
    const auto toNumber = [&](Piece& piece) {
        if (!IsNumber(piece.type)) {
            const bool nullable = piece.nullable;
            piece = Computed(AsNumber(context_, std::move(piece)), FieldType::Double, nullable);
        }
    };
    if (op == BinaryOp::Add && IsText(left.type) && IsText(right.type)) {
        Piece joined = Computed(Infix(LeftOf(left, '+'), " || ", right.sql), FieldType::Text,
                                left.nullable || right.nullable);
        joined.chain = '+';
        return joined;
    }
    if ((op == BinaryOp::Add || op == BinaryOp::Subtract) && (IsDate(left.type) || IsDate(right.type))) {
        return AddToDate(op, std::move(left), std::move(right));
    }
    toNumber(left);
    toNumber(right);
    const bool nullable = left.nullable || right.nullable;
    switch (op) {
    case BinaryOp::Add:
    case BinaryOp::Subtract:
        return AddOrSubtract(op, std::move(left), std::move(right));
    case BinaryOp::Multiply:
        return Multiply(std::move(left), std::move(right));
    case BinaryOp::Divide:
        return Divide(std::move(left), right);
    case BinaryOp::Power: {
        std::string base = AsNumber(context_, std::move(left));
        return Computed(Call("qy_power", base, AsNumber(context_, std::move(right))), FieldType::Double,
                        nullable);
    }
    default:
        return DivideWhole(op, std::move(left), std::move(right));
    }
}

// A date and days give a date, two dates the days between them.
Piece ExpressionWriter::AddToDate(BinaryOp op, Piece left, Piece right) {
    const bool nullable = left.nullable || right.nullable;
    const bool both = IsDate(left.type) && IsDate(right.type);
    const bool leftDate = IsDate(left.type);
    const std::string date = leftDate ? left.sql : right.sql;
    if (both || (!leftDate && op == BinaryOp::Subtract)) {
        std::string first = AsNumber(context_, std::move(left));
        const std::string sql =
            Infix(first, op == BinaryOp::Add ? " + " : " - ", AsNumber(context_, std::move(right)));
        return op == BinaryOp::Add || !both ? Computed("qy_date" + sql, FieldType::Date, nullable)
                                            : Computed(sql, FieldType::Double, nullable);
    }
    std::string days = AsNumber(context_, leftDate ? std::move(right) : std::move(left));
    if (op == BinaryOp::Subtract) {
        days = "- " + days;
    }
    return Computed(Call("qy_dateplus", date, days), FieldType::Date, nullable);
}

Piece ExpressionWriter::AddOrSubtract(BinaryOp op, Piece left, Piece right) {
    const bool nullable = left.nullable || right.nullable;
    const std::string_view sign = op == BinaryOp::Add ? " + " : " - ";
    if (left.type == FieldType::Currency || right.type == FieldType::Currency) {
        const bool goesOn = left.type == FieldType::Currency;
        const std::string first =
            goesOn ? std::string(LeftOf(left, '+')) : AsCurrency(context_, std::move(left));
        Piece piece = Computed(Infix(first, sign, AsCurrency(context_, std::move(right))),
                               FieldType::Currency, nullable);
        piece.chain = '+';
        return piece;
    }
    return PlainPiece(Infix(LeftOf(left, '+'), sign, right.sql), PlainResult(left, right), nullable, '+');
}

Piece ExpressionWriter::Multiply(Piece left, Piece right) {
    const bool nullable = left.nullable || right.nullable;
    const bool leftScaled = left.type == FieldType::Currency;
    const bool rightScaled = right.type == FieldType::Currency;
    if (leftScaled && rightScaled) {
        return Computed(Call("qy_curmul", left.sql, right.sql), FieldType::Currency, nullable);
    }
    if (leftScaled || rightScaled) {
        if (IsWhole(leftScaled ? right.type : left.type)) {
            return Computed(Infix(left.sql, " * ", right.sql), FieldType::Currency, nullable);
        }
        std::string first = AsNumber(context_, std::move(left));
        return Computed(Infix(first, " * ", AsNumber(context_, std::move(right))), FieldType::Double,
                        nullable);
    }
    return PlainPiece(Infix(LeftOf(left, '*'), " * ", right.sql), PlainResult(left, right), nullable, '*');
}

// Always a double. Only a divisor that is known not to be zero needs no check for error 11.
Piece ExpressionWriter::Divide(Piece left, const Piece& right) {
    const bool nullable = left.nullable || right.nullable;
    std::string first = AsNumber(context_, std::move(left));
    const auto divisor = LiteralNumber(right);
    if (divisor && *divisor != 0) {
        return Computed(Infix(first, " / ", RealLiteral(*divisor)), FieldType::Double, nullable);
    }
    return Computed(Call("qy_divide", first, AsNumber(context_, right)), FieldType::Double, nullable);
}

// \ and Mod round both sides to whole numbers first, halves to even.
Piece ExpressionWriter::DivideWhole(BinaryOp op, Piece left, Piece right) {
    const bool nullable = left.nullable || right.nullable;
    const bool quotient = op == BinaryOp::IntDivide;
    const auto divisor = LiteralNumber(right);
    Piece piece;
    if (IsWhole(left.type) && IsWhole(right.type) && divisor && *divisor != 0) {
        piece = Computed(Infix(left.sql, quotient ? " / " : " % ", right.sql), FieldType::Long, nullable);
        piece.wide = left.wide;
    } else {
        std::string first = AsNumber(context_, std::move(left));
        piece =
            Computed(Call(quotient ? "qy_quotient" : "qy_mod", first, AsNumber(context_, std::move(right))),
                     FieldType::Long, nullable);
    }
    return piece;
}

} // namespace quillary::database::sqlite
