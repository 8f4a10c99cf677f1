#pragma once

#include "platform/database/engine.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/statement_cache.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillary::database::sqlite {

// A Database object: one use of a connection. What it holds of its own is little, so that opening one is
// quick.
class DatabaseFile final : public Database, public std::enable_shared_from_this<DatabaseFile> {
public:
    DatabaseFile(std::shared_ptr<Connection> connection, std::string name, bool readOnly);
    ~DatabaseFile() override;

    const std::string& Name() const override { return name_; }
    bool ReadOnly() const override { return readOnly_; }
    std::unique_ptr<Recordset> OpenRecordset(std::string_view source, RecordsetType type) override;
    void Execute(std::string_view sql, int options) override;
    long RecordsAffected() const override { return affected_; }
    const std::vector<TableDef>& TableDefs() override;
    const std::vector<RelationDef>& Relations() override;
    std::vector<std::shared_ptr<QueryDef>> QueryDefs() override;
    std::shared_ptr<QueryDef> FindQueryDef(std::string_view name) override;
    std::shared_ptr<QueryDef> CreateQueryDef(std::string_view name, std::string_view sql) override;
    void DeleteQueryDef(std::string_view name) override;
    void Flush() override;
    void Close() override;

    // SQL with values for its parameters, as saved queries run it.
    void ExecuteStatement(std::string_view sql, int options, const ParameterValues& given);
    std::unique_ptr<Recordset> OpenStatement(std::string_view sql, RecordsetType type,
                                             const ParameterValues& given);
    // The connection; 3420 once the database is closed.
    Connection& Use() const;

private:
    std::unique_ptr<Recordset> Open(std::shared_ptr<const OpenedQuery> query, RecordsetType type) const;
    void ExecuteSaved(const jet_sql::Execute& call, int options);
    bool ExecuteAlone(std::string_view sql, const ParameterValues& given);
    Variant ValueOf(const jet_sql::Expr& argument);
    void RequireWritable() const;

    std::shared_ptr<Connection> connection_;
    std::string name_;
    bool readOnly_;
    long affected_ = 0;
    std::vector<std::string> executing_;     // saved queries that run one another
    std::shared_ptr<const Catalogue> shown_; // holds what TableDefs has handed out
};

} // namespace quillary::database::sqlite
