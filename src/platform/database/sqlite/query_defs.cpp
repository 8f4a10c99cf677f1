#include "platform/database/sqlite/query_defs.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/database.h"
#include "platform/database/sqlite/ddl.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/statement_log.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

void BindTexts(sqlite3_stmt* statement, std::initializer_list<std::string_view> texts) {
    int index = 0;
    for (const std::string_view text : texts) {
        sqlite3_bind_text64(statement, ++index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
}

void StoreText(Connection& connection, std::string_view name, std::string_view sql) {
    // A file of another program has no room for queries yet.
    if (!connection.Tables()->HasQueryTable()) {
        connection.Execute(
            "CREATE TABLE IF NOT EXISTS jet_queries (name TEXT PRIMARY KEY COLLATE NOCASE, sql TEXT "
            "NOT NULL)",
            Operation::Define);
    }
    Run run(connection.Kept("INSERT INTO jet_queries (name, sql) VALUES (?1, ?2) "
                            "ON CONFLICT (name) DO UPDATE SET sql = excluded.sql"));
    BindTexts(run, {name, sql});
    run.Step(Operation::Define);
}

} // namespace

void AddQuery(Connection& connection, std::string_view name, std::string_view sql) {
    CheckName(name);
    if (connection.Tables()->IsTaken(name) || connection.Queries().contains(FoldName(name))) {
        Raise(3012, "Object '" + std::string(name) + "' already exists.");
    }
    StoreText(connection, name, sql);
}

void RemoveQuery(Connection& connection, std::string_view name) {
    if (!connection.Queries().contains(FoldName(name))) {
        Raise(kErrItemNotFound, "Item '" + std::string(name) + "' not found in this collection.");
    }
    Run run(connection.Kept("DELETE FROM jet_queries WHERE name = ?1"));
    BindTexts(run, {name});
    run.Step(Operation::Define);
}

SavedQueryDef::SavedQueryDef(std::shared_ptr<DatabaseFile> database, std::string name, std::string sql)
    : database_(std::move(database)), name_(std::move(name)), sql_(std::move(sql)) {}

void SavedQueryDef::SetSQL(std::string_view sql) {
    Connection& connection = database_->Use();
    connection.Statements().Parse(sql); // a broken text is not stored
    Observe(sql);
    WriteScope scope(connection, kErrCannotLock);
    StoreText(connection, name_, sql);
    scope.Commit();
    sql_ = sql;
}

void SavedQueryDef::SetParameter(std::string_view name, const Variant& value) {
    std::erase_if(parameters_, [&](const auto& each) { return runtime::EqualName(each.first, name); });
    parameters_.emplace_back(std::string(name), value);
}

void SavedQueryDef::Execute(int options) {
    database_->ExecuteStatement(sql_, options, parameters_);
}

std::unique_ptr<Recordset> SavedQueryDef::OpenRecordset(RecordsetType type) {
    return database_->OpenStatement(sql_, type, parameters_);
}

} // namespace quillary::database::sqlite
