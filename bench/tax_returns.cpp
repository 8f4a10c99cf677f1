// The page of the sales tax as it is first shown on the sample farm, with its widgets; and the reset of the
// tax returns over a million transactions, of which one in ten is linked, beside the same statements by hand
// through SQLite's own interface on a copy of the file.
//
//   bench_tax_returns             the measurements, and the summary beneath them
//   bench_tax_returns --ratios    the summary alone

#include "measuring.h"

#include "config/globals.h"
#include "config/installation.h"
#include "config/profile_store.h"
#include "config/suite_files.h"
#include "platform/controls/form.h"
#include "platform/controls/tab_strip.h"
#include "platform/database/engine.h"
#include "platform/qt/form_host.h"
#include "platform/qt/theme.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/system/services.h"
#include "shell/program_start.h"
#include "tax/tax_returns.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace quillary;
using bench::BestTimes;
using bench::Check;

constexpr int kTransactions = 1'000'000;
constexpr int kShare = 10;    // one of so many is linked
constexpr int kReturns = 300; // of each type
constexpr double kMostRatio = 1.2;
constexpr const char* kTaxTab = "GST";
constexpr std::array kLinks = {"TaxReturnID", "PAYERtnID", "IncomeTaxRtnID"};

// ------------------------------------------------------------------------------------------- services

struct YesBoxes : system::MessageBoxes {
    int Show(const system::MessageRequest& request) override {
        return request.buttons == system::kButtonsYesNo ? system::kAnswerYes : system::kAnswerOk;
    }
};

// The one report that comes is that of the restore point, see Installation.
struct SilentReports : system::ErrorReports {
    void Report(const system::ErrorReportText& report) override {
        Check(report.routine == "MakeRestorePoint", report.description.c_str());
    }
};

// ---------------------------------------------------------------------------------------------- files

class Installation {
public:
    explicit Installation(config::InstallationLevel level) {
        static int count = 0;
        folder_ = std::filesystem::temp_directory_path() /
                  ("bench_tax_returns." + std::to_string(getpid()) + "." + std::to_string(++count));
        setenv("QUILLARY_DOCUMENTS", folder_.c_str(), 1);
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(folder_);
        options.level = level;
        config::MakeInstallation(options);
        // The restore point is not what is measured: with a file in the place of its folder it ends at once.
        std::ofstream(options.layout.common / config::files::kRestorePointFolder) << '\n';
    }
    ~Installation() {
        config::DbEngine().ReleaseIdle();
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    std::string ByHand() const { return (folder_ / "hand.mdb").string(); }

private:
    std::filesystem::path folder_;
};

// -------------------------------------------------------------------------------------------- by hand

class Hand : public bench::HandDatabase {
public:
    using HandDatabase::HandDatabase;

    // The returns, and the links to them, as before a reset.
    void Fill() {
        Run("DELETE FROM TaxReturns");
        for (std::size_t type = 0; type < kLinks.size(); ++type) {
            const std::string number = std::to_string(type);
            Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                std::to_string(kReturns) +
                ") INSERT INTO TaxReturns (TaxReturnID, StartDate, RtnType) SELECT i * 3 + " + number +
                ", date('2007-01-01', '+' || i || ' days'), " + number + " FROM n");
        }
        Run("UPDATE TransactionDetails SET TaxReturnID = 3 + 3 * (\"Account Code\" % " +
            std::to_string(kReturns) + "), PAYERtnID = 4 + 3 * (\"Account Code\" % " +
            std::to_string(kReturns) + "), IncomeTaxRtnID = 5 + 3 * (\"Account Code\" % " +
            std::to_string(kReturns) + ") WHERE \"Account Code\" % " + std::to_string(kShare) + " = 0");
        Run("PRAGMA wal_checkpoint(TRUNCATE)");
    }

    void Reset() {
        const std::vector<std::array<long, 2>> returns = ReturnsFrom("2007-01-02");
        for (std::size_t type = 0; type < kLinks.size(); ++type) {
            const auto first = std::find_if(returns.begin(), returns.end(), [&](const auto& each) {
                return each[1] == static_cast<long>(type);
            });
            if (first == returns.end())
                continue;
            const std::string id = std::to_string((*first)[0]);
            const std::string name = kLinks[type];
            Run("DELETE FROM TaxReturns WHERE RtnType = " + std::to_string(type) +
                " AND TaxReturnID >= " + id);
            Run("UPDATE TransactionDetails SET " + name + " = 0 WHERE " + name + " >= " + id);
        }
        Sync(); // as the program's is when it is done
    }

private:
    std::vector<std::array<long, 2>> ReturnsFrom(const std::string& date) {
        sqlite3_stmt* statement = Prepare("SELECT TaxReturnID, StartDate, RtnType FROM TaxReturns WHERE "
                                          "StartDate >= '" +
                                          date + "' ORDER BY RtnType, TaxReturnID");
        std::vector<std::array<long, 2>> returns;
        while (sqlite3_step(statement) == SQLITE_ROW)
            returns.push_back({static_cast<long>(sqlite3_column_int64(statement, 0)),
                               static_cast<long>(sqlite3_column_int64(statement, 2))});
        sqlite3_finalize(statement);
        return returns;
    }
};

