#include "platform/database/sqlite/connection.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/functions.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/statement_cache.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <sqlite3.h>
#include <utility>

namespace quillary::database::sqlite {
namespace {

constexpr std::size_t kMostKept = 256;

int busyMilliseconds = 3000;

std::int64_t OneNumber(sqlite3_stmt* statement) {
    Run run(statement);
    return run.Step(Operation::Read) ? sqlite3_column_int64(run, 0) : 0;
}

std::string ColumnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text == nullptr
               ? std::string()
               : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

} // namespace

void SetBusyTimeout(int milliseconds) {
    busyMilliseconds = milliseconds;
}

int BusyTimeout() {
    return busyMilliseconds;
}

Statement::~Statement() {
    sqlite3_finalize(statement_);
}

Run::~Run() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

bool Run::Step(Operation operation) {
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        RaiseSqliteError(sqlite3_db_handle(statement_), operation);
    }
    return false;
}

Connection::Connection(sqlite3* handle, std::string path, bool readOnly)
    : handle_(handle), path_(std::move(path)), readOnly_(readOnly),
      statements_(std::make_unique<StatementCache>(*this)) {
    try {
        sqlite3_extended_result_codes(handle_, 1);
        sqlite3_busy_timeout(handle_, busyMilliseconds);
        // A word in double quotes is a name and never quietly a text.
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        RegisterFunctions(handle_);
        Execute("PRAGMA foreign_keys = ON", Operation::Open);
        Execute("PRAGMA temp_store = MEMORY", Operation::Open);
        Execute("PRAGMA cache_size = -16000", Operation::Open);
        if (!readOnly_) {
            Execute("PRAGMA journal_mode = WAL", Operation::Open);
            Execute("PRAGMA synchronous = NORMAL", Operation::Open);
        }
        beginWrite_ = Prepare("BEGIN IMMEDIATE", Operation::Open);
        commit_ = Prepare("COMMIT", Operation::Open);
        rollback_ = Prepare("ROLLBACK", Operation::Open);
        version_ = Prepare("PRAGMA schema_version", Operation::Open);
        dataVersion_ = Prepare("PRAGMA data_version", Operation::Open);
        const ReadScope scope(*this);
    } catch (...) {
        // The destructor does not run for a constructor that fails.
        CloseHandle();
        throw;
    }
}

Connection::~Connection() {
    CloseHandle();
}

void Connection::CloseHandle() {
    kept_.clear();
    passing_.clear();
    for (Statement* each : {&beginWrite_, &commit_, &rollback_, &version_, &dataVersion_}) {
        const Statement ended = std::move(*each);
    }
    sqlite3_close_v2(handle_); // statements of recordsets still open keep it alive until they end
}

Statement Connection::Prepare(std::string_view sql, Operation operation) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(handle_, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                           &statement, nullptr) != SQLITE_OK) {
        RaiseSqliteError(handle_, operation);
    }
    return Statement(statement);
}

sqlite3_stmt* Connection::Kept(std::string_view sql) {
    const auto found = kept_.find(sql);
    if (found != kept_.end()) {
        return found->second.Get();
    }
    Statement statement = Prepare(sql, Operation::Read);
    if (!seen_(sql)) {
        passing_.push_back(std::move(statement));
        return passing_.back().Get();
    }
    return kept_.emplace(std::string(sql), std::move(statement)).first->second.Get();
}

void Connection::Execute(std::string_view sql, Operation operation) {
    const Statement statement = Prepare(sql, operation);
    Run run(statement.Get());
    while (run.Step(operation)) {
    }
}

Connection::Stamp Connection::Now() {
    return {writes_, OneNumber(dataVersion_.Get())};
}

const SavedQueries& Connection::Queries() {
    const Stamp now = Now();
    if (queriesRead_ && now == queriesStamp_) {
        return queries_;
    }
    SavedQueries read;
    if (catalogue_->HasQueryTable()) {
        Run run(Kept("SELECT name, sql FROM jet_queries"));
        while (run.Step(Operation::Read)) {
            SavedQuery query{ColumnText(run, 0), ColumnText(run, 1)};
            std::string key = FoldName(query.name);
            read.insert_or_assign(std::move(key), std::move(query));
        }
    }
    const bool same = queriesRead_ && std::equal(read.begin(), read.end(), queries_.begin(), queries_.end(),
                                                 [](const auto& a, const auto& b) {
                                                     return a.first == b.first &&
                                                            a.second.sql == b.second.sql &&
                                                            a.second.name == b.second.name;
                                                 });
    if (!same) {
        queries_ = std::move(read);
        ++queriesGeneration_;
    }
    queriesRead_ = true;
    queriesStamp_ = now;
    return queries_;
}

// The statement that asks for the schema's version stays where it is: as long as it has not ended, SQLite
// keeps the moment that it reads from. That is a transaction without the cost of BEGIN and COMMIT.
void Connection::BeginRead() {
    if (depth_ > 0) {
        ++depth_;
        return;
    }
    DropKept();
    try {
        CheckSchema();
    } catch (...) {
        sqlite3_reset(version_.Get());
        throw;
    }
    depth_ = 1;
}

