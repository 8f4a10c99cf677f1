#include "platform/database/sqlite/dynaset.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/defaults.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/statement_log.h"
#include "platform/database/sqlite/storage.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

constexpr int kErrFieldNotUpdatable = 3164;

[[noreturn]] void RaiseDeleted() {
    Raise(kErrRecordDeleted, "Record is deleted.");
}

// The rowid of a table without an alias.
std::string RowIdOf(const TableInfo& table) {
    return std::string(RowIdName(table.def));
}

} // namespace

std::unique_ptr<Recordset> Dynaset::Open(std::shared_ptr<Connection> connection,
                                         std::shared_ptr<const OpenedQuery> query, RecordsetType type,
                                         bool readOnly) {
    auto rows = std::make_shared<Keyset>(connection, *query);
    return std::unique_ptr<Recordset>(
        new Dynaset(std::move(connection), std::move(query), std::move(rows), type, readOnly));
}

Dynaset::Dynaset(std::shared_ptr<Connection> connection, std::shared_ptr<const OpenedQuery> query,
                 std::shared_ptr<Keyset> rows, RecordsetType type, bool readOnly)
    : RecordsetBase(std::move(connection), std::move(query), std::move(rows), type), readOnly_(readOnly),
      before_(columns_->Count()) {
    ListTables();
}

Dynaset::Dynaset(const Dynaset& other, int)
    : RecordsetBase(other, 0), readOnly_(other.readOnly_), before_(columns_->Count()) {
    ListTables();
}

Dynaset::~Dynaset() {
    connection_->Unregister(&tableNames_);
}

void Dynaset::ListTables() {
    for (const auto& table : query_->selection.tables) {
        tableNames_.push_back(table.table);
    }
    connection_->Register(&tableNames_);
}

std::unique_ptr<Recordset> Dynaset::Clone() const {
    CheckOpen();
    return std::unique_ptr<Recordset>(new Dynaset(*this, 0));
}

void Dynaset::Close() {
    connection_->Unregister(&tableNames_);
    RecordsetBase::Close();
}

std::shared_ptr<RowSet> Dynaset::OpenRows(const OpenedQuery& query) const {
    const ReadScope scope(*connection_);
    return std::make_shared<Keyset>(connection_, query);
}

const TableInfo& Dynaset::Table(int table) const {
    return *query_->catalogue->Find(query_->selection.tables[static_cast<std::size_t>(table)].table);
}

void Dynaset::RequireUpdatable() const {
    CheckOpen();
    if (readOnly_) {
        Raise(kErrReadOnly, "Cannot update. Database or object is read-only.");
    }
}

void Dynaset::DropEdit() {
    editing_ = EditMode::None;
    pending_.clear();
}

// ------------------------------------------------------------------------------------ pending values

bool Dynaset::CanSet(int position) const {
    const ColumnInfo& column = (*columns_)[position];
    return !readOnly_ && column.table >= 0 && !column.counter;
}

