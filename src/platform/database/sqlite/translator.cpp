#include "platform/database/sqlite/translator.h"

#include "platform/database/sqlite/action_writer.h"
#include "platform/database/sqlite/select_writer.h"
#include "platform/database/sqlite/sql_text.h"

#include <utility>

namespace quillary::database::sqlite {
namespace {

// The tables whose records make up the rows of a dynaset: those that are shown. Empty where a row cannot
// be told by its records.
std::vector<int> RecordSources(const Context& context, SelectWriter& writer) {
    std::vector<int> result;
    if (writer.Grouped()) {
        return result;
    }
    const auto& sources = writer.GetScope().sources;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (!sources[i].shown && sources.size() > 1) {
            continue;
        }
        if (!sources[i].hasRowId || sources[i].schema != &context.Schema()) {
            return {};
        }
        result.push_back(static_cast<int>(i));
    }
    return result;
}

// The columns of one row, by the addresses of its records.
std::string RowText(const std::string& columns, const std::vector<const Source*>& sources, bool parameters) {
    std::string sql;
    if (parameters) {
        // A named parameter takes the next free number: those of the addresses have to come first.
        sql = "WITH addresses AS (SELECT ";
        for (std::size_t i = 1; i <= sources.size(); ++i) {
            sql += (i > 1 ? ", ?" : "?") + std::to_string(i);
        }
        sql += ") ";
    }
    sql += "SELECT " + columns + " FROM ";
    if (sources.size() == 1) {
        const Source& source = *sources.front();
        return sql + source.text + " AS " + source.alias + " WHERE " + RowId(*source.table, source.alias) +
               " = ?1";
    }
    sql += "(SELECT 1)";
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const Source& source = *sources[i];
        sql += " LEFT JOIN " + source.text + " AS " + source.alias + " ON " +
               RowId(*source.table, source.alias) + " = ?" + std::to_string(i + 1);
    }
    return sql;
}

Selection SelectionOf(Context& context, const jet_sql::Select& select) {
    SelectWriter writer(context, select, nullptr);
    writer.Bind(true);
    Selection selection;
    const std::vector<int> records = RecordSources(context, writer);
    std::vector<std::string> columns;
    columns.reserve(writer.Items().size());
    selection.columns.reserve(writer.Items().size());
    std::vector<int> tableOf(writer.GetScope().sources.size(), -1);
    for (std::size_t i = 0; i < records.size(); ++i) {
        tableOf[static_cast<std::size_t>(records[i])] = static_cast<int>(i);
    }
    for (const OutputItem& item : writer.Items()) {
        ResultColumn column;
        column.name = item.name;
        column.type = item.piece.type;
        column.size = item.piece.size;
        if (item.piece.column && item.piece.source >= 0) {
            column.table = tableOf[static_cast<std::size_t>(item.piece.source)];
            column.field = column.table >= 0 ? item.piece.field : -1;
        }
        selection.columns.push_back(std::move(column));
        columns.push_back(item.piece.sql);
    }
    selection.valuesSql = writer.Grouped() ? writer.Text(false, true) : writer.TextOf(columns, false, true);
    if (!records.empty()) {
        std::vector<const Source*> sources;
        std::vector<std::string> keys;
        for (const int record : records) {
            const Source& source = writer.GetScope().sources[static_cast<std::size_t>(record)];
            sources.push_back(&source);
            keys.push_back(RowId(*source.table, source.alias));
            selection.tables.push_back({source.table->name, source.alias});
        }
        selection.columnsSql = Listed(columns);
        selection.keysSql = writer.TextOf(keys, false, true);
        selection.rowSql = RowText(selection.columnsSql, sources, !context.parameters.empty());
    }
    return selection;
}

Selection SelectionOf(Context& context, const jet_sql::Query& query) {
    QueryText text = WriteQuery(context, query, nullptr, QueryUse::Derived);
    Selection selection;
    for (DerivedColumn& column : text.columns) {
        ResultColumn result;
        result.name = std::move(column.name);
        result.type = column.type;
        result.size = column.size;
        selection.columns.push_back(std::move(result));
    }
    selection.valuesSql = std::move(text.sql);
    return selection;
}

