#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/sqlite/context.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the names in a query mean.
namespace quillary::database::sqlite {

// A column of a query that stands in a FROM clause.
struct DerivedColumn {
    std::string name;
    FieldType type = FieldType::Text;
    int size = 0;
    bool untyped = false;
};

struct ViewField {
    std::string name;
    int field = 0;
};

// A table or query in a FROM clause.
struct Source {
    std::string name;                   // by which the statement calls it
    std::string alias;                  // by which the text for SQLite calls it
    const TableDef* table = nullptr;    // nullptr: a query
    const SchemaView* schema = nullptr; // the catalogue of the table
    std::vector<DerivedColumn> columns; // of a query; in the text they are c0, c1, ...
    // A saved query or subquery that does no more than show fields of one table is that table: these of
    // its fields, under these names, the rows of this condition, in this order (SQL terms).
    std::vector<ViewField> view; // empty: all fields
    std::string condition;
    std::string order;
    std::string text;      // what stands before AS
    bool grouped = false;  // a query whose rows are no longer records
    bool nullSide = false; // an outer join may leave it out
    bool hasRowId = false;
    bool shown = false; // a column of the output comes from it
    bool used = false;  // for ON clauses: some name has been found in it

    std::size_t ColumnCount() const {
        return table == nullptr ? columns.size() : view.empty() ? table->fields.size() : view.size();
    }
    std::string_view ColumnName(std::size_t place) const {
        return table == nullptr ? columns[place].name
               : view.empty()   ? table->fields[place].name
                                : view[place].name;
    }
    // The text of a field of the table.
    std::string FieldText(int field) const;
};

// One query's level of names; a subquery's has the enclosing one outside of it.
class Scope {
public:
    explicit Scope(Scope* around = nullptr) : outer(around) {}
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    // The column at a place of a source, as it is written at this level.
    Piece Column(int source, int place);

    // The column of this level or of one outside of it; nullopt when there is none. 3079.
    std::optional<Piece> Find(const jet_sql::NameRef& name);
    // The source of `t.*`; -1 when there is none.
    int FindSource(std::string_view name) const;

    Scope* const outer;
    std::vector<Source> sources;

    // Select items that have an alias, for names that are no column.
    enum class Aliases { None, Items, Order };
    Aliases aliases = Aliases::None;
    const std::vector<jet_sql::SelectItem>* items = nullptr;
    int item = -1;            // Items: the one being written
    std::vector<int> writing; // and those whose aliases led there

    bool recordShown = false; // columns found now are of the output

    // Aggregates: whether they may stand here, and whether one is being written.
    bool aggregatesAllowed = false;
    bool inAggregate = false;
    std::string aggregateFilter; // FILTER (WHERE ...) of a crosstab's cell
    // Terms that tell the order of a group's rows, for First and Last.
    std::string groupOrder;

    // While columns go through something else: a crosstab over a query of its own (they are k0, k1, ... of
    // alias there), or a criterion over values that are bound (?1, ?2, ...; alias "").
    struct Capture {
        std::string alias;
        std::vector<std::string> columns;      // as they would have been written
        std::vector<std::pair<int, int>> keys; // their source and field
    };
    Capture* capture = nullptr;
};

} // namespace quillary::database::sqlite
