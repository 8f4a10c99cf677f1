#include "platform/database/sqlite/select_writer.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/walk.h"
#include "platform/database/sqlite/function_writer.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {

using jet_sql::Expr;
using jet_sql::Predicate;

std::string Listed(const std::vector<std::string>& parts) {
    std::size_t size = 0;
    for (const std::string& part : parts) {
        size += part.size() + 2;
    }
    std::string sql;
    sql.reserve(size);
    for (const std::string& part : parts) {
        if (!sql.empty()) {
            sql += ", ";
        }
        sql += part;
    }
    return sql;
}

void SelectWriter::BindRows(bool ordered) {
    joins_ = WriteFrom(context_, scope_, select_.from, select_.file, ordered);
    if (select_.where) {
        joins_.conditions.push_back(WriteCondition(context_, scope_, *select_.where));
    }
    scope_.groupOrder = joins_.Order(scope_);
    scope_.items = &select_.items;
}

void SelectWriter::Bind(bool ordered) {
    SurveyAggregates();
    const bool ownOrder = select_.orderBy.empty() && !aggregated_ && !distinct_;
    BindRows(ordered && ownOrder);
    BindColumns();
}

void SelectWriter::SurveyAggregates() {
    const auto hasAggregate = [](const Expr& expr) { return ContainsAggregate(expr); };
    aggregated_ = !select_.groupBy.empty() || (select_.having && hasAggregate(*select_.having));
    listAggregated_ = std::any_of(select_.items.begin(), select_.items.end(),
                                  [&](const auto& item) { return item.expr && hasAggregate(*item.expr); });
    aggregated_ = aggregated_ || listAggregated_ || gathered_;
    for (const auto& term : select_.orderBy) {
        aggregated_ = aggregated_ || hasAggregate(term.expr);
    }
    distinct_ = select_.predicate == Predicate::Distinct;
}

void SelectWriter::BindColumns() {
    SurveyAggregates();
    AddGroups();
    AddItems();
    if (select_.having) {
        if (!aggregated_) {
            Raise(3091, "HAVING clause without grouping or aggregation.");
        }
        scope_.aggregatesAllowed = true;
        CheckGrouped(*select_.having);
        having_ = ExpressionWriter(context_, scope_).Condition(*select_.having);
        scope_.aggregatesAllowed = false;
    }
    AddOrder();
    ApplyDistinctRow();
}

// ---------------------------------------------------------------------------------------------- items

void SelectWriter::AddItems() {
    scope_.recordShown = true;
    scope_.aggregatesAllowed = true;
    scope_.aliases = Scope::Aliases::Items;
    for (std::size_t i = 0; i < select_.items.size(); ++i) {
        const auto& item = select_.items[i];
        if (item.IsStar()) {
            AddStar(item);
        } else {
            AddExpression(item, static_cast<int>(i));
        }
    }
    scope_.aliases = Scope::Aliases::None;
    scope_.aggregatesAllowed = false;
    scope_.recordShown = false;
    NameItems();
}

void SelectWriter::AddStar(const jet_sql::SelectItem& item) {
    if (scope_.sources.empty()) {
        Raise(3067, "Query input must contain at least one table or query.");
    }
    const int only = item.starOf.empty() ? -1 : scope_.FindSource(item.starOf);
    if (!item.starOf.empty() && only < 0) {
        RaiseUnknownTable(item.starOf);
    }
    if (aggregated_) {
        Raise(3124, "Cannot group on fields selected with '*'.");
    }
    for (std::size_t i = 0; i < scope_.sources.size(); ++i) {
        if (only >= 0 && static_cast<int>(i) != only) {
            continue;
        }
        const std::size_t count = scope_.sources[i].ColumnCount();
        items_.reserve(items_.size() + count);
        for (std::size_t column = 0; column < count; ++column) {
            OutputItem output;
            output.piece = scope_.Column(static_cast<int>(i), static_cast<int>(column));
            output.name = scope_.sources[i].ColumnName(column);
            items_.push_back(std::move(output));
        }
    }
}

