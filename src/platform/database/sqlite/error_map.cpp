#include "platform/database/sqlite/error_map.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/functions.h"
#include "platform/database/sqlite/piece.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <sqlite3.h>
#include <system_error>

namespace quillary::database::sqlite {
namespace {

constexpr int kErrDiskOrNetwork = 3043;
constexpr int kErrDiskFull = 3183;
constexpr int kErrResources = 3035;
constexpr int kErrTableInUse = 3211;
constexpr int kErrRuleBroken = 3317;
constexpr int kErrReserved = 3000;

// "UNIQUE constraint failed: a.b, a.c" -> "a.b, a.c"
std::string Behind(std::string_view message, std::string_view mark) {
    const std::size_t at = message.find(mark);
    return at == std::string_view::npos ? std::string() : std::string(message.substr(at + mark.size()));
}

[[noreturn]] void RaiseCheck(std::string_view constraint) {
    const std::string_view about = constraint.substr(0, constraint.find(' '));
    const std::string rest(constraint.substr(std::min(constraint.size(), about.size() + 1)));
    if (about == "width") {
        Raise(kErrFieldTooSmall, "The field '" + rest + "' is too small for the text.");
    }
    if (about == "kind") {
        Raise(kErrWrongType, "Data type conversion error in field '" + rest + "'.");
    }
    if (about == "range") {
        Raise(runtime::kErrOverflow, "Overflow in field '" + rest + "'.");
    }
    if (about == "zero") {
        Raise(kErrZeroLength, "Field '" + rest + "' cannot be a zero-length string.");
    }
    Raise(kErrRuleBroken, "One or more values are prohibited by the validation rule '" +
                              (about == "check" ? rest : std::string(constraint)) + "'.");
}

[[noreturn]] void RaiseForeignKey(Operation operation) {
    if (operation == Operation::Insert || operation == Operation::UpdateChild) {
        Raise(kErrMissingRelatedRow,
              "You cannot add or change a record because a related record is required in another table.");
    }
    Raise(kErrRelatedRows, "The record cannot be deleted or changed because another table includes related "
                           "records.");
}

[[noreturn]] void RaiseConstraint(int code, std::string_view message, Operation operation) {
    switch (code) {
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
        Raise(kErrDuplicateValue,
              "The changes were not made because they would create duplicate values in an "
              "index, primary key, or relationship (" +
                  Behind(message, "failed: ") + ").");
    case SQLITE_CONSTRAINT_NOTNULL:
        Raise(kErrRequiredField, "The field '" + Behind(message, "failed: ") +
                                     "' cannot contain a Null value because it is required. Enter a value in "
                                     "this field.");
    case SQLITE_CONSTRAINT_FOREIGNKEY:
        RaiseForeignKey(operation);
    default:
        RaiseCheck(Behind(message, "failed: "));
    }
}

[[noreturn]] void RaiseBusy(std::string_view file, Operation operation) {
    const std::string where = " '" + std::string(file) + "' is in use by another program.";
    switch (operation) {
    case Operation::Open:
    case Operation::Read:
        Raise(kErrFileInUse, "Could not use the database;" + where);
    case Operation::Define:
        Raise(kErrTableInUse, "The table could not be locked;" + where);
    default:
        Raise(kErrCannotLock, "Could not update;" + where);
    }
}

// The log's index is told as a fault of the disk where there is no room for it.
bool IsDiskFull(std::string_view file) {
    constexpr std::uintmax_t kRoomOfAnIndex = 32768;
    std::error_code unknown;
    const auto space = std::filesystem::space(std::filesystem::path(file).parent_path(), unknown);
    return !unknown && space.available < kRoomOfAnIndex;
}

struct TextNumber {
    std::string_view mark;
    int number;
};

// Names are resolved before SQLite sees a statement, so what is left here are rare cases: another program
// has changed the schema, or the text was too much.
constexpr TextNumber kTexts[] = {
    {"no such table", kErrUnknownTable},
    {"no such column", kErrTooFewParameters},
    {"ambiguous column name", kErrAmbiguousColumn},
    {"no such function", kErrUndefinedFunction},
    {"syntax error", kErrQueryText},
    {"unrecognized token", kErrQueryText},
    {"incomplete input", kErrQueryText},
    {"integer overflow", runtime::kErrOverflow},
    {"non-deterministic use", kErrWrongType},
    {"tree is too large", 3360},
    {"stack overflow", 3360},
    {"too many", 3360},
    {"at most", 3360},
    {"string or blob too big", kErrResources},
};

[[noreturn]] void RaiseText(std::string_view message) {
    if (const auto error = ErrorOfText(message)) {
        throw *error;
    }
    for (const auto& each : kTexts) {
        if (message.find(each.mark) != std::string_view::npos) {
            Raise(each.number, each.number == kErrTooFewParameters ? "Too few parameters. Expected 1."
                               : each.number == 3360               ? "Query is too complex."
                                                                   : std::string(message));
        }
    }
    Raise(kErrReserved, "The database engine failed: " + std::string(message));
}

} // namespace

void RaiseSqliteError(int code, std::string_view message, std::string_view file, Operation operation) {
    const std::string named = "'" + std::string(file) + "'";
    switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        RaiseBusy(file, operation);
    case SQLITE_READONLY:
        Raise(kErrReadOnly, "Cannot update. The database " + named + " is read-only.");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        Raise(kErrNotADatabase, "The file " + named + " is damaged or is not a database.");
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        Raise(kErrCannotOpenFile, "The database engine cannot open the file " + named + ".");
    case SQLITE_FULL:
        Raise(kErrDiskFull, "Not enough space on the disk for " + named + ".");
    case SQLITE_IOERR:
        if (IsDiskFull(file)) {
            Raise(kErrDiskFull, "Not enough space on the disk for " + named + ".");
        }
        Raise(kErrDiskOrNetwork, "Disk or network error in " + named + ".");
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
        Raise(kErrResources, "System resource exceeded.");
    case SQLITE_MISMATCH:
        // Numbers come here as numbers, so what does not fit a key that is the rowid is a Null.
        Raise(kErrRequiredField, "The key of the table cannot contain a Null value.");
    case SQLITE_CONSTRAINT:
        RaiseConstraint(code, message, operation);
    default:
        RaiseText(message);
    }
}

void RaiseSqliteError(sqlite3* connection, Operation operation) {
    const std::string message = sqlite3_errmsg(connection);
    RaiseSqliteError(sqlite3_extended_errcode(connection), message, FileOf(connection), operation);
}

bool IsRowRefused(int extendedCode) {
    const int code = extendedCode & 0xff;
    return code == SQLITE_CONSTRAINT || code == SQLITE_MISMATCH;
}

bool IsRowRefusedNumber(int number) {
    constexpr int kNumbers[] = {kErrDuplicateValue,
                                kErrFieldTooSmall,
                                kErrRelatedRows,
                                kErrMissingRelatedRow,
                                kErrRequiredField,
                                kErrZeroLength,
                                kErrRuleBroken,
                                kErrWrongType,
                                runtime::kErrOverflow,
                                runtime::kErrTypeMismatch,
                                runtime::kErrInvalidUseOfNull};
    return std::find(std::begin(kNumbers), std::end(kNumbers), number) != std::end(kNumbers);
}

std::string FileOf(sqlite3* connection) {
    const char* name = sqlite3_db_filename(connection, "main");
    return name == nullptr ? std::string() : std::string(name);
}

} // namespace quillary::database::sqlite
