#include "config/installation_fixture.h"

#include "config/suite_files.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/run_time_error.h"

#include <cstdlib>
#include <iterator>

namespace quillary::config {

namespace fs = std::filesystem;

namespace {

std::string TextOfValue(const runtime::Variant& value) {
    if (const auto* flag = value.GetIf<bool>()) {
        return *flag ? "-1" : "0";
    }
    if (const auto* date = value.GetIf<runtime::Date>()) {
        return runtime::IsoText(*date);
    }
    return runtime::TextOf(value);
}

} // namespace

void InstallationTest::SetUp() {
    std::string pattern = (fs::temp_directory_path() / "installation-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    layout_ = ScenarioLayout(folder_);
    engine_ = database::CreateSqliteEngine();
}

void InstallationTest::TearDown() {
    CloseAll();
    engine_.reset();
    fs::remove_all(folder_);
}

InstallationReport InstallationTest::Make(InstallationLevel level, std::int32_t moduleNumber,
                                          std::int32_t country, int season) {
    InstallationOptions options;
    options.layout = layout_;
    options.level = level;
    options.moduleNumber = moduleNumber;
    options.country = country;
    options.season = season;
    return MakeInstallation(options);
}

fs::path InstallationTest::FileOf(const std::string& database) const {
    if (database == "modules") {
        return layout_.common / files::kModuleData;
    }
    return layout_.data / (database == "farm"   ? files::kFarmData
                           : database == "wage" ? files::kWageData
                                                : files::kDiaryData);
}

database::Database& InstallationTest::Db(const std::string& database) {
    auto& open = open_[database];
    if (!open) {
        open = engine_->OpenDatabase(FileOf(database).string());
    }
    return *open;
}

std::vector<std::string> InstallationTest::Rows(const std::string& database, const std::string& sql) {
    std::vector<std::string> rows;
    const auto set = Db(database).OpenRecordset(sql, database::RecordsetType::Snapshot);
    for (; !set->EOF_(); set->MoveNext()) {
        std::string row;
        for (int i = 0; i < set->FieldCount(); ++i) {
            row += (i == 0 ? "" : "|") + TextOfValue((*set)[i].Value());
        }
        rows.push_back(row);
    }
    return rows;
}

int InstallationTest::ErrorOf(const std::string& database, const std::string& statement) {
    try {
        Db(database).Execute(statement, database::kFailOnError);
    } catch (const runtime::RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

void InstallationTest::CloseAll() {
    open_.clear();
    engine_->ReleaseIdle();
}

std::string InstallationTest::Ini() const {
    std::ifstream file(layout_.common / files::kSuiteIni);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void InstallationTest::Write(const fs::path& path, const std::string& text) const {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace quillary::config