void Connection::EndRead() {
    if (--depth_ == 0) {
        sqlite3_reset(version_.Get());
    }
}

void Connection::BeginWrite(int busyNumber) {
    if (depth_ > 0) {
        ++depth_;
        return;
    }
    DropKept();
    const int result = [&] {
        const Run run(beginWrite_.Get());
        return sqlite3_step(run);
    }();
    if (result != SQLITE_DONE) {
        if ((sqlite3_extended_errcode(handle_) & 0xff) == SQLITE_BUSY) {
            Raise(busyNumber, "Could not update; '" + path_ + "' is locked by another program.");
        }
        RaiseSqliteError(handle_, Operation::Update);
    }
    depth_ = 1;
    try {
        CheckSchema();
        sqlite3_reset(version_.Get());
    } catch (...) {
        sqlite3_reset(version_.Get());
        EndWrite(false);
        throw;
    }
}

void Connection::EndWrite(bool commit) {
    if (depth_ > 1 && commit) {
        --depth_;
        return;
    }
    depth_ = 0;
    if (sqlite3_get_autocommit(handle_) != 0) {
        return; // a failure has undone everything already
    }
    int result = SQLITE_DONE;
    if (commit) {
        const Run run(commit_.Get());
        result = sqlite3_step(run);
    }
    if (!commit || result != SQLITE_DONE) {
        const int code = sqlite3_extended_errcode(handle_);
        const std::string message = sqlite3_errmsg(handle_);
        {
            const Run run(rollback_.Get());
            sqlite3_step(run);
        }
        if (commit) {
            RaiseSqliteError(code, message, path_, Operation::Update);
        }
    }
}

void Connection::DropKept() {
    passing_.clear();
    others_.Release();
    if (kept_.size() > kMostKept) {
        kept_.clear();
    }
}

void Connection::CheckSchema() {
    if (sqlite3_step(version_.Get()) != SQLITE_ROW) {
        RaiseSqliteError(handle_, Operation::Read);
    }
    const std::int64_t version = sqlite3_column_int64(version_.Get(), 0);
    if (version != schemaVersion_) {
        catalogue_ = Catalogue::Read(handle_);
        schemaVersion_ = version;
        ++schemaGeneration_;
        queriesRead_ = false;
    }
}

void Connection::Sync() {
    if (!unsynced_) {
        return;
    }
    sqlite3_file* log = nullptr;
    if (sqlite3_file_control(handle_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log) == SQLITE_OK &&
        log != nullptr && log->pMethods != nullptr) {
        if (log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) != SQLITE_OK) {
            RaiseSqliteError(SQLITE_IOERR, {}, path_, Operation::Update);
        }
    }
    unsynced_ = false;
}

void Connection::Settle() {
    if (!unsynced_) {
        return;
    }
    // Nobody is waited for: while another program reads, the log simply stays.
    sqlite3_busy_timeout(handle_, 0);
    const int result =
        sqlite3_wal_checkpoint_v2(handle_, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    sqlite3_busy_timeout(handle_, busyMilliseconds);
    if (result == SQLITE_OK) {
        unsynced_ = false;
    } else {
        Sync();
    }
}

void Connection::Unregister(const std::vector<std::string>* tables) {
    const auto found = std::find(inUse_.begin(), inUse_.end(), tables);
    if (found != inUse_.end()) {
        *found = inUse_.back();
        inUse_.pop_back();
    }
}

bool Connection::IsInUse(std::string_view table) const {
    return std::any_of(inUse_.begin(), inUse_.end(), [&](const auto* tables) {
        return std::any_of(tables->begin(), tables->end(),
                           [&](const std::string& name) { return runtime::EqualName(name, table); });
    });
}

ReadScope::ReadScope(Connection& connection) : connection_(connection) {
    connection_.BeginRead();
}

ReadScope::~ReadScope() {
    connection_.EndRead();
}

WriteScope::WriteScope(Connection& connection, int busyNumber) : connection_(connection) {
    if (connection.ReadOnly()) {
        RaiseSqliteError(SQLITE_READONLY, {}, connection.Path(), Operation::Update);
    }
    connection_.BeginWrite(busyNumber);
}

WriteScope::~WriteScope() {
    if (open_) {
        connection_.EndWrite(false);
    }
}

void WriteScope::Commit() {
    open_ = false;
    connection_.CountWrite();
    connection_.EndWrite(true);
}

Savepoint::Savepoint(Connection& connection) : connection_(connection) {
    Run run(connection_.Kept("SAVEPOINT row"));
    run.Step(Operation::Update);
}

Savepoint::~Savepoint() {
    if (open_ && sqlite3_get_autocommit(connection_.Handle()) == 0) {
        {
            const Run run(connection_.Kept("ROLLBACK TO row"));
            sqlite3_step(run);
        }
        const Run run(connection_.Kept("RELEASE row"));
        sqlite3_step(run);
    }
}

void Savepoint::Keep() {
    Run run(connection_.Kept("RELEASE row"));
    run.Step(Operation::Update);
    open_ = false;
}

} // namespace quillary::database::sqlite
