#pragma once

#include "platform/database/sqlite/conversion_writer.h"
#include "platform/database/sqlite/scope.h"

#include <optional>
#include <string>
#include <vector>

// FROM clauses: tables, saved queries and subqueries, and the joins between them.
namespace quillary::database::sqlite {

// One source behind another. Inner joins have their conditions in JoinPlan::conditions.
struct JoinStep {
    std::vector<int> sources; // one; several for a join in brackets on the empty side of an outer one
    std::string text;         // what is joined
    bool outer = false;       // LEFT JOIN
    std::string on;           // of an outer join
};

// a.x = b.y in an ON clause.
struct JoinEquality {
    int left = 0;
    int leftField = 0;
    int right = 0;
    int rightField = 0;
};

// A condition of an inner join, or one term of a WHERE, with the sources that it names.
struct JoinCondition {
    std::string sql;
    std::vector<int> sources;
};

struct JoinPlan {
    std::vector<JoinStep> steps;           // RIGHT JOIN turned round
    std::vector<JoinCondition> conditions; // for WHERE
    std::vector<JoinEquality> equalities;
    bool outer = false; // there is an outer join
    // The sources by whose order the rows come where none is told. A table that is reached by a unique key
    // gives no order of its own: the other side drives. A join in brackets on the right is entered through
    // the table that the condition before it names. Of an outer join it is the side that is kept. Else the
    // tables come as they are written.
    std::vector<int> order;

    // What stands behind FROM, with all sources or without one of them.
    std::string Text(int without = -1) const;
    // The terms of `order`, of the sources that are shown or of all.
    std::string Order(const Scope& scope, bool shownOnly = false) const;
};

// Writes a condition and notes the sources that it names.
JoinCondition WriteCondition(Context& context, Scope& scope, const jet_sql::Expr& expr,
                             Mismatch mismatch = Mismatch::Criteria);
// " WHERE a AND b"; "" for none.
std::string WhereText(const std::vector<JoinCondition>& conditions);

// Finds the sources (3078) and writes the ON clauses. ordered: the order of a single query in the clause
// matters.
JoinPlan WriteFrom(Context& context, Scope& scope, const std::vector<jet_sql::TableSource>& from,
                   const std::optional<jet_sql::ExternalFile>& file, bool ordered);

// Whether each combination of rows of these sources goes with one row of the others at most: each of the
// others is reached from them by a unique key.
bool OthersAreUnique(const Scope& scope, const std::vector<JoinEquality>& equalities,
                     const std::vector<int>& from, const std::vector<int>& others);
// Whether an index begins with the field.
bool HasIndexOn(const TableDef& table, int field);

// A table by its name, in this file or another; the schema it belongs to and its name in the text.
struct FoundTable {
    const TableDef* table = nullptr;
    const SchemaView* schema = nullptr;
    std::string text;
};
FoundTable FindTable(Context& context, const std::string& name, const std::string& path,
                     const std::string& connect);

} // namespace quillary::database::sqlite
