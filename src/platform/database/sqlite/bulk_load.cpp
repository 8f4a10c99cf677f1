#include "platform/database/bulk_load.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/sqlite/catalogue.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/context.h"
#include "platform/database/sqlite/ddl.h"
#include "platform/database/sqlite/defaults.h"
#include "platform/database/sqlite/functions.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/storage.h"
#include "platform/database/sqlite/table_builder.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace quillary::database {

using namespace sqlite;
using runtime::EqualName;

namespace {

constexpr int kErrFileExists = 3204;
constexpr int kErrInvalidPath = 3044;
constexpr int kErrTableExists = 3010;
constexpr int kErrQueryExists = 3012;

// Days that a date can be written of: 1 January 100 to 31 December 9999.
constexpr double kFirstDay = -657434;
constexpr double kBeyondLastDay = 2958466;

struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};

bool SameSet(const std::vector<std::string>& left, const std::vector<std::string>& right) {
    return left.size() == right.size() &&
           std::is_permutation(left.begin(), left.end(), right.begin(), EqualName);
}

// As TableBuilder chooses it, so that the file reads back alike.
int RowIdField(const TableDef& table) {
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        if (table.fields[i].counter) {
            return static_cast<int>(i);
        }
    }
    const bool keyed = !table.indexes.empty() && table.indexes.front().primary;
    if (keyed && table.indexes.front().fields.size() == 1) {
        const int only = FindField(table, table.indexes.front().fields.front());
        if (only >= 0 && table.fields[static_cast<std::size_t>(only)].type == FieldType::Long) {
            return only;
        }
    }
    return -1;
}

std::string Texts(sqlite3_stmt* row, int columns) {
    std::string result;
    for (int i = 0; i < columns; ++i) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, i));
        result += (i == 0 ? "" : ", ") + std::string(text == nullptr ? "Null" : text);
    }
    return result;
}

} // namespace

bool IsLoadName(std::string_view name) {
    try {
        CheckName(name);
        return !EqualName(name, kQueryTable);
    } catch (const runtime::RunTimeError&) {
        return false;
    }
}

class BulkLoad::Work {
public:
    explicit Work(const std::string& path) : path_(path) {
        const int file = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (file < 0) {
            RaiseNotMade(errno);
        }
        close(file);
        sqlite3* opened = nullptr;
        const int result =
            sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        handle_.reset(opened);
        if (result != SQLITE_OK) {
            unlink(path.c_str());
            RaiseSqliteError(result, {}, path, Operation::Open);
        }
        sqlite3_extended_result_codes(opened, 1);
        RegisterFunctions(opened);
        // Nobody else has the file, and an unfinished one is thrown away. The journal, of hardly anything in
        // a new file, is for the unique index that fails half way.
        Run("PRAGMA journal_mode = MEMORY");
        Run("PRAGMA synchronous = OFF");
        Run("PRAGMA locking_mode = EXCLUSIVE");
        Run("PRAGMA temp_store = FILE"); // the sorting for an index of a large table
        Run("PRAGMA cache_size = -32000");
        Run("PRAGMA foreign_keys = OFF");
        Run("PRAGMA ignore_check_constraints = ON");
        Run("BEGIN");
        Run("CREATE TABLE jet_queries (name TEXT PRIMARY KEY COLLATE NOCASE, sql TEXT NOT NULL)");
        // Makes the table of the counters.
        Run("CREATE TABLE qy_counter (n INTEGER PRIMARY KEY AUTOINCREMENT)");
        Run("DROP TABLE qy_counter");
    }