void SelectWriter::AddExpression(const jet_sql::SelectItem& item, int index) {
    scope_.item = index;
    OutputItem output;
    output.piece = ExpressionWriter(context_, scope_).Value(*item.expr);
    if (aggregated_) {
        CheckGrouped(*item.expr);
    }
    scope_.item = -1;
    // A yes/no that is worked out is a number to the reader: it may be Null.
    if (output.piece.type == FieldType::Boolean && !output.piece.column && !output.piece.untyped) {
        output.piece.type = FieldType::Integer;
    }
    if (!item.alias.empty()) {
        output.name = item.alias;
        output.named = true;
    } else if (const auto* name = item.expr->As<jet_sql::NameRef>();
               name != nullptr && output.piece.source >= 0) {
        output.name = scope_.sources[static_cast<std::size_t>(output.piece.source)].ColumnName(
            static_cast<std::size_t>(output.piece.place));
    } else if (name != nullptr && output.piece.column) {
        output.name = name->Field();
    }
    items_.push_back(std::move(output));
}

// A column without a name is called Expr1000 and so on, by its position; fields of the same name in two
// tables are called after their table; a field that comes again has no name of its own.
void SelectWriter::NameItems() {
    const auto unnamed = [](std::size_t position) { return "Expr" + std::to_string(1000 + position); };
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].name.empty()) {
            items_[i].name = unnamed(i);
        }
    }
    if (scope_.sources.size() < 2 && select_.items.size() < 2) {
        return;
    }
    std::vector<std::string> final(items_.size());
    for (std::size_t i = 0; i < items_.size(); ++i) {
        final[i] = items_[i].name;
        for (std::size_t j = 0; j < items_.size(); ++j) {
            if (i == j || !runtime::EqualName(items_[i].name, items_[j].name)) {
                continue;
            }
            if (items_[i].named && items_[j].named) {
                Raise(3062, "Duplicate output alias '" + items_[i].name + "'.");
            }
            if (items_[i].named || items_[j].named) {
                continue;
            }
            if (items_[i].piece.source == items_[j].piece.source) {
                if (j < i) {
                    final[i] = unnamed(i);
                    break;
                }
            } else if (items_[i].piece.source >= 0) {
                final[i] = scope_.sources[static_cast<std::size_t>(items_[i].piece.source)].name + "." +
                           items_[i].name;
            }
        }
    }
    for (std::size_t i = 0; i < items_.size(); ++i) {
        items_[i].name = std::move(final[i]);
    }
}

// --------------------------------------------------------------------------------------------- groups

void SelectWriter::AddGroups() {
    for (const Expr& expr : select_.groupBy) {
        if (ContainsAggregate(expr)) {
            Raise(3095, "Cannot have aggregate function in GROUP BY clause.");
        }
        bool varies = false;
        const Piece piece = Term(expr, varies);
        groupKeys_.push_back(piece.sql);
        // What is the same for all rows makes one group. SQLite would take a number for a position, and
        // does not know the columns of an enclosing query here.
        groups_.push_back(varies ? Collated(piece) : "NULL");
    }
    // SQLite sees by the columns alone that rows are to be gathered into one.
    if (aggregated_ && groups_.empty() && !listAggregated_) {
        groups_.emplace_back("NULL");
    }
}

// A term of GROUP BY or ORDER BY. varies: it names a column of this query.
Piece SelectWriter::Term(const Expr& expr, bool& varies) {
    for (Source& source : scope_.sources) {
        source.used = false;
    }
    Piece piece = ExpressionWriter(context_, scope_).Value(expr);
    varies = std::any_of(scope_.sources.begin(), scope_.sources.end(),
                         [](const Source& source) { return source.used; });
    return piece;
}

// Outside of aggregates a column has to be one that is grouped by.
void SelectWriter::CheckGrouped(const Expr& expr) {
    if (const auto* call = expr.As<jet_sql::Call>(); call != nullptr && IsAggregate(*call)) {
        return;
    }
    const auto* name = expr.As<jet_sql::NameRef>();
    if (name == nullptr && groupKeys_.empty()) {
        jet_sql::ForEachChild(expr, [this](const Expr& operand) { CheckGrouped(operand); });
        return;
    }
    const bool shown = scope_.recordShown;
    scope_.recordShown = false;
    const Piece piece = ExpressionWriter(context_, scope_).Value(expr);
    scope_.recordShown = shown;
    if (std::find(groupKeys_.begin(), groupKeys_.end(), piece.sql) != groupKeys_.end()) {
        return;
    }
    if (name == nullptr) {
        jet_sql::ForEachChild(expr, [this](const Expr& operand) { CheckGrouped(operand); });
    } else if (piece.column && piece.source >= 0) {
        Raise(3122, "You tried to execute a query that does not include the specified expression '" +
                        name->Field() + "' as part of an aggregate function.");
    }
}

// ---------------------------------------------------------------------------------------------- order

