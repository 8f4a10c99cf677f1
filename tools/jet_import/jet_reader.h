#pragma once

#include "platform/database/bulk_load.h"
#include "platform/database/engine.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

// A database file of the suite's old engine, as the import sees it. One class reads real files, the tests
// have one of their own.
namespace quillary::jet_import {

using database::FieldType;
using database::LoadValue;

// What a file holds of a field beyond FieldDef.
struct JetField {
    database::FieldDef def;     // its default is in defaultText
    std::string defaultText;    // an expression of the dialect, "" none
    std::string validationRule; // "" none
    std::string carriedAs;      // how a type that the new store lacks is carried, for the report; "" as it is
};

struct JetTable {
    std::string name;
    std::vector<JetField> fields;
    std::vector<database::LoadIndex> indexes;
    std::string validationRule;
    std::int64_t rows = 0;        // by the file's own count
    std::int64_t lastCounter = 0; // the last number that the counter gave
};

struct JetRelation {
    database::RelationDef def;
    bool enforced = true;
};

// A row of the old engine's table of saved queries.
struct JetQueryRow {
    int attribute = 0;
    int flag = 0;
    bool hasFlag = false;
    std::string expression, name1, name2;
    std::string order; // bytes
    int extra = 0;
};

struct JetQuery {
    std::string name;
    std::vector<JetQueryRow> rows;
};

// Everything is UTF-8. A file that cannot be read raises 3343 with a text that says what is wrong.
class JetReader {
public:
    virtual ~JetReader() = default;
    virtual std::vector<JetTable> Tables() = 0;
    virtual std::vector<JetRelation> Relations() = 0;
    virtual std::vector<JetQuery> Queries() = 0;
    // Things of the file that no method gives, in words: linked tables, parts that cannot be read, and after
    // the rows have been read numbers that have been rounded.
    virtual std::vector<std::string> Losses() = 0;
    // What whoever reads the copy should know, though nothing is lost; after the rows have been read.
    virtual std::vector<std::string> Notes() { return {}; }
    // Each row with the values of the table's fields in their order, valid until `take` returns.
    virtual void ReadRows(const JetTable& table,
                          const std::function<void(std::span<const LoadValue>)>& take) = 0;
};

// Opens a real file. codePage: of the text in a file of the third generation, 0: the one that the file
// names, which is not always the true one. 5 when it is not known, 3024, 3051, 3343.
std::unique_ptr<JetReader> OpenJetFile(const std::string& path, int codePage = 0);

} // namespace quillary::jet_import
