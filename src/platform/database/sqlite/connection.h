#pragma once

#include "platform/database/sqlite/attached_files.h"
#include "platform/database/sqlite/catalogue.h"
#include "platform/database/sqlite/error_map.h"
#include "platform/database/sqlite/seen_before.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

// One open file. All Database objects of the process on a file share its connection, so that a write of
// one is seen by the next read of another, and opening costs next to nothing. Not for several threads.
namespace quillary::database::sqlite {

// How long a busy file is waited for before 3045, 3218 or 3260. For all connections opened later.
void SetBusyTimeout(int milliseconds);
int BusyTimeout();

class Statement {
public:
    Statement() = default;
    explicit Statement(sqlite3_stmt* statement) : statement_(statement) {}
    Statement(Statement&& other) noexcept : statement_(std::exchange(other.statement_, nullptr)) {}
    Statement& operator=(Statement&& other) noexcept {
        std::swap(statement_, other.statement_);
        return *this;
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    sqlite3_stmt* Get() const { return statement_; }
    explicit operator bool() const { return statement_ != nullptr; }

private:
    sqlite3_stmt* statement_ = nullptr;
};

// A prepared statement in use: at the end it is reset and its values are forgotten.
class Run {
public:
    explicit Run(sqlite3_stmt* statement) : statement_(statement) {}
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    operator sqlite3_stmt*() const { return statement_; }

    // True while there are rows. Raises the error of the statement.
    bool Step(Operation operation);

private:
    sqlite3_stmt* statement_;
};

class StatementCache;

class Connection {
public:
    // Takes an open handle and prepares it for work. 3045 where the file is locked.
    Connection(sqlite3* handle, std::string path, bool readOnly);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* Handle() const { return handle_; }
    const std::string& Path() const { return path_; }
    bool ReadOnly() const { return readOnly_; }

    // Valid as of the scope that is open.
    const std::shared_ptr<const Catalogue>& Tables() const { return catalogue_; }
    const SavedQueries& Queries();
    // Raised at each change of the schema, or of the saved queries, whoever made it.
    std::uint64_t SchemaGeneration() const { return schemaGeneration_; }
    std::uint64_t QueriesGeneration() {
        Queries();
        return queriesGeneration_;
    }

    Statement Prepare(std::string_view sql, Operation operation);
    // A prepared statement, kept where its text comes again. Valid until the end of the scope.
    sqlite3_stmt* Kept(std::string_view sql);
    void Execute(std::string_view sql, Operation operation);

    // A mark that changes with every write, through this process or another. Needs an open scope.
    struct Stamp {
        std::uint64_t own = 0;
        std::int64_t others = 0;
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };
    Stamp Now();
    // The part of the mark that costs nothing to look at.
    const std::uint64_t& OwnWrites() const { return writes_; }
    void CountWrite() {
        ++writes_;
        unsynced_ = true;
    }

    // Brings all commits so far to the disk.
    void Sync();
    // The same, and leaves the log empty where nobody else is reading: the file then is whole by itself and
    // may be moved or copied though the connection is kept.
    void Settle();

    // Statements of the dialect, kept as parsed and translated.
    StatementCache& Statements() { return *statements_; }
    // Other files that the statement at work names.
    AttachedFiles& Others() { return others_; }

    // The tables that open recordsets work on, for DDL to refuse (3211).
    void Register(const std::vector<std::string>* tables) { inUse_.push_back(tables); }
    void Unregister(const std::vector<std::string>* tables);
    bool IsInUse(std::string_view table) const;

private:
    friend class ReadScope;
    friend class WriteScope;

    void BeginRead();
    void EndRead();
    void BeginWrite(int busyNumber);
    void EndWrite(bool commit);
    void CheckSchema();
    void DropKept();
    void CloseHandle();

    sqlite3* handle_;
    std::string path_;
    bool readOnly_;
    int depth_ = 0;
    bool unsynced_ = false;
    std::uint64_t writes_ = 0;
    std::int64_t schemaVersion_ = -1;
    std::uint64_t schemaGeneration_ = 0;
    std::uint64_t queriesGeneration_ = 0;
    std::shared_ptr<const Catalogue> catalogue_;
    SavedQueries queries_;
    Stamp queriesStamp_;
    bool queriesRead_ = false;
    std::vector<const std::vector<std::string>*> inUse_;
    std::unique_ptr<StatementCache> statements_;
    AttachedFiles others_{*this};

    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    std::unordered_map<std::string, Statement, NameHash, std::equal_to<>> kept_;
    SeenBefore seen_;
    std::vector<Statement> passing_; // statements that came once so far
    Statement beginWrite_, commit_, rollback_, version_, dataVersion_;
};

// A stretch of reads that see the file at one moment. The catalogue is up to date in it. Scopes nest; none
// stays open between the calls of the program.
class ReadScope {
public:
    explicit ReadScope(Connection& connection);
    ~ReadScope();
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

private:
    Connection& connection_;
};

// A stretch of writes: all of them or, without Commit, none. 3027 on a read-only file; the busy number
// (3218 for a statement, 3260 for a row) when another program holds it for too long.
class WriteScope {
public:
    explicit WriteScope(Connection& connection, int busyNumber);
    ~WriteScope();
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;
    void Commit();

private:
    Connection& connection_;
    bool open_ = true;
};

// Undoes what was done within it, unless it is kept, and leaves what was done before.
class Savepoint {
public:
    explicit Savepoint(Connection& connection);
    ~Savepoint();
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;
    void Keep();

private:
    Connection& connection_;
    bool open_ = true;
};

} // namespace quillary::database::sqlite
