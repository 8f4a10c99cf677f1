#pragma once

#include "platform/database/sqlite/functions.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sqlite3.h>
#include <string>
#include <vector>

// What the measurements share: the work by hand through SQLite's own interface, and the times of both sides.
namespace quillary::bench {

// A measurement that did something else than it says is no measurement: it ends the program.
inline void Check(bool good, const char* what) {
    if (!good) {
        std::fprintf(stderr, "bench: %s\n", what);
        std::exit(1);
    }
}

// ---- By hand

// A file under the same settings and with the same functions and text order as below the engine.
class HandDatabase {
public:
    explicit HandDatabase(const std::string& path) {
        Check(sqlite3_open(path.c_str(), &handle_) == SQLITE_OK, "cannot open a file by hand");
        database::sqlite::RegisterFunctions(handle_);
        for (const char* pragma :
             {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = NORMAL", "PRAGMA foreign_keys = ON",
              "PRAGMA cache_size = -16000", "PRAGMA temp_store = MEMORY"})
            Run(pragma);
    }
    ~HandDatabase() { sqlite3_close_v2(handle_); }
    HandDatabase(const HandDatabase&) = delete;
    HandDatabase& operator=(const HandDatabase&) = delete;

    void Run(const std::string& sql) {
        Check(sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK,
              sqlite3_errmsg(handle_));
    }
    // The caller finalizes it.
    sqlite3_stmt* Prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK,
              sqlite3_errmsg(handle_));
        return statement;
    }
    long Number(const std::string& sql) {
        sqlite3_stmt* statement = Prepare(sql);
        Check(sqlite3_step(statement) == SQLITE_ROW, sql.c_str());
        const long number = static_cast<long>(sqlite3_column_int64(statement, 0));
        sqlite3_finalize(statement);
        return number;
    }
    // Every value of every row, up to so many rows (0: all), as a program takes them: numbers as they are,
    // texts as strings. Gives the number of rows.
    long ReadAll(const std::string& sql, long most = 0) {
        sqlite3_stmt* statement = Prepare(sql);
        const int columns = sqlite3_column_count(statement);
        long rows = 0;
        while ((most == 0 || rows < most) && sqlite3_step(statement) == SQLITE_ROW) {
            ++rows;
            for (int i = 0; i < columns; ++i)
                ReadColumn(statement, i);
        }
        sqlite3_finalize(statement);
        return rows;
    }
    // Brings what was written to the disk, as the program does at the end of a save and of a cascade.
    void Sync() {
        sqlite3_file* log = nullptr;
        Check(sqlite3_file_control(handle_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log) == SQLITE_OK,
              "no write-ahead log");
        if (log != nullptr && log->pMethods != nullptr)
            Check(log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) == SQLITE_OK, "cannot sync");
    }

private:
    static void ReadColumn(sqlite3_stmt* statement, int column) {
        switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            benchmark::DoNotOptimize(sqlite3_column_int64(statement, column));
            break;
        case SQLITE_FLOAT:
            benchmark::DoNotOptimize(sqlite3_column_double(statement, column));
            break;
        case SQLITE_TEXT: {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            std::string value(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
            benchmark::DoNotOptimize(value);
            break;
        }
        default:
            break;
        }
    }

    sqlite3* handle_ = nullptr;
};

// ---- Times

// Keeps the best time of each measurement: what disturbs a run only ever makes it longer.
class BestTimes : public benchmark::ConsoleReporter {
public:
    // quiet: the measurements themselves are not printed.
    explicit BestTimes(bool quiet) : benchmark::ConsoleReporter(OO_None), quiet_(quiet) {}

    bool ReportContext(const Context& context) override {
        return quiet_ || ConsoleReporter::ReportContext(context);
    }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const double time = run.GetAdjustedRealTime();
            std::string name = run.run_name.function_name;
            if (!run.run_name.args.empty())
                name += "/" + run.run_name.args;
            const auto [at, isNew] = times_.try_emplace(name, time);
            if (!isNew)
                at->second = std::min(at->second, time);
        }
        if (!quiet_)
            ConsoleReporter::ReportRuns(runs);
    }
    // In the unit of the measurement; 0 when it was not run. name: "Function" or "Function/argument".
    double Time(const std::string& name) const {
        const auto found = times_.find(name);
        return found == times_.end() ? 0 : found->second;
    }

private:
    bool quiet_;
    std::map<std::string, double> times_;
};

// Reads the command line; True where it says --ratios, which leaves the measurements themselves unprinted.
// Ours and by hand run in turns, so that both see the same machine, unless inTurns is False.
inline bool Begin(int argc, char** argv, bool inTurns = true) {
    std::vector<char*> words(argv, argv + argc);
    const bool quiet =
        std::erase_if(words, [](const char* word) { return std::string(word) == "--ratios"; }) > 0;
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    if (inTurns)
        words.push_back(interleaving);
    int count = static_cast<int>(words.size());
    benchmark::Initialize(&count, words.data());
    return quiet;
}

} // namespace quillary::bench
