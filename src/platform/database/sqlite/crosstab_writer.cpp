#include "platform/database/sqlite/crosstab_writer.h"

#include "platform/database/sqlite/function_writer.h"
#include "platform/database/sqlite/select_writer.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

using jet_sql::Expr;

constexpr std::size_t kMostColumns = 255;

std::string HeadingText(const Variant& value) {
    switch (value.Type()) {
    case runtime::VarType::Null:
        return "<>";
    case runtime::VarType::Boolean:
        return value.Get<bool>() ? "-1" : "0";
    case runtime::VarType::Single:
        return runtime::NumberText(value.Get<float>());
    case runtime::VarType::Double:
        return runtime::NumberText(value.Get<double>());
    case runtime::VarType::Currency:
        return runtime::NumberText(value.Get<runtime::Currency>());
    default:
        return runtime::CStr(value);
    }
}

class CrosstabWriter {
public:
    CrosstabWriter(Context& context, const jet_sql::Crosstab& crosstab, Scope* outer)
        : context_(context), crosstab_(crosstab), select_(crosstab.select), writer_(context, select_, outer) {
    }

    QueryText Write();

private:
    std::vector<Variant> Headings();
    void CheckHeadings(const std::vector<Variant>& headings) const;
    void DropPivotSorts();
    Piece Cell(const std::string& condition);

    Context& context_;
    const jet_sql::Crosstab& crosstab_;
    jet_sql::Select select_; // its ORDER BY less the pivot
    SelectWriter writer_;
    Piece pivot_;
};

QueryText CrosstabWriter::Write() {
    writer_.BindRows(false);
    Scope& scope = writer_.GetScope();
    pivot_ = ExpressionWriter(context_, scope).Value(*crosstab_.pivot);
    const std::vector<Variant> headings = Headings();
    CheckHeadings(headings);

    // A pivot that is worked out goes through a query of its own, so that it is worked out once a row and
    // not once a heading.
    Scope::Capture capture;
    const std::string pivotSql = Collated(pivot_);
    const bool computed = !pivot_.column && !pivot_.literal;
    const std::string rows = writer_.Rows();
    if (computed) {
        capture.alias = context_.NewAlias();
        scope.capture = &capture;
        scope.groupOrder.clear();
        pivot_.sql = capture.alias + ".p";
    }
    DropPivotSorts();
    writer_.Gather();
    writer_.BindColumns();
    scope.aggregatesAllowed = true;
    writer_.CheckGrouped(*crosstab_.value);
    scope.aggregatesAllowed = false;

    QueryText text;
    std::vector<std::string> columns;
    for (const OutputItem& item : writer_.Items()) {
        columns.push_back(Collated(item.piece));
        text.columns.push_back({item.name, item.piece.type, item.piece.size, item.piece.untyped});
    }
    for (const Variant& heading : headings) {
        const std::string condition =
            heading.IsNull() ? pivot_.sql + " IS NULL"
                             : ExpressionWriter(context_, scope)
                                   .Compare(jet_sql::BinaryOp::Equal, pivot_, LiteralPiece(heading));
        const Piece cell = Cell(condition);
        columns.push_back(Collated(cell));
        text.columns.push_back({HeadingText(heading), cell.type, cell.size, cell.untyped});
    }
    if (computed) {
        std::string source = " FROM (SELECT ";
        for (std::size_t i = 0; i < capture.columns.size(); ++i) {
            source += capture.columns[i] + " AS k" + std::to_string(i) + ", ";
        }
        // The limit keeps SQLite from putting the expression back where it is used.
        writer_.ReplaceRows(source + pivotSql + " AS p" + rows + " LIMIT -1) AS " + capture.alias);
        scope.capture = nullptr;
    }
    text.sql = writer_.TextOf(columns, true, true);
    text.grouped = true;
    return text;
}

// Ascending by value, Null first.
std::vector<Variant> CrosstabWriter::Headings() {
    if (!crosstab_.headings.empty()) {
        return crosstab_.headings;
    }
    context_.reusable = false;
    const std::string sql = "SELECT value FROM json_each((SELECT qy_values(" + pivot_.sql + ")" +
                            writer_.Rows() + ")) ORDER BY value" +
                            (IsText(pivot_.type) ? " COLLATE JET" : "");
    return context_.Headings()(sql, pivot_.type, context_.parameters);
}

void CrosstabWriter::CheckHeadings(const std::vector<Variant>& headings) const {
    if (headings.size() + select_.items.size() > kMostColumns) {
        Raise(3190, "Too many fields defined.");
    }
    for (std::size_t i = 0; i < crosstab_.headings.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (runtime::EqualText(HeadingText(headings[i]), HeadingText(headings[j]))) {
                Raise(3104, "Cannot specify fixed column heading '" + HeadingText(headings[i]) +
                                "' in a crosstab query more than once.");
            }
        }
    }
}

// A sort by the pivot, or by anything else that has many values in a group, is accepted and does nothing.
void CrosstabWriter::DropPivotSorts() {
    ExpressionWriter expressions(context_, writer_.GetScope());
    std::vector<std::string> groups;
    for (const Expr& expr : select_.groupBy) {
        groups.push_back(expressions.Value(expr).sql);
    }
    std::erase_if(select_.orderBy, [&](const jet_sql::OrderItem& term) {
        if (term.expr.As<jet_sql::Literal>() != nullptr || ContainsAggregate(term.expr)) {
            return false;
        }
        const std::string sql = expressions.Value(term.expr).sql;
        return std::find(groups.begin(), groups.end(), sql) == groups.end();
    });
}

Piece CrosstabWriter::Cell(const std::string& condition) {
    Scope& scope = writer_.GetScope();
    const std::string filter = " FILTER (WHERE " + condition + ")";
    scope.aggregateFilter = filter;
    scope.aggregatesAllowed = true;
    Piece cell = ExpressionWriter(context_, scope).Value(*crosstab_.value);
    scope.aggregatesAllowed = false;
    scope.aggregateFilter.clear();
    cell.nullable = true;
    // Sum and its like are Null without rows by themselves.
    const auto* call = crosstab_.value->As<jet_sql::Call>();
    const bool plain = call != nullptr && IsAggregate(*call);
    if (plain && call->star) {
        cell.sql = "nullif(" + cell.sql + ", 0)";
    } else if (!plain || runtime::EqualName(call->name, "count")) {
        cell.sql = "(CASE WHEN count(*)" + filter + " > 0 THEN " + cell.sql + " END)";
    }
    return cell;
}

} // namespace

QueryText WriteCrosstab(Context& context, const jet_sql::Crosstab& crosstab, Scope* outer) {
    return CrosstabWriter(context, crosstab, outer).Write();
}

} // namespace quillary::database::sqlite
