#include "platform/database/sqlite/criteria.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/sqlite/translator.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

jet_sql::Expr Parse(std::string_view criteria) {
    try {
        return jet_sql::ParseExpression(criteria);
    } catch (const runtime::RunTimeError& error) {
        throw runtime::RunTimeError(kErrFindCriterion, error.Source(), error.Description());
    }
}

std::optional<double> NumberOf(const jet_sql::Expr& expression) {
    if (const auto* minus = expression.As<jet_sql::Unary>();
        minus != nullptr && minus->op == jet_sql::UnaryOp::Negate) {
        const auto number = NumberOf(*minus->operand);
        return number ? std::optional<double>(-*number) : std::nullopt;
    }
    const auto* literal = expression.As<jet_sql::Literal>();
    if (literal == nullptr) {
        return std::nullopt;
    }
    if (const auto* whole = literal->value.GetIf<std::int32_t>()) {
        return *whole;
    }
    if (const auto* real = literal->value.GetIf<double>()) {
        return *real;
    }
    return std::nullopt;
}

bool IsExactNumber(FieldType type) {
    return type == FieldType::Byte || type == FieldType::Integer || type == FieldType::Long ||
           type == FieldType::Double;
}

void BindCell(sqlite3_stmt* statement, int index, const Cell& cell) {
    switch (cell.kind) {
    case CellKind::Null:
        sqlite3_bind_null(statement, index);
        break;
    case CellKind::Whole:
        sqlite3_bind_int64(statement, index, cell.whole);
        break;
    case CellKind::Real:
        sqlite3_bind_double(statement, index, cell.real);
        break;
    case CellKind::Text:
        sqlite3_bind_text64(statement, index, cell.text, cell.length, SQLITE_STATIC, SQLITE_UTF8);
        break;
    case CellKind::Blob:
        sqlite3_bind_blob64(statement, index, cell.text, cell.length, SQLITE_STATIC);
        break;
    }
}

} // namespace

RowFilter::RowFilter(Connection& connection, const std::vector<ResultColumn>& columns,
                     std::string_view criteria) {
    const jet_sql::Expr expression = Parse(criteria);
    if (const auto* binary = expression.As<jet_sql::Binary>();
        binary != nullptr && binary->op == jet_sql::BinaryOp::Equal) {
        const auto* name = binary->left->As<jet_sql::NameRef>();
        const auto number = NumberOf(*binary->right);
        if (name != nullptr && name->parts.size() == 1 && number) {
            for (std::size_t i = 0; i < columns.size(); ++i) {
                if (IsExactNumber(columns[i].type) && runtime::EqualName(columns[i].name, name->Field())) {
                    equality_ = {static_cast<int>(i), *number};
                    return;
                }
            }
        }
    }
    Criterion criterion = TranslateCriterion(expression, columns);
    statement_ = connection.Prepare(criterion.sql, Operation::Read);
    fields_ = std::move(criterion.fields);
}

bool RowFilter::Holds(const CellRow& cells) const {
    if (equality_) {
        const Cell cell = cells[equality_->column];
        return (cell.kind == CellKind::Whole && static_cast<double>(cell.whole) == equality_->number) ||
               (cell.kind == CellKind::Real && cell.real == equality_->number);
    }
    Run run(statement_.Get());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        BindCell(run, static_cast<int>(i) + 1, cells[fields_[i]]);
    }
    return run.Step(Operation::Read) && sqlite3_column_double(run, 0) != 0;
}

} // namespace quillary::database::sqlite
