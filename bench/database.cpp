// The database layer against the same work done by hand through SQLite's own interface, on two copies of
// one file and in one run. Both sides hand over every value that they read.
//
//   bench_database             the measurements, and the ratios beneath them
//   bench_database --ratios    the ratios alone

#include "measuring.h"

#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace quillary;
using bench::BestTimes;
using bench::Check;
using bench::HandDatabase;
using database::kFailOnError;
using database::RecordsetType;
using runtime::Variant;

constexpr int kRows = 100'000;
constexpr int kAccounts = 1'000;
constexpr int kShortRuns = 10'000;

// --------------------------------------------------------------------------------------------- data

class Files {
public:
    Files() {
        folder_ = std::filesystem::temp_directory_path() / ("bench_database." + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        engine_ = database::CreateSqliteEngine();
        Fill(*engine_->CreateDatabase(Ours()));
        engine_->BackupDatabase(Ours(), ByHand());
        database_ = engine_->OpenDatabase(Ours());
        hand_ = std::make_unique<HandDatabase>(ByHand());
    }
    ~Files() {
        database_.reset();
        hand_.reset();
        engine_->ReleaseIdle();
        std::filesystem::remove_all(folder_);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    std::string Ours() const { return (folder_ / "ours.mdb").string(); }
    std::string ByHand() const { return (folder_ / "hand.mdb").string(); }
    database::Engine& Engine() { return *engine_; }
    database::Database& Database() { return *database_; }
    HandDatabase& Sqlite() { return *hand_; }

private:
    static void Fill(database::Database& db) {
        db.Execute("CREATE TABLE Accounts ([Account Code] LONG PRIMARY KEY, [Account Name] TEXT(50), "
                   "[Tax Number] LONG, [Show in Cashbk] BIT)");
        db.Execute(
            "CREATE TABLE Details ([Detail ID] COUNTER PRIMARY KEY, [Account Code] LONG, Season SHORT, "
            "Amount CURRENCY, [Entry Date] DATETIME, Rate SINGLE, Quantity DOUBLE, Note TEXT(50), "
            "Paid BIT, [Tax Number] LONG)");
        db.Execute("CREATE TABLE Spare ([Detail ID] LONG PRIMARY KEY, [Account Code] LONG, Note TEXT(50))");
        db.Execute("CREATE INDEX ByAccount ON Details ([Account Code])");
        // Rows by the short way: one statement makes ten, and doubles them.
        db.Execute("CREATE TABLE Digits (n LONG PRIMARY KEY)");
        for (int i = 0; i < 10; ++i) {
            db.Execute("INSERT INTO Digits (n) VALUES (" + std::to_string(i) + ")", kFailOnError);
        }
        db.Execute("INSERT INTO Accounts SELECT a.n * 100 + b.n * 10 + c.n AS [Account Code], 'Account ' & "
                   "a.n & b.n "
                   "& c.n AS [Account Name], a.n + 1 AS [Tax Number], (c.n > 4) AS [Show in Cashbk] "
                   "FROM Digits AS a, Digits AS b, Digits AS c",
                   kFailOnError);
        db.Execute(
            "INSERT INTO Details ([Account Code], Season, Amount, [Entry Date], Rate, Quantity, Note, Paid, "
            "[Tax Number]) SELECT e.n * 100 + d.n * 10 + c.n, 2000 + d.n, a.n * 100 + b.n + 0.25, "
            "#1/1/2008# + a.n * 30 + b.n, 12.5 + a.n, b.n / 3, 'Line ' & a.n & b.n & c.n & ' of the book', "
            "(a.n > 4), 0 FROM Digits AS a, Digits AS b, Digits AS c, Digits AS d, Digits AS e",
            kFailOnError);
        db.Execute("INSERT INTO Spare SELECT [Detail ID], [Account Code], Note FROM Details", kFailOnError);
    }

    std::filesystem::path folder_;
    std::unique_ptr<database::Engine> engine_;
    std::shared_ptr<database::Database> database_;
    std::unique_ptr<HandDatabase> hand_;
};

Files& TheFiles() {
    static Files files;
    return files;
}

long ReadAll(database::Recordset& rows) {
    long count = 0;
    const int fields = rows.FieldCount();
    for (; !rows.EOF_(); rows.MoveNext()) {
        ++count;
        for (int i = 0; i < fields; ++i) {
            benchmark::DoNotOptimize(rows[i].Value());
        }
    }
    return count;
}

// ------------------------------------------------------------------------------------------- select

constexpr const char* kSelect =
    "SELECT DISTINCTROW Details.*, Accounts.[Account Name] FROM Accounts INNER JOIN Details ON "
    "Accounts.[Account Code] = Details.[Account Code] WHERE (((Details.Season)>=2000)) "
    "ORDER BY Accounts.[Account Name], Details.[Detail ID];";
constexpr const char* kSelectByHand = "SELECT d.*, a.\"Account Name\" FROM Accounts a JOIN Details d ON "
                                      "a.\"Account Code\" = d.\"Account Code\" "
                                      "WHERE d.Season >= 2000 ORDER BY a.\"Account Name\", d.\"Detail ID\"";

void Select_Ours(benchmark::State& state) {
    for (auto _ : state) {
        const auto rows = TheFiles().Database().OpenRecordset(kSelect, RecordsetType::Snapshot);
        Check(ReadAll(*rows) == kRows, "select: rows");
    }
}

void Select_ByHand(benchmark::State& state) {
    for (auto _ : state) {
        Check(TheFiles().Sqlite().ReadAll(kSelectByHand) == kRows, "select by hand: rows");
    }
}

// ------------------------------------------------------------------------------------ update, delete

void Update_Ours(benchmark::State& state) {
    for (auto _ : state) {
        TheFiles().Database().Execute("UPDATE DISTINCTROW Accounts INNER JOIN Details ON Accounts.[Account "
                                      "Code] = Details.[Account Code] "
                                      "SET Details.[Tax Number] = Accounts.[Tax Number];",
                                      kFailOnError);
        Check(TheFiles().Database().RecordsAffected() == kRows, "update: rows");
    }
}

void Update_ByHand(benchmark::State& state) {
    for (auto _ : state) {
        TheFiles().Sqlite().Run("UPDATE Details SET \"Tax Number\" = a.\"Tax Number\" FROM Accounts a "
                                "WHERE a.\"Account Code\" = Details.\"Account Code\"");
    }
}

void Delete_Ours(benchmark::State& state) {
    auto& db = TheFiles().Database();
    for (auto _ : state) {
        db.Execute("DELETE DISTINCTROW Spare.*, Accounts.[Account Name] FROM Spare INNER JOIN Accounts ON "
                   "Spare.[Account Code] = Accounts.[Account Code] WHERE (((Accounts.[Tax Number])>=0));",
                   kFailOnError);
        Check(db.RecordsAffected() == kRows, "delete: rows");
        state.PauseTiming();
        db.Execute("INSERT INTO Spare SELECT [Detail ID], [Account Code], Note FROM Details", kFailOnError);
        state.ResumeTiming();
    }
}

void Delete_ByHand(benchmark::State& state) {
    auto& hand = TheFiles().Sqlite();
    for (auto _ : state) {
        hand.Run("DELETE FROM Spare WHERE \"Account Code\" IN (SELECT \"Account Code\" FROM Accounts "
                 "WHERE \"Tax Number\" >= 0)");
        state.PauseTiming();
        hand.Run("INSERT INTO Spare SELECT \"Detail ID\", \"Account Code\", Note FROM Details");
        state.ResumeTiming();
    }
}

// ----------------------------------------------------------------------------------------- crosstab

void Crosstab_Ours(benchmark::State& state) {
    for (auto _ : state) {
        const auto rows = TheFiles().Database().OpenRecordset(
            "TRANSFORM Sum(Details.Amount) AS Total SELECT Details.[Account Code] FROM Details "
            "GROUP BY Details.[Account Code] PIVOT Details.Season",
            RecordsetType::Snapshot);
        Check(ReadAll(*rows) == kAccounts, "crosstab: rows");
    }
}

// What a person writes who knows that the columns follow from the data: the values first, then a sum for
// each of them.
void Crosstab_ByHand(benchmark::State& state) {
    auto& hand = TheFiles().Sqlite();
    for (auto _ : state) {
        sqlite3_stmt* headings = hand.Prepare("SELECT DISTINCT Season FROM Details ORDER BY Season");
        std::string sql = "SELECT \"Account Code\"";
        while (sqlite3_step(headings) == SQLITE_ROW) {
            const std::string text = reinterpret_cast<const char*>(sqlite3_column_text(headings, 0));
            sql += ", SUM(Amount) FILTER (WHERE Season = " + text + ")";
        }
        sqlite3_finalize(headings);
        sql += " FROM Details GROUP BY \"Account Code\" ORDER BY \"Account Code\"";
        Check(hand.ReadAll(sql) == kAccounts, "crosstab by hand: rows");
    }
}

// -------------------------------------------------------------------------------- short statements

constexpr const char* kShort = "UPDATE DISTINCTROW Accounts SET [Tax Number] = 7 WHERE (((Accounts.[Account "
                               "Code])=500));";
constexpr const char* kShortByHand = "UPDATE Accounts SET \"Tax Number\" = 7 WHERE \"Account Code\" = 500";

void Short_Ours(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < kShortRuns; ++i) {
            TheFiles().Database().Execute(kShort, kFailOnError);
        }
    }
}

