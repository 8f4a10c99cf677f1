#pragma once

#include "platform/runtime/variant.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The database layer as the rest of the program sees it: shaped like the engine of the suite's old
// platform, whatever engine lies below. Every failure is a runtime::RunTimeError with a number of
// errors.h. Names of tables, queries and fields are compared without case.
namespace quillary::database {

using runtime::Variant;

// The numbers are the old engine's.
enum class FieldType : int {
    Boolean = 1,
    Byte = 2,
    Integer = 3, // 16 bits
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    LongBinary = 11,
    Memo = 12,
    Guid = 15,
};

enum class RecordsetType : int {
    Default = 0, // table type for a plain table name, dynaset for SQL and queries
    Table = 1,
    Dynaset = 2,
    Snapshot = 4,
};

// Execute option: an error undoes the whole statement and is raised. Without it, rows that cannot be
// changed are skipped in silence; a fault of the text itself is raised all the same.
inline constexpr int kFailOnError = 128;

// A place in a recordset; valid in its clones too, until Requery.
using Bookmark = std::int64_t;

struct FieldDef {
    std::string name;
    FieldType type = FieldType::Text;
    int size = 0; // characters of a text field (0: no limit), else bytes
    bool required = false;
    bool allowZeroLength = true;
    bool counter = false; // numbers itself
    Variant defaultValue; // Empty: none
};

struct IndexDef {
    std::string name;
    std::vector<std::string> fields;
    bool primary = false;
    bool unique = false;
    bool foreign = false; // the child's side of a relation
};

struct RelationDef {
    std::string name, table, foreignTable; // table holds the parents
    std::vector<std::string> fields, foreignFields;
    bool cascadeUpdates = false, cascadeDeletes = false;
};

struct TableDef {
    std::string name; // in the case in which it was made
    std::vector<FieldDef> fields;
    std::vector<IndexDef> indexes;
};

// A field of a recordset, with its value in the current (or pending) row.
class Field {
public:
    virtual ~Field() = default;
    virtual const std::string& Name() const = 0;
    virtual FieldType Type() const = 0;
    virtual int Size() const = 0;
    virtual bool Required() const = 0;
    virtual bool Counter() const = 0;
    virtual bool Updatable() const = 0;
    virtual const std::string& SourceTable() const = 0; // "" for a computed field
    virtual const std::string& SourceField() const = 0;
    // Null, or a Variant of the field's kind (Boolean, Integer, Long, Currency, Single, Double, Date,
    // String). 3021 without a current row, 3167 when another program has deleted it.
    virtual Variant Value() const = 0;
    // Needs Edit or AddNew (3020). 3163 too long, 3421 wrong kind. Null is taken and checked at Update.
    virtual void SetValue(const Variant& value) = 0;

    operator Variant() const { return Value(); }
    Field& operator=(const Variant& value) {
        SetValue(value);
        return *this;
    }

protected:
    Field() = default;
    Field(const Field&) = default;
    Field& operator=(const Field&) = default;
};

enum class EditMode { None, Edit, AddNew };

class Recordset {
public:
    virtual ~Recordset() = default;

    virtual RecordsetType Type() const = 0;
    virtual bool Updatable() const = 0;
    virtual bool BOF() const = 0;
    virtual bool EOF_() const = 0; // EOF is a macro of the C library

    // 3021 on an empty recordset, or beyond its ends.
    virtual void MoveFirst() = 0;
    virtual void MoveLast() = 0;
    virtual void MoveNext() = 0;
    virtual void MovePrevious() = 0;

    // Rows visited so far (at least 1 when there are any), the rows added, less the rows deleted; all rows
    // after MoveLast. Exact at once for the table type.
    virtual long RecordCount() const = 0;

    // For grids. All rows of the set, visited or not, deleted ones left out.
    virtual long RowTotal() const = 0;
    // The place of row n (from 0, deleted ones left out); 3021 beyond the end.
    virtual database::Bookmark BookmarkAt(long row) const = 0;
    // The row number of a place; -1 when its row was deleted through this recordset or its clones.
    virtual long RowOf(database::Bookmark bookmark) const = 0;
    // The values of a row, in field order, without moving. Rows are read a page at a time. Empty vector
    // when another program has deleted the row.
    virtual const std::vector<Variant>& ReadRow(database::Bookmark bookmark) const = 0;
    // Counts row n and all before it as visited, as showing it in a grid does.
    virtual void CountVisited(long row) = 0;

