// The Headings page on a large farm (10,000 headings, 60,000 secondary headings, 1,000,000 transactions)
// against the same statements done by hand through SQLite's own interface, on two copies of one file and in
// one run.
//
//   bench_headings             the measurements, the ratios beneath them, and how long the page takes to show
//   bench_headings --ratios    without the measurements

#include "measuring.h"

#include "config/installation.h"
#include "farm/secondary_headings.h"
#include "platform/qt/form_host.h"
#include "platform/qt/form_window.h"
#include "platform/qt/theme.h"
#include "platform/runtime/conversions.h"
#include "platform/system/services.h"
#include "shell/frm_setup.h"
#include "shell/program_start.h"

#include <QApplication>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
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
using runtime::Variant;

constexpr int kHeadings = 10'000;
constexpr int kSecondary = 60'000;
constexpr int kTransactions = 1'000'000;
constexpr int kHeadingsTab = 1;
constexpr int kShownRows = 20;
constexpr const char* kBusyHeading = "10000"; // half of all transactions
constexpr const char* kIdleHeading = "19999"; // none

// ------------------------------------------------------------------------------------- the large farm

struct SilentMessages : system::MessageBoxes {
    int shown = 0;
    int Show(const system::MessageRequest&) override {
        ++shown;
        return system::kAnswerYes;
    }
};

