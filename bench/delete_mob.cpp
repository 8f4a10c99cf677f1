// A stock class deleted, its entries moved to another one, against the same statements by hand through
// SQLite's own interface, on two copies of one farm: 1,000 classes in 20 seasons, 200,000 rows of the diary,
// 500,000 of feed and budget. Each run deletes another class. Both sides bring what they wrote to the disk at
// the end. The restore point is no part of it; what one costs stands beside it, with the shell's .backup.
//
//   bench_delete_mob             the measurements, and the ratios beneath them
//   bench_delete_mob --ratios    the ratios alone

#include "measuring.h"

#include "common/restore_points.h"
#include "config/globals.h"
#include "config/installation.h"
#include "platform/database/engine.h"
#include "platform/system/services.h"
#include "stock/delete_mob.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace quillary;
using bench::BestTimes;
using bench::Check;
using bench::HandDatabase;

constexpr int kClasses = 1'000;
constexpr int kSeasons = 20;
constexpr int kFirstSeason = 2007;
constexpr int kDiaryRows = 200'000;
constexpr int kNameRows = 125'000; // of each of the four tables of feed and budget
constexpr int kDeletions = 20;     // a run
constexpr int kRuns = 21;          // the disk takes its own time: the best of many is compared

std::string NameOf(int classID) {
    return "Mob " + std::to_string(classID);
}

struct NameTable {
    const char* table;
    const char* field;
};
constexpr NameTable kNameTables[] = {{"Feed Demand", "Stock Name"},
                                     {"Feed Demand Profile", "Class Name"},
                                     {"Feed Profile", "Class Name"},
                                     {"Budget Details", "Description"}};

// ------------------------------------------------------------------------------------------ by hand

void DeleteByHand(HandDatabase& farm, HandDatabase& diary, int deletedID, int chosenID) {
    const std::string deleted = "'" + NameOf(deletedID) + "'";
    const std::string chosen = "'" + NameOf(chosenID) + "'";
    for (const NameTable& each : kNameTables) {
        const std::string field = "\"" + std::string(each.field) + "\"";
        farm.Run("UPDATE \"" + std::string(each.table) + "\" SET " + field + " = " + chosen + " WHERE " +
                 field + " = " + deleted);
    }
    const auto sum = [](int classID) {
        return "SUM(\"Mob Details ID\") FILTER (WHERE \"Class ID\" = " + std::to_string(classID) + ")";
    };
    sqlite3_stmt* seasons =
        farm.Prepare("SELECT Season, " + sum(deletedID) + ", " + sum(chosenID) +
                     " FROM \"Stock Details\" WHERE \"Class ID\" = " + std::to_string(deletedID) +
                     " OR \"Class ID\" = " + std::to_string(chosenID) + " GROUP BY Season");
    std::vector<std::pair<sqlite3_int64, sqlite3_int64>> mobs;
    while (sqlite3_step(seasons) == SQLITE_ROW)
        if (sqlite3_column_type(seasons, 1) != SQLITE_NULL && sqlite3_column_type(seasons, 2) != SQLITE_NULL)
            mobs.emplace_back(sqlite3_column_int64(seasons, 1), sqlite3_column_int64(seasons, 2));
    sqlite3_finalize(seasons);
    sqlite3_stmt* move = diary.Prepare("UPDATE AnimalMultipleList SET MobID = ?1 WHERE MobID = ?2");
    for (const auto& [from, to] : mobs) {
        sqlite3_bind_int64(move, 1, to);
        sqlite3_bind_int64(move, 2, from);
        Check(sqlite3_step(move) == SQLITE_DONE, "the diary by hand");
        sqlite3_reset(move);
    }
    sqlite3_finalize(move);
    diary.Sync();
    farm.Run(
        "DELETE FROM \"Stock Details\" WHERE \"Class ID\" IN (SELECT \"Class ID\" FROM \"Stock Class Names\" "
        "WHERE \"Class Name\" = " +
        deleted + ")");
    farm.Run("DELETE FROM \"Stock Class Names\" WHERE \"Class Name\" = " + deleted);
    farm.Run("DELETE FROM \"Stock Reconciliations\" WHERE \"Class Name\" = " + deleted);
    farm.Sync();
}

// --------------------------------------------------------------------------------------------- data