void SelectWriter::AddOrder() {
    scope_.aliases = Scope::Aliases::Order;
    scope_.aggregatesAllowed = aggregated_;
    for (const auto& term : select_.orderBy) {
        const auto* literal = term.expr.As<jet_sql::Literal>();
        if (literal != nullptr && literal->value.Type() == runtime::VarType::Long) {
            const auto position = literal->value.Get<std::int32_t>();
            if (position >= 1 && static_cast<std::size_t>(position) <= items_.size()) {
                const Piece& piece = items_[static_cast<std::size_t>(position) - 1].piece;
                if (!piece.literal && !OneRow()) {
                    order_.push_back({Collated(piece), term.descending, piece});
                }
            }
            continue;
        }
        if (aggregated_) {
            CheckGrouped(term.expr);
        }
        bool varies = false;
        Piece piece = Term(term.expr, varies);
        if ((!varies && !aggregated_) || piece.literal || OneRow()) {
            continue;
        }
        std::string sql = Collated(piece);
        const auto listed = [&](const OutputItem& item) { return Collated(item.piece) == sql; };
        if (distinct_ && std::none_of(items_.begin(), items_.end(), listed)) {
            const auto* name = term.expr.As<jet_sql::NameRef>();
            Raise(3093, "ORDER BY clause (" + (name != nullptr ? name->Field() : std::string("expression")) +
                            ") conflicts with DISTINCT.");
        }
        if (piece.type == FieldType::Boolean && !piece.column) {
            sql.insert(0, 1, '('); // what SQLite can work out beforehand it would take for a position
            sql += " + 0)";
        }
        order_.push_back({std::move(sql), term.descending, std::move(piece)});
    }
    scope_.aliases = Scope::Aliases::None;
    scope_.aggregatesAllowed = false;
}

// DISTINCTROW acts where a joined table gives no column: one row for each combination of the records that
// are shown. Tables that are reached by a unique key cannot repeat anything.
void SelectWriter::ApplyDistinctRow() {
    if (select_.predicate != Predicate::DistinctRow || aggregated_ || scope_.sources.size() < 2) {
        return;
    }
    std::vector<int> shown;
    std::vector<int> others;
    for (std::size_t i = 0; i < scope_.sources.size(); ++i) {
        const Source& source = scope_.sources[i];
        if (source.shown && !source.hasRowId) {
            return;
        }
        (source.shown ? shown : others).push_back(static_cast<int>(i));
    }
    if (shown.empty() || OthersAreUnique(scope_, joins_.equalities, shown, others)) {
        return;
    }
    distinctRow_ = true;
    for (const int index : shown) {
        const Source& source = scope_.sources[static_cast<std::size_t>(index)];
        groups_.push_back(RowId(*source.table, source.alias));
    }
}

// Whether no two rows can be equal in the sort terms: then TOP has no ties to keep.
bool SelectWriter::OrderIsUnique() const {
    if (aggregated_ || distinct_ || scope_.sources.size() != 1 || scope_.sources.front().table == nullptr) {
        return false;
    }
    const TableDef& table = *scope_.sources.front().table;
    const auto sorted = [&](const std::string& field) {
        const int wanted = FindField(table, field);
        return std::any_of(order_.begin(), order_.end(), [&](const OrderTerm& term) {
            return term.piece.column && term.piece.source == 0 && term.piece.field == wanted;
        });
    };
    return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
        return index.primary && !index.fields.empty() &&
               std::all_of(index.fields.begin(), index.fields.end(), sorted);
    });
}

std::string SelectWriter::OrderTerms() const {
    std::vector<std::string> terms;
    for (const OrderTerm& term : order_) {
        terms.push_back(term.descending ? term.sql + " DESC" : term.sql);
    }
    if (!terms.empty()) {
        return Listed(terms);
    }
    if (distinct_) {
        for (std::size_t i = 1; i <= items_.size(); ++i) {
            terms.push_back(std::to_string(i));
        }
        return Listed(terms);
    }
    return aggregated_ ? Listed(groups_) : joins_.Order(scope_, distinctRow_);
}

// The same, and groups that are equal in it in the order of their keys: SQLite would turn them round under
// DESC.
std::string SelectWriter::SortTerms() const {
    std::string sql = OrderTerms();
    for (std::size_t i = 0; !order_.empty() && !distinct_ && i < groups_.size(); ++i) {
        const bool sorted = std::any_of(order_.begin(), order_.end(),
                                        [&](const OrderTerm& term) { return term.sql == groups_[i]; });
        if (!sorted && groups_[i] != "NULL") {
            sql += ", " + groups_[i];
        }
    }
    return sql;
}

