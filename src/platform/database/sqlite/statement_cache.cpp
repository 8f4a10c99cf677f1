#include "platform/database/sqlite/statement_cache.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/sqlite/cells.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/schema.h"
#include "platform/database/sqlite/storage.h"
#include "platform/database/sqlite/translator.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

constexpr std::size_t kMostStatements = 256;
constexpr std::size_t kLongestKept = 20'000;

} // namespace

void BindParameters(sqlite3_stmt* statement, const std::vector<ParameterUse>& uses,
                    const std::vector<Variant>& values) {
    for (std::size_t i = 0; i < uses.size() && i < values.size(); ++i) {
        const int index = sqlite3_bind_parameter_index(statement, (":p" + std::to_string(i + 1)).c_str());
        if (index == 0) {
            continue; // a step that does not name it
        }
        if (uses[i].typed) {
            BindStored(statement, index, values[i], uses[i].type);
        } else {
            BindByKind(statement, index, values[i]);
        }
    }
}

std::vector<Variant> ValuesFor(const std::vector<ParameterUse>& uses, const ParameterValues& given) {
    std::vector<Variant> values;
    std::size_t missing = 0;
    for (const auto& use : uses) {
        const auto found = std::find_if(given.begin(), given.end(), [&](const auto& each) {
            return runtime::EqualName(each.first, use.name);
        });
        if (found == given.end()) {
            ++missing;
        } else {
            values.push_back(use.typed ? ConvertForField(found->second, use.type, 0, use.name)
                                       : found->second);
        }
    }
    if (missing > 0) {
        RaiseTooFewParameters(missing);
    }
    return values;
}

StatementCache::Entry& StatementCache::Find(std::string_view sql, Entry& passing) {
    const auto found = entries_.find(sql);
    if (found != entries_.end()) {
        return found->second;
    }
    if (sql.size() > kLongestKept || !seen_(sql)) {
        return passing;
    }
    if (entries_.size() >= kMostStatements) {
        entries_.clear();
    }
    return entries_.emplace(std::string(sql), Entry()).first->second;
}

std::shared_ptr<const jet_sql::Statement> StatementCache::Parse(std::string_view sql) {
    const auto found = entries_.find(sql);
    if (found != entries_.end() && found->second.tree != nullptr) {
        return found->second.tree;
    }
    if (lastTree_ == nullptr || lastText_ != sql) {
        lastTree_ = nullptr;
        lastTree_ = std::make_shared<const jet_sql::Statement>(jet_sql::Parse(sql));
        lastText_ = sql;
    }
    return lastTree_;
}

bool StatementCache::IsCurrent(const Entry& entry) {
    return entry.schema == connection_.SchemaGeneration() &&
           (entry.queries == 0 || entry.queries == connection_.QueriesGeneration());
}

std::shared_ptr<const OpenedQuery> StatementCache::OpenTable(const TableInfo& table) {
    // No statement begins with a zero byte.
    Entry passing;
    Entry& entry = Find(std::string(1, '\0') + table.def.name, passing);
    if (entry.query != nullptr && IsCurrent(entry)) {
        return entry.query;
    }
    const Schema schema(connection_);
    auto query = std::make_shared<OpenedQuery>();
    query->text = table.def.name;
    query->isTable = true;
    query->selection = TranslateTable(table.def, schema);
    query->catalogue = connection_.Tables();
    query->columns = std::make_shared<const Columns>(query->selection, *query->catalogue);
    entry.query = query;
    entry.schema = connection_.SchemaGeneration();
    entry.queries = 0;
    return query;
}

std::shared_ptr<OpenedQuery> StatementCache::TranslateQuery(Entry& entry, std::string_view sql,
                                                            const ParameterValues& given) {
    const auto tree = Parse(sql);
    const Schema schema(connection_);
    auto query = std::make_shared<OpenedQuery>();
    query->text = sql;
    query->selection = TranslateSelect(
        *tree, schema, [&](const std::string& text, FieldType type, const std::vector<ParameterUse>& uses) {
            return Headings(text, type, uses, given);
        });
    query->catalogue = connection_.Tables();
    query->columns = std::make_shared<const Columns>(query->selection, *query->catalogue);
    entry.schema = connection_.SchemaGeneration();
    entry.queries = schema.UsedQueries() ? connection_.QueriesGeneration() : 0;
    return query;
}

std::shared_ptr<const OpenedQuery> StatementCache::OpenQuery(std::string_view sql,
                                                             const ParameterValues& given) {
    Entry passing;
    Entry& entry = Find(sql, passing);
    std::shared_ptr<const OpenedQuery> query = entry.query;
    if (query == nullptr || !IsCurrent(entry)) {
        entry.query = nullptr;
        query = TranslateQuery(entry, sql, given);
        if (query->selection.reusable) {
            entry.query = query;
        } else if (&entry != &passing) {
            entry.tree = Parse(sql);
        }
    }
    if (query->selection.parameters.empty()) {
        return query;
    }
    auto withValues = std::make_shared<OpenedQuery>(*query);
    withValues->parameters = ValuesFor(query->selection.parameters, given);
    withValues->given = given;
    return withValues;
}

std::shared_ptr<const OpenedQuery>
StatementCache::OpenAgain(const std::shared_ptr<const OpenedQuery>& query) {
    if (!query->isTable) {
        return OpenQuery(query->text, query->given);
    }
    const TableInfo* table = connection_.Tables()->Find(query->text);
    if (table == nullptr) {
        RaiseUnknownTable(query->text);
    }
    return OpenTable(*table);
}

std::shared_ptr<const Action> StatementCache::Translate(std::string_view sql) {
    Entry passing;
    Entry& entry = Find(sql, passing);
    if (entry.action != nullptr && IsCurrent(entry)) {
        return entry.action;
    }
    entry.action = nullptr;
    const auto tree = Parse(sql);
    const Schema schema(connection_);
    auto action = std::make_shared<const Action>(TranslateAction(
        *tree, schema, [&](const std::string& text, FieldType type, const std::vector<ParameterUse>& uses) {
            return Headings(text, type, uses, {});
        }));
    if (action->reusable) {
        entry.action = action;
        entry.tree = tree; // Execute looks at it first
        entry.schema = connection_.SchemaGeneration();
        entry.queries = schema.UsedQueries() ? connection_.QueriesGeneration() : 0;
    }
    return action;
}

std::vector<Variant> StatementCache::Headings(const std::string& sql, FieldType type,
                                              const std::vector<ParameterUse>& uses,
                                              const ParameterValues& given) {
    const std::vector<Variant> values = ValuesFor(uses, given);
    Run run(connection_.Kept(sql));
    BindParameters(run, uses, values);
    CellBlock cells(1);
    std::vector<Variant> headings;
    while (run.Step(Operation::Read)) {
        cells.Clear();
        cells.Append(run);
        headings.push_back(ReadCell(cells.Row(0)[0], type));
    }
    return headings;
}

} // namespace quillary::database::sqlite
