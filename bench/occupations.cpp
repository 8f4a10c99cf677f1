// Another occupation is picked: the lists of the one left are written, those of the new one read. Beside it
// the same statements by hand through SQLite's own interface, on a copy of the file, at growing sizes. A
// quarter of the master list is selected in both occupations.
//
//   bench_occupations             the measurements, and the table of growth beneath them
//   bench_occupations --ratios    the table alone

#include "measuring.h"

#include "common/page.h"
#include "config/globals.h"
#include "config/installation.h"
#include "config/settings.h"
#include "platform/controls/data_control.h"
#include "platform/controls/lists.h"
#include "platform/controls/tab_strip.h"
#include "platform/database/engine.h"
#include "wages/wages_page.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <unordered_set>
#include <vector>

namespace {

using namespace quillary;
using bench::BestTimes;
using bench::Check;

constexpr int kSizes[] = {125, 250, 500, 1000, 2000, 4000, 8000}; // payments in the master list
constexpr int kShare = 4;                                         // one of so many is selected
constexpr double kMostAt2000 = 50;                                // milliseconds
constexpr int kOccupationsTab = 1;

// --------------------------------------------------------------------------------------------- files

class Files {
public:
    Files() {
        folder_ = std::filesystem::temp_directory_path() / ("bench_occupations." + std::to_string(getpid()));
        setenv("QUILLARY_DOCUMENTS", folder_.c_str(), 1);
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(folder_);
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
    }
    ~Files() {
        config::DbEngine().ReleaseIdle();
        std::filesystem::remove_all(folder_);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    // Fills the wage database, and the copy for the work by hand.
    void Fill(int payments) {
        auto db = config::DbEngine().OpenDatabase(config::GetWageFileName());
        for (const char* table : {"PaymentTypes", "PaymentNames", "EmployeeAwardType"})
            db->Execute("DELETE * FROM [" + std::string(table) + "]", database::kFailOnError);
        db->Execute("INSERT INTO EmployeeAwardType (EmployeetypeID, Employeetype, Unitofpay) "
                    "VALUES (1, 'Cook', 'Day')");
        db->Execute("INSERT INTO EmployeeAwardType (EmployeetypeID, Employeetype, Unitofpay) "
                    "VALUES (2, 'Fencer', 'Hour')");
        auto names = db->OpenRecordset("PaymentNames", database::RecordsetType::Dynaset);
        auto links = db->OpenRecordset("PaymentTypes", database::RecordsetType::Dynaset);
        for (std::int32_t payment = 1; payment <= payments; ++payment) {
            names->AddNew();
            (*names)["PaymentNameID"] = payment;
            (*names)["PayUnitname"] = "Payment " + std::to_string(payment * 7919 % 10007);
            (*names)["Calculation"] = 1.5F;
            names->Update();
            if (payment % kShare != 0)
                continue;
            for (const std::int32_t occupation : {1, 2}) {
                links->AddNew();
                (*links)["PaymentNameID"] = payment;
                (*links)["Order"] = payment / kShare - 1;
                (*links)["EmployeetypeID"] = occupation;
                links->Update();
            }
        }
        names->Close();
        links->Close();
        db->Close();
        std::filesystem::remove(ByHand());
        config::DbEngine().BackupDatabase(config::GetWageFileName(), ByHand());
    }
    std::string ByHand() const { return (folder_ / "hand.mdb").string(); }

private:
    std::filesystem::path folder_;
};

std::unique_ptr<Files> gFiles; // made and removed by main: the engine must outlive them

Files& TheFiles() {
    return *gFiles;
}

// ---------------------------------------------------------------------------------------------- ours

class Screen : public common::Screen {
public:
    Screen() {
        controls::DataControl::SetEngine([]() -> database::Engine& { return config::DbEngine(); });
        config::gDeductionsLoaded = config::gContributionsLoaded = false;
        form_.Show();
        int frame = 0;
        page_.SetUp(frame);
        static_cast<controls::TabStrip*>(form_.Find("tab_wage"))->PickTab(kOccupationsTab);
    }
    void PickOccupation(int entry) { Check(award_.Choose(entry).IsDone(), "the occupation was not picked"); }
    long Selected() { return static_cast<controls::Grid*>(form_.Find("tgrd_selected"))->RowCount(); }
    long Master() { return static_cast<controls::Grid*>(form_.Find("tgrd_master"))->RowCount(); }