// ----------------------------------------------------------------------------------------------- text

std::string SelectWriter::Rows() const {
    if (!rows_.empty()) {
        return rows_;
    }
    std::string sql;
    if (!joins_.steps.empty()) {
        sql += " FROM " + joins_.Text();
    }
    return sql + WhereText(joins_.conditions);
}

std::string SelectWriter::Text(bool named, bool ordered) const {
    std::vector<std::string> columns;
    columns.reserve(items_.size());
    for (const OutputItem& item : items_) {
        columns.push_back(named || distinct_ ? Collated(item.piece) : item.piece.sql);
    }
    return TextOf(columns, named, ordered);
}

namespace {

std::string WithNames(const std::vector<std::string>& columns) {
    std::string sql;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        sql += (i > 0 ? ", " : "") + columns[i] + " AS c" + std::to_string(i);
    }
    return sql;
}

} // namespace

std::string SelectWriter::TextOf(const std::vector<std::string>& columns, bool named, bool ordered) const {
    const bool limit = select_.top && !select_.top->percent && (order_.empty() || OrderIsUnique());
    if (select_.top && !limit) {
        return LimitedText(columns, named);
    }
    std::string sql = distinct_ ? "SELECT DISTINCT " : "SELECT ";
    sql += named ? WithNames(columns) : Listed(columns);
    sql += Rows();
    if (!groups_.empty()) {
        sql += " GROUP BY " + Listed(groups_);
    }
    if (!having_.empty()) {
        sql += " HAVING " + having_;
    }
    if (ordered || limit) {
        if (const std::string order = SortTerms(); !order.empty()) {
            sql += " ORDER BY " + order;
        }
    }
    if (limit) {
        sql += " LIMIT " + std::to_string(select_.top->count);
    }
    context_.CheckSize(sql);
    return sql;
}

// TOP with its ties: all rows whose rank by the sort terms is within the count.
std::string SelectWriter::LimitedText(const std::vector<std::string>& columns, bool named) const {
    std::string rows = "SELECT ";
    std::string order = OrderTerms();
    std::string tail = Rows();
    if (!groups_.empty()) {
        tail += " GROUP BY " + Listed(groups_);
    }
    if (!having_.empty()) {
        tail += " HAVING " + having_;
    }
    if (distinct_) {
        // The ranks are those of the rows that are left, so the sort terms are their columns.
        const std::string alias = context_.NewAlias();
        std::vector<std::string> terms;
        for (const OrderTerm& term : order_) {
            const auto found = std::find_if(items_.begin(), items_.end(), [&](const OutputItem& item) {
                return item.piece.sql == term.piece.sql;
            });
            std::string sql = alias + ".c" + std::to_string(found - items_.begin());
            sql += IsText(term.piece.type) ? " COLLATE JET" : "";
            terms.push_back(term.descending ? sql + " DESC" : sql);
        }
        for (std::size_t i = 0; order_.empty() && i < items_.size(); ++i) {
            terms.push_back(alias + ".c" + std::to_string(i) +
                            (IsText(items_[i].piece.type) ? " COLLATE JET" : ""));
        }
        order = Listed(terms);
        tail = " FROM (SELECT DISTINCT " + WithNames(columns) + tail + ") AS " + alias;
        rows += alias + ".*";
    } else {
        rows += WithNames(columns);
    }
    // Without a sort there are no ties.
    rows += order_.empty() ? ", row_number() OVER (" : ", rank() OVER (";
    rows += order.empty() ? ") AS r" : "ORDER BY " + order + ") AS r";
    std::string by = "r";
    if (const std::string sorted = SortTerms(); !groups_.empty() && sorted != OrderTerms()) {
        rows += ", row_number() OVER (ORDER BY " + sorted + ") AS s";
        by = "s";
    }
    std::string last = std::to_string(select_.top->count);
    if (select_.top->percent) {
        rows += ", count(*) OVER () AS n";
        last = "(n * " + last + " + 99) / 100";
    }
    std::vector<std::string> outer;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        outer.push_back("c" + std::to_string(i));
    }
    std::string sql = "SELECT " + (named ? WithNames(outer) : Listed(outer)) + " FROM (" + rows + tail +
                      ") WHERE r <= " + last + " ORDER BY " + by;
    context_.CheckSize(sql);
    return sql;
}

} // namespace quillary::database::sqlite
