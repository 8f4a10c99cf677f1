#include "platform/database/sqlite/join_writer.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/sqlite/expression_writer.h"
#include "platform/database/sqlite/query_writer.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {

using jet_sql::TableSource;

namespace {

// A part of the FROM clause: its joins from the left, and the order of its rows.
struct Fragment {
    std::vector<JoinStep> steps;
    std::vector<JoinCondition> conditions;
    std::vector<int> sources;
    std::vector<int> order;

    bool OnlyOuterSteps() const {
        return conditions.empty() &&
               std::all_of(steps.begin() + 1, steps.end(), [](const JoinStep& step) { return step.outer; });
    }
};

bool Contains(const std::vector<int>& list, int value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

template <class T>
void Append(std::vector<T>& to, std::vector<T>& from) {
    to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

class FromWriter {
public:
    FromWriter(Context& context, Scope& scope, JoinPlan& plan)
        : context_(context), scope_(scope), plan_(plan) {}

    void AddSources(const TableSource& source, const std::optional<jet_sql::ExternalFile>& file,
                    bool ordered);
    Fragment Write(const TableSource& source);

private:
    void AddTable(const jet_sql::TableName& table, const std::optional<jet_sql::ExternalFile>& file,
                  bool ordered);
    void AddQuery(std::string name, const jet_sql::Query& query, bool ordered);
    bool AddView(const std::string& name, const jet_sql::Query& query);
    void AddSource(Source source);
    void CheckName(const std::string& name) const;

    Fragment Inner(Fragment left, Fragment right, const jet_sql::Expr& on);
    Fragment Outer(Fragment kept, Fragment other, const jet_sql::Expr& on);
    JoinCondition On(const jet_sql::Expr& on, const Fragment& left, const Fragment& right);
    void NoteEqualities(const jet_sql::Expr& on);

    Context& context_;
    Scope& scope_;
    JoinPlan& plan_;
    int next_ = 0; // sources are written in the order in which they were added
};

void FromWriter::AddSources(const TableSource& source, const std::optional<jet_sql::ExternalFile>& file,
                            bool ordered) {
    if (const auto* table = source.As<jet_sql::TableName>()) {
        AddTable(*table, file, ordered);
    } else if (const auto* derived = source.As<jet_sql::DerivedTable>()) {
        AddQuery(derived->alias, *derived->query, ordered);
    } else if (const auto* join = source.As<jet_sql::Join>()) {
        AddSources(*join->left, file, false);
        AddSources(*join->right, file, false);
    }
}

void FromWriter::CheckName(const std::string& name) const {
    if (!name.empty() && scope_.FindSource(name) >= 0) {
        Raise(3074, "Cannot repeat table name '" + name + "' in FROM clause.");
    }
}

void FromWriter::AddSource(Source source) {
    CheckName(source.name);
    source.alias = context_.NewAlias();
    scope_.sources.push_back(std::move(source));
}

void FromWriter::AddTable(const jet_sql::TableName& table, const std::optional<jet_sql::ExternalFile>& file,
                          bool ordered) {
    const std::string& name = table.alias.empty() ? table.name : table.alias;
    const bool elsewhere = !table.file.empty() || file.has_value();
    FoundTable found = elsewhere && table.file.empty()
                           ? FindTable(context_, table.name, file->path, file->connect)
                           : FindTable(context_, table.name, table.file, {});
    if (found.table != nullptr) {
        Source source;
        source.name = name;
        source.table = found.table;
        source.schema = found.schema;
        source.text = std::move(found.text);
        source.hasRowId = true;
        return AddSource(std::move(source));
    }
    const std::string* sql = elsewhere ? nullptr : context_.Schema().FindQuery(table.name);
    if (sql == nullptr) {
        RaiseUnknownTable(table.name);
    }
    const Context::OpenQuery open(context_, table.name);
    const jet_sql::Statement statement = jet_sql::Parse(*sql);
    const auto* query = statement.As<jet_sql::Query>();
    if (query == nullptr || (query->As<jet_sql::Select>() && query->As<jet_sql::Select>()->into)) {
        Raise(3069, "The action query '" + table.name + "' cannot be used as a row source.");
    }
    context_.Declare(statement.parameters);
    AddQuery(name, *query, ordered);
}

// Whether the query shows fields of one table, as they are, and does nothing else with its rows than to
// choose and sort them.
const jet_sql::TableName* PlainTable(const jet_sql::Query& query) {
    const auto* select = query.As<jet_sql::Select>();
    if (select == nullptr || select->predicate == jet_sql::Predicate::Distinct || select->top ||
        select->into || select->file || !select->groupBy.empty() || select->having ||
        select->from.size() != 1) {
        return nullptr;
    }
    const bool fields = std::all_of(select->items.begin(), select->items.end(), [](const auto& item) {
        return item.IsStar() || item.expr->template As<jet_sql::NameRef>() != nullptr;
    });
    const bool sorts = std::all_of(select->orderBy.begin(), select->orderBy.end(), [](const auto& term) {
        return term.expr.template As<jet_sql::NameRef>() != nullptr;
    });
    return fields && sorts ? select->from.front().As<jet_sql::TableName>() : nullptr;
}

// A query that is no more than a view of one table stands for the table, so that it can be changed.
bool FromWriter::AddView(const std::string& name, const jet_sql::Query& query) {
    const jet_sql::TableName* table = PlainTable(query);
    if (table == nullptr) {
        return false;
    }
    const auto& select = *query.As<jet_sql::Select>();
    Scope inner;
    JoinPlan none;
    FromWriter(context_, inner, none).AddTable(*table, std::nullopt, false);
    Source& source = inner.sources.front();
    if (source.table == nullptr) {
        return false;
    }
    std::vector<ViewField> view;
    for (const auto& item : select.items) {
        if (item.IsStar()) {
            if (!item.starOf.empty() && inner.FindSource(item.starOf) < 0) {
                return false;
            }
            for (std::size_t i = 0; i < source.ColumnCount(); ++i) {
                view.push_back(
                    {std::string(source.ColumnName(i)), inner.Column(0, static_cast<int>(i)).field});
            }
            continue;
        }
        const auto column = inner.Find(*item.expr->As<jet_sql::NameRef>());
        if (!column) {
            return false;
        }
        view.push_back({item.alias.empty()
                            ? std::string(source.ColumnName(static_cast<std::size_t>(column->place)))
                            : item.alias,
                        column->field});
    }
    std::string order;
    for (const auto& term : select.orderBy) {
        const auto column = inner.Find(*term.expr.As<jet_sql::NameRef>());
        if (!column) {
            return false;
        }
        order += (order.empty() ? "" : ", ") + column->sql + (term.descending ? " DESC" : "");
    }
    if (select.where) {
        const std::string condition = WriteCondition(context_, inner, *select.where).sql;
        source.condition =
            source.condition.empty() ? condition : "(" + source.condition + " AND " + condition + ")";
    }
    if (!order.empty()) {
        source.order = std::move(order);
    }
    source.view = std::move(view);
    source.name = name;
    CheckName(name);
    scope_.sources.push_back(std::move(source));
    return true;
}

void FromWriter::AddQuery(std::string name, const jet_sql::Query& query, bool ordered) {
    if (AddView(name, query)) {
        return;
    }
    QueryText text = WriteQuery(context_, query, nullptr, ordered ? QueryUse::Derived : QueryUse::Set);
    Source source;
    source.name = std::move(name);
    source.columns = std::move(text.columns);
    source.grouped = text.grouped;
    source.text = "(" + text.sql + ")";
    AddSource(std::move(source));
}

Fragment FromWriter::Write(const TableSource& source) {
    if (const auto* join = source.As<jet_sql::Join>()) {
        Fragment left = Write(*join->left);
        Fragment right = Write(*join->right);
        switch (join->kind) {
        case jet_sql::JoinKind::Left:
            return Outer(std::move(left), std::move(right), *join->on);
        case jet_sql::JoinKind::Right:
            return Outer(std::move(right), std::move(left), *join->on);
        case jet_sql::JoinKind::Inner:
            break;
        }
        return Inner(std::move(left), std::move(right), *join->on);
    }
    const int index = next_++;
    const Source& added = scope_.sources[static_cast<std::size_t>(index)];
    Fragment fragment;
    fragment.steps.push_back({{index}, added.text + " AS " + added.alias, false, {}});
    fragment.sources.push_back(index);
    fragment.order.push_back(index);
    if (!added.condition.empty()) {
        fragment.conditions.push_back({added.condition, {index}});
    }
    return fragment;
}

JoinCondition FromWriter::On(const jet_sql::Expr& on, const Fragment& left, const Fragment& right) {
    NoteEqualities(on);
    JoinCondition condition = WriteCondition(context_, scope_, on, Mismatch::Join);
    const bool own = std::all_of(condition.sources.begin(), condition.sources.end(), [&](int source) {
        return Contains(left.sources, source) || Contains(right.sources, source);
    });
    if (!own) {
        Raise(3296, "Join expression not supported.");
    }
    return condition;
}

void FromWriter::NoteEqualities(const jet_sql::Expr& on) {
    const auto* binary = on.As<jet_sql::Binary>();
    if (binary == nullptr) {
        return;
    }
    if (binary->op == jet_sql::BinaryOp::And) {
        NoteEqualities(*binary->left);
        NoteEqualities(*binary->right);
        return;
    }
    const auto* left = binary->left->As<jet_sql::NameRef>();
    const auto* right = binary->right->As<jet_sql::NameRef>();
    if (binary->op != jet_sql::BinaryOp::Equal || left == nullptr || right == nullptr) {
        return;
    }
    const auto leftColumn = scope_.Find(*left);
    const auto rightColumn = scope_.Find(*right);
    if (leftColumn && rightColumn) {
        plan_.equalities.push_back(
            {leftColumn->source, leftColumn->field, rightColumn->source, rightColumn->field});
    }
}

Fragment FromWriter::Inner(Fragment left, Fragment right, const jet_sql::Expr& on) {
    JoinCondition condition = On(on, left, right);
    if (right.sources.size() > 1) {
        // Entered through the table that the condition names, if it is one.
        const auto entry = [&](int source) { return Contains(condition.sources, source); };
        if (std::count_if(right.sources.begin(), right.sources.end(), entry) == 1) {
            std::stable_partition(right.order.begin(), right.order.end(), entry);
        }
    }
    const bool rightDrives = OthersAreUnique(scope_, plan_.equalities, right.sources, left.sources) &&
                             !OthersAreUnique(scope_, plan_.equalities, left.sources, right.sources);
    Fragment result = std::move(left);
    Append(result.steps, right.steps);
    Append(result.conditions, right.conditions);
    Append(result.sources, right.sources);
    result.conditions.push_back(std::move(condition));
    if (rightDrives) {
        std::swap(result.order, right.order);
    }
    Append(result.order, right.order);
    return result;
}

Fragment FromWriter::Outer(Fragment kept, Fragment other, const jet_sql::Expr& on) {
    plan_.outer = true;
    for (const int source : other.sources) {
        scope_.sources[static_cast<std::size_t>(source)].nullSide = true;
    }
    JoinCondition condition = On(on, kept, other);
    // Where the other side is itself a chain of outer joins, and this condition looks at its first table
    // alone, the chain goes on from here; what misses the first table misses the rest.
    const auto usesFirstOnly = [&] {
        return std::none_of(other.sources.begin(), other.sources.end(), [&](int source) {
            return source != other.steps.front().sources.front() && Contains(condition.sources, source);
        });
    };
    Fragment result = std::move(kept);
    if (other.steps.size() == 1 || (other.OnlyOuterSteps() && usesFirstOnly())) {
        for (const JoinCondition& own : other.conditions) { // of a view
            condition.sql = "(" + condition.sql + " AND " + own.sql + ")";
        }
        other.steps.front().outer = true;
        other.steps.front().on = std::move(condition.sql);
        Append(result.steps, other.steps);
    } else {
        // A join in brackets: its rows cannot be told by their addresses any more.
        JoinPlan inner;
        inner.steps = std::move(other.steps);
        std::string text = "(" + inner.Text();
        if (!other.conditions.empty()) {
            if (inner.steps.back().outer) {
                Raise(3296, "Join expression not supported.");
            }
            text += " ON ";
            for (std::size_t i = 0; i < other.conditions.size(); ++i) {
                text += (i > 0 ? " AND " : "") + other.conditions[i].sql;
            }
        }
        for (const int source : other.sources) {
            scope_.sources[static_cast<std::size_t>(source)].hasRowId = false;
        }
        result.steps.push_back({other.sources, text + ")", true, std::move(condition.sql)});
        other.order.clear();
    }
    Append(result.sources, other.sources);
    Append(result.order, other.order);
    return result;
}

// The unique index, if any, of which all fields are among these.
bool HoldsUniqueKey(const TableDef& table, const std::vector<int>& fields) {
    return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
        return (index.primary || index.unique) && !index.fields.empty() &&
               std::all_of(index.fields.begin(), index.fields.end(), [&](const std::string& field) {
                   return std::find(fields.begin(), fields.end(), FindField(table, field)) != fields.end();
               });
    });
}

} // namespace

