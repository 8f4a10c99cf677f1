#include "platform/database/sqlite/action.h"

#include "platform/database/sqlite/ddl.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/statement_cache.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <sqlite3.h>
#include <string>

namespace quillary::database::sqlite {
namespace {

using runtime::RunTimeError;

class ActionRun {
public:
    ActionRun(Connection& connection, const Action& action, const std::vector<Variant>& parameters)
        : connection_(connection), action_(action), parameters_(parameters) {}

    // Any refused row is raised.
    void Whole(const Action::Step& step) { Count(step, Execute(step.sql, step, nullptr)); }
    // Refused rows are passed over.
    void RowByRow(const Action::Step& step);

    long Changed() const { return changed_; }

private:
    long Execute(const std::string& sql, const Action::Step& step, const std::int64_t* row);
    void Count(const Action::Step& step, long changes) { changed_ += step.counts ? changes : 0; }
    Operation OperationOf(const Action::Step& step) const;
    void Keyed(const Action::Step& step);
    void Insert(const Action::Step& step);
    long RemoveOrphans(const std::string& table);

    Connection& connection_;
    const Action& action_;
    const std::vector<Variant>& parameters_;
    long changed_ = 0;
};

bool IsInsert(const Action::Step& step) {
    return step.sql.starts_with("INSERT INTO ");
}

// A foreign key that fails on an update is the row's own one where the table has any.
Operation ActionRun::OperationOf(const Action::Step& step) const {
    if (action_.kind == Action::Kind::Delete) {
        return Operation::Delete;
    }
    if (action_.kind != Action::Kind::Update || IsInsert(step)) {
        return Operation::Insert;
    }
    const auto index = static_cast<std::size_t>(std::max(step.table, 0));
    const std::string& target = index < action_.targets.size() ? action_.targets[index] : action_.target;
    const TableInfo* table = connection_.Tables()->Find(target);
    const bool setsForeignKey = table != nullptr && [&] {
        const std::size_t set = step.sql.find(" SET ");
        return std::any_of(table->foreignKeys.begin(), table->foreignKeys.end(), [&](const ForeignKey& key) {
            return std::any_of(key.fields.begin(), key.fields.end(), [&](const std::string& field) {
                return set != std::string::npos &&
                       step.sql.find(Quote(field) + " = ", set) != std::string::npos;
            });
        });
    }();
    return setsForeignKey ? Operation::UpdateChild : Operation::Update;
}

long ActionRun::Execute(const std::string& sql, const Action::Step& step, const std::int64_t* row) {
    Run run(connection_.Kept(sql));
    BindParameters(run, action_.parameters, parameters_);
    if (row != nullptr) {
        sqlite3_bind_int64(run, sqlite3_bind_parameter_index(run, ":r1"), *row);
    }
    const sqlite3_int64 before = sqlite3_total_changes64(connection_.Handle());
    while (run.Step(OperationOf(step))) {
    }
    // A definition leaves the count of the statement before it.
    const bool changes = sqlite3_total_changes64(connection_.Handle()) != before;
    return changes ? static_cast<long>(sqlite3_changes64(connection_.Handle())) : 0;
}

void ActionRun::RowByRow(const Action::Step& step) {
    try {
        Savepoint all(connection_);
        const long changes = Execute(step.sql, step, nullptr);
        all.Keep();
        Count(step, changes);
        return;
    } catch (const RunTimeError& error) {
        if (!IsRowRefusedNumber(error.Number())) {
            throw;
        }
    }
    if (!step.keysSql.empty()) {
        Keyed(step);
    } else if (IsInsert(step) && action_.kind != Action::Kind::Update) {
        Insert(step);
    }
    // What is left goes with other steps and is passed over as a whole.
}

void ActionRun::Keyed(const Action::Step& step) {
    std::vector<std::int64_t> rows;
    {
        Run run(connection_.Kept(step.keysSql));
        BindParameters(run, action_.parameters, parameters_);
        while (run.Step(Operation::Read)) {
            rows.push_back(sqlite3_column_int64(run, 0));
        }
    }
    for (const std::int64_t row : rows) {
        try {
            Savepoint one(connection_);
            const long changes = Execute(step.rowSql, step, &row);
            one.Keep();
            Count(step, changes);
        } catch (const RunTimeError& error) {
            if (!IsRowRefusedNumber(error.Number())) {
                throw;
            }
        }
    }
}

// SQLite passes over everything but a missing related row by itself. Relations are put off for the length
// of the insert, and the rows without a parent are taken out again.
void ActionRun::Insert(const Action::Step& step) {
    connection_.Execute("PRAGMA defer_foreign_keys = ON", Operation::Insert);
    const std::string sql = "INSERT OR IGNORE" + step.sql.substr(std::string_view("INSERT").size());
    try {
        Savepoint all(connection_);
        const long changes = Execute(sql, step, nullptr);
        Count(step, changes - RemoveOrphans(action_.target));
        all.Keep();
    } catch (const RunTimeError& error) {
        if (!IsRowRefusedNumber(error.Number())) {
            throw;
        }
    }
    connection_.Execute("PRAGMA defer_foreign_keys = OFF", Operation::Insert);
}

long ActionRun::RemoveOrphans(const std::string& table) {
    std::vector<std::int64_t> rows;
    {
        const Statement check =
            connection_.Prepare("PRAGMA foreign_key_check(" + Quote(table) + ")", Operation::Read);
        Run run(check.Get());
        while (run.Step(Operation::Read)) {
            rows.push_back(sqlite3_column_int64(run, 1));
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    const TableInfo* info = connection_.Tables()->Find(table);
    if (!rows.empty() && info != nullptr) {
        const Statement remove = connection_.Prepare("DELETE FROM " + Quote(table) + " WHERE " +
                                                         std::string(RowIdName(info->def)) + " = ?1",
                                                     Operation::Delete);
        for (const std::int64_t row : rows) {
            Run run(remove.Get());
            sqlite3_bind_int64(run, 1, row);
            run.Step(Operation::Delete);
        }
    }
    return static_cast<long>(rows.size());
}

// The table of a SELECT ... INTO.
void CreateTableFor(Connection& connection, const Action& action) {
    if (!action.elsewhere) {
        CreateTable(connection, action.created);
        return;
    }
    const AttachedFiles::File file = connection.Others().Attach(action.createdIn, action.createdInConnect);
    CreateTable(connection, action.created, &file);
}

} // namespace

long RunAction(Connection& connection, const Action& action, const std::vector<Variant>& parameters,
               bool failOnError) {
    if (action.kind == Action::Kind::SelectInto) {
        CreateTableFor(connection, action);
    }
    ActionRun run(connection, action, parameters);
    const bool together = action.steps.size() > 1;
    if (!failOnError && together) {
        // The steps of a staged update depend on one another.
        try {
            Savepoint all(connection);
            for (const auto& step : action.steps) {
                run.Whole(step);
            }
            all.Keep();
        } catch (const RunTimeError& error) {
            if (!IsRowRefusedNumber(error.Number())) {
                throw;
            }
            return 0;
        }
        return run.Changed();
    }
    for (const auto& step : action.steps) {
        if (failOnError) {
            run.Whole(step);
        } else {
            run.RowByRow(step);
        }
    }
    return run.Changed();
}

} // namespace quillary::database::sqlite
