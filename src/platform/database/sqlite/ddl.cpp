#include "platform/database/sqlite/ddl.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/printer.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/query_defs.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/table_builder.h"
#include "platform/database/sqlite/table_rebuild.h"

#include <algorithm>
#include <optional>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

constexpr int kErrTableInUse = 3211;
constexpr int kErrTableExists = 3010;
constexpr int kErrNoSuchTable = 3376;
constexpr int kErrNoTableOrConstraint = 3371;
constexpr std::size_t kLongestName = 64;

template <class... Kinds>
struct Overload : Kinds... {
    using Kinds::operator()...;
};
template <class... Kinds>
Overload(Kinds...) -> Overload<Kinds...>;

void CheckNotInUse(const Connection& connection, const std::string& table) {
    if (connection.IsInUse(table)) {
        Raise(kErrTableInUse, "The database engine could not lock table '" + table +
                                  "' because it is already in use by another person or process.");
    }
}

const TableInfo& RequireTable(Connection& connection, const std::string& name, int number) {
    const TableInfo* table = connection.Tables()->Find(name);
    if (table == nullptr) {
        Raise(number, number == kErrNoSuchTable ? "Table '" + name + "' does not exist."
                                                : "Cannot find table or constraint '" + name + "'.");
    }
    CheckNotInUse(connection, table->def.name);
    return *table;
}

// SQLite takes a rowid's seed from the sequence.
void SeedCounter(Connection& connection, const std::string& table, std::int32_t seed) {
    if (seed == 1) {
        return;
    }
    const Statement insert =
        connection.Prepare("INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)", Operation::Define);
    Run run(insert.Get());
    sqlite3_bind_text(run, 1, table.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_int64(run, 2, static_cast<std::int64_t>(seed) - 1);
    run.Step(Operation::Define);
}

void MakeTable(Connection& connection, const TableBuilder& builder) {
    connection.Execute(TableText(builder.Table(), builder.Table().def.name), Operation::Define);
    for (const auto& sql : builder.NewIndexes()) {
        connection.Execute(sql, Operation::Define);
    }
}

void RequireFreeName(Connection& connection, const std::string& name, int number) {
    const bool taken = connection.Tables()->IsTaken(name) || connection.Queries().contains(FoldName(name));
    if (taken) {
        Raise(number, (number == kErrTableExists ? "Table '" : "Object '") + name + "' already exists.");
    }
}

void Create(Connection& connection, const jet_sql::CreateTable& statement) {
    RequireFreeName(connection, statement.name, kErrTableExists);
    TableBuilder builder(*connection.Tables(), statement.name);
    for (const auto& column : statement.columns) {
        builder.AddField(column);
    }
    builder.AddConstraints(statement.columns, statement.constraints);
    MakeTable(connection, builder);
    for (const auto& column : statement.columns) {
        if (column.type.counter) {
            SeedCounter(connection, statement.name, column.type.seed);
        }
    }
}

// New rows' relations are checked by SQLite; those of the rows that are there by this.
void CheckRelations(Connection& connection, const std::string& table) {
    const Statement check =
        connection.Prepare("PRAGMA foreign_key_check(" + Quote(table) + ")", Operation::Define);
    Run run(check.Get());
    if (run.Step(Operation::Define)) {
        RaiseSqliteError(SQLITE_CONSTRAINT_FOREIGNKEY, {}, connection.Path(), Operation::Insert);
    }
}

void Change(Connection& connection, const TableInfo& before, const TableBuilder& builder) {
    const std::string& name = before.def.name;
    const TableInfo& after = builder.Table();
    const bool rebuild = TableText(before, name) != TableText(after, name);
    if (rebuild) {
        RebuildTable(connection, before, after, builder.Sources());
    } else {
        for (const auto& index : before.indexes) {
            const bool kept =
                std::any_of(after.indexes.begin(), after.indexes.end(),
                            [&](const TableInfo::Index& each) { return each.name == index.name; });
            if (!kept) {
                connection.Execute("DROP INDEX " + Quote(index.name), Operation::Define);
            }
        }
    }
    for (const auto& sql : builder.NewIndexes()) {
        connection.Execute(sql, Operation::Define);
    }
    if (rebuild) {
        CheckRelations(connection, name);
    }
}

void Alter(Connection& connection, const jet_sql::AlterTable& statement) {
    const TableInfo& before = RequireTable(connection, statement.table, kErrNoTableOrConstraint);
    TableBuilder builder(*connection.Tables(), before);
    std::visit(Overload{
                   [&](const jet_sql::AddColumns& add) {
                       for (const auto& column : add.columns) {
                           builder.AddField(column);
                       }
                       builder.AddConstraints(add.columns, {});
                   },
                   [&](const jet_sql::DropColumns& drop) {
                       for (const auto& name : drop.names) {
                           builder.RemoveField(name);
                       }
                   },
                   [&](const jet_sql::AlterColumn& alter) {
                       builder.ReplaceField(alter.column);
                       builder.AddConstraints({alter.column}, {});
                   },
                   [&](const jet_sql::AlterDefault& alter) {
                       builder.SetDefault(alter.column, alter.value ? &*alter.value : nullptr);
                   },
                   [&](const jet_sql::AddConstraint& add) { builder.AddConstraint(add.constraint); },
                   [&](const jet_sql::DropConstraint& drop) {
                       if (!builder.RemoveConstraint(drop.name)) {
                           Raise(kErrNoTableOrConstraint,
                                 "Cannot find table or constraint '" + drop.name + "'.");
                       }
                   },
               },
               statement.action);
    Change(connection, before, builder);
}

void Create(Connection& connection, const jet_sql::CreateIndex& statement) {
    const TableInfo& before = RequireTable(connection, statement.table, kErrNoTableOrConstraint);
    TableBuilder builder(*connection.Tables(), before);
    builder.AddIndex(statement);
    Change(connection, before, builder);
}

void DropIndex(Connection& connection, const jet_sql::Drop& statement) {
    const TableInfo& before = RequireTable(connection, statement.table, kErrNoSuchTable);
    TableBuilder builder(*connection.Tables(), before);
    if (!builder.RemoveIndex(statement.name)) {
        Raise(3372, "No such index '" + statement.name + "' on table '" + before.def.name + "'.");
    }
    Change(connection, before, builder);
}

void Remove(Connection& connection, const jet_sql::Drop& statement) {
    const bool isQuery = connection.Queries().contains(FoldName(statement.name));
    if (statement.kind == jet_sql::DropKind::Index) {
        DropIndex(connection, statement);
    } else if (statement.kind != jet_sql::DropKind::Table || isQuery) {
        RemoveQuery(connection, statement.name);
    } else {
        const TableInfo& table = RequireTable(connection, statement.name, kErrNoSuchTable);
        for (const auto& child : connection.Tables()->ChildrenOf(table.def.name)) {
            if (child.table != &table) {
                Raise(3281,
                      "Table '" + table.def.name + "' cannot be deleted. It is used in a relationship.");
            }
        }
        connection.Execute("DROP TABLE " + Quote(table.def.name), Operation::Define);
    }
}

// The names that a view gives to the columns of its query.
void NameColumns(jet_sql::Query& query, const std::vector<std::string>& names) {
    if (auto* parts = std::get_if<jet_sql::Union>(&query.node)) {
        return NameColumns(*parts->parts.front().query, names);
    }
    auto* select = std::get_if<jet_sql::Select>(&query.node);
    const bool listed = select != nullptr && select->items.size() == names.size() &&
                        std::none_of(select->items.begin(), select->items.end(),
                                     [](const jet_sql::SelectItem& item) { return item.IsStar(); });
    if (!listed) {
        Raise(3346, "Number of query values and destination fields are not the same: the query of the view "
                    "has to list one column for each name.");
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        CheckName(names[i]);
        select->items[i].alias = names[i];
    }
}

// The text behind AS; the parameters of a procedure become a PARAMETERS clause before it.
void Create(Connection& connection, const jet_sql::CreateQuery& statement, std::string_view sql) {
    const jet_sql::Place place = statement.bodyPlace;
    std::string text;
    if (!statement.columns.empty() || !statement.body->parameters.empty() || place.end <= place.begin) {
        jet_sql::Statement body = *statement.body;
        if (!statement.columns.empty()) {
            NameColumns(std::get<jet_sql::Query>(body.node), statement.columns);
        }
        text = jet_sql::Print(body);
    } else {
        text = sql.substr(place.begin, place.end - place.begin);
    }
    AddQuery(connection, statement.name, text);
}

} // namespace

