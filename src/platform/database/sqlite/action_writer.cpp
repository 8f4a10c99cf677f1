#include "platform/database/sqlite/action_writer.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/walk.h"
#include "platform/database/sqlite/select_writer.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

using jet_sql::Expr;

constexpr std::string_view kStage = "temp.qy_stage";
constexpr std::string_view kOneRow = ":r1";

std::string WithCondition(std::string where, const std::string& condition) {
    return std::move(where) + (where.empty() ? " WHERE " : " AND ") + condition;
}

bool HasSubquery(const Expr& expr) {
    bool found = false;
    jet_sql::ForEachExpr(expr, [&](const Expr& each) { found = found || jet_sql::QueryOf(each) != nullptr; });
    return found;
}

// Parameters that nothing declares count as fields that are missing.
void RaiseMissing(const Context& context) {
    const auto count = std::count_if(context.parameters.begin(), context.parameters.end(),
                                     [](const ParameterUse& use) { return !use.declared; });
    RaiseTooFewParameters(static_cast<std::size_t>(count));
}

void Finish(Action& action, Context& context) {
    action.parameters = std::move(context.parameters);
    action.reusable = context.reusable;
    if (action.target.empty() && !action.targets.empty()) {
        action.target = action.targets.front();
    }
}

// --------------------------------------------------------------------------------------------- UPDATE

class UpdateWriter {
public:
    UpdateWriter(Context& context, const jet_sql::Update& update) : context_(context), update_(update) {}
    Action Write();

private:
    struct Change {
        int source;
        std::string field;
        std::string value;
    };

    void AddChange(const jet_sql::Assignment& assignment);
    const Source& SourceAt(int index) const { return scope_.sources[static_cast<std::size_t>(index)]; }
    std::string RowIdOf(int index) const { return RowId(*SourceAt(index).table, SourceAt(index).alias); }
    // "f" = value, ...: the values themselves, or columns of the rows gathered before.
    std::string Assignments(int target, std::string_view gathered) const;
    void WriteDirect(int target);
    void WriteGathered(int target);
    void WriteStaged();
    void WriteStagedTarget(int number);

    Context& context_;
    const jet_sql::Update& update_;
    Scope scope_;
    JoinPlan joins_;
    std::string where_;
    std::vector<Change> changes_;
    std::vector<int> targets_;
    bool unknownTarget_ = false;
    Action action_;
};

Action UpdateWriter::Write() {
    joins_ = WriteFrom(context_, scope_, update_.tables, update_.file, false);
    for (const Source& source : scope_.sources) {
        if (source.grouped) {
            RaiseNotUpdateable();
        }
    }
    for (const auto& assignment : update_.set) {
        AddChange(assignment);
    }
    if (update_.where) {
        joins_.conditions.push_back(WriteCondition(context_, scope_, *update_.where));
    }
    where_ = WhereText(joins_.conditions);
    if (unknownTarget_) {
        RaiseMissing(context_);
    }
    action_.kind = Action::Kind::Update;
    for (const int target : targets_) {
        action_.targets.push_back(SourceAt(target).table->name);
    }
    if (targets_.size() > 1 || SourceAt(targets_.front()).nullSide) {
        WriteStaged();
    } else if (joins_.outer) {
        WriteGathered(targets_.front());
    } else {
        WriteDirect(targets_.front());
    }
    Finish(action_, context_);
    return std::move(action_);
}

void UpdateWriter::AddChange(const jet_sql::Assignment& assignment) {
    if (HasSubquery(assignment.value)) {
        RaiseNotUpdateable();
    }
    const auto column = scope_.Find(assignment.target);
    Piece value = ExpressionWriter(context_, scope_).Value(assignment.value);
    if (!column) {
        context_.Parameter(assignment.target.Field());
        unknownTarget_ = true;
        return;
    }
    const Source& source = SourceAt(column->source);
    if (source.table == nullptr || !source.hasRowId) {
        RaiseNotUpdateable();
    }
    const FieldDef& field = source.table->fields[static_cast<std::size_t>(column->field)];
    if (field.counter) {
        Raise(3113, "Cannot update '" + field.name + "'; field not updateable.");
    }
    for (const Change& change : changes_) {
        if (change.source == column->source && change.field == field.name) {
            Raise(3063, "Duplicate output destination '" + field.name + "'.");
        }
    }
    changes_.push_back(
        {column->source, field.name, AsAssigned(context_, std::move(value), *source.table, field)});
    if (std::find(targets_.begin(), targets_.end(), column->source) == targets_.end()) {
        targets_.push_back(column->source);
    }
}

std::string UpdateWriter::Assignments(int target, std::string_view gathered) const {
    std::string sql;
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        if (changes_[i].source != target) {
            continue;
        }
        sql += sql.empty() ? "" : ", ";
        sql += Quote(changes_[i].field) + " = ";
        sql += gathered.empty() ? changes_[i].value : std::string(gathered) + ".v" + std::to_string(i);
    }
    return sql;
}

