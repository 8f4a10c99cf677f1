#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct sqlite3;

// What a file is, before SQLite is let at it: SQLite takes an empty file for a new database, and puts its
// log beside a damaged one.
namespace quillary::database::sqlite {

struct FileState {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t changed = 0; // nanoseconds
    unsigned mode = 0;

    bool SameFile(const FileState& other) const { return device == other.device && inode == other.inode; }
};

// 3024 missing, 3051 a directory or no file at all.
FileState LookAtFile(const std::string& path);

// 3051. A file that nobody may read counts as unreadable for the superuser too.
void CheckReadable(const std::string& path, const FileState& state);
// Whether the file and its folder may be written; a file that nobody may write is read-only for the
// superuser too.
bool IsWritable(const std::string& path, const FileState& state);

// Reads the header through an open handle that has not read anything yet: 3343 for what is no database or
// is cut short. The text says so where it is a file of the suite's old engine.
void CheckHeader(sqlite3* handle, const std::string& path);

// Reads the schema and the head of every tree without a lock and without making a file: 3343 when damaged.
// Does nothing while a log lies beside the file, since its pages are then newer than the file's.
void CheckTrees(const std::string& path);

// Whether a log with pages of the database lies beside the file.
bool HasLog(const std::string& path);

// The path as a URI with this query behind it ("immutable=1").
std::string FileUri(const std::string& path, const std::string& query);

[[noreturn]] void RaiseNotADatabase(const std::string& path);

} // namespace quillary::database::sqlite
