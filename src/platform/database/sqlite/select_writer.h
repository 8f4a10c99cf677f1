#pragma once

#include "platform/database/sqlite/expression_writer.h"
#include "platform/database/sqlite/join_writer.h"
#include "platform/database/sqlite/query_writer.h"

#include <optional>
#include <string>
#include <vector>

// One SELECT.
namespace quillary::database::sqlite {

struct OutputItem {
    Piece piece;
    std::string name;
    bool named = false; // by an alias
};

class SelectWriter {
public:
    SelectWriter(Context& context, const jet_sql::Select& select, Scope* outer)
        : context_(context), select_(select), scope_(outer) {}

    // Settles names and writes all parts. ordered: as in WriteFrom.
    void Bind(bool ordered);
    // The two halves of it, for a crosstab: FROM and WHERE, then all the rest.
    void BindRows(bool ordered);
    void BindColumns();
    // The rows are gathered into groups, or into one, though no aggregate in the list says so.
    void Gather() { gathered_ = true; }
    // Raises 3122 for a column outside of aggregates that is not grouped by.
    void CheckGrouped(const jet_sql::Expr& expr);
    // Other rows than those of FROM and WHERE.
    void ReplaceRows(std::string rows) { rows_ = std::move(rows); }

    const std::vector<OutputItem>& Items() const { return items_; }
    Scope& GetScope() { return scope_; }
    const JoinPlan& Joins() const { return joins_; }
    // Its rows are groups or made unique: they are no records.
    bool Grouped() const { return aggregated_ || select_.predicate == jet_sql::Predicate::Distinct; }
    bool Aggregated() const { return aggregated_; }
    bool OneRow() const { return aggregated_ && select_.groupBy.empty(); }

    // SELECT with its items, or with other columns of the same rows.
    std::string Text(bool named, bool ordered) const;
    std::string TextOf(const std::vector<std::string>& columns, bool named, bool ordered) const;
    // " FROM ... WHERE ..."
    std::string Rows() const;

private:
    void SurveyAggregates();
    void AddItems();
    void AddStar(const jet_sql::SelectItem& item);
    void AddExpression(const jet_sql::SelectItem& item, int index);
    void NameItems();
    void AddGroups();
    void AddOrder();
    Piece Term(const jet_sql::Expr& expr, bool& varies);
    void ApplyDistinctRow();
    bool OrderIsUnique() const;

    std::string OrderTerms() const;
    std::string SortTerms() const;
    std::string LimitedText(const std::vector<std::string>& columns, bool named) const;

    struct OrderTerm {
        std::string sql;
        bool descending = false;
        Piece piece;
    };

    Context& context_;
    const jet_sql::Select& select_;
    Scope scope_;
    JoinPlan joins_;
    std::string rows_;
    std::vector<OutputItem> items_;
    std::vector<std::string> groups_;    // GROUP BY
    std::vector<std::string> groupKeys_; // the same, as expressions in the list are written
    std::string having_;
    std::vector<OrderTerm> order_;
    bool gathered_ = false;
    bool aggregated_ = false;
    bool listAggregated_ = false; // by its columns
    bool distinct_ = false;
    bool distinctRow_ = false; // and it acts
};

// Commas between.
std::string Listed(const std::vector<std::string>& parts);

} // namespace quillary::database::sqlite
