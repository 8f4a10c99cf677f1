#pragma once

#include "platform/database/sqlite/conversion_writer.h"
#include "platform/database/sqlite/scope.h"

#include <string>
#include <string_view>
#include <vector>

// Expressions of the dialect as expressions of SQLite.
namespace quillary::database::sqlite {

class ExpressionWriter {
public:
    ExpressionWriter(Context& context, Scope& scope, Mismatch mismatch = Mismatch::Criteria)
        : context_(context), scope_(scope), mismatch_(mismatch) {}

    // The expression as a value in stored form: a comparison is -1, 0 or Null.
    Piece Value(const jet_sql::Expr& expr);

    // The expression as a condition: any non-zero is true. Comparisons stand as they are, so that SQLite
    // can use its indexes. Safe as an operand of AND, OR and NOT.
    std::string Condition(const jet_sql::Expr& expr);

    // left op right, for Equal to GreaterOrEqual.
    std::string Compare(jet_sql::BinaryOp op, Piece left, Piece right);

    Context& GetContext() { return context_; }
    Scope& GetScope() { return scope_; }

private:
    Piece Name(const jet_sql::NameRef& name);
    Piece AliasItem(Scope& level, int item);
    Piece ValueOf(const jet_sql::Literal& literal);
    Piece ValueOf(const jet_sql::Unary& unary);
    Piece ValueOf(const jet_sql::Binary& binary);
    Piece ValueOf(const jet_sql::Subquery& subquery);

    Piece Arithmetic(jet_sql::BinaryOp op, Piece left, Piece right);
    Piece AddOrSubtract(jet_sql::BinaryOp op, Piece left, Piece right);
    Piece AddToDate(jet_sql::BinaryOp op, Piece left, Piece right);
    Piece Multiply(Piece left, Piece right);
    Piece Divide(Piece left, const Piece& right);
    Piece DivideWhole(jet_sql::BinaryOp op, Piece left, Piece right);
    Piece Concatenate(const jet_sql::Binary& binary);

    std::string ConditionOf(const jet_sql::Binary& binary);
    std::string ConditionOf(const jet_sql::Like& like);
    std::string ConditionOf(const jet_sql::Between& between);
    std::string ConditionOf(const jet_sql::InList& in);
    std::string ConditionOf(const jet_sql::InQuery& in);
    std::string ConditionOf(const jet_sql::Quantified& quantified);
    std::string Chain(jet_sql::BinaryOp op, const jet_sql::Binary& binary);
    std::string Truth(Piece piece);

    Context& context_;
    Scope& scope_;
    Mismatch mismatch_;
};

// Null with no type.
Piece NullPiece();
// A value of a known type that was computed.
Piece Computed(std::string sql, FieldType type, bool nullable = true);
// A literal of the run time in stored form.
Piece LiteralPiece(const Variant& value);

} // namespace quillary::database::sqlite
