#pragma once

#include "config/globals.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/system/fake_services.h"
#include "platform/system/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillary::test {

// An installation's folders: documents, common folder below them, configuration folder, program folder;
// New Zealand, 15 August 2008.
class ConfigurationTest : public testing::Test {
protected:
    ConfigurationTest() {
        folders_->documents = root_ / "documents";
        folders_->config = root_ / "config";
        folders_->program = root_ / "program";
        std::filesystem::create_directories(root_ / "documents/Quillary/Common");
        system::SetServices({.clock = std::make_shared<FixedClock>(kMoment), .folders = folders_});
        runtime::SetLocale("en_NZ");
        config::ResetGlobals();
    }
    ~ConfigurationTest() override {
        config::ResetGlobals();
        system::SetServices({});
        runtime::SetLocale("en_NZ");
    }

    std::string WriteIni(std::string_view text) const {
        return root_.Write("documents/Quillary/Common/Quillary.ini", text);
    }
    std::string Ini() const { return root_.Read("documents/Quillary/Common/Quillary.ini"); }
    std::string Log() const { return root_.Read("documents/Quillary/Common/QYErrors.log"); }

    inline static const runtime::Date kMoment = runtime::MakeDate(2008, 8, 15, 14, 5, 9);
    TemporaryFolder root_;
    std::shared_ptr<FakeFolders> folders_ = std::make_shared<FakeFolders>();
};

} // namespace quillary::test