    ~Work() {
        insert_ = Statement();
        const bool finished = finished_;
        handle_.reset();
        if (!finished) {
            unlink(path_.c_str());
        }
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    void AddTable(const TableDef& table) {
        CheckName(table.name);
        if (Find(table.name) != nullptr || EqualName(table.name, kQueryTable)) {
            Raise(kErrTableExists, "Table '" + table.name + "' already exists.");
        }
        TableInfo info;
        info.def = table;
        std::erase_if(info.def.indexes, [](const IndexDef& index) { return !index.primary; });
        info.defaults.resize(table.fields.size());
        info.rowIdField = RowIdField(info.def);
        for (const auto& field : table.fields) {
            CheckName(field.name);
        }
        // The rules come when all rows are there. SQLite would write down a counter's number at each row.
        TableInfo bare = info;
        const IndexDef* key = info.PrimaryKey();
        for (auto& field : bare.def.fields) {
            const bool inKey = key != nullptr && std::any_of(key->fields.begin(), key->fields.end(),
                                                             [&](const std::string& name) {
                                                                 return EqualName(name, field.name);
                                                             });
            field.required = inKey;
            field.counter = false;
        }
        Run(TableText(bare, table.name));
        std::string sql = "INSERT INTO " + Quote(table.name) + " VALUES (";
        for (std::size_t i = 0; i < table.fields.size(); ++i) {
            sql += i == 0 ? "?" : ", ?";
        }
        insert_ = Prepare(sql + ")");
        tables_.push_back(std::move(info));
        types_.clear();
        for (const auto& field : table.fields) {
            types_.push_back(field.type);
        }
    }

    bool AddRow(std::span<const LoadValue> values) {
        const TableInfo& table = tables_.back();
        const int rowId = table.rowIdField;
        if (rowId >= 0 && values[static_cast<std::size_t>(rowId)].kind == LoadValue::Kind::Null) {
            return false; // SQLite would number it
        }
        sqlite3_stmt* statement = insert_.Get();
        for (std::size_t i = 0; i < values.size(); ++i) {
            Bind(statement, static_cast<int>(i) + 1, values[i], types_[i]);
        }
        const int result = sqlite3_step(statement);
        sqlite3_reset(statement);
        if (result == SQLITE_DONE) {
            return true;
        }
        if ((result & 0xff) != SQLITE_CONSTRAINT) {
            RaiseSqliteError(handle_.get(), Operation::Insert);
        }
        return false;
    }

    void DropTable(std::string_view name) {
        insert_ = Statement();
        Run("DROP TABLE " + Quote(Require(name).def.name));
        std::erase_if(tables_, [&](const TableInfo& table) { return EqualName(table.def.name, name); });
    }

    void ChangeField(std::string_view table, const FieldDef& field) {
        FieldDef& there = RequireField(Require(table), field.name);
        const FieldType type = there.type;
        there = field;
        // A text that outgrows its type is a memo, which lies in the file in the same way.
        const bool memo = type == FieldType::Text && field.type == FieldType::Memo;
        there.type = memo ? FieldType::Memo : type;
    }

    bool SetDefault(std::string_view table, std::string_view name, std::string_view expression) {
        TableInfo& info = Require(table);
        const FieldDef& field = RequireField(info, name);
        try {
            std::string text = DefaultText(jet_sql::ParseExpression(expression), field);
            info.defaults[static_cast<std::size_t>(FindField(info.def, name))] = std::move(text);
            return true;
        } catch (const runtime::RunTimeError&) {
            return false;
        }
    }

    void SetLastCounter(std::string_view table, std::int64_t number) {
        const TableInfo& info = Require(table);
        if (info.rowIdField < 0 || !info.def.fields[static_cast<std::size_t>(info.rowIdField)].counter) {
            return;
        }
        const Statement insert = Prepare("INSERT INTO sqlite_sequence (name, seq) SELECT ?1, "
                                         "max(?2, coalesce((SELECT max(rowid) FROM " +
                                         Quote(info.def.name) + "), 0))");
        const sqlite::Run run(insert.Get());
        BindText(run, 1, info.def.name);
        sqlite3_bind_int64(run, 2, number);
        Step(run);
    }

    bool AddRule(std::string_view table, std::string_view name, std::string_view condition) {
        TableInfo& info = Require(table);
        jet_sql::Constraint constraint;
        constraint.kind = jet_sql::ConstraintKind::Check;
        constraint.name = name;
        try {
            constraint.check = jet_sql::ParseExpression(condition);
            const Catalogue none;
            TableBuilder builder(none, info);
            builder.AddConstraint(constraint);
            const TableInfo::Rule& rule = builder.Table().rules.back();
            const Statement broken =
                Prepare("SELECT 1 FROM " + Quote(info.def.name) + " WHERE NOT (" + rule.sql + ") LIMIT 1");
            const sqlite::Run run(broken.Get());
            if (Step(run)) {
                return false;
            }
            info.rules.push_back(rule);
            return true;
        } catch (const runtime::RunTimeError&) {
            return false;
        }
    }

    bool AddIndex(std::string_view table, const LoadIndex& index) {
        TableInfo& info = Require(table);
        CheckName(index.def.name);
        IndexDef made = index.def;
        for (std::string& field : made.fields) {
            field = RequireField(info, field).name;
        }
        const std::string sql = std::string(made.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                                Quote(IndexName(info.def.name, made.name)) + " ON " + Quote(info.def.name) +
                                " (" + IndexTerms(made.fields, index.descending) + ")";
        const int result = sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr);
        if ((result & 0xff) == SQLITE_CONSTRAINT) {
            return false;
        }
        if (result != SQLITE_OK) {
            RaiseSqliteError(handle_.get(), Operation::Define);
        }
        made.primary = false;
        info.def.indexes.push_back(std::move(made));
        return true;
    }

    std::vector<LoadFault> Repeats(std::string_view table, const std::vector<std::string>& fields, int most) {
        const TableInfo& info = Require(table);
        std::string names, known;
        for (const auto& field : fields) {
            names += (names.empty() ? "" : ", ") + Quote(field);
            known += (known.empty() ? "" : " AND ") + Quote(field) + " IS NOT NULL";
        }
        const Statement select =
            Prepare("SELECT " + names + ", count(*) FROM " + Quote(info.def.name) + " WHERE " + known +
                    " GROUP BY " + names + " HAVING count(*) > 1 LIMIT " + std::to_string(most));
        const sqlite::Run run(select.Get());
        std::vector<LoadFault> result;
        const int columns = static_cast<int>(fields.size());
        while (Step(run)) {
            result.push_back({info.def.name, Texts(run, columns), sqlite3_column_int(run, columns)});
        }
        return result;
    }

    bool AddRelation(const RelationDef& relation) {
        const TableInfo* parent = Find(relation.table);
        TableInfo* child = Find(relation.foreignTable);
        if (parent == nullptr || child == nullptr || relation.fields.empty() ||
            relation.fields.size() != relation.foreignFields.size()) {
            return false;
        }
        ForeignKey key;
        key.name = relation.name;
        key.parent = parent->def.name;
        for (std::size_t i = 0; i < relation.fields.size(); ++i) {
            const int above = FindField(parent->def, relation.fields[i]);
            const int below = FindField(child->def, relation.foreignFields[i]);
            if (above < 0 || below < 0) {
                return false;
            }
            const FieldDef& from = child->def.fields[static_cast<std::size_t>(below)];
            const FieldDef& to = parent->def.fields[static_cast<std::size_t>(above)];
            if (from.type != to.type) {
                return false;
            }
            key.fields.push_back(from.name);
            key.parentFields.push_back(to.name);
        }
        const bool unique =
            std::any_of(parent->def.indexes.begin(), parent->def.indexes.end(), [&](const IndexDef& index) {
                return index.unique && SameSet(index.fields, key.parentFields);
            });
        const bool repeated =
            std::any_of(child->foreignKeys.begin(), child->foreignKeys.end(),
                        [&](const ForeignKey& each) { return EqualName(each.name, key.name); });
        if (!unique || repeated) {
            return false;
        }
        key.cascadeUpdates = relation.cascadeUpdates;
        key.cascadeDeletes = relation.cascadeDeletes;
        const bool named =
            std::any_of(child->def.indexes.begin(), child->def.indexes.end(),
                        [&](const IndexDef& index) { return EqualName(index.name, key.name); });
        if (!named && IsLoadName(key.name)) {
            LoadIndex index;
            index.def.name = key.name;
            index.def.fields = key.fields;
            AddIndex(child->def.name, index);
        }
        child->foreignKeys.push_back(std::move(key));
        return true;
    }

    void AddQuery(std::string_view name, std::string_view sql) {
        CheckName(name);
        const Statement insert = Prepare("INSERT INTO jet_queries (name, sql) SELECT ?1, ?2 WHERE NOT EXISTS "
                                         "(SELECT 1 FROM jet_queries WHERE name = ?1)");
        const sqlite::Run run(insert.Get());
        BindText(run, 1, name);
        BindText(run, 2, sql);
        Step(run);
        if (Find(name) != nullptr || sqlite3_changes(handle_.get()) == 0) {
            Raise(kErrQueryExists, "Object '" + std::string(name) + "' already exists.");
        }
    }

    std::vector<LoadFault> Finish() {
        insert_ = Statement();
        WriteRules();
        Run("COMMIT");
        Run("PRAGMA writable_schema = RESET"); // the rules are read back
        std::vector<LoadFault> orphans = Orphans();
        Run("PRAGMA locking_mode = NORMAL");
        Run("PRAGMA synchronous = FULL");
        Run("PRAGMA journal_mode = WAL");
        if (sqlite3_close(handle_.get()) != SQLITE_OK) {
            RaiseSqliteError(handle_.get(), Operation::Define);
        }
        static_cast<void>(handle_.release()); // closed
        const int file = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
        const bool written = file >= 0 && fsync(file) == 0;
        const int reason = errno;
        if (file >= 0) {
            close(file);
        }
        if (!written) {
            Raise(kErrCannotOpenFile,
                  "The file '" + path_ + "' cannot be written to the disk: " + std::strerror(reason) + ".");
        }
        finished_ = true;
        return orphans;
    }

private:
    [[noreturn]] void RaiseNotMade(int reason) const {
        if (reason == EEXIST) {
            Raise(kErrFileExists, "Database '" + path_ + "' already exists.");
        }
        if (reason == ENOENT || reason == ENOTDIR) {
            Raise(kErrInvalidPath, "'" + path_ + "' is not a valid path.");
        }
        Raise(kErrCannotOpenFile,
              "The database engine cannot make the file '" + path_ + "': " + std::strerror(reason) + ".");
    }

    void Run(const std::string& sql) {
        if (sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            RaiseSqliteError(handle_.get(), Operation::Define);
        }
    }

    Statement Prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v3(handle_.get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement,
                               nullptr) != SQLITE_OK) {
            RaiseSqliteError(handle_.get(), Operation::Define);
        }
        return Statement(statement);
    }

    bool Step(sqlite3_stmt* statement) {
        const int result = sqlite3_step(statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE) {
            RaiseSqliteError(handle_.get(), Operation::Define);
        }
        return result == SQLITE_ROW;
    }

    static void BindText(sqlite3_stmt* statement, int index, std::string_view text) {
        sqlite3_bind_text64(statement, index, text.data() == nullptr ? "" : text.data(), text.size(),
                            SQLITE_STATIC, SQLITE_UTF8);
    }

    static void Bind(sqlite3_stmt* statement, int index, const LoadValue& value, FieldType type) {
        switch (value.kind) {
        case LoadValue::Kind::Null:
            sqlite3_bind_null(statement, index);
            break;
        case LoadValue::Kind::Whole:
            sqlite3_bind_int64(statement, index, value.whole);
            break;
        case LoadValue::Kind::Real:
            BindReal(statement, index, value.real, type);
            break;
        case LoadValue::Kind::Text:
            BindText(statement, index, value.text);
            break;
        case LoadValue::Kind::Bytes:
            sqlite3_bind_blob64(statement, index, value.text.data() == nullptr ? "" : value.text.data(),
                                value.text.size(), SQLITE_STATIC);
            break;
        }
    }

    static void BindReal(sqlite3_stmt* statement, int index, double value, FieldType type) {
        if (type == FieldType::Date && value > kFirstDay - 1 && value < kBeyondLastDay) {
            const std::string text = runtime::IsoText(runtime::Date{value});
            sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        } else if (type == FieldType::Single) {
            sqlite3_bind_double(statement, index, StoredSingle(static_cast<float>(value)));
        } else {
            sqlite3_bind_double(statement, index, value);
        }
    }

    // Constraints change nothing of how the rows lie, so the finished definition can take the place of the
    // bare one in the file's list of tables.
    void WriteRules() {
        sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        Run("PRAGMA writable_schema = ON");
        const Statement update =
            Prepare("UPDATE sqlite_master SET sql = ?1 WHERE type = 'table' AND name = ?2");
        for (const auto& table : tables_) {
            const std::string text = TableText(table, table.def.name);
            const sqlite::Run run(update.Get());
            BindText(run, 1, text);
            BindText(run, 2, table.def.name);
            Step(run);
        }
    }

    std::vector<LoadFault> Orphans() {
        std::vector<LoadFault> result;
        const Statement select = Prepare(
            "SELECT \"table\", parent, fkid, count(*) FROM pragma_foreign_key_check GROUP BY 1, 2, 3");
        const sqlite::Run run(select.Get());
        while (Step(run)) {
            const TableInfo& table = Require(Texts(run, 1));
            // SQLite counts the keys of a table from the last one on.
            const auto number = static_cast<std::size_t>(sqlite3_column_int(run, 2));
            const std::size_t count = table.foreignKeys.size();
            const std::string name =
                number < count ? table.foreignKeys[count - 1 - number].name : std::string();
            result.push_back({table.def.name, name, sqlite3_column_int(run, 3)});
        }
        return result;
    }

    TableInfo* Find(std::string_view name) {
        const auto found = std::find_if(tables_.begin(), tables_.end(), [&](const TableInfo& table) {
            return EqualName(table.def.name, name);
        });
        return found == tables_.end() ? nullptr : &*found;
    }

    TableInfo& Require(std::string_view name) {
        TableInfo* table = Find(name);
        if (table == nullptr) {
            Raise(kErrUnknownTable, "The database engine cannot find the table '" + std::string(name) + "'.");
        }
        return *table;
    }

    static FieldDef& RequireField(TableInfo& table, std::string_view name) {
        const int position = FindField(table.def, name);
        if (position < 0) {
            Raise(kErrItemNotFound, "Item '" + std::string(name) + "' not found in this collection.");
        }
        return table.def.fields[static_cast<std::size_t>(position)];
    }

    std::string path_;
    std::unique_ptr<sqlite3, Closer> handle_;
    std::deque<TableInfo> tables_;
    Statement insert_; // into the last table
    std::vector<FieldType> types_;
    bool finished_ = false;
};