// Prepared once: what a short statement costs at least.
void Short_ByHand(benchmark::State& state) {
    sqlite3_stmt* statement = TheFiles().Sqlite().Prepare(kShortByHand);
    for (auto _ : state) {
        for (int i = 0; i < kShortRuns; ++i) {
            Check(sqlite3_step(statement) == SQLITE_DONE, "short statement by hand");
            sqlite3_reset(statement);
        }
    }
    sqlite3_finalize(statement);
}

// Values stand in the program's statements, so that most texts come once only.
void ShortNew_Ours(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < kShortRuns; ++i) {
            const std::string number = std::to_string(i);
            const auto rows = TheFiles().Database().OpenRecordset(
                "SELECT DISTINCTROW Accounts.[Account Name] From Accounts WHERE Accounts.[Account Code] = " +
                    number + ";",
                RecordsetType::Snapshot);
            benchmark::DoNotOptimize(rows->EOF_());
        }
    }
}

void ShortNew_ByHand(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < kShortRuns; ++i) {
            TheFiles().Sqlite().ReadAll("SELECT \"Account Name\" FROM Accounts WHERE \"Account Code\" = " +
                                        std::to_string(i));
        }
    }
}

// -------------------------------------------------------------------------------------------- open

void Open_Ours(benchmark::State& state) {
    auto& engine = TheFiles().Engine();
    const std::string path = TheFiles().Ours();
    for (auto _ : state) {
        const auto db = engine.OpenDatabase(path);
        const auto rows = db->OpenRecordset("Digits");
        benchmark::DoNotOptimize((*rows)["n"].Value());
        rows->Close();
        db->Close();
    }
}