    controls::Form& ScreenForm() override { return form_; }
    controls::DataControl& FarmDetails() override { return dat_; }
    controls::DataControl& BudgetStarts() override { return dat_; }
    std::string CurrentTabName() override { return {}; }
    bool LeaveCurrentPage() override { return true; }
    common::Page* PageOf(int) override { return nullptr; }
    void Decorate(controls::Form&) override {}

private:
    controls::Form form_{"frm_bench"};
    controls::DataControl dat_{form_, "dat_FarmDetails"};
    controls::Panel panel_{form_, "vse_frame"};
    wages::WagesPage page_{*this, panel_};
    controls::ComboBox& award_ = *static_cast<controls::ComboBox*>(form_.Find("com_award"));
};

void Switch_Ours(benchmark::State& state) {
    const int payments = static_cast<int>(state.range(0));
    TheFiles().Fill(payments);
    Screen screen;
    int entry = 0;
    for (auto _ : state) {
        entry = 1 - entry;
        screen.PickOccupation(entry);
    }
    Check(screen.Selected() == payments / kShare, "rows of the selected list");
    Check(screen.Master() == payments - payments / kShare, "rows of the master list");
}

// ------------------------------------------------------------------------------------------- by hand

using Row = std::vector<std::string>;

class Hand : private bench::HandDatabase {
public:
    explicit Hand(const std::string& path) : HandDatabase(path) {
        delete_ = Prepare("DELETE FROM PaymentTypes WHERE EmployeetypeID = ?1");
        insert_ = Prepare(
            "INSERT INTO PaymentTypes (PaymentNameID, \"Order\", EmployeetypeID) VALUES (?1, ?2, ?3)");
        selected_ =
            Prepare("SELECT n.PaymentNameID, n.PayUnitname, n.Calculation, n.Salary, t.\"Order\" FROM "
                    "PaymentNames n JOIN PaymentTypes t ON n.PaymentNameID = t.PaymentNameID WHERE "
                    "t.EmployeetypeID = ?1 ORDER BY t.\"Order\"");
        master_ = Prepare("SELECT PaymentNameID, PayUnitname, Calculation, Salary FROM PaymentNames ORDER BY "
                          "PayUnitname");
    }
    ~Hand() {
        for (sqlite3_stmt* statement : {delete_, insert_, selected_, master_})
            sqlite3_finalize(statement);
    }
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;

    // Each statement is atomic of itself, as the program's are.
    void Switch(int from, int to) {
        Bind(delete_, {from});
        RunOnce(delete_);
        int order = 0;
        for (const Row& row : rows_) {
            Bind(insert_, {std::atoi(row[0].c_str()), order++, from});
            RunOnce(insert_);
        }
        Sync();
        Bind(selected_, {to});
        rows_ = Read(selected_);
        std::unordered_set<std::string> ids;
        for (const Row& row : rows_)
            ids.insert(row[0]);
        others_ = Read(master_);
        std::erase_if(others_, [&](const Row& row) { return ids.contains(row[0]); });
    }
    void Show(int occupation) {
        Bind(selected_, {occupation});
        rows_ = Read(selected_);
    }
    std::size_t Selected() const { return rows_.size(); }
    std::size_t Master() const { return others_.size(); }

private:
    static void Bind(sqlite3_stmt* statement, std::initializer_list<int> values) {
        int place = 0;
        for (const int value : values)
            sqlite3_bind_int(statement, ++place, value);
    }
    static void RunOnce(sqlite3_stmt* statement) {
        Check(sqlite3_step(statement) == SQLITE_DONE, "a statement by hand failed");
        sqlite3_reset(statement);
    }
    static std::vector<Row> Read(sqlite3_stmt* statement) {
        std::vector<Row> rows;
        const int columns = sqlite3_column_count(statement);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            Row row;
            for (int column = 0; column < columns; ++column) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
                row.emplace_back(text ? text : "");
            }
            rows.push_back(std::move(row));
        }
        sqlite3_reset(statement);
        return rows;
    }

    sqlite3_stmt *delete_ = nullptr, *insert_ = nullptr, *selected_ = nullptr, *master_ = nullptr;
    std::vector<Row> rows_, others_;
};

void Switch_ByHand(benchmark::State& state) {
    const auto payments = static_cast<std::size_t>(state.range(0));
    TheFiles().Fill(static_cast<int>(payments));
    Hand hand(TheFiles().ByHand());
    hand.Show(1);
    int from = 1;
    for (auto _ : state) {
        hand.Switch(from, 3 - from);
        from = 3 - from;
    }
    Check(hand.Selected() == payments / kShare, "rows of the selected list by hand");
    Check(hand.Master() == payments - payments / kShare, "rows of the master list by hand");
}

// ------------------------------------------------------------------------------------------- growth

// The last column is the time for each n log n, as a multiple of the smallest size's: it does not rise where
// the growth is no worse than n log n.
void PrintTable(const BestTimes& times) {
    std::printf("\nAnother occupation picked\n%10s %10s %10s %10s %8s %10s\n", "payments", "selected",
                "ours ms", "by hand ms", "ratio", "/ n log n");
    const auto share = [&](int payments) {
        return times.Time("Switch_Ours/" + std::to_string(payments)) / (payments * std::log2(payments));
    };
    for (const int payments : kSizes) {
        const double ours = times.Time("Switch_Ours/" + std::to_string(payments));
        const double byHand = times.Time("Switch_ByHand/" + std::to_string(payments));
        std::printf("%10d %10d %10.2f %10.2f %8.2f %10.2f\n", payments, payments / kShare, ours, byHand,
                    byHand > 0 ? ours / byHand : 0, share(payments) / share(kSizes[0]));
    }
    std::printf("2,000 payments, 500 selected: %.2f ms, at most %.0f\n", times.Time("Switch_Ours/2000"),
                kMostAt2000);
}

} // namespace

int main(int argc, char** argv) {
    const bool quiet = bench::Begin(argc, argv, false); // each size fills the files anew
    for (const int payments : kSizes) {
        for (auto* bench : {benchmark::RegisterBenchmark("Switch_Ours", Switch_Ours),
                            benchmark::RegisterBenchmark("Switch_ByHand", Switch_ByHand)})
            bench->Arg(payments)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime()
                ->Iterations(10)
                ->Repetitions(3);
    }
    gFiles = std::make_unique<Files>();
    BestTimes times(quiet);
    benchmark::RunSpecifiedBenchmarks(&times);
    PrintTable(times);
    gFiles.reset();
}
