#include "config/database_templates.h"

#include "config/data_loader.h"
#include "config/installation.h"
#include "config/installation_settings.h"
#include "config/suite_files.h"
#include "platform/database/engine.h"
#include "platform/runtime/run_time_error.h"

#include <cerrno>
#include <map>
#include <system_error>

#include <unistd.h>

namespace quillary::config {

namespace fs = std::filesystem;

namespace {

constexpr int kErrPathAccess = 75;
constexpr int kSeasonBase = 1900;  // short seasons are stored as the year less 1900
constexpr int kFurtherSeasons = 4; // that files may name

constexpr std::array<DatabaseFile, 4> kDatabases{{{files::kModuleData, "modules", true},
                                                  {files::kFarmData, "farm32", false},
                                                  {files::kWageData, "wage32", false},
                                                  {files::kDiaryData, "diary", false}}};

std::string_view HelpFileOf(std::int32_t moduleNumber) {
    switch (moduleNumber) {
    case kBusinessEdition:
        return files::kMoneyHelp;
    case kClubEdition:
        return files::kClubHelp;
    case kDiaryEdition:
        return files::kDiaryHelp;
    default:
        return files::kFarmHelp;
    }
}

Placeholders ValuesFor(const InstallationOptions& options) {
    const CountryWords words = WordsOf(options.country);
    Placeholders values{{"country", std::to_string(options.country)},
                        {"language", std::string(words.language)},
                        {"paye", options.country == kAustralia ? "PAYG" : "PAYE"},
                        {"taxoffice", std::string(words.taxOffice)},
                        {"modulenumber", std::to_string(options.moduleNumber)},
                        {"modulekey", options.moduleKey},
                        {"programpath", ""},
                        {"helpfile", std::string(HelpFileOf(options.moduleNumber))}};
    for (int year = 0; year <= kFurtherSeasons; ++year) {
        const std::string tail = year == 0 ? "" : "+" + std::to_string(year);
        values["season" + tail] = std::to_string(options.season + year);
        values["shortseason" + tail] = std::to_string(options.season + year - kSeasonBase);
    }
    return values;
}

// The folders of the data folder that make up a level, in the order of loading.
std::vector<fs::path> LevelFolders(const InstallationOptions& options) {
    const fs::path share = ShareFolder();
    std::vector<fs::path> folders{share / "catalogue"};
    switch (options.level) {
    case InstallationLevel::Empty:
        break;
    case InstallationLevel::Minimal:
        folders.push_back(share / "minimal");
        break;
    case InstallationLevel::New:
    case InstallationLevel::Sample:
        folders.push_back(share / "base");
        folders.push_back(share / "countries" / std::to_string(options.country));
        if (options.level == InstallationLevel::Sample) {
            folders.push_back(share / "sample");
        }
        break;
    }
    return folders;
}

class Templates {
public:
    ~Templates() {
        std::error_code none;
        if (!folder_.empty()) {
            fs::remove_all(folder_, none);
        }
    }

    fs::path Database(const InstallationOptions& options, const DatabaseFile& file) {
        // The program path alone differs between installations of one kind; it is set after copying.
        const std::string kind =
            std::to_string(static_cast<int>(options.level)) + "-" + std::to_string(options.country) + "-" +
            std::to_string(options.season) + "-" +
            (file.shared ? std::to_string(options.moduleNumber) + "-" + options.moduleKey : "") + "-" +
            std::string(file.name);
        auto& path = made_[kind];
        if (path.empty()) {
            path = Make(options, file);
        }
        return path;
    }

private:
    fs::path Make(const InstallationOptions& options, const DatabaseFile& file) {
        if (folder_.empty()) {
            std::error_code none;
            const fs::path temp = fs::temp_directory_path(none);
            std::string pattern = ((temp.empty() ? fs::path("/tmp") : temp) / "quillary-XXXXXX").string();
            if (::mkdtemp(pattern.data()) == nullptr) {
                throw runtime::RunTimeError(kErrPathAccess, "",
                                            "Path/File access error: " + pattern + ": " +
                                                std::generic_category().message(errno));
            }
            folder_ = pattern;
        }
        fs::path path = folder_ / (std::to_string(made_.size()) + "-" + std::string(file.name));
        std::error_code none;
        fs::remove(path, none); // left by a failed attempt
        const auto engine = database::CreateSqliteEngine();
        const auto database = engine->CreateDatabase(path.string());
        const Placeholders values = ValuesFor(options);
        LoadFile(*database, ShareFolder() / "schema" / (std::string(file.folder) + ".sql"), values);
        for (const fs::path& level : LevelFolders(options)) {
            LoadFolder(*database, level / file.folder, values);
        }
        database->Close();
        engine->ReleaseIdle();
        return path;
    }

    fs::path folder_;
    std::map<std::string, fs::path> made_;
};

} // namespace

const std::array<DatabaseFile, 4>& InstallationDatabases() {
    return kDatabases;
}

fs::path TemplateOf(const InstallationOptions& options, const DatabaseFile& file) {
    static Templates templates;
    return templates.Database(options, file);
}

} // namespace quillary::config