void UpdateWriter::WriteDirect(int target) {
    const Source& source = SourceAt(target);
    std::string sql = "UPDATE " + source.text + " AS " + source.alias + " SET " + Assignments(target, {});
    if (const std::string others = joins_.Text(target); !others.empty()) {
        sql += " FROM " + others;
    }
    Action::Step step;
    step.sql = sql + where_;
    step.table = 0;
    step.keysSql = "SELECT DISTINCT " + RowIdOf(target) + " FROM " + joins_.Text() + where_;
    step.rowSql = sql + WithCondition(where_, RowIdOf(target) + " = " + std::string(kOneRow));
    action_.steps.push_back(std::move(step));
}

// SQLite cannot have the table that changes within an outer join: the join is a query beside it.
void UpdateWriter::WriteGathered(int target) {
    const Source& source = SourceAt(target);
    std::string rows = "SELECT " + RowIdOf(target) + " AS r";
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        rows += ", " + changes_[i].value + " AS v" + std::to_string(i);
    }
    rows += " FROM " + joins_.Text();
    const std::string alias = context_.NewAlias();
    const std::string head =
        "UPDATE " + source.text + " AS " + alias + " SET " + Assignments(target, "q") + " FROM (" + rows;
    const std::string tail = ") AS q WHERE " + RowId(*source.table, alias) + " = q.r";
    Action::Step step;
    step.sql = head + where_ + tail;
    step.table = 0;
    step.keysSql = "SELECT DISTINCT " + RowIdOf(target) + " FROM " + joins_.Text() + where_;
    step.rowSql = head + WithCondition(where_, RowIdOf(target) + " = " + std::string(kOneRow)) + tail;
    action_.steps.push_back(std::move(step));
}

void UpdateWriter::WriteStaged() {
    std::vector<std::string> names;
    std::vector<std::string> values;
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        names.push_back("r" + std::to_string(i));
        values.push_back(RowIdOf(targets_[i]));
    }
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        names.push_back("v" + std::to_string(i));
        values.push_back(changes_[i].value);
    }
    const std::string stage(kStage);
    const auto add = [&](std::string sql, bool counts, int table) {
        Action::Step step;
        step.sql = std::move(sql);
        step.counts = counts;
        step.table = table;
        action_.steps.push_back(std::move(step));
    };
    add("CREATE TABLE " + stage + " (" + Listed(names) + ")", false, -1);
    // The rows of the join are what is counted.
    add("INSERT INTO " + stage + " SELECT " + Listed(values) + " FROM " + joins_.Text() + where_, true, -1);
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        WriteStagedTarget(static_cast<int>(i));
    }
    add("DROP TABLE " + stage, false, -1);
}

void UpdateWriter::WriteStagedTarget(int number) {
    const int target = targets_[static_cast<std::size_t>(number)];
    const Source& source = SourceAt(target);
    const std::string row = "r" + std::to_string(number);
    const std::string alias = context_.NewAlias();
    Action::Step step;
    step.counts = false;
    step.table = number;
    step.sql = "UPDATE " + source.text + " AS " + alias + " SET " + Assignments(target, "q") + " FROM " +
               std::string(kStage) + " AS q WHERE " + RowId(*source.table, alias) + " = q." + row;
    action_.steps.push_back(step);
    if (!source.nullSide) {
        return;
    }
    std::vector<std::string> fields;
    std::vector<std::string> values;
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        if (changes_[i].source == target) {
            fields.push_back(Quote(changes_[i].field));
            values.push_back("v" + std::to_string(i));
        }
    }
    // SQLite would number a key that nothing is assigned to.
    for (const FieldDef& field : source.table->fields) {
        if (IsRowIdKey(*source.table, field) && field.defaultValue.IsEmpty() &&
            std::find(fields.begin(), fields.end(), Quote(field.name)) == fields.end()) {
            fields.push_back(Quote(field.name));
            values.push_back(AsAssigned(context_, NullPiece(), *source.table, field));
        }
    }
    step.sql = "INSERT INTO " + source.text + " (" + Listed(fields) + ") SELECT " + Listed(values) +
               " FROM " + std::string(kStage) + " WHERE " + row + " IS NULL";
    action_.steps.push_back(std::move(step));
}

// --------------------------------------------------------------------------------------------- DELETE

[[noreturn]] void RaiseWhichTable() {
    Raise(3128, "Specify the table containing the records you want to delete.");
}

