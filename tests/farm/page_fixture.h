#pragma once

#include "common/page.h"
#include "config/globals.h"
#include "platform/runtime/locale.h"
#include "platform/system/services.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

// One page on a bare screen, in a folder with a settings file and an empty farm database.
namespace quillary::farm {

namespace fs = std::filesystem;

struct BareScreen : common::Screen {
    controls::Form form{"frm_setup"};
    controls::DataControl farmDetails{form, "dat_FarmDetails"}, budgetStarts{form, "dat_BgtStart"};
    controls::Panel panel{form, "vse_frame", 7};
    controls::Form& ScreenForm() override { return form; }
    controls::DataControl& FarmDetails() override { return farmDetails; }
    controls::DataControl& BudgetStarts() override { return budgetStarts; }
    std::string CurrentTabName() override { return "About"; }
    bool LeaveCurrentPage() override { return true; }
    common::Page* PageOf(int) override { return nullptr; }
    void Decorate(controls::Form&) override {}
};

struct KeptReports : system::ErrorReports {
    void Report(const system::ErrorReportText& report) override { routines.push_back(report.routine); }
    std::vector<std::string> routines;
};

struct FixedFolders : system::Folders {
    explicit FixedFolders(fs::path f) : folder(std::move(f)) {}
    std::string CommonDocuments() override { return folder.string(); }
    std::string ConfigHome() override { return folder.string(); }
    std::string ProgramFolder() override { return folder.string(); }
    std::string Temp() override { return folder.string(); }
    fs::path folder;
};

class PageTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "page-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
        runtime::SetLocale("en_NZ");
        system::Services services = system::MachineServices();
        services.folders = std::make_shared<FixedFolders>(folder_);
        services.errorReports = reports_;
        system::SetServices(std::move(services));
        fs::create_directories(folder_ / "Quillary/Common");
        std::ofstream(folder_ / "Quillary/Common/Quillary.ini")
            << "[QUILLARY]\nProgramDirectory=" << name << "\nDataFileName=" << Farm() << "\n";
        db_ = config::DbEngine().CreateDatabase(Farm());
        db_->Execute("CREATE TABLE [Farm Details] ([Version] TEXT(20), [Diary Units] TEXT(1))");
    }
    void TearDown() override {
        screen_.farmDetails.Abandon();
        db_.reset();
        config::DbEngine().ReleaseIdle();
        system::SetServices({});
        fs::remove_all(folder_);
    }
    std::string Farm() const { return (folder_ / "Farm.mdb").string(); }

    std::shared_ptr<KeptReports> reports_ = std::make_shared<KeptReports>();
    fs::path folder_;
    std::shared_ptr<database::Database> db_;
    BareScreen screen_;
};

} // namespace quillary::farm