// An installation of its own, and the program on it, its windows drawn in memory.
class Farm {
public:
    Farm() {
        folder_ = std::filesystem::temp_directory_path() / ("bench_headings." + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        setenv("QUILLARY_DOCUMENTS", folder_.c_str(), 1);
        auto services = system::MachineServices();
        services.messageBoxes = messages_;
        system::SetServices(std::move(services));
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(folder_);
        options.level = config::InstallationLevel::Minimal;
        config::MakeInstallation(options);
        const std::string file = (options.layout.data / "Farm32.mdb").string();
        const std::string copy = (folder_ / "hand.mdb").string();
        auto& engine = config::DbEngine();
        Fill(*engine.OpenDatabase(file));
        engine.BackupDatabase(file, copy);
        hand_ = std::make_unique<HandDatabase>(copy);
        controls::SetFormHost(&host_);
        shell::SubMain("");
        const auto& forms = controls::Forms();
        Check(!forms.empty(), "the screen did not open");
        screen_ = dynamic_cast<shell::FrmSetup*>(forms.front());
        Check(screen_ != nullptr, "the screen did not open");
        host_.DoEvents();
    }
    ~Farm() {
        shell::EndProgram();
        controls::SetFormHost(nullptr);
        hand_.reset();
        config::DbEngine().ReleaseIdle();
        system::SetServices({});
        std::filesystem::remove_all(folder_);
    }
    Farm(const Farm&) = delete;
    Farm& operator=(const Farm&) = delete;

    shell::FrmSetup& Screen() { return *screen_; }
    farm::HeadingsPage& Page() { return screen_->Headings(); }
    controls::Grid& Grid() { return Page().tgrd_codes2; }
    HandDatabase& Sqlite() { return *hand_; }
    int Messages() const { return messages_->shown; }

    // From the click on the tab to the drawn page.
    double ShowPage() {
        const auto start = std::chrono::steady_clock::now();
        screen_->tab_Setup.PickTab(kHeadingsTab);
        host_.DoEvents();
        host_.WindowOf(*screen_)->grab();
        const auto end = std::chrono::steady_clock::now();
        Check(Grid().RowCount() > kHeadings, "the page shows too few headings");
        return std::chrono::duration<double, std::milli>(end - start).count();
    }

    // One key in the box above the list, for a name that stands far down.
    double Find() {
        auto& box = Page().search.txt_Find;
        box.TypeText("heading 999");
        const auto start = std::chrono::steady_clock::now();
        box.PressKey(controls::KeyOfCharacter('9'));
        const auto end = std::chrono::steady_clock::now();
        Check(Page().dat_Codes.FieldOrNull("Account Name") == Variant("Heading 9999"), "the name found");
        return std::chrono::duration<double, std::milli>(end - start).count();
    }

private:
    static void Fill(database::Database& db) {
        const auto run = [&](const std::string& sql) { db.Execute(sql, kFailOnError); };
        run("CREATE TABLE Digits (n LONG PRIMARY KEY)");
        for (int i = 0; i < 10; ++i)
            run("INSERT INTO Digits (n) VALUES (" + std::to_string(i) + ")");
        run("INSERT INTO [Account Categories] ([Account Category ID], [Category Name]) "
            "SELECT n, 'Category ' & n AS [Category Name] FROM Digits");
        run("INSERT INTO [Planner Use] ([Planner Use ID], [Planner Use]) "
            "SELECT n, 'Use ' & n AS [Planner Use] FROM Digits");
        run("INSERT INTO [Account Codes] ([Account Code], [Account Name], [Show in Cashbk], [GST "
            "Percentage], TaxNumber, IncomeTax, [Accountants Code], [Account Level], [Account Category ID], "
            "[Planner Use ID]) SELECT 10000 + a.n * 1000 + b.n * 100 + c.n * 10 + d.n, "
            "'Heading ' & d.n & c.n & b.n & a.n, True, 100, c.n, True, '' & a.n & b.n & c.n, "
            "'Level ' & d.n, c.n, d.n FROM Digits AS a, Digits AS b, Digits AS c, Digits AS d");
        run("INSERT INTO [Secondary Codes] ([Secondary Codes ID], [Main Code ID], [Name]) "
            "SELECT [Account Code] * 100 + n, [Account Code], IIf(n = 0, Null, 'Part ' & n) "
            "FROM [Account Codes], Digits WHERE n < 6 AND [Account Code] >= 10000");
        // Every heading but the last has fifty, the first half a million.
        run("INSERT INTO TransactionDetails ([Account Code]) SELECT [Secondary Codes].[Secondary Codes ID] "
            "FROM [Secondary Codes], Digits WHERE [Main Code ID] < 19999 AND [Main Code ID] > 10000 "
            "AND [Secondary Codes ID] Mod 100 < 5");
        run("INSERT INTO TransactionDetails ([Account Code]) SELECT 1000000 + f.n Mod 6 "
            "FROM Digits AS a, Digits AS b, Digits AS c, Digits AS d, Digits AS e, Digits AS f "
            "WHERE f.n < 5");
        run("INSERT INTO TransactionDetails ([Account Code]) SELECT 1000000 FROM Digits AS a, Digits AS b, "
            "Digits AS c WHERE a.n < 1");
        const auto count = [&](const char* table) {
            return runtime::CLng(
                (*db.OpenRecordset("SELECT Count(*) FROM [" + std::string(table) + "]"))[0].Value());
        };
        Check(count("Account Codes") == kHeadings + 1, "headings");
        Check(count("Secondary Codes") == kSecondary, "secondary headings");
        Check(count("TransactionDetails") == kTransactions, "transactions");
        run("DROP TABLE Digits");
    }

    std::filesystem::path folder_;
    std::shared_ptr<SilentMessages> messages_ = std::make_shared<SilentMessages>();
    std::unique_ptr<HandDatabase> hand_;
    qt::QtFormHost host_;
    shell::FrmSetup* screen_ = nullptr;
};

std::unique_ptr<Farm> theFarm;

Farm& TheFarm() {
    return *theFarm;
}

// --------------------------------------------------------------------------------------- the page shown

// What the page does when it is shown for the first time, up to the rows that are seen.
void Page_Ours(benchmark::State& state) {
    auto& grid = TheFarm().Grid();
    for (auto _ : state) {
        config::gHeadingsLoaded = false;
        int frame = 10;
        TheFarm().Page().SetUp(frame);
        Check(grid.RowCount() == kHeadings + 1, "page: rows");
        for (long row = 0; row < kShownRows; ++row)
            for (int col = 0; col < grid.ColumnCount(); ++col)
                benchmark::DoNotOptimize(grid.Shown(row, col));
    }
}

constexpr const char* kHeadingsByHand =
    "SELECT a.*, c.\"Category Name\", p.\"Planner Use\" FROM \"Account Codes\" a "
    "LEFT JOIN \"Account Categories\" c ON c.\"Account Category ID\" = a.\"Account Category ID\" "
    "LEFT JOIN \"Planner Use\" p ON p.\"Planner Use ID\" = a.\"Planner Use ID\" ";

void Page_ByHand(benchmark::State& state) {
    const std::string all = std::string(kHeadingsByHand) + "ORDER BY a.\"Account Code\"";
    const std::string shown =
        std::string(kHeadingsByHand) + "WHERE a.\"Show in Cashbk\" = -1 ORDER BY a.\"Account Code\"";
    for (auto _ : state) {
        Check(TheFarm().Sqlite().ReadAll(all) == kHeadings + 1, "page by hand: rows");
        TheFarm().Sqlite().ReadAll(
            "SELECT * FROM TaxTypes WHERE Hidden = 0 AND Country = 64 ORDER BY DisplayOrder");
        Check(TheFarm().Sqlite().ReadAll(shown) == kHeadings + 1, "page by hand: rows");
    }
}

// ---------------------------------------------------------------------------------------- cached names

void Names_Ours(benchmark::State& state) {
    auto& codes = TheFarm().Page().dat_Codes;
    for (auto _ : state)
        farm::UpdateSecondaryHeadings(codes);
}

void Names_ByHand(benchmark::State& state) {
    auto& sqlite = TheFarm().Sqlite();
    for (auto _ : state) {
        sqlite.Run("INSERT INTO jet_queries (name, sql) VALUES ('qry Update Secondary heading names', 'x') "
                   "ON CONFLICT (name) DO UPDATE SET sql = excluded.sql");
        sqlite.Run(
            "UPDATE \"Secondary Codes\" SET \"Cached Name\" = ifnull(a.\"Account Name\", '') || ' : ' || "
            "ifnull(\"Secondary Codes\".\"Name\", '') FROM \"Account Codes\" a "
            "WHERE a.\"Account Code\" = \"Secondary Codes\".\"Main Code ID\"");
        sqlite.Run("UPDATE \"Secondary Codes\" SET TaxNumID = a.TaxNumber FROM \"Account Codes\" a "
                   "WHERE a.\"Account Code\" = \"Secondary Codes\".\"Main Code ID\" "
                   "AND \"Secondary Codes ID\" = \"Main Code ID\" * 100");
    }
}

// ------------------------------------------------------------------------------------ the cashbook's use

void GoTo(const char* heading) {
    auto& headings = TheFarm().Page().dat_Codes.Recordset();
    headings.FindFirst("[Account Code] = " + std::string(heading));
    Check(!headings.NoMatch(), "no such heading");
}

// The check as the page runs it when a heading is taken out of the cashbook: the cell is given back after.
void UseBusy_Ours(benchmark::State& state) {
    GoTo(kBusyHeading);
    auto& grid = TheFarm().Grid();
    constexpr int kShowInCashbook = 3;
    grid.Columns(kShowInCashbook).Visible = true;
    grid.Col = kShowInCashbook;
    for (auto _ : state) {
        const int before = TheFarm().Messages();
        grid.EditCell(kShowInCashbook, "No");
        Check(TheFarm().Messages() > before, "use: answer");
        grid.DataChanged = false;
    }
}

void UseCheck_ByHand(benchmark::State& state, const char* heading, bool used) {
    const std::string sql = "SELECT s.\"Main Code ID\" FROM \"Secondary Codes\" s JOIN TransactionDetails t "
                            "ON s.\"Secondary Codes ID\" = t.\"Account Code\" WHERE s.\"Main Code ID\" = " +
                            std::string(heading);
    for (auto _ : state)
        Check((TheFarm().Sqlite().ReadAll(sql) > 0) == used, "use by hand: answer");
}

void UseBusy_ByHand(benchmark::State& state) {
    UseCheck_ByHand(state, kBusyHeading, true);
}
// A cell's edit with its events takes longer than this statement; measured is the statement alone.
void UseIdle_Ours(benchmark::State& state) {
    for (auto _ : state) {
        auto used = config::gDatabase->OpenRecordset(
            "SELECT DISTINCTROW [Secondary Codes].[Main Code ID] "
            "FROM [Secondary Codes] INNER JOIN TransactionDetails ON [Secondary Codes].[Secondary Codes ID] "
            "= TransactionDetails.[Account Code] "
            "WHERE ((([Secondary Codes].[Main Code ID])=" +
                std::string(kIdleHeading) + "));",
            database::RecordsetType::Snapshot);
        Check(used->EOF_(), "use: answer");
        used->Close();
    }
}
void UseIdle_ByHand(benchmark::State& state) {
    UseCheck_ByHand(state, kIdleHeading, false);
}

// ------------------------------------------------------------------------------------------ ratios

void PrintRatios(const BestTimes& times, double firstShown, double shownAgain, double find) {
    struct Line {
        const char* name;
        const char* what;
    };
    static constexpr Line kLines[] = {
        {"Page", "page set up, 10,000 headings"},
        {"Names", "cached names of 60,000 secondary headings"},
        {"UseBusy", "use of a heading with 500,000 transactions"},
        {"UseIdle", "use of a heading without transactions"},
    };
    std::printf("\n%-46s %12s %12s %8s %8s\n", "", "ours ms", "by hand ms", "ratio", "at most");
    for (const auto& line : kLines) {
        const double ours = times.Time(std::string(line.name) + "_Ours");
        const double hand = times.Time(std::string(line.name) + "_ByHand");
        if (ours > 0 && hand > 0)
            std::printf("%-46s %12.3f %12.3f %8.2f %8.2f\n", line.what, ours, hand, ours / hand, 1.2);
    }
    std::printf("%-46s %12.1f (at most 100)\n", "page shown, the first time", firstShown);
    std::printf("%-46s %12.1f (at most 100)\n", "page shown again", shownAgain);
    std::printf("%-46s %12.1f (at most 50)\n", "a key in the find box", find);
}

} // namespace

