#pragma once

#include "platform/controls/data_control.h"
#include "platform/database/bulk_load.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <filesystem>
#include <functional>
#include <unistd.h>

namespace quillary::controls::testing {

// A database file with one table, whose counter is called ID, and what lies in it as another program reads
// it.
class StoredTable {
public:
    explicit StoredTable(const database::TableDef& table) : name_(table.name) {
        runtime::SetLocale("en_NZ");
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        database::BulkLoad file(path);
        file.AddTable(table);
        for (const database::IndexDef& index : table.indexes)
            if (!index.primary)
                file.AddIndex(table.name, {index, {}});
        file.Finish();
        DataControl::SetEngine([this]() -> database::Engine& { return *engine_; });
    }
    ~StoredTable() {
        DataControl::SetEngine({});
        engine_->ReleaseIdle();
        std::filesystem::remove_all(folder_);
    }
    StoredTable(const StoredTable&) = delete;
    StoredTable& operator=(const StoredTable&) = delete;

    void Execute(const std::string& sql) {
        engine_->OpenDatabase(path)->Execute(sql, database::kFailOnError);
    }
    std::unique_ptr<database::Recordset> Open(const std::string& source) {
        return engine_->OpenDatabase(path)->OpenRecordset(source);
    }
    // The row is told by its ID, which is one more; "(gone)" without it, "(null)" for Null.
    std::string Text(int row, int field) {
        const auto rows = Open("SELECT * FROM [" + name_ + "] WHERE ID = " + std::to_string(row + 1));
        if (rows->EOF_())
            return "(gone)";
        const runtime::Variant value = (*rows)[field].Value();
        return value.IsNull() ? "(null)" : runtime::TextOf(value);
    }
    long Count() { return Open(name_)->RowTotal(); }
    // Nobody may write it from now on.
    void MakeReadOnly() {
        engine_->ReleaseIdle();
        std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    }

private:
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("controls" + std::to_string(getpid()));

public:
    const std::string path = folder_ / "Farm32.mdb";

private:
    std::string name_;
    std::unique_ptr<database::Engine> engine_ = database::CreateSqliteEngine();
};

// The number of the error that is raised, 0 when none is.
inline int NumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const runtime::RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

} // namespace quillary::controls::testing
