#pragma once

#include "config/installation.h"
#include "platform/database/engine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillary::config {

// A fresh folder for each test, and the databases of an installation in it by their short names.
class InstallationTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    InstallationReport Make(InstallationLevel level, std::int32_t moduleNumber = kFarmEdition,
                            std::int32_t country = kNewZealand, int season = 2026);
    std::filesystem::path FileOf(const std::string& database) const; // "farm", "wage", "diary", "modules"
    database::Database& Db(const std::string& database);
    // Rows as the scenarios print them: fields joined by "|", Null empty, True -1.
    std::vector<std::string> Rows(const std::string& database, const std::string& sql);
    // The number of the error that a statement raises, 0 when it runs.
    int ErrorOf(const std::string& database, const std::string& statement);
    void CloseAll();
    std::string Ini() const;
    void Write(const std::filesystem::path& path, const std::string& text) const;

    std::filesystem::path folder_;
    InstallationLayout layout_;

private:
    std::unique_ptr<database::Engine> engine_;
    std::map<std::string, std::shared_ptr<database::Database>> open_;
};

} // namespace quillary::config