int main(int argc, char** argv) {
    const bool quiet = bench::Begin(argc, argv);

    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    qt::ApplyTheme(application);
    theFarm = std::make_unique<Farm>();
    const double firstShown = TheFarm().ShowPage();
    TheFarm().Screen().tab_Setup.PickTab(0);
    const double shownAgain = TheFarm().ShowPage();
    const double find = TheFarm().Find();

    struct Entry {
        const char* name;
        void (*run)(benchmark::State&);
    };
    constexpr Entry kEntries[] = {{"Page_Ours", Page_Ours},       {"Page_ByHand", Page_ByHand},
                                  {"Names_Ours", Names_Ours},     {"Names_ByHand", Names_ByHand},
                                  {"UseBusy_Ours", UseBusy_Ours}, {"UseBusy_ByHand", UseBusy_ByHand},
                                  {"UseIdle_Ours", UseIdle_Ours}, {"UseIdle_ByHand", UseIdle_ByHand}};
    for (const auto& entry : kEntries)
        benchmark::RegisterBenchmark(entry.name, entry.run)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Repetitions(7);
    bench::BestTimes times(quiet);
    benchmark::RunSpecifiedBenchmarks(&times);
    PrintRatios(times, firstShown, shownAgain, find);
    theFarm.reset();
    return 0;
}
