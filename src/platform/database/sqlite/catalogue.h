#pragma once

#include "platform/database/sqlite/table_text.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;

// What an open file holds: its tables, their indexes and the relations between them, as read from
// sqlite_master at one moment. A catalogue never changes; when the file's schema does, another is read.
namespace quillary::database::sqlite {

// A text lower-cased from A to Z: names are found without case.
std::string FoldName(std::string_view name);

class Catalogue {
public:
    // Raises the error of the file where it cannot be read.
    static std::shared_ptr<const Catalogue> Read(sqlite3* connection);

    // In the order in which they were made; the engine's own tables are left out.
    const std::vector<TableDef>& Tables() const { return tables_; }
    const std::vector<RelationDef>& Relations() const { return relations_; }

    // nullptr when there is none.
    const TableInfo* Find(std::string_view name) const;
    // Whether a name is taken in the file, by a table of any kind, an index or a view.
    bool IsTaken(std::string_view name) const { return names_.contains(FoldName(name)); }
    bool HasQueryTable() const { return hasQueryTable_; }

    // Foreign keys whose parent is this table, with the child's name.
    struct Child {
        const TableInfo* table;
        const ForeignKey* key;
    };
    std::vector<Child> ChildrenOf(std::string_view parent) const;

private:
    void AddTable(TableInfo table);
    void AddIndex(const std::string& name, const std::string& table, const std::string& sql);
    void AddRelations();

    std::vector<std::unique_ptr<TableInfo>> infos_;
    std::unordered_map<std::string, std::size_t> byName_;
    std::unordered_map<std::string, int> names_;
    std::vector<TableDef> tables_; // copies of the definitions, for those outside
    std::vector<RelationDef> relations_;
    bool hasQueryTable_ = false;
};

// Saved queries lie in a table of their own. Their names by FoldName, the text as it was given.
struct SavedQuery {
    std::string name;
    std::string sql;
};
using SavedQueries = std::map<std::string, SavedQuery, std::less<>>;

inline constexpr std::string_view kQueryTable = "jet_queries"; // hidden from TableDefs

} // namespace quillary::database::sqlite
