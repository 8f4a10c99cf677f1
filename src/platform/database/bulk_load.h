#pragma once

#include "platform/database/engine.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A new database file filled from another source: tables with their rows first, then the indexes, the
// relations and the saved queries. Rows are taken as they are; a rule that they break is found here and
// can give way before it is written into the file, so that no row has to be left out. The result is a
// file like any other of the engine's.
namespace quillary::database {

// A value on its way in. Whole: yes/no (-1, 0), whole numbers, currency in ten-thousandths. Real: single,
// double, date (days since 30 December 1899). Text: text, memo, GUID. Bytes: the binary kinds.
struct LoadValue {
    enum class Kind : unsigned char { Null, Whole, Real, Text, Bytes };

    Kind kind = Kind::Null;
    std::int64_t whole = 0;
    double real = 0;
    std::string_view text; // has to live until the row has been added
};

struct LoadIndex {
    IndexDef def;
    std::vector<bool> descending; // by field; empty: all ascending
};

// Rows of a table that repeat a key, or have no related row.
struct LoadFault {
    std::string table;
    std::string what; // the key's values, or the relation's name
    long rows = 0;
};

class BulkLoad {
public:
    // path: native. 3204 when the file exists, 3044 and 3051 when it cannot be made.
    explicit BulkLoad(const std::string& path);
    ~BulkLoad(); // a file that was not finished is removed
    BulkLoad(const BulkLoad&) = delete;
    BulkLoad& operator=(const BulkLoad&) = delete;

    // Makes a table; its primary key is taken from its indexes, the others are for AddIndex. 3125 for a bad
    // name, 3010 for one that is taken.
    void AddTable(const TableDef& table);
    // A row of the table made last, in the order of its fields. False, with nothing added, when its key is
    // there already or holds Null. A text or number of the wrong kind is the caller's fault.
    bool AddRow(std::span<const LoadValue> values);
    void DropTable(std::string_view table);

    // The field as its rows want it: wider, not required, zero-length text allowed. Its type stays.
    void ChangeField(std::string_view table, const FieldDef& field);
    // expression: of the dialect. False when it is none that a field can have; it then has no default.
    bool SetDefault(std::string_view table, std::string_view field, std::string_view expression);
    // A counter goes on behind this number, or behind the highest that is there.
    void SetLastCounter(std::string_view table, std::int64_t number);
    // condition: a WHERE expression on the table's fields. False when it cannot be read or a row breaks it.
    bool AddRule(std::string_view table, std::string_view name, std::string_view condition);

    // False, with nothing made, when a unique index finds a value twice.
    bool AddIndex(std::string_view table, const LoadIndex& index);
    // The first few values that stand in several rows, with the number of those rows.
    std::vector<LoadFault> Repeats(std::string_view table, const std::vector<std::string>& fields, int most);
    // False when the parent has no unique index on the fields, or their types differ. The child gets an
    // index under the relation's name.
    bool AddRelation(const RelationDef& relation);
    // 3012 when the name is taken, 3125 for a bad one. The text is taken as it is.
    void AddQuery(std::string_view name, std::string_view sql);

    // Writes the rules into the file and the file to the disk. The result: rows without their related row,
    // by table and relation.
    std::vector<LoadFault> Finish();

private:
    class Work;
    std::unique_ptr<Work> work_;
};

// Whether a name can be a table's or field's.
bool IsLoadName(std::string_view name);

} // namespace quillary::database
