#include "platform/database/restore.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/connection_pool.h"
#include "platform/database/sqlite/error_map.h"
#include "platform/database/sqlite/file_check.h"
#include "platform/database/sqlite/functions.h"
#include "platform/runtime/run_time_error.h"

#include <filesystem>
#include <memory>

#include <sqlite3.h>

namespace quillary::database {

namespace {

namespace fs = std::filesystem;
using sqlite::Operation;

// Nobody writes a copy, and it may lie where nobody can.
constexpr const char* kAtRest = "mode=ro&immutable=1";

struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};
using Handle = std::unique_ptr<sqlite3, Closer>;

[[noreturn]] void Raise(int result, const std::string& path) {
    sqlite::RaiseSqliteError(result, {}, path, Operation::Open);
}

Handle Open(const std::string& path, const char* mode) {
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(sqlite::FileUri(path, mode).c_str(), &opened,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI | SQLITE_OPEN_EXRESCODE, nullptr);
    Handle handle(opened);
    if (result != SQLITE_OK) {
        Raise(result, path);
    }
    return handle;
}

void Execute(sqlite3* handle, const char* sql, const std::string& path) {
    const int result = sqlite3_exec(handle, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Raise(result, path);
    }
}

// The file, locked against everybody until it is closed.
Handle Lock(const std::string& path) {
    Handle handle = Open(path, "mode=rw");
    sqlite::CheckHeader(handle.get(), path);
    // The mode keeps the lock beyond the transaction; the journal mode cannot be left while anybody has the
    // file open, however idle.
    Execute(handle.get(),
            "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE; COMMIT", path);
    return handle;
}

// The relations of the rows do not matter here: the state of then is wanted, as it was.
void CheckPages(const std::string& copy) {
    sqlite::OpenConnection(copy); // also takes in a log that lies beside it
    sqlite::CloseIdleConnections();
    const Handle handle = Open(copy, kAtRest);
    sqlite::RegisterFunctions(handle.get());
    std::string finding;
    const auto keep = [](void* text, int, char** values, char**) {
        *static_cast<std::string*>(text) = values[0] == nullptr ? "" : values[0];
        return 0;
    };
    const int result = sqlite3_exec(handle.get(), "PRAGMA quick_check(1)", keep, &finding, nullptr);
    if (result != SQLITE_OK) {
        Raise(result, copy);
    }
    if (finding != "ok") {
        throw runtime::RunTimeError(kErrNotADatabase, {}, "The copy '" + copy + "' is damaged: " + finding);
    }
}

void Replace(sqlite3* target, const RestoredFile& file) {
    const Handle source = Open(file.copy, kAtRest);
    sqlite3_backup* backup = sqlite3_backup_init(target, "main", source.get(), "main");
    if (backup == nullptr) {
        Raise(sqlite3_extended_errcode(target), file.path);
    }
    const int stepped = sqlite3_backup_step(backup, -1);
    const int result = sqlite3_backup_finish(backup);
    if (stepped != SQLITE_DONE || result != SQLITE_OK) {
        Raise(stepped == SQLITE_DONE ? result : stepped, file.path);
    }
}

} // namespace

void RestoreDatabases(const std::vector<RestoredFile>& files, bool* begun) {
    sqlite::CloseIdleConnections();
    for (const RestoredFile& file : files) {
        CheckPages(file.copy);
    }
    std::vector<Handle> locked;
    locked.reserve(files.size());
    for (const RestoredFile& file : files) {
        locked.push_back(fs::exists(file.path) ? Lock(file.path) : nullptr);
    }
    if (begun != nullptr) {
        *begun = true;
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (locked[i]) {
            Replace(locked[i].get(), files[i]);
        } else {
            // The log of a file that is gone would be taken for that of the new one.
            for (const char* ending : {"-wal", "-shm", "-journal"}) {
                fs::remove(files[i].path + ending);
            }
            sqlite::CopyFile(files[i].copy, files[i].path);
        }
    }
    locked.clear();
    sqlite::CloseIdleConnections();
}

} // namespace quillary::database