constexpr const char* kLinksLeft =
    "SELECT COUNT(*) FROM TransactionDetails WHERE TaxReturnID > 0 OR PAYERtnID > 0 OR IncomeTaxRtnID > 0";

// A million transactions in the program's file and in its copy.
class Books {
public:
    Books() {
        {
            Hand ours(config::GetDataFileName());
            ours.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                     std::to_string(kTransactions) +
                     ") INSERT INTO TransactionDetails (\"Account Code\", TaxReturnID, PAYERtnID, "
                     "IncomeTaxRtnID) SELECT i, 0, 0, 0 FROM n");
            ours.Fill();
        }
        config::DbEngine().BackupDatabase(config::GetDataFileName(), installation_.ByHand());
        config::gHasTaxTypes = true;
        config::gDatabase = config::DbEngine().OpenDatabase(config::GetDataFileName()); // as the screen's is
    }
    ~Books() { config::gDatabase.reset(); }
    Books(const Books&) = delete;
    Books& operator=(const Books&) = delete;

    std::string ByHand() const { return installation_.ByHand(); }

private:
    Installation installation_{config::InstallationLevel::Minimal};
};

// Both sides fill and check through the same connection by hand.
template <class Run>
void MeasureReset(benchmark::State& state, const std::string& path, Run run) {
    Hand keeper(path);
    for (auto _ : state) {
        state.PauseTiming();
        keeper.Fill();
        state.ResumeTiming();
        run();
        state.PauseTiming();
        Check(keeper.Number(kLinksLeft) == 0, "links are left");
        Check(keeper.Number("SELECT COUNT(*) FROM TaxReturns") == 0, "returns are left");
        state.ResumeTiming();
    }
}

void Reset_Ours(benchmark::State& state) {
    const Books books;
    const std::string date = runtime::CStr(runtime::MakeDate(2007, 1, 2));
    MeasureReset(state, config::GetDataFileName(), [&] { tax::ResetTaxReturns(date); });
}

void Reset_ByHand(benchmark::State& state) {
    const Books books;
    Hand hand(books.ByHand());
    MeasureReset(state, books.ByHand(), [&] { hand.Reset(); });
}

// From the click on the tab to the drawn page, the save of the page left included.
void FirstShown(benchmark::State& state) {
    const Installation installation(config::InstallationLevel::Sample);
    qt::QtFormHost host;
    for (auto _ : state) {
        state.PauseTiming();
        shell::SubMain("");
        controls::Form* screen = controls::TopForm();
        Check(screen != nullptr, "the screen is not shown");
        host.DoEvents();
        state.ResumeTiming();
        auto* tabs = static_cast<controls::TabStrip*>(screen->Find("tab_Setup"));
        Check(tabs->PickTabText(kTaxTab).IsDone(), "the page is not shown");
        host.DoEvents();
        state.PauseTiming();
        Check(screen->Find("tgrd_GSTTypes")->PropertyText("RowCount") != "0", "the types are not shown");
        shell::EndProgram();
        host.DoEvents();
        state.ResumeTiming();
    }
}

// -------------------------------------------------------------------------------------------- summary

void PrintSummary(const BestTimes& times) {
    if (const double shown = times.Time("FirstShown"); shown > 0)
        std::printf("\nGST page first shown, sample farm: %.1f ms\n", shown);
    const double ours = times.Time("Reset_Ours"), byHand = times.Time("Reset_ByHand");
    if (ours > 0 && byHand > 0)
        std::printf("Reset of tax returns, %d transactions, 1 of %d linked: ours %.1f ms, by hand %.1f "
                    "ms, ratio %.2f (at most %.1f)\n",
                    kTransactions, kShare, ours, byHand, ours / byHand, kMostRatio);
}

} // namespace

int main(int argc, char** argv) {
    const bool quiet = bench::Begin(argc, argv, false);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    qt::ApplyTheme(application);
    auto services = system::MachineServices();
    services.messageBoxes = std::make_shared<YesBoxes>();
    services.errorReports = std::make_shared<SilentReports>();
    system::SetServices(std::move(services));

    const auto add = [](const char* name, void (*run)(benchmark::State&), int iterations) {
        benchmark::RegisterBenchmark(name, run)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(iterations)
            ->Repetitions(3);
    };
    add("FirstShown", FirstShown, 10);
    add("Reset_Ours", Reset_Ours, 3);
    add("Reset_ByHand", Reset_ByHand, 3);
    BestTimes times(quiet);
    benchmark::RunSpecifiedBenchmarks(&times);
    PrintSummary(times);
}
