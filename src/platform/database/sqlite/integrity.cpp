#include "platform/database/integrity.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/file_check.h"
#include "platform/database/sqlite/functions.h"
#include "platform/runtime/run_time_error.h"

#include <functional>
#include <memory>

#include <sqlite3.h>

namespace quillary::database {

namespace {

constexpr const char* kIntegrityCheck = "PRAGMA integrity_check(20)";
constexpr const char* kRelationCheck = "PRAGMA foreign_key_check";
constexpr int kBusyMilliseconds = 2000;

struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};

std::string ColumnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text == nullptr ? "" : text;
}

void EachRow(sqlite3* connection, const char* sql, const std::function<void(sqlite3_stmt*)>& use,
             std::vector<std::string>& problems) {
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr);
    if (result == SQLITE_OK) {
        while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
            use(statement);
        }
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE) {
        problems.emplace_back(sqlite3_errmsg(connection));
    }
}

} // namespace

std::vector<std::string> CheckIntegrity(std::string_view path) {
    const std::string file(path);
    sqlite3* opened = nullptr;
    // Where nobody can write there is no log: the file is read as it lies.
    const bool atRest = !sqlite::IsWritable(file, sqlite::LookAtFile(file)) && !sqlite::HasLog(file);
    const int result = sqlite3_open_v2(sqlite::FileUri(file, atRest ? "immutable=1" : "mode=ro").c_str(),
                                       &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    const std::unique_ptr<sqlite3, Closer> connection(opened);
    if (result != SQLITE_OK) {
        throw runtime::RunTimeError(kErrCannotOpenFile, "", "Cannot open " + file);
    }
    sqlite3_busy_timeout(opened, kBusyMilliseconds);
    sqlite::RegisterFunctions(opened);

    std::vector<std::string> problems;
    EachRow(
        opened, kIntegrityCheck,
        [&](sqlite3_stmt* row) {
            std::string text = ColumnText(row, 0);
            if (text != "ok") {
                problems.push_back(std::move(text));
            }
        },
        problems);
    EachRow(
        opened, kRelationCheck,
        [&](sqlite3_stmt* row) {
            problems.push_back("a row of table " + ColumnText(row, 0) + " has no related row in table " +
                               ColumnText(row, 2));
        },
        problems);
    return problems;
}

} // namespace quillary::database