BulkLoad::BulkLoad(const std::string& path) : work_(std::make_unique<Work>(path)) {}
BulkLoad::~BulkLoad() = default;

void BulkLoad::AddTable(const TableDef& table) {
    work_->AddTable(table);
}

bool BulkLoad::AddRow(std::span<const LoadValue> values) {
    return work_->AddRow(values);
}

void BulkLoad::DropTable(std::string_view table) {
    work_->DropTable(table);
}

void BulkLoad::ChangeField(std::string_view table, const FieldDef& field) {
    work_->ChangeField(table, field);
}

bool BulkLoad::SetDefault(std::string_view table, std::string_view field, std::string_view expression) {
    return work_->SetDefault(table, field, expression);
}

void BulkLoad::SetLastCounter(std::string_view table, std::int64_t number) {
    work_->SetLastCounter(table, number);
}

bool BulkLoad::AddRule(std::string_view table, std::string_view name, std::string_view condition) {
    return work_->AddRule(table, name, condition);
}

bool BulkLoad::AddIndex(std::string_view table, const LoadIndex& index) {
    return work_->AddIndex(table, index);
}

std::vector<LoadFault> BulkLoad::Repeats(std::string_view table, const std::vector<std::string>& fields,
                                         int most) {
    return work_->Repeats(table, fields, most);
}

bool BulkLoad::AddRelation(const RelationDef& relation) {
    return work_->AddRelation(relation);
}

void BulkLoad::AddQuery(std::string_view name, std::string_view sql) {
    work_->AddQuery(name, sql);
}

std::vector<LoadFault> BulkLoad::Finish() {
    return work_->Finish();
}

} // namespace quillary::database
