#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/sqlite/columns.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/translation.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

// Statements of the dialect as they were parsed and translated, by their text: a text that comes again
// costs a look-up. A translation lasts until the schema changes, or a saved query that it looked into.
namespace quillary::database::sqlite {

// Values given to the parameters of a query, by name.
using ParameterValues = std::vector<std::pair<std::string, Variant>>;

// A query that gives rows, ready to be opened.
struct OpenedQuery {
    std::string text; // a table's name, or SQL
    Selection selection;
    std::shared_ptr<const Catalogue> catalogue;
    std::shared_ptr<const Columns> columns;
    std::vector<Variant> parameters; // in the order of the selection's
    ParameterValues given;
    bool isTable = false;
};

void BindParameters(sqlite3_stmt* statement, const std::vector<ParameterUse>& uses,
                    const std::vector<Variant>& values);

// The values for the parameters of a statement, converted. 3061 when some are missing, 3421.
std::vector<Variant> ValuesFor(const std::vector<ParameterUse>& uses, const ParameterValues& given);

class StatementCache {
public:
    explicit StatementCache(Connection& connection) : connection_(connection) {}

    // The syntax tree; needs no scope.
    std::shared_ptr<const jet_sql::Statement> Parse(std::string_view sql);

    // The rest needs an open scope.

    // All rows of a table.
    std::shared_ptr<const OpenedQuery> OpenTable(const TableInfo& table);
    // A statement that gives rows; 3065 for an action.
    std::shared_ptr<const OpenedQuery> OpenQuery(std::string_view sql, const ParameterValues& given);
    std::shared_ptr<const OpenedQuery> OpenAgain(const std::shared_ptr<const OpenedQuery>& query);
    // UPDATE, DELETE, INSERT, SELECT INTO.
    std::shared_ptr<const Action> Translate(std::string_view sql);

private:
    struct Entry {
        std::shared_ptr<const jet_sql::Statement> tree;
        std::shared_ptr<const OpenedQuery> query; // without values for its parameters
        std::shared_ptr<const Action> action;
        std::uint64_t schema = 0;  // generation that the translation is of
        std::uint64_t queries = 0; // and that of the saved queries, 0 when it looked into none
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    // The entry of a text; one that comes for the first time gets `passing`, which is not kept.
    Entry& Find(std::string_view sql, Entry& passing);
    bool IsCurrent(const Entry& entry);
    std::vector<Variant> Headings(const std::string& sql, FieldType type,
                                  const std::vector<ParameterUse>& uses, const ParameterValues& given);
    std::shared_ptr<OpenedQuery> TranslateQuery(Entry& entry, std::string_view sql,
                                                const ParameterValues& given);

    Connection& connection_;
    std::unordered_map<std::string, Entry, Hash, std::equal_to<>> entries_;
    SeenBefore seen_;
    // The statement parsed last: it is translated in the next moment.
    std::string lastText_;
    std::shared_ptr<const jet_sql::Statement> lastTree_;
};

} // namespace quillary::database::sqlite