// No tables and no queries: all that a criterion may name is handed to it.
class NoSchema final : public SchemaView {
public:
    const TableDef* FindTable(std::string_view) const override { return nullptr; }
    const std::string* FindQuery(std::string_view) const override { return nullptr; }
    std::string TableOrder(const TableDef&, std::string_view) const override { return {}; }
};

} // namespace

bool IsAction(const jet_sql::Statement& statement) {
    const auto* query = statement.As<jet_sql::Query>();
    const auto* select = query != nullptr ? query->As<jet_sql::Select>() : nullptr;
    return query == nullptr || (select != nullptr && select->into);
}

Selection TranslateSelect(const jet_sql::Statement& statement, const SchemaView& schema,
                          const HeadingQuery& headings) {
    const auto* query = statement.As<jet_sql::Query>();
    if (query == nullptr || IsAction(statement)) {
        Raise(3065, "Cannot open an action query as a recordset.");
    }
    Context context(schema, headings);
    context.Declare(statement.parameters);
    const auto* select = query->As<jet_sql::Select>();
    Selection selection = select != nullptr ? SelectionOf(context, *select) : SelectionOf(context, *query);
    selection.parameters = std::move(context.parameters);
    selection.reusable = context.reusable;
    return selection;
}

Selection TranslateTable(const TableDef& table, const SchemaView& schema) {
    jet_sql::Select select;
    select.items.emplace_back();
    jet_sql::TableSource source;
    source.node = jet_sql::TableName{table.name, {}, {}};
    select.from.push_back(std::move(source));
    const HeadingQuery none;
    Context context(schema, none);
    return SelectionOf(context, select);
}

Action TranslateAction(const jet_sql::Statement& statement, const SchemaView& schema,
                       const HeadingQuery& headings) {
    Context context(schema, headings);
    context.Declare(statement.parameters);
    if (const auto* update = statement.As<jet_sql::Update>()) {
        return WriteUpdate(context, *update);
    }
    if (const auto* remove = statement.As<jet_sql::Delete>()) {
        return WriteDelete(context, *remove);
    }
    if (const auto* insert = statement.As<jet_sql::Insert>()) {
        return WriteInsert(context, *insert);
    }
    if (const auto* query = statement.As<jet_sql::Query>(); query != nullptr && IsAction(statement)) {
        return WriteSelectInto(context, *query->As<jet_sql::Select>());
    }
    Raise(3065, "Cannot execute a select query.");
}

Criterion TranslateCriterion(const jet_sql::Expr& criterion, const std::vector<ResultColumn>& columns) {
    static const NoSchema schema;
    static const HeadingQuery none;
    Context context(schema, none);
    Scope scope;
    // One source with all columns; a column that is called after its table can be named so, too.
    std::vector<std::vector<int>> fields(1);
    scope.sources.emplace_back();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const ResultColumn& column = columns[i];
        scope.sources.front().columns.push_back({column.name, column.type, column.size, false});
        fields.front().push_back(static_cast<int>(i));
        if (const std::size_t point = column.name.find('.'); point != std::string::npos) {
            const std::string table = column.name.substr(0, point);
            int source = scope.FindSource(table);
            if (source < 0) {
                source = static_cast<int>(scope.sources.size());
                scope.sources.emplace_back();
                scope.sources.back().name = table;
                fields.emplace_back();
            }
            const auto index = static_cast<std::size_t>(source);
            scope.sources[index].columns.push_back(
                {column.name.substr(point + 1), column.type, column.size, false});
            fields[index].push_back(static_cast<int>(i));
        }
    }
    Scope::Capture capture;
    scope.capture = &capture;
    Criterion result;
    result.sql = "SELECT " + ExpressionWriter(context, scope).Condition(criterion);
    if (!context.parameters.empty()) {
        Raise(3070, "The database engine does not recognize '" + context.parameters.front().name +
                        "' as a valid field name or expression.");
    }
    for (const auto& [source, column] : capture.keys) {
        result.fields.push_back(fields[static_cast<std::size_t>(source)][static_cast<std::size_t>(column)]);
    }
    return result;
}

} // namespace quillary::database::sqlite
