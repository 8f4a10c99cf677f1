#include "platform/database/sqlite/connection_pool.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/file_check.h"
#include "platform/database/sqlite/piece.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>
#include <vector>

namespace quillary::database::sqlite {
namespace {

constexpr int kErrFileExists = 3204;
constexpr int kErrInvalidPath = 3044;
constexpr std::size_t kMostIdle = 8;

struct Entry {
    std::string path;
    FileState state;
    std::shared_ptr<Connection> connection;

    bool Idle() const { return connection.use_count() == 1; }
};

std::vector<Entry>& Pool() {
    static std::vector<Entry> pool; // the one used last stands at the end
    return pool;
}

std::function<std::string(std::string_view)>& Resolver() {
    static std::function<std::string(std::string_view)> resolver;
    return resolver;
}

void DropIdleOf(const std::string& path) {
    std::erase_if(Pool(), [&](const Entry& entry) { return entry.path == path && entry.Idle(); });
}

struct CloseHandle {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
using UniqueHandle = std::unique_ptr<sqlite3, CloseHandle>;

UniqueHandle OpenHandle(const std::string& path, const std::string& name, int flags) {
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(name.c_str(), &opened,
                        flags | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    UniqueHandle handle(opened);
    if (result != SQLITE_OK) {
        RaiseSqliteError(result, {}, path, Operation::Open);
    }
    return handle;
}

std::shared_ptr<Connection> Connect(const std::string& path, const FileState& state) {
    CheckReadable(path, state);
    const bool writable = IsWritable(path, state);
    // A read-only file cannot have the log that its mode asks for: without one it is read as it lies.
    const std::string mode = writable ? "mode=rw" : HasLog(path) ? "mode=ro" : "immutable=1";
    UniqueHandle handle =
        OpenHandle(path, FileUri(path, mode), writable ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    CheckHeader(handle.get(), path);
    CheckTrees(path);
    return std::make_shared<Connection>(handle.release(), path, !writable);
}

std::shared_ptr<Connection> Keep(const std::string& path, const FileState& state,
                                 std::shared_ptr<Connection> connection) {
    auto& pool = Pool();
    const auto idle = static_cast<std::size_t>(
        std::count_if(pool.begin(), pool.end(), [](const Entry& entry) { return entry.Idle(); }));
    if (idle >= kMostIdle) {
        pool.erase(std::find_if(pool.begin(), pool.end(), [](const Entry& entry) { return entry.Idle(); }));
    }
    pool.push_back({path, state, connection});
    return connection;
}

// Whether a kept connection still fits the file: nobody has changed who may write it, or has written
// something else over it.
bool StillFits(Entry& entry, const FileState& state) {
    if (entry.state.mode != state.mode) {
        return false;
    }
    if (entry.state.changed != state.changed || entry.state.size != state.size) {
        CheckHeader(entry.connection->Handle(), entry.path);
        entry.state = state;
    }
    return true;
}

} // namespace

std::string NativePath(std::string_view path) {
    return Resolver() ? Resolver()(path) : std::string(path);
}

void SetNativePath(std::function<std::string(std::string_view)> resolver) {
    Resolver() = std::move(resolver);
}

std::shared_ptr<Connection> OpenConnection(const std::string& path) {
    FileState state;
    try {
        state = LookAtFile(path);
    } catch (const runtime::RunTimeError&) {
        DropIdleOf(path);
        throw;
    }
    auto& pool = Pool();
    const auto found = std::find_if(pool.begin(), pool.end(),
                                    [&](const Entry& entry) { return entry.state.SameFile(state); });
    if (found != pool.end()) {
        bool fits = false;
        try {
            fits = StillFits(*found, state);
        } catch (const runtime::RunTimeError&) {
            pool.erase(found);
            throw;
        }
        if (fits) {
            if (found + 1 != pool.end()) {
                std::rotate(found, found + 1, pool.end());
            }
            return pool.back().connection;
        }
        pool.erase(found);
    }
    DropIdleOf(path); // another file lay here before
    return Keep(path, state, Connect(path, state));
}

std::shared_ptr<Connection> CreateFile(const std::string& path) {
    const int file = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    if (file < 0) {
        if (errno == EEXIST) {
            Raise(kErrFileExists, "Database '" + path + "' already exists.");
        }
        if (errno == ENOENT || errno == ENOTDIR) {
            Raise(kErrInvalidPath, "'" + path + "' is not a valid path.");
        }
        Raise(kErrCannotOpenFile,
              "The database engine cannot make the file '" + path + "': " + std::strerror(errno) + ".");
    }
    close(file);
    DropIdleOf(path);
    try {
        {
            const UniqueHandle handle = OpenHandle(path, FileUri(path, "mode=rw"), SQLITE_OPEN_READWRITE);
            sqlite3_busy_timeout(handle.get(), BusyTimeout());
            if (sqlite3_exec(
                    handle.get(),
                    "PRAGMA journal_mode = WAL;"
                    "CREATE TABLE jet_queries (name TEXT PRIMARY KEY COLLATE NOCASE, sql TEXT NOT NULL)",
                    nullptr, nullptr, nullptr) != SQLITE_OK) {
                RaiseSqliteError(handle.get(), Operation::Open);
            }
        }
        return OpenConnection(path);
    } catch (...) {
        unlink(path.c_str());
        throw;
    }
}

void CopyFile(const std::string& path, const std::string& target) {
    const std::shared_ptr<Connection> source = OpenConnection(path);
    if (access(target.c_str(), F_OK) == 0) {
        Raise(kErrFileExists, "Database '" + target + "' already exists.");
    }
    const std::string part = target + ".part";
    unlink(part.c_str());
    try {
        const UniqueHandle copy =
            OpenHandle(target, FileUri(part, "mode=rwc"), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        sqlite3_backup* backup = sqlite3_backup_init(copy.get(), "main", source->Handle(), "main");
        if (backup == nullptr) {
            RaiseSqliteError(copy.get(), Operation::Open);
        }
        const int stepped = sqlite3_backup_step(backup, -1);
        const int result = sqlite3_backup_finish(backup);
        if (stepped != SQLITE_DONE || result != SQLITE_OK) {
            RaiseSqliteError(stepped == SQLITE_DONE ? result : stepped, {}, path, Operation::Open);
        }
    } catch (...) {
        unlink(part.c_str());
        throw;
    }
    // link, unlike rename, refuses to replace a file that has come into being meanwhile.
    const bool linked = link(part.c_str(), target.c_str()) == 0;
    const int reason = linked ? 0 : errno;
    unlink(part.c_str());
    if (reason == EEXIST) {
        Raise(kErrFileExists, "Database '" + target + "' already exists.");
    }
    if (!linked) {
        Raise(kErrCannotOpenFile,
              "The database engine cannot make the file '" + target + "': " + std::strerror(reason) + ".");
    }
}

void CloseIdleConnections() {
    std::erase_if(Pool(), [](const Entry& entry) { return entry.Idle(); });
}

} // namespace quillary::database::sqlite