std::string JoinPlan::Order(const Scope& scope, bool shownOnly) const {
    std::string sql;
    for (const int index : order) {
        const Source& source = scope.sources[static_cast<std::size_t>(index)];
        if (source.table == nullptr || (shownOnly && !source.shown)) {
            continue;
        }
        const std::string terms =
            source.order.empty() ? source.schema->TableOrder(*source.table, source.alias) : source.order;
        if (!terms.empty()) {
            sql += (sql.empty() ? "" : ", ") + terms;
        }
    }
    return sql;
}

JoinCondition WriteCondition(Context& context, Scope& scope, const jet_sql::Expr& expr, Mismatch mismatch) {
    for (Source& source : scope.sources) {
        source.used = false;
    }
    JoinCondition condition;
    condition.sql = ExpressionWriter(context, scope, mismatch).Condition(expr);
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        if (scope.sources[i].used) {
            condition.sources.push_back(static_cast<int>(i));
        }
    }
    return condition;
}

std::string WhereText(const std::vector<JoinCondition>& conditions) {
    std::string sql;
    for (const JoinCondition& condition : conditions) {
        sql += (sql.empty() ? " WHERE " : " AND ") + condition.sql;
    }
    return sql;
}

std::string JoinPlan::Text(int without) const {
    std::string sql;
    for (const JoinStep& step : steps) {
        if (step.sources.size() == 1 && step.sources.front() == without) {
            continue;
        }
        if (!sql.empty()) {
            sql += step.outer ? " LEFT JOIN " : " JOIN ";
        }
        sql += step.text;
        if (step.outer) {
            sql += " ON " + step.on;
        }
    }
    return sql;
}

