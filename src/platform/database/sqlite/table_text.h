#pragma once

#include "platform/database/engine.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A table as the file's own text of it tells (CREATE TABLE in sqlite_master), both ways. Everything that
// the dialect knows of a table stands in that text: the types by their declared names, sizes, ranges and
// kinds as CHECK constraints, so that no statement and no other program can break them.
//
// Constraint names carry what an error is about, with the field behind the first word:
//   kind    a value of the wrong kind (3421)      width  a text too long for its field (3163)
//   range   beyond the type's range (6)           zero   zero-length text (3315)
//   check   a rule of the table's maker (3317), with the rule's name
namespace quillary::database::sqlite {

struct ForeignKey {
    std::string name;
    std::vector<std::string> fields;
    std::string parent;
    std::vector<std::string> parentFields; // empty: the parent's key
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool setNullOnDelete = false;
    bool setNullOnUpdate = false;
};

struct TableInfo {
    TableDef def;                      // its indexes: the key first, then those of `indexes`
    std::vector<std::string> defaults; // for each field the SQL behind DEFAULT; "" none
    int rowIdField = -1;               // the field that is the rowid
    std::vector<ForeignKey> foreignKeys;
    struct Rule {
        std::string name;
        std::string sql;
    };
    std::vector<Rule> rules;
    // Indexes that are objects of their own. Their names in the file are "table.index", since the file has
    // one room of names for all tables.
    struct Index {
        std::string name; // in the file
        std::string sql;
    };
    std::vector<Index> indexes;

    const IndexDef* PrimaryKey() const;
    // The terms of an ORDER BY that give the key's order, or the rowid's; prefix: "" or an alias with its
    // dot.
    std::string Order(std::string_view prefix) const;
};

// CREATE TABLE name (...); the table's own name is not used, so that a rebuilt table can be made beside it.
std::string TableText(const TableInfo& table, std::string_view name);
// The definition of one field as it stands in TableText.
std::string FieldText(const TableInfo& table, std::size_t field);

std::string IndexName(std::string_view table, std::string_view index);
// "a", "b" DESC: the terms of an index; descending by field, those left out rise. The first field always
// rises, and where it should fall all are turned round, which is the same index from its other end: SQLite's
// NOT IN does not see the Nulls of an index whose first field falls.
std::string IndexTerms(const std::vector<std::string>& fields, const std::vector<bool>& descending);

// nullopt for what is no table of rows with rowids (a virtual table, WITHOUT ROWID).
std::optional<TableInfo> ReadTableText(std::string_view sql);
// The index of a CREATE INDEX; nullopt where it is over an expression.
std::optional<IndexDef> ReadIndexText(std::string_view sql, std::string_view table);

} // namespace quillary::database::sqlite
