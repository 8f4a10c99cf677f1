#include "platform/database/sqlite/table_rebuild.h"

#include "platform/database/sqlite/cells.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/storage.h"

#include <algorithm>
#include <optional>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

constexpr std::string_view kInProgress = "jet_rebuild";

const FieldDef& FieldAt(const TableInfo& table, int position) {
    return table.def.fields[static_cast<std::size_t>(position)];
}

bool NeedsConversion(const FieldDef& before, const FieldDef& after) {
    const auto isText = [](FieldType type) { return type == FieldType::Text || type == FieldType::Memo; };
    return before.type != after.type && !(isText(before.type) && isText(after.type));
}

// A field that gets what stands behind its DEFAULT: it cannot be Null. The others start out as Null.
bool TakesDefault(const TableInfo& table, std::size_t position) {
    const FieldDef& field = table.def.fields[position];
    return field.required || field.type == FieldType::Boolean ||
           static_cast<int>(position) == table.rowIdField;
}

struct Copy {
    std::string names;       // of the new table
    std::string values;      // what the old table gives for them
    std::vector<int> fields; // of the new table, for each value; -1: the address
    bool converts = false;
};

Copy PlanCopy(const TableInfo& before, const TableInfo& after, const std::vector<int>& sources) {
    Copy copy;
    const auto add = [&](const std::string& name, const std::string& value, int field) {
        copy.names += (copy.names.empty() ? "" : ", ") + name;
        copy.values += (copy.values.empty() ? "" : ", ") + value;
        copy.fields.push_back(field);
    };
    // Rows keep their addresses, unless a field becomes the address.
    if (after.rowIdField < 0) {
        add(std::string(RowIdName(after.def)), std::string(RowIdName(before.def)), -1);
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const FieldDef& field = after.def.fields[i];
        if (sources[i] >= 0) {
            const FieldDef& old = FieldAt(before, sources[i]);
            add(Quote(field.name), Quote(old.name), static_cast<int>(i));
            copy.converts = copy.converts || NeedsConversion(old, field);
        } else if (!TakesDefault(after, i)) {
            add(Quote(field.name), "NULL", static_cast<int>(i));
        }
    }
    return copy;
}

void CopyConverted(Connection& connection, const std::string& select, const std::string& insertInto,
                   const TableInfo& before, const TableInfo& after, const std::vector<int>& sources,
                   const Copy& copy) {
    const int count = static_cast<int>(copy.fields.size());
    std::string places;
    for (int i = 0; i < count; ++i) {
        places += i == 0 ? "?" : ", ?";
    }
    const Statement read = connection.Prepare(select, Operation::Read);
    const Statement write = connection.Prepare(insertInto + " VALUES (" + places + ")", Operation::Define);
    CellBlock cells(count);
    Run rows(read.Get());
    while (rows.Step(Operation::Read)) {
        cells.Clear();
        cells.Append(rows);
        std::vector<Variant> values;
        for (int i = 0; i < count; ++i) {
            const int field = copy.fields[static_cast<std::size_t>(i)];
            const int source = field < 0 ? -1 : sources[static_cast<std::size_t>(field)];
            if (source < 0) {
                values.push_back(Variant::Null());
                continue;
            }
            const FieldDef& target = FieldAt(after, field);
            Variant value = ConvertForField(ReadCell(cells.Row(0)[i], FieldAt(before, source).type),
                                            target.type, target.size, target.name);
            values.push_back(value.IsNull() && target.type == FieldType::Boolean ? Variant(false)
                                                                                 : std::move(value));
        }
        Run run(write.Get());
        for (int i = 0; i < count; ++i) {
            const int field = copy.fields[static_cast<std::size_t>(i)];
            if (field < 0) {
                sqlite3_bind_int64(run, i + 1, cells.Row(0)[i].whole);
            } else {
                BindStored(run, i + 1, values[static_cast<std::size_t>(i)], FieldAt(after, field).type);
            }
        }
        run.Step(Operation::Insert);
    }
}

std::optional<std::int64_t> SequenceOf(Connection& connection, const std::string& table) {
    Run run(connection.Kept("SELECT seq FROM sqlite_sequence WHERE name = ?1"));
    sqlite3_bind_text(run, 1, table.c_str(), -1, SQLITE_STATIC);
    return run.Step(Operation::Read) ? std::optional(sqlite3_column_int64(run, 0)) : std::nullopt;
}

bool HasCounter(const TableInfo& table) {
    return std::any_of(table.def.fields.begin(), table.def.fields.end(),
                       [](const FieldDef& field) { return field.counter; });
}

} // namespace

void RebuildTable(Connection& connection, const TableInfo& before, const TableInfo& after,
                  const std::vector<int>& sources) {
    const std::string name = before.def.name;
    const std::optional<std::int64_t> sequence =
        HasCounter(before) ? SequenceOf(connection, name) : std::nullopt;
    connection.Execute(TableText(after, kInProgress), Operation::Define);
    const Copy copy = PlanCopy(before, after, sources);
    if (!copy.names.empty()) {
        const std::string select = "SELECT " + copy.values + " FROM " + Quote(name) + " ORDER BY " +
                                   std::string(RowIdName(before.def));
        const std::string insertInto = "INSERT INTO " + Quote(kInProgress) + " (" + copy.names + ")";
        if (copy.converts) {
            CopyConverted(connection, select, insertInto, before, after, sources, copy);
        } else {
            connection.Execute(insertInto + " " + select, Operation::Insert);
        }
    }
    connection.Execute("DROP TABLE " + Quote(name), Operation::Define);
    connection.Execute("ALTER TABLE " + Quote(kInProgress) + " RENAME TO " + Quote(name), Operation::Define);
    for (const auto& index : after.indexes) {
        connection.Execute(index.sql, Operation::Define);
    }
    if (sequence && HasCounter(after)) {
        const Statement update = connection.Prepare(
            "INSERT OR REPLACE INTO sqlite_sequence (rowid, name, seq) SELECT (SELECT rowid FROM "
            "sqlite_sequence "
            "WHERE name = ?1), ?1, max(?2, coalesce((SELECT seq FROM sqlite_sequence WHERE name = ?1), 0))",
            Operation::Define);
        Run run(update.Get());
        sqlite3_bind_text(run, 1, name.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_int64(run, 2, *sequence);
        run.Step(Operation::Define);
    }
}

std::vector<int> SameFields(const TableInfo& table) {
    std::vector<int> result;
    for (std::size_t i = 0; i < table.def.fields.size(); ++i) {
        result.push_back(static_cast<int>(i));
    }
    return result;
}

ForeignKeysOff::ForeignKeysOff(Connection& connection) : connection_(connection) {
    connection_.Execute("PRAGMA foreign_keys = OFF", Operation::Define);
}

ForeignKeysOff::~ForeignKeysOff() {
    sqlite3_exec(connection_.Handle(), "PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr);
}

} // namespace quillary::database::sqlite