FoundTable FindTable(Context& context, const std::string& name, const std::string& path,
                     const std::string& connect) {
    FoundTable found;
    found.schema = &context.Schema();
    std::string schemaName;
    if (!path.empty() || !connect.empty()) {
        context.reusable = false;
        found.schema = context.Schema().External(path, connect, schemaName);
        if (found.schema == nullptr) {
            Raise(kErrFileNotFound, "Could not find file '" + path + "'.");
        }
    }
    found.table = found.schema->FindTable(name);
    if (found.table != nullptr) {
        found.text = schemaName.empty() ? Quote(found.table->name)
                                        : Quote(schemaName) + "." + Quote(found.table->name);
    }
    return found;
}

JoinPlan WriteFrom(Context& context, Scope& scope, const std::vector<TableSource>& from,
                   const std::optional<jet_sql::ExternalFile>& file, bool ordered) {
    JoinPlan plan;
    FromWriter writer(context, scope, plan);
    for (const TableSource& source : from) {
        writer.AddSources(source, file, ordered && from.size() == 1);
    }
    for (const TableSource& source : from) {
        Fragment fragment = writer.Write(source);
        Append(plan.steps, fragment.steps);
        Append(plan.conditions, fragment.conditions);
        Append(plan.order, fragment.order);
    }
    return plan;
}

bool OthersAreUnique(const Scope& scope, const std::vector<JoinEquality>& equalities,
                     const std::vector<int>& from, const std::vector<int>& others) {
    std::vector<int> settled = from;
    std::vector<int> open = others;
    const auto settle = [&](int index) {
        const Source& source = scope.sources[static_cast<std::size_t>(index)];
        if (source.table == nullptr) {
            return false;
        }
        std::vector<int> fields;
        for (const JoinEquality& equality : equalities) {
            if (equality.left == index && Contains(settled, equality.right)) {
                fields.push_back(equality.leftField);
            }
            if (equality.right == index && Contains(settled, equality.left)) {
                fields.push_back(equality.rightField);
            }
        }
        return HoldsUniqueKey(*source.table, fields);
    };
    for (bool progress = true; progress;) {
        progress = false;
        for (auto each = open.begin(); each != open.end(); ++each) {
            if (settle(*each)) {
                settled.push_back(*each);
                open.erase(each);
                progress = true;
                break;
            }
        }
    }
    return open.empty();
}

bool HasIndexOn(const TableDef& table, int field) {
    return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
        return !index.fields.empty() && FindField(table, index.fields.front()) == field;
    });
}

} // namespace quillary::database::sqlite
