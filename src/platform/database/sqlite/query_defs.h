#pragma once

#include "platform/database/engine.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/statement_cache.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Saved queries: text of the dialect under a name, in a table of the file.
namespace quillary::database::sqlite {

// Within an open write scope. 3012 when the name is taken, 3125 for a bad one.
void AddQuery(Connection& connection, std::string_view name, std::string_view sql);
// 3265 when there is none.
void RemoveQuery(Connection& connection, std::string_view name);

class DatabaseFile;

class SavedQueryDef final : public QueryDef {
public:
    SavedQueryDef(std::shared_ptr<DatabaseFile> database, std::string name, std::string sql);

    const std::string& Name() const override { return name_; }
    const std::string& SQL() const override { return sql_; }
    void SetSQL(std::string_view sql) override;
    void SetParameter(std::string_view name, const Variant& value) override;
    void Execute(int options) override;
    std::unique_ptr<Recordset> OpenRecordset(RecordsetType type) override;
    void Close() override {}

private:
    std::shared_ptr<DatabaseFile> database_;
    std::string name_;
    std::string sql_;
    ParameterValues parameters_;
};

} // namespace quillary::database::sqlite