void Dynaset::SetField(int position, const Variant& value) {
    CheckOpen();
    if (editing_ == EditMode::None) {
        Raise(kErrUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
    }
    const ColumnInfo& column = (*columns_)[position];
    // A new row's counter may be given; an old one's never changes.
    const bool fixed = column.counter && editing_ == EditMode::Edit;
    const bool missing =
        editing_ == EditMode::Edit && column.table >= 0 && Keys().Key(row_, column.table) == kNoRow;
    if (column.table < 0 || fixed || missing) {
        Raise(kErrFieldNotUpdatable, "Field '" + column.name + "' cannot be updated.");
    }
    pending_[static_cast<std::size_t>(position)] =
        ConvertForField(value, column.type, column.size, column.name);
}

Variant Dynaset::FieldValue(int position) const {
    const auto& pending = pending_[static_cast<std::size_t>(position)];
    if (pending) {
        return *pending;
    }
    if (editing_ == EditMode::AddNew) {
        return NewRowValue(position);
    }
    return ReadCell(before_.Row(0)[position], (*columns_)[position].type);
}

Variant Dynaset::NewRowValue(int position) const {
    const ColumnInfo& column = (*columns_)[position];
    if (column.table < 0) {
        return Variant::Null();
    }
    if (column.counter) {
        return ReserveCounter(position);
    }
    const Variant value = DefaultOf(column.defaultSql, column.type);
    return value.IsNull() && column.type == FieldType::Boolean ? Variant(false) : value;
}

// The number of the new row is there from AddNew on: it is taken from the table's sequence when somebody
// looks at it, so that no other program can get it too.
Variant Dynaset::ReserveCounter(int position) const {
    const ColumnInfo& column = (*columns_)[position];
    const TableInfo& table = Table(column.table);
    std::int64_t number = 0;
    {
        WriteScope scope(*connection_, kErrPageLocked);
        {
            Run run(
                connection_->Kept("UPDATE sqlite_sequence SET seq = seq + 1 WHERE name = ?1 RETURNING seq"));
            sqlite3_bind_text(run, 1, table.def.name.c_str(), -1, SQLITE_STATIC);
            while (run.Step(Operation::Insert)) {
                number = sqlite3_column_int64(run, 0);
            }
        }
        if (number == 0) {
            Run run(connection_->Kept("INSERT INTO sqlite_sequence (name, seq) VALUES (?1, 1)"));
            sqlite3_bind_text(run, 1, table.def.name.c_str(), -1, SQLITE_STATIC);
            run.Step(Operation::Insert);
            number = 1;
        }
        scope.Commit();
    }
    Variant value(static_cast<std::int32_t>(number));
    pending_[static_cast<std::size_t>(position)] = value;
    return value;
}

std::vector<int> Dynaset::SetOf(int table) const {
    std::vector<int> result;
    for (int i = 0; i < columns_->Count(); ++i) {
        if ((*columns_)[i].table == table && pending_[static_cast<std::size_t>(i)]) {
            result.push_back(i);
        }
    }
    return result;
}

// ------------------------------------------------------------------------------------------- editing

void Dynaset::AddNew() {
    RequireUpdatable();
    DropEdit();
    pending_.assign(static_cast<std::size_t>(columns_->Count()), std::nullopt);
    editing_ = EditMode::AddNew;
}

void Dynaset::Edit() {
    RequireUpdatable();
    RequireCurrent();
    DropEdit();
    before_.Clear();
    {
        const ReadScope scope(*connection_);
        if (rows_->IsDeleted(row_) || !Keys().ReadNow(row_, before_)) {
            RaiseDeleted();
        }
    }
    pending_.assign(static_cast<std::size_t>(columns_->Count()), std::nullopt);
    editing_ = EditMode::Edit;
}

void Dynaset::Update() {
    CheckOpen();
    if (editing_ == EditMode::None) {
        Raise(kErrUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
    }
    if (editing_ == EditMode::Edit) {
        UpdateRow();
    } else {
        InsertRow();
    }
    DropEdit();
}

void Dynaset::UpdateRow() {
    const bool anySet =
        std::any_of(pending_.begin(), pending_.end(), [](const auto& value) { return value.has_value(); });
    if (anySet) {
        WriteScope scope(*connection_, kErrPageLocked);
        CellBlock now(columns_->Count());
        if (!Keys().ReadNow(row_, now)) {
            RaiseDeleted();
        }
        for (int i = 0; i < columns_->Count(); ++i) {
            if (pending_[static_cast<std::size_t>(i)] && !SameCell(now.Row(0)[i], before_.Row(0)[i])) {
                before_ = std::move(now); // a second Update goes through
                Raise(kErrRecordChanged,
                      "The data has been changed by another program since it was read. The "
                      "change was not made.");
            }
        }
        std::vector<std::int64_t> newKeys;
        for (int table = 0; table < static_cast<int>(query_->selection.tables.size()); ++table) {
            const std::vector<int> set = SetOf(table);
            newKeys.push_back(set.empty() ? Keys().Key(row_, table) : ChangeTable(table, set));
        }
        scope.Commit();
        for (std::size_t table = 0; table < newKeys.size(); ++table) {
            const std::int64_t key = Keys().Key(row_, static_cast<int>(table));
            if (newKeys[table] != key) {
                Keys().Replace(static_cast<int>(table), key, newKeys[table]);
            }
        }
    }
    lastModified_ = static_cast<database::Bookmark>(row_);
}

bool Dynaset::IsForeignKey(const TableInfo& table, int field) const {
    const std::string& name = table.def.fields[static_cast<std::size_t>(field)].name;
    return std::any_of(table.foreignKeys.begin(), table.foreignKeys.end(), [&](const ForeignKey& key) {
        return std::any_of(key.fields.begin(), key.fields.end(),
                           [&](const std::string& each) { return runtime::EqualName(each, name); });
    });
}

std::int64_t Dynaset::ChangeTable(int table, const std::vector<int>& set) {
    const TableInfo& info = Table(table);
    const std::int64_t key = Keys().Key(row_, table);
    std::string sql = "UPDATE " + Quote(info.def.name) + " SET ";
    auto operation = Operation::Update;
    std::int64_t newKey = key;
    for (const int position : set) {
        const ColumnInfo& column = (*columns_)[position];
        sql += (position == set.front() ? "" : ", ") + Quote(column.sourceField) + " = ?";
        if (IsForeignKey(info, column.field)) {
            operation = Operation::UpdateChild;
        }
        const Variant& value = *pending_[static_cast<std::size_t>(position)];
        if (column.field == info.rowIdField && !value.IsNull()) {
            newKey = value.Get<std::int32_t>();
        }
    }
    sql += " WHERE " + RowIdOf(info) + " = ?";
    Observe(sql);
    Run run(connection_->Kept(sql));
    int index = 0;
    for (const int position : set) {
        const ColumnInfo& column = (*columns_)[position];
        const Variant& value = *pending_[static_cast<std::size_t>(position)];
        // SQLite would take Null in a rowid for a wrong kind.
        if (value.IsNull() && (column.field == info.rowIdField || column.type == FieldType::Boolean)) {
            Raise(kErrRequiredField, "The field '" + column.name +
                                         "' cannot contain a Null value because it is "
                                         "required. Enter a value in this field.");
        }
        BindStored(run, ++index, value, column.type);
    }
    sqlite3_bind_int64(run, ++index, key);
    run.Step(operation);
    return newKey;
}

void Dynaset::InsertRow() {
    const int tables = static_cast<int>(query_->selection.tables.size());
    std::vector<std::vector<int>> sets;
    sets.reserve(query_->selection.tables.size());
    for (int table = 0; table < tables; ++table) {
        sets.push_back(SetOf(table));
    }
    std::vector<int> targets;
    for (int table = 0; table < tables; ++table) {
        // A counter that was only looked at makes no row of its own.
        const auto& set = sets[static_cast<std::size_t>(table)];
        if (!std::all_of(set.begin(), set.end(), [&](int i) { return (*columns_)[i].counter; })) {
            targets.push_back(table);
        }
    }
    if (targets.empty()) {
        targets.push_back((*columns_)[0].table < 0 ? 0 : (*columns_)[0].table);
    }
    // A parent's row goes before the rows that refer to it.
    std::stable_sort(targets.begin(), targets.end(), [&](int a, int b) {
        const auto& keys = Table(b).foreignKeys;
        return std::any_of(keys.begin(), keys.end(), [&](const ForeignKey& key) {
            return runtime::EqualName(key.parent, Table(a).def.name);
        });
    });
    std::vector<std::int64_t> keys(static_cast<std::size_t>(tables), kNoRow);
    {
        WriteScope scope(*connection_, kErrPageLocked);
        for (const int table : targets) {
            keys[static_cast<std::size_t>(table)] = InsertInto(table, sets[static_cast<std::size_t>(table)]);
        }
        scope.Commit();
    }
    lastModified_ = static_cast<database::Bookmark>(Keys().Add(keys));
}

std::int64_t Dynaset::InsertInto(int table, const std::vector<int>& set) const {
    const TableInfo& info = Table(table);
    std::string names;
    std::string values;
    bool keyGiven = info.rowIdField < 0 || info.def.fields[static_cast<std::size_t>(info.rowIdField)].counter;
    for (const int position : set) {
        const ColumnInfo& column = (*columns_)[position];
        const Variant& value = *pending_[static_cast<std::size_t>(position)];
        if (value.IsNull() && column.type == FieldType::Boolean) {
            Raise(kErrRequiredField, "The field '" + column.name + "' cannot contain a Null value.");
        }
        keyGiven = keyGiven || (column.field == info.rowIdField && !value.IsNull());
        names += (names.empty() ? "" : ", ") + Quote(column.sourceField);
        values += values.empty() ? "?" : ", ?";
    }
    // SQLite would number the row by itself.
    if (!keyGiven) {
        Raise(kErrRequiredField, "The field '" +
                                     info.def.fields[static_cast<std::size_t>(info.rowIdField)].name +
                                     "' cannot contain a Null value because it is required. Enter a value in "
                                     "this field.");
    }
    const std::string sql = "INSERT INTO " + Quote(info.def.name) +
                            (names.empty() ? " DEFAULT VALUES" : " (" + names + ") VALUES (" + values + ")");
    Observe(sql);
    Run run(connection_->Kept(sql));
    int index = 0;
    for (const int position : set) {
        BindStored(run, ++index, *pending_[static_cast<std::size_t>(position)], (*columns_)[position].type);
    }
    run.Step(Operation::Insert);
    return sqlite3_last_insert_rowid(connection_->Handle());
}

// Of a join the row that appears once goes: the one on the many side.
int Dynaset::TableToDeleteFrom() const {
    std::vector<int> order;
    for (int i = 0; i < columns_->Count(); ++i) {
        const int table = (*columns_)[i].table;
        if (table >= 0 && Keys().Key(row_, table) != kNoRow &&
            std::find(order.begin(), order.end(), table) == order.end()) {
            order.push_back(table);
        }
    }
    if (order.empty()) {
        RaiseDeleted();
    }
    for (const int table : order) {
        if (order.size() == 1 || Keys().IsOnce(table)) {
            return table;
        }
    }
    return order.front();
}

void Dynaset::Delete() {
    RequireUpdatable();
    RequireCurrent();
    DropEdit();
    if (rows_->IsDeleted(row_)) {
        RaiseDeleted();
    }
    const int table = TableToDeleteFrom();
    const TableInfo& info = Table(table);
    const std::string sql = "DELETE FROM " + Quote(info.def.name) + " WHERE " + RowIdOf(info) + " = ?";
    Observe(sql);
    {
        WriteScope scope(*connection_, kErrPageLocked);
        Run run(connection_->Kept(sql));
        sqlite3_bind_int64(run, 1, Keys().Key(row_, table));
        run.Step(Operation::Delete);
        if (sqlite3_changes(connection_->Handle()) == 0) {
            RaiseDeleted();
        }
        scope.Commit();
    }
    rows_->MarkDeleted(row_);
    ForgetCells();
}

} // namespace quillary::database::sqlite