struct SilentMessages : system::MessageBoxes {
    int Show(const system::MessageRequest&) override { return system::kAnswerOk; }
};
struct LoudReports : system::ErrorReports {
    void Report(const system::ErrorReportText& report) override { Check(false, report.description.c_str()); }
};
struct BenchFolders : system::Folders {
    explicit BenchFolders(std::string folder) : documents(std::move(folder)) {}
    std::string documents;
    std::string CommonDocuments() override { return documents; }
    std::string ConfigHome() override { return documents; }
    std::string ProgramFolder() override { return documents; }
    std::string Temp() override { return documents; }
};

class Farm {
public:
    Farm() {
        folder_ = fs::temp_directory_path() / ("bench_delete_mob." + std::to_string(getpid()));
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(folder_);
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        auto& services = system::TheServices();
        services.folders = std::make_shared<BenchFolders>(folder_.string());
        services.messageBoxes = std::make_shared<SilentMessages>();
        services.errorReports = std::make_shared<LoudReports>();
        Fill();
        for (const char* name : {"Farm32.mdb", "Diary.mdb"})
            config::DbEngine().BackupDatabase(Ours(name), ByHand(name));
        config::gDatabase = config::DbEngine().OpenDatabase(Ours("Farm32.mdb")); // as while the screen lives
        farm_ = std::make_unique<HandDatabase>(ByHand("Farm32.mdb"));
        diary_ = std::make_unique<HandDatabase>(ByHand("Diary.mdb"));
    }
    ~Farm() {
        farm_.reset();
        diary_.reset();
        config::gDatabase.reset();
        config::DbEngine().ReleaseIdle();
        fs::remove_all(folder_);
    }
    Farm(const Farm&) = delete;
    Farm& operator=(const Farm&) = delete;

    std::string Ours(const char* name) const { return (folder_ / "data" / name).string(); }
    std::string ByHand(const char* name) const { return (folder_ / ("hand" + std::string(name))).string(); }
    std::string Copy() const { return (folder_ / "copy.mdb").string(); }
    HandDatabase& HandFarm() { return *farm_; }
    HandDatabase& HandDiary() { return *diary_; }

private:
    // Rows by recursion: the quickest way to this many.
    void Fill() const {
        const auto upTo = [](int count) {
            return "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < " +
                   std::to_string(count) + ") ";
        };
        const std::string classOf = "(i % " + std::to_string(kClasses) + " + 1)";
        {
            HandDatabase farm(Ours("Farm32.mdb"));
            farm.Run("BEGIN");
            farm.Run("INSERT INTO \"Stock Types\" (\"Type ID\", \"Account Code\") VALUES (1, 1010)");
            farm.Run(upTo(kClasses) +
                     "INSERT INTO \"Stock Class Names\" (\"Class ID\", \"Class Name\", \"Stock "
                     "Type ID\") SELECT i + 1, 'Mob ' || (i + 1), 1 FROM n");
            farm.Run(upTo(kClasses * kSeasons) +
                     "INSERT INTO \"Stock Details\" (\"Class ID\", Season, \"Number in mob\") SELECT " +
                     classOf + ", " + std::to_string(kFirstSeason) + " + i / " + std::to_string(kClasses) +
                     ", i FROM n");
            for (const NameTable& each : kNameTables)
                farm.Run(upTo(kNameRows) + "INSERT INTO \"" + each.table + "\" (\"" + each.field +
                         "\") SELECT 'Mob ' || " + classOf + " FROM n");
            farm.Run(upTo(kClasses * kSeasons) +
                     "INSERT INTO \"Stock Reconciliations\" (\"Class Name\", Season) SELECT 'Mob ' || " +
                     classOf + ", " + std::to_string(kFirstSeason) + " + i / " + std::to_string(kClasses) +
                     " FROM n");
            farm.Run("COMMIT");
        }
        HandDatabase diary(Ours("Diary.mdb"));
        diary.Run(upTo(kDiaryRows) + "INSERT INTO AnimalMultipleList (MobID) SELECT i % " +
                  std::to_string(kClasses * kSeasons) + " + 1 FROM n");
    }

    fs::path folder_;
    std::unique_ptr<HandDatabase> farm_, diary_;
};

Farm& TheFarm() {
    static Farm farm;
    return farm;
}