// The source that the column list means.
int DeleteTarget(Context& context, Scope& scope, const jet_sql::Delete& statement) {
    int starred = -1;
    int listed = -1;
    bool several = false;
    for (const auto& item : statement.items) {
        if (item.IsStar()) {
            if (item.starOf.empty()) {
                continue;
            }
            const int source = scope.FindSource(item.starOf);
            if (source < 0) {
                RaiseUnknownTable(item.starOf);
            }
            if (starred >= 0 && starred != source) {
                Raise(3086, "Could not delete from specified tables.");
            }
            starred = source;
            continue;
        }
        const auto* name = item.expr->As<jet_sql::NameRef>();
        int source = -1;
        if (const auto column = name != nullptr ? scope.Find(*name) : std::nullopt) {
            source = column->source;
        } else if (name != nullptr && name->parts.size() == 1) {
            source = scope.FindSource(name->Field()); // DELETE t FROM t
        }
        if (source < 0) {
            ExpressionWriter(context, scope).Value(*item.expr);
        } else {
            several = several || (listed >= 0 && listed != source);
            listed = source;
        }
    }
    if (starred >= 0) {
        return starred;
    }
    if (scope.sources.size() == 1) {
        return 0;
    }
    if (listed < 0 || several) {
        RaiseWhichTable();
    }
    return listed;
}

// The terms of a WHERE, each by itself.
void AddConditions(Context& context, Scope& scope, const Expr& expr, std::vector<JoinCondition>& conditions) {
    const auto* binary = expr.As<jet_sql::Binary>();
    if (binary != nullptr && binary->op == jet_sql::BinaryOp::And) {
        AddConditions(context, scope, *binary->left, conditions);
        AddConditions(context, scope, *binary->right, conditions);
        return;
    }
    conditions.push_back(WriteCondition(context, scope, expr));
}

// The WHERE of a delete whose table hangs on the others by one equal field: "its field is among theirs".
// That is the fastest where the field has no index; where it has one, SQLite finds the rows better through
// the whole join.
std::optional<std::string> SemiJoin(const Scope& scope, const JoinPlan& joins, int target) {
    const Source& source = scope.sources[static_cast<std::size_t>(target)];
    if (joins.outer) {
        return std::nullopt;
    }
    std::vector<JoinCondition> own;
    std::vector<JoinCondition> others;
    const JoinCondition* link = nullptr;
    for (const JoinCondition& condition : joins.conditions) {
        const bool here =
            std::find(condition.sources.begin(), condition.sources.end(), target) != condition.sources.end();
        if (!here) {
            others.push_back(condition);
        } else if (condition.sources.size() == 1) {
            own.push_back(condition);
        } else if (link != nullptr) {
            return std::nullopt;
        } else {
            link = &condition;
        }
    }
    if (link == nullptr) {
        return std::nullopt;
    }
    for (const JoinEquality& equality : joins.equalities) {
        const bool left = equality.left == target;
        if (!left && equality.right != target) {
            continue;
        }
        const int field = left ? equality.leftField : equality.rightField;
        if (equality.leftField < 0 || equality.rightField < 0) {
            continue;
        }
        const std::string first =
            scope.sources[static_cast<std::size_t>(equality.left)].FieldText(equality.leftField);
        const std::string second =
            scope.sources[static_cast<std::size_t>(equality.right)].FieldText(equality.rightField);
        std::string equal = "(";
        equal.append(first).append(" = ").append(second).append(")");
        if (link->sql != equal || HasIndexOn(*source.table, field)) {
            continue;
        }
        own.push_back({(left ? first : second) + " IN (SELECT " + (left ? second : first) + " FROM " +
                           joins.Text(target) + WhereText(others) + ")",
                       {}});
        return WhereText(own);
    }
    return std::nullopt;
}

} // namespace

Action WriteUpdate(Context& context, const jet_sql::Update& update) {
    return UpdateWriter(context, update).Write();
}

Action WriteDelete(Context& context, const jet_sql::Delete& statement) {
    Scope scope;
    JoinPlan joins = WriteFrom(context, scope, statement.from, statement.file, false);
    const int target = DeleteTarget(context, scope, statement);
    const Source& source = scope.sources[static_cast<std::size_t>(target)];
    const bool grouped = std::any_of(scope.sources.begin(), scope.sources.end(),
                                     [](const Source& each) { return each.grouped; });
    if (source.table == nullptr || !source.hasRowId || grouped) {
        Raise(3086, "Could not delete from specified tables.");
    }
    if (statement.where) {
        AddConditions(context, scope, *statement.where, joins.conditions);
    }
    const std::string where = WhereText(joins.conditions);
    const std::string rowId = RowId(*source.table, source.alias);
    const std::string head = "DELETE FROM " + source.text + " AS ";
    Action action;
    action.kind = Action::Kind::Delete;
    action.targets.push_back(source.table->name);
    Action::Step step;
    step.table = 0;
    step.keysSql = "SELECT " + rowId + " FROM " + joins.Text() + where;
    step.rowSql = head + source.alias + " WHERE " + rowId + " = " + std::string(kOneRow);
    if (scope.sources.size() == 1) {
        step.sql = head + source.alias + where;
    } else if (const auto semiJoin = SemiJoin(scope, joins, target)) {
        step.sql = head + source.alias + *semiJoin;
    } else {
        const std::string alias = context.NewAlias();
        step.sql = head + alias + " WHERE " + RowId(*source.table, alias) + " IN (" + step.keysSql + ")";
    }
    action.steps.push_back(std::move(step));
    Finish(action, context);
    return action;
}

} // namespace quillary::database::sqlite
