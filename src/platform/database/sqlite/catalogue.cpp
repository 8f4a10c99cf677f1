#include "platform/database/sqlite/catalogue.h"

#include "platform/database/sqlite/error_map.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

std::string ColumnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text == nullptr
               ? std::string()
               : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

} // namespace

std::string FoldName(std::string_view name) {
    std::string result(name);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return result;
}

std::shared_ptr<const Catalogue> Catalogue::Read(sqlite3* connection) {
    auto catalogue = std::make_shared<Catalogue>();
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(
        connection, "SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY type = 'index', rowid", -1,
        &statement, nullptr);
    if (result == SQLITE_OK) {
        while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
            const std::string type = ColumnText(statement, 0);
            const std::string name = ColumnText(statement, 1);
            const std::string sql = ColumnText(statement, 3);
            catalogue->names_.emplace(FoldName(name), 0);
            if (type == "index") {
                catalogue->AddIndex(name, ColumnText(statement, 2), sql);
            } else if (type == "table" && name == kQueryTable) {
                catalogue->hasQueryTable_ = true;
            } else if (type == "table" && !name.starts_with("sqlite_")) {
                if (auto table = ReadTableText(sql)) {
                    table->def.name = name;
                    catalogue->AddTable(std::move(*table));
                }
            }
        }
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE) {
        RaiseSqliteError(connection, Operation::Open);
    }
    catalogue->AddRelations();
    for (const auto& info : catalogue->infos_) {
        catalogue->tables_.push_back(info->def);
    }
    return catalogue;
}

void Catalogue::AddTable(TableInfo table) {
    byName_.emplace(FoldName(table.def.name), infos_.size());
    infos_.push_back(std::make_unique<TableInfo>(std::move(table)));
}

void Catalogue::AddIndex(const std::string& name, const std::string& table, const std::string& sql) {
    const auto found = byName_.find(FoldName(table));
    if (sql.empty() || found == byName_.end()) {
        return; // SQLite's own index of a key
    }
    TableInfo& info = *infos_[found->second];
    if (auto index = ReadIndexText(sql, table)) {
        index->foreign =
            std::any_of(info.foreignKeys.begin(), info.foreignKeys.end(),
                        [&](const ForeignKey& key) { return runtime::EqualName(key.name, index->name); });
        info.def.indexes.push_back(std::move(*index));
    }
    info.indexes.push_back({name, sql});
}

void Catalogue::AddRelations() {
    for (const auto& info : infos_) {
        for (auto& key : info->foreignKeys) {
            const TableInfo* parent = Find(key.parent);
            if (parent != nullptr) {
                key.parent = parent->def.name;
                if (key.parentFields.empty() && parent->PrimaryKey() != nullptr) {
                    key.parentFields = parent->PrimaryKey()->fields;
                }
            }
            relations_.push_back({key.name, key.parent, info->def.name, key.parentFields, key.fields,
                                  key.cascadeUpdates, key.cascadeDeletes});
        }
    }
}

const TableInfo* Catalogue::Find(std::string_view name) const {
    const auto found = byName_.find(FoldName(name));
    return found == byName_.end() ? nullptr : infos_[found->second].get();
}

std::vector<Catalogue::Child> Catalogue::ChildrenOf(std::string_view parent) const {
    std::vector<Child> result;
    for (const auto& info : infos_) {
        for (const auto& key : info->foreignKeys) {
            if (runtime::EqualName(key.parent, parent)) {
                result.push_back({info.get(), &key});
            }
        }
    }
    return result;
}

} // namespace quillary::database::sqlite