// ------------------------------------------------------------------------------------- measurements

// Each deletion takes a class that is still there and gives its entries to the next but one.
int NextClass(int& last) {
    last += 2;
    Check(last + 1 <= kClasses, "no classes left");
    return last;
}

void Deletion_Ours(benchmark::State& state) {
    static int last = -1;
    for (auto _ : state)
        for (int i = 0; i < kDeletions; ++i) {
            const int deleted = NextClass(last);
            stock::FarmOfCascade farm;
            Check(stock::MapMobData(farm, deleted + 1, deleted, NameOf(deleted + 1), NameOf(deleted)),
                  "not mapped");
            stock::DeleteTheMob(farm, NameOf(deleted));
        }
}

void Deletion_ByHand(benchmark::State& state) {
    static int last = -1;
    for (auto _ : state)
        for (int i = 0; i < kDeletions; ++i) {
            const int deleted = NextClass(last);
            DeleteByHand(TheFarm().HandFarm(), TheFarm().HandDiary(), deleted, deleted + 1);
        }
}

void RestorePoint_Ours(benchmark::State& state) {
    for (auto _ : state)
        common::MakeRestorePoint("Deleting", {TheFarm().Ours("Farm32.mdb"), TheFarm().Ours("Diary.mdb")});
}

void RestorePoint_ByHand(benchmark::State& state) {
    const std::string copy = TheFarm().Copy();
    for (auto _ : state)
        for (const char* name : {"Farm32.mdb", "Diary.mdb"}) {
            fs::remove(copy);
            const std::string command =
                "sqlite3 '" + TheFarm().ByHand(name) + "' \".backup '" + copy + "'\" 2>&1";
            Check(std::system(command.c_str()) == 0, "the shell's .backup");
        }
}

// ------------------------------------------------------------------------------------------- ratios

void PrintRatios(const BestTimes& times) {
    std::printf("\n%-42s %12s %12s %8s %8s\n", "", "ours ms", "by hand ms", "ratio", "at most");
    const auto line = [&](const char* name, const char* what, double count, const char* most) {
        const double ours = times.Time(std::string(name) + "_Ours") / count;
        const double hand = times.Time(std::string(name) + "_ByHand") / count;
        if (ours > 0 && hand > 0)
            std::printf("%-42s %12.2f %12.2f %8.2f %8s\n", what, ours, hand, ours / hand, most);
    };
    line("Deletion", "a class deleted and mapped", kDeletions, "1.20");
    line("RestorePoint", "its restore point; the shell's .backup", 1, "-");
}

// Both sides deleted the same classes and moved the same rows.
void CompareSides() {
    for (const char* sql :
         {"SELECT Count(*) FROM \"Stock Class Names\"", "SELECT Count(*) FROM \"Stock Details\"",
          "SELECT Count(*) FROM \"Stock Reconciliations\"",
          "SELECT Count(DISTINCT \"Stock Name\") FROM \"Feed Demand\"",
          "SELECT Count(DISTINCT Description) FROM \"Budget Details\""})
        Check(HandDatabase(TheFarm().Ours("Farm32.mdb")).Number(sql) == TheFarm().HandFarm().Number(sql),
              sql);
    const char* diary = "SELECT Sum(MobID * (rowid % 97)) FROM AnimalMultipleList";
    Check(HandDatabase(TheFarm().Ours("Diary.mdb")).Number(diary) == TheFarm().HandDiary().Number(diary),
          diary);
}

} // namespace

int main(int argc, char** argv) {
    const bool quiet = bench::Begin(argc, argv);
    TheFarm();
    struct Entry {
        const char* name;
        void (*run)(benchmark::State&);
    };
    constexpr Entry kEntries[] = {{"Deletion_Ours", Deletion_Ours},
                                  {"Deletion_ByHand", Deletion_ByHand},
                                  {"RestorePoint_Ours", RestorePoint_Ours},
                                  {"RestorePoint_ByHand", RestorePoint_ByHand}};
    for (const auto& entry : kEntries)
        benchmark::RegisterBenchmark(entry.name, entry.run)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(1)
            ->Repetitions(kRuns);
    bench::BestTimes times(quiet);
    benchmark::RunSpecifiedBenchmarks(&times);
    CompareSides();
    PrintRatios(times);
    return 0;
}