// -------------------------------------------------------------------------------------------- walk

const std::vector<std::string>& FieldNames() {
    static const std::vector<std::string> names = {"Detail ID",  "Account Code", "Season",   "Amount",
                                                   "Entry Date", "Rate",         "Quantity", "Note",
                                                   "Paid",       "Tax Number"};
    return names;
}

void Walk_Ours(benchmark::State& state) {
    for (auto _ : state) {
        const auto rows =
            TheFiles().Database().OpenRecordset("SELECT DISTINCTROW * FROM Details", RecordsetType::Dynaset);
        long count = 0;
        for (; !rows->EOF_(); rows->MoveNext()) {
            ++count;
            for (const auto& name : FieldNames()) {
                benchmark::DoNotOptimize((*rows)[name].Value());
            }
        }
        Check(count == kRows, "walk: rows");
    }
}

void Walk_ByHand(benchmark::State& state) {
    for (auto _ : state) {
        Check(TheFiles().Sqlite().ReadAll("SELECT * FROM Details ORDER BY \"Detail ID\"") == kRows,
              "walk by hand: rows");
    }
}

// ------------------------------------------------------------------------------------------ ratios

void PrintRatios(const BestTimes& times) {
    struct Line {
        const char* name;
        const char* what;
        double most;
    };
    static constexpr Line kLines[] = {{"Select", "select of 100,000 rows over a join", 1.1},
                                      {"Update", "update of 100,000 rows over a join", 1.1},
                                      {"Delete", "delete of 100,000 rows over a join", 1.1},
                                      {"Crosstab", "crosstab of 100,000 rows", 1.1},
                                      {"Walk", "walk of a dynaset, fields by name", 1.5}};
    std::printf("\n%-42s %12s %12s %8s %8s\n", "", "ours ms", "by hand ms", "ratio", "at most");
    for (const auto& line : kLines) {
        const double ours = times.Time(std::string(line.name) + "_Ours");
        const double hand = times.Time(std::string(line.name) + "_ByHand");
        if (ours > 0 && hand > 0) {
            std::printf("%-42s %12.2f %12.2f %8.2f %8.2f\n", line.what, ours, hand, ours / hand, line.most);
        }
    }
    const auto more = [&](const char* name, const char* what) {
        const double ours = times.Time(std::string(name) + "_Ours");
        const double hand = times.Time(std::string(name) + "_ByHand");
        if (ours > 0 && hand > 0) {
            const double each = 1000.0 / kShortRuns;
            std::printf("%-42s %12.2f %12.2f us a run: %.2f us more (at most 10)\n", what, ours * each,
                        hand * each, (ours - hand) * each);
        }
    };
    more("Short", "short statement, again and again");
    more("ShortNew", "short statement, a new text each time");
    if (const double open = times.Time("Open_Ours"); open > 0) {
        std::printf("%-42s %12.2f us (at most 20)\n", "open, read one row, close", open * 1000);
    }
}

} // namespace

