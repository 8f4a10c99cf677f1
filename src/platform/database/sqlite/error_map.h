#pragma once

#include <string>
#include <string_view>

struct sqlite3;

// Failures of SQLite as run-time errors with the engine's numbers. The same failure has different numbers
// by what was being done: a relation that does not hold is 3200 on a delete and 3201 on an insert.
namespace quillary::database::sqlite {

enum class Operation {
    Open, // opening the file
    Read,
    Insert,
    Update,      // of rows without foreign keys among the changed fields
    UpdateChild, // of a foreign key
    Delete,
    Define, // tables and indexes
};

// Raises the connection's last error. Names the file where that is what the user has to look at.
[[noreturn]] void RaiseSqliteError(sqlite3* connection, Operation operation);
// The same for a result code and SQLite's text for it.
[[noreturn]] void RaiseSqliteError(int code, std::string_view message, std::string_view file,
                                   Operation operation);

// Whether a row was refused for what it holds or for its relations: without dbFailOnError such rows are
// passed over.
bool IsRowRefused(int extendedCode);

// Whether this error means that the row was refused (3022, 3314, 3201, ...).
bool IsRowRefusedNumber(int number);

// The path of the connection's file.
std::string FileOf(sqlite3* connection);

} // namespace quillary::database::sqlite
