#include "import_job.h"

#include "config/installation_check.h"
#include "config/installation_completion.h"
#include "config/suite_files.h"
#include "platform/system/ini_file.h"

#include <charconv>

namespace quillary::tools {

namespace fs = std::filesystem;

namespace {

std::int32_t CountryTold(const fs::path& ini) {
    std::int32_t country = 0;
    if (!ini.empty()) {
        const std::string told =
            system::ReadProfileString("WINDOWS", "Country", "", fs::absolute(ini).string());
        std::from_chars(told.data(), told.data() + told.size(), country);
    }
    return config::IsSupportedCountry(country) ? country : config::kNewZealand;
}

config::InstallationOptions OptionsOf(const ImportJob& job) {
    config::InstallationOptions options;
    options.layout = job.layout;
    options.moduleNumber = job.edition.value_or(config::kFarmEdition);
    const fs::path there = options.layout.common / config::files::kSuiteIni;
    const bool settled = job.ini.empty() && fs::exists(there);
    options.country = job.country ? *job.country : CountryTold(settled ? there : job.ini);
    return options;
}

// The settings of the other machine, unless there are some here already.
void CompleteSettings(const ImportJob& job, const config::InstallationLayout& layout,
                      std::vector<std::string>& added) {
    const fs::path ini = layout.common / config::files::kSuiteIni;
    if (job.ini.empty()) {
        return;
    }
    if (fs::exists(ini) && !job.replace) {
        added.push_back(ini.string() + " stays as it was; " + job.ini.string() + " was not taken over");
        return;
    }
    std::error_code none;
    fs::create_directories(layout.common, none);
    if (fs::exists(ini)) {
        const fs::path kept = ini.string() + ".before-import";
        fs::rename(ini, kept, none);
        added.push_back(kept.string() + ": the settings that were there");
    }
    config::TakeOverSettings(job.ini, layout);
    added.push_back(ini.string() + ": the settings of " + job.ini.string());
}

} // namespace

void CompleteDatabases(const ImportJob& job, std::vector<std::string>& added) {
    const config::InstallationOptions options = OptionsOf(job);
    for (const auto& file : job.files) {
        const auto done = config::CompleteDatabase(file.part, file.role, options, job.edition.has_value());
        added.insert(added.end(), done.begin(), done.end());
    }
}

void CompleteFolders(const ImportJob& job, std::vector<std::string>& added) {
    const config::InstallationOptions options = OptionsOf(job);
    CompleteSettings(job, options.layout, added);
    for (const auto& path : config::MakeInstallation(options).made) {
        added.push_back(path.string());
    }
    const fs::path ini = options.layout.common / config::files::kSuiteIni;
    if (job.country) {
        system::WriteProfileString("WINDOWS", "Country", std::to_string(*job.country), ini.string());
    }
}

std::vector<std::string> RemainingProblems(const ImportJob& job) {
    std::vector<std::string> problems;
    for (const auto& check : config::CheckInstallation(job.into)) {
        for (const std::string& problem : check.problems) {
            problems.push_back(check.file.string() + ": " + problem);
        }
    }
    return problems;
}

} // namespace quillary::tools