    virtual void AddNew() = 0;
    virtual void Edit() = 0;   // 3021, 3027, 3167
    virtual void Update() = 0; // 3020, 3022, 3201, 3314, 3315, ...; the edit stays pending on failure
    virtual void CancelUpdate() = 0;
    virtual void Delete() = 0; // 3021, 3200; the row stays current but invalid until the next move
    virtual EditMode Editing() const = 0;

    // criteria: a WHERE expression of the dialect on the recordset's fields; starts at the first row. On no
    // match the position is unchanged. 3077 for a broken criterion.
    virtual void FindFirst(std::string_view criteria) = 0;
    virtual void FindNext(std::string_view criteria) = 0;
    virtual bool NoMatch() const = 0;

    // The current place; nullopt without a current row. Setting a place that is gone raises 3167.
    virtual std::optional<database::Bookmark> Bookmark() const = 0;
    virtual void SetBookmark(database::Bookmark bookmark) = 0;
    // The row added or changed last.
    virtual std::optional<database::Bookmark> LastModified() const = 0;

    virtual std::unique_ptr<Recordset> Clone() const = 0; // same rows, own position
    virtual void Requery() = 0;
    virtual void Close() = 0;

    virtual int FieldCount() const = 0;
    virtual Field& operator[](int position) = 0;          // 3265
    virtual Field& operator[](std::string_view name) = 0; // 3265
    // Position of a name, -1 when there is none.
    virtual int FindField(std::string_view name) const = 0;
};

class QueryDef {
public:
    virtual ~QueryDef() = default;
    virtual const std::string& Name() const = 0;
    virtual const std::string& SQL() const = 0;
    virtual void SetSQL(std::string_view sql) = 0; // stored at once
    virtual void SetParameter(std::string_view name, const Variant& value) = 0;
    virtual void Execute(int options = 0) = 0;
    virtual std::unique_ptr<Recordset> OpenRecordset(RecordsetType type = RecordsetType::Default) = 0;
    virtual void Close() = 0;
};

class Database {
public:
    virtual ~Database() = default;               // closes
    virtual const std::string& Name() const = 0; // the path as given to OpenDatabase
    virtual bool ReadOnly() const = 0;

    // source: a table, a saved query or SQL.
    virtual std::unique_ptr<Recordset> OpenRecordset(std::string_view source,
                                                     RecordsetType type = RecordsetType::Default) = 0;
    // sql: an action or DDL statement, or the name of a saved action query.
    virtual void Execute(std::string_view sql, int options = 0) = 0;
    virtual long RecordsAffected() const = 0; // by the last Execute

    virtual const std::vector<TableDef>& TableDefs() = 0; // in the order in which they were made
    virtual const std::vector<RelationDef>& Relations() = 0;
    virtual std::vector<std::shared_ptr<QueryDef>> QueryDefs() = 0;
    virtual std::shared_ptr<QueryDef> FindQueryDef(std::string_view name) = 0; // nullptr when there is none
    virtual std::shared_ptr<QueryDef> CreateQueryDef(std::string_view name, std::string_view sql) = 0;
    virtual void DeleteQueryDef(std::string_view name) = 0; // 3265

    // Writes reach the disk before this returns: called at the end of a page save and of a cascade.
    virtual void Flush() = 0;
    virtual void Close() = 0;
};

class Engine {
public:
    virtual ~Engine() = default;
    // Shared, read and write. 3024 missing, 3343 no database, 3051 unreadable or a folder, 3045 in use.
    virtual std::shared_ptr<Database> OpenDatabase(std::string_view path, bool readOnly = false) = 0;
    // 3204 when the file exists.
    virtual std::shared_ptr<Database> CreateDatabase(std::string_view path) = 0;
    // Turns the program's paths ("\" between folders) into native ones; the engine calls it for every path.
    virtual void SetPathResolver(std::function<std::string(std::string_view)> resolver) = 0;
    // Copies a database that may be in use, through the engine below. 3024, 3204 (target exists).
    virtual void BackupDatabase(std::string_view path, std::string_view target) = 0;
    // Closes idle connections and statements kept for reuse, so that files can be moved.
    virtual void ReleaseIdle() = 0;
};

// The engine on SQLite (platform/database/sqlite).
std::unique_ptr<Engine> CreateSqliteEngine();

} // namespace quillary::database
