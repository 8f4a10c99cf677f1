#include "config/installation.h"

#include "config/data_loader.h"
#include "config/database_templates.h"
#include "config/installation_check.h"
#include "config/installation_settings.h"
#include "config/suite_files.h"
#include "platform/database/engine.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/machine.h"
#include "platform/system/services.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>

namespace quillary::config {

namespace fs = std::filesystem;
using runtime::RunTimeError;

namespace {

constexpr int kErrPathAccess = 75;

void Check(const std::error_code& error, const fs::path& path) {
    if (error) {
        throw RunTimeError(kErrPathAccess, "",
                           "Path/File access error: " + path.string() + ": " + error.message());
    }
}

void MakeFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    Check(error, folder);
}

// Makes a file under another name first, so that it appears whole or not at all.
void MakeWhole(const fs::path& path, const std::function<void(const fs::path& part)>& make) {
    const fs::path part = path.string() + ".part";
    std::error_code error;
    try {
        make(part);
        fs::rename(part, path, error);
        Check(error, path);
    } catch (...) {
        for (const char* ending : {"", "-wal", "-shm"}) {
            fs::remove(part.string() + ending, error);
        }
        throw;
    }
}

void CopyDatabase(const fs::path& from, const fs::path& to, const InstallationOptions& options, bool shared) {
    MakeWhole(to, [&](const fs::path& part) {
        std::error_code error, none;
        fs::copy_file(from, part, fs::copy_options::overwrite_existing, error);
        // The copying itself tells a full disk as a fault of the disk.
        if (error == std::errc::io_error &&
            fs::space(part.parent_path(), none).available < fs::file_size(from)) {
            error = std::make_error_code(std::errc::no_space_on_device);
        }
        Check(error, part);
        if (shared) {
            const auto engine = database::CreateSqliteEngine();
            const auto database = engine->OpenDatabase(part.string());
            RunScript(*database, "UPDATE [Catalogue] SET [ProgramPath] = '{path}';",
                      {{"path", options.layout.program.string()}});
            database->Close();
            engine->ReleaseIdle();
        }
    });
}

void WriteIni(const fs::path& path, const InstallationOptions& options) {
    MakeWhole(path, [&](const fs::path& part) {
        std::ofstream file(part, std::ios::binary);
        file << IniText(options);
        file.close();
        if (!file) {
            throw RunTimeError(kErrPathAccess, "", "Path/File access error: " + path.string());
        }
    });
}

// Pictures and help pages: not the user's, so newer ones take the place of older ones.
void CopyTree(const fs::path& from, const fs::path& to, const std::vector<std::string_view>& without) {
    MakeFolder(to);
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(from, error)) {
        const std::string name = entry.path().filename().string();
        if (std::find(without.begin(), without.end(), name) != without.end()) {
            continue;
        }
        fs::copy(entry.path(), to / name, fs::copy_options::recursive | fs::copy_options::update_existing,
                 error);
        Check(error, to / name);
    }
    Check(error, from);
}

void MakeProgramFolder(const fs::path& program) {
    const fs::path share = ShareFolder();
    CopyTree(share / "resources" / "program", program, {});
    CopyTree(share / "resources", program / files::kResourceFolder, {"program", "svg"});
    CopyTree(share / "help", program / files::kHelpFolder, {});
}

InstallationOptions Settled(InstallationOptions options) {
    if (options.level == InstallationLevel::Sample) {
        options.country = kNewZealand;
        options.season = kSampleSeason;
    }
    if (options.season == 0) {
        options.season = runtime::Split(runtime::Today()).year;
    }
    if (options.moduleKey.empty()) {
        options.moduleKey = EditionKey(options.moduleNumber);
    }
    options.layout.common = fs::absolute(options.layout.common).lexically_normal();
    options.layout.data = fs::absolute(options.layout.data).lexically_normal();
    options.layout.program = fs::absolute(options.layout.program).lexically_normal();
    return options;
}

} // namespace

InstallationLayout DocumentsLayout(const fs::path& folder) {
    return {folder / "Quillary" / "Common", folder / "data", folder / "Quillary" / "Program"};
}

InstallationLayout ScenarioLayout(const fs::path& folder) {
    return {folder / "common", folder / "data", folder / "program"};
}

std::string_view EditionKey(std::int32_t moduleNumber) {
    switch (moduleNumber) {
    case kBusinessEdition:
        return "BUSINESS";
    case kFarmEdition:
        return "FARM";
    case kClubEdition:
        return "CB_WAGE_PAY";
    case kDiaryEdition:
        return "DIARY";
    default:
        return "";
    }
}

bool IsSupportedCountry(std::int32_t country) {
    return country == kNewZealand || country == kAustralia || country == kBrazil || country == kUruguay;
}

InstallationReport MakeInstallation(const InstallationOptions& given) {
    const InstallationOptions options = Settled(given);
    InstallationReport report;
    MakeFolder(options.layout.common);
    MakeFolder(options.layout.data);
    const InstallationFiles places = PlacesFor(options.layout);
    const fs::path paths[] = {places.modules, places.farm, places.wages, places.diary};
    for (std::size_t i = 0; i < std::size(paths); ++i) {
        const DatabaseFile& file = InstallationDatabases()[i];
        const fs::path& path = paths[i];
        if (fs::exists(path)) {
            report.kept.push_back(path);
            continue;
        }
        CopyDatabase(TemplateOf(options, file), path, options, file.shared);
        report.made.push_back(path);
    }
    MakeProgramFolder(options.layout.program);
    const fs::path ini = options.layout.common / files::kSuiteIni;
    if (fs::exists(ini)) {
        report.kept.push_back(ini);
    } else {
        WriteIni(ini, options);
        report.made.push_back(ini);
    }
    return report;
}

fs::path ShareFolder() {
    std::vector<fs::path> places;
    if (const char* share = std::getenv("QUILLARY_SHARE"); share != nullptr && *share != '\0') {
        places.emplace_back(share);
    }
    // The folder of this program; the services may name that of an installation, which the suite goes by.
    places.push_back(fs::path(system::MachineFolders()->ProgramFolder()) / ".." / "share" / "quillary");
    std::error_code none;
    for (const fs::path& place : places) {
        if (fs::is_directory(place / "schema", none)) {
            return place.lexically_normal();
        }
    }
    throw RunTimeError(runtime::kErrFileNotFound, "",
                       "The folder of the data files was not found; name it in QUILLARY_SHARE.");
}

} // namespace quillary::config