int main(int argc, char** argv) {
    const bool quiet = bench::Begin(argc, argv);
    struct Entry {
        const char* name;
        void (*run)(benchmark::State&);
    };
    constexpr Entry kEntries[] = {{"Select_Ours", Select_Ours},     {"Select_ByHand", Select_ByHand},
                                  {"Update_Ours", Update_Ours},     {"Update_ByHand", Update_ByHand},
                                  {"Delete_Ours", Delete_Ours},     {"Delete_ByHand", Delete_ByHand},
                                  {"Crosstab_Ours", Crosstab_Ours}, {"Crosstab_ByHand", Crosstab_ByHand},
                                  {"Short_Ours", Short_Ours},       {"Short_ByHand", Short_ByHand},
                                  {"ShortNew_Ours", ShortNew_Ours}, {"ShortNew_ByHand", ShortNew_ByHand},
                                  {"Open_Ours", Open_Ours},         {"Walk_Ours", Walk_Ours},
                                  {"Walk_ByHand", Walk_ByHand}};
    for (const auto& entry : kEntries) {
        benchmark::RegisterBenchmark(entry.name, entry.run)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Repetitions(9);
    }
    bench::BestTimes times(quiet);
    benchmark::RunSpecifiedBenchmarks(&times);
    PrintRatios(times);
    return 0;
}