void CheckName(std::string_view name) {
    const bool bad = name.empty() || name.size() > kLongestName || name.front() == ' ' ||
                     name.starts_with("sqlite_") || std::any_of(name.begin(), name.end(), [](char c) {
                         return static_cast<unsigned char>(c) < 32 ||
                                std::string_view(".!`[]").find(c) != std::string_view::npos;
                     });
    if (bad) {
        Raise(3125, "'" + std::string(name) +
                        "' is not a valid name. Make sure that it does not include invalid "
                        "characters or punctuation and that it is not too long.");
    }
}

bool IsDefinition(const jet_sql::Statement& statement) {
    return statement.As<jet_sql::CreateTable>() != nullptr ||
           statement.As<jet_sql::AlterTable>() != nullptr ||
           statement.As<jet_sql::CreateIndex>() != nullptr || statement.As<jet_sql::Drop>() != nullptr ||
           statement.As<jet_sql::CreateQuery>() != nullptr;
}

void RunDefinition(Connection& connection, const jet_sql::Statement& statement, std::string_view sql) {
    const bool changesTable = statement.As<jet_sql::AlterTable>() != nullptr ||
                              statement.As<jet_sql::CreateIndex>() != nullptr ||
                              statement.As<jet_sql::Drop>() != nullptr;
    std::optional<ForeignKeysOff> off;
    if (changesTable) {
        off.emplace(connection);
    }
    WriteScope scope(connection, kErrTableInUse);
    if (const auto* table = statement.As<jet_sql::CreateTable>()) {
        Create(connection, *table);
    } else if (const auto* alter = statement.As<jet_sql::AlterTable>()) {
        Alter(connection, *alter);
    } else if (const auto* index = statement.As<jet_sql::CreateIndex>()) {
        Create(connection, *index);
    } else if (const auto* drop = statement.As<jet_sql::Drop>()) {
        Remove(connection, *drop);
    } else if (const auto* query = statement.As<jet_sql::CreateQuery>()) {
        Create(connection, *query, sql);
    }
    scope.Commit();
}

void CreateTable(Connection& connection, const TableDef& table, const AttachedFiles::File* file) {
    if (file == nullptr) {
        RequireFreeName(connection, table.name, kErrTableExists);
    } else {
        const ReadScope scope(*file->connection);
        RequireFreeName(*file->connection, table.name, kErrTableExists);
    }
    TableInfo info;
    info.def = table;
    info.defaults.resize(table.fields.size());
    for (auto& field : info.def.fields) {
        CheckName(field.name);
        field.counter = false;
    }
    CheckName(table.name);
    info.def.indexes.clear();
    std::string text = TableText(info, table.name);
    if (file != nullptr) {
        text.insert(std::string_view("CREATE TABLE ").size(), file->name + ".");
    }
    connection.Execute(text, Operation::Define);
}

} // namespace quillary::database::sqlite
