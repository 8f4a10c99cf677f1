#pragma once

#include "platform/database/engine.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// What the translator makes of a statement of the dialect: text for SQLite, and what has to be known to run
// it and to read its rows.
//
// How values lie in the file (both the translator and the storage rely on it):
//   Boolean       INTEGER -1 or 0, never NULL
//   Byte, Integer, Long  INTEGER
//   Currency      INTEGER, ten-thousandths (15.5 is 155000)
//   Single        REAL, the double nearest to the value's seven-digit decimal text
//   Double        REAL
//   Date          TEXT "YYYY-MM-DD", or "YYYY-MM-DD HH:MM:SS" when there is a time; time alone on 1899-12-30
//   Text, Memo    TEXT, collation JET (runtime::CompareText)
//   Guid TEXT, Binary BLOB
//
// A key of one LONG field that is no counter is the table's rowid, and SQLite would number it where it is
// Null or left out: an INSERT has to refuse that by itself (3314).
namespace quillary::database::sqlite {

// What the translator may ask of the open file.
class SchemaView {
public:
    virtual ~SchemaView() = default;
    virtual const TableDef* FindTable(std::string_view name) const = 0;    // nullptr: none
    virtual const std::string* FindQuery(std::string_view name) const = 0; // its Jet SQL
    // The order in which rows come where no sort is told: SQL terms for an alias ("a"."Code", or its rowid).
    virtual std::string TableOrder(const TableDef& table, std::string_view alias) const = 0;

    // The file of IN 'path' [connect]: its catalogue, and the schema name under which the open connection
    // reaches its tables ("x1"."Table"). nullptr: there is no such file (3024 is raised); 3170 for a connect
    // text that is not understood. What is returned stays valid until the translation is done with.
    virtual const SchemaView* External(std::string_view /*path*/, std::string_view /*connect*/,
                                       std::string& /*schemaName*/) const {
        return nullptr;
    }
};

struct ResultColumn {
    std::string name;
    FieldType type = FieldType::Text;
    int size = 0;
    int table = -1; // index into Selection::tables; -1: computed, read-only
    int field = -1; // index into that table's fields
};

struct BaseTable {
    std::string table; // name as in the catalogue
    std::string alias; // as used in the texts below
};

struct ParameterUse {
    std::string name; // without brackets
    FieldType type = FieldType::Text;
    bool declared = false; // in a PARAMETERS clause
    // The value is converted to `type` before it is bound. false: nothing tells the type (as in
    // `SELECT [Which?]`); the value is bound in the stored form of its own kind.
    bool typed = false;
};

struct Selection {
    // A computed whole number may lie beyond its column's type: the reader raises 6.
    std::vector<ResultColumn> columns;
    std::string valuesSql; // all columns of all rows, in order
    // For dynasets; empty tables: not updatable, keep the values instead.
    std::vector<BaseTable> tables;
    std::string keysSql; // a rowid for each of the tables (NULL on the empty side of an outer join), in order
    std::string rowSql;  // the columns of one row; ?1.. are the rowids of the tables
    // The columns alone as they stand in rowSql between SELECT and FROM, over the aliases: the dynaset puts
    // its own FROM behind them to read many rows at once.
    std::string columnsSql;
    std::vector<ParameterUse> parameters; // bound after the rowids, in this order, as named parameters :p1..
    // false: the columns follow from the rows (a crosstab without fixed headings) or lie in another file;
    // the statement has to be translated anew at each opening.
    bool reusable = true;
};

struct Action {
    // Run in this order inside one savepoint; RecordsAffected is the sum of the changes of those marked.
    // Each is prepared after the ones before it have run (an update of both tables of a join makes a
    // temporary table first). A parameter that a step does not name is not bound in it.
    struct Step {
        std::string sql;
        bool counts = true;
        int table = -1; // which of the targets it changes; for error texts
        // For Execute without dbFailOnError, where a row that cannot be changed is skipped: the rowids of
        // the rows, and the same change for one row (:r1). Empty for inserts, where INSERT becomes INSERT
        // OR IGNORE, and for steps that go with others (they fail as a whole).
        std::string keysSql;
        std::string rowSql;
    };
    std::vector<Step> steps;
    std::string target;               // the table written to, the first one where there are two
    std::vector<std::string> targets; // all of them
    enum class Kind { Insert, Update, Delete, SelectInto } kind = Kind::Update;
    std::vector<ParameterUse> parameters;
    bool reusable = true; // as in Selection
    // SelectInto: the table to make before the steps run (3010 when it is there already). No key, no
    // counter. elsewhere: it goes to another file (INTO ... IN path connect).
    TableDef created;
    bool elsewhere = false;
    std::string createdIn;
    std::string createdInConnect;
};

// The criterion of a FindFirst as a statement of one row and one column, which is not 0 and not NULL where
// the criterion holds.
struct Criterion {
    std::string sql;
    std::vector<int> fields; // ?1.. are the values of these columns of the recordset, in stored form
};

// Runs a query of the translator's own (the headings of a crosstab) and gives its first column. The
// parameters are bound as those of a Selection are.
using HeadingQuery = std::function<std::vector<Variant>(const std::string& sql, FieldType type,
                                                        const std::vector<ParameterUse>& parameters)>;

} // namespace quillary::database::sqlite
