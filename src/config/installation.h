#pragma once

#include "config/globals.h"
#include "config/tokens.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Making an installation from the files of the data folder: ini file, databases, program folder. For
// qydata and for the scenario driver.
namespace quillary::config {

enum class InstallationLevel {
    Empty,   // all tables and saved queries, no rows; an ini file that names the folders alone
    Minimal, // and the few rows of a test farm
    New,     // what every new farm, business or club starts with
    Sample,  // the sample farm, in New Zealand, season 2026
};

// Native paths of the folders.
struct InstallationLayout {
    std::filesystem::path common;  // Quillary.ini, Modules.mdb, QYErrors.log
    std::filesystem::path data;    // Farm32.mdb, Wage32.mdb, Diary.mdb
    std::filesystem::path program; // pictures, Resources, Help
};
// Below a folder of common documents, where the program looks by itself.
InstallationLayout DocumentsLayout(const std::filesystem::path& folder);
// common, data and program side by side, as the scenarios tell.
InstallationLayout ScenarioLayout(const std::filesystem::path& folder);

struct InstallationOptions {
    InstallationLayout layout;
    InstallationLevel level = InstallationLevel::New;
    std::int32_t moduleNumber = kFarmEdition; // what the module catalogue answers
    std::string moduleKey;                    // "": the edition's own
    std::int32_t country = kNewZealand;       // level New: one of the four
    int season = 0;                           // level New: four digits; 0: the present year
};

// "" for a number that is no edition.
std::string_view EditionKey(std::int32_t moduleNumber);
bool IsSupportedCountry(std::int32_t country);

// Files with what was done to each, in the order of making.
struct InstallationReport {
    std::vector<std::filesystem::path> made;
    std::vector<std::filesystem::path> kept; // was there already, nothing in it has changed
};

// Makes what is not there. No database and no ini file is ever overwritten; pictures and help pages are
// brought up to date. A database appears whole or not at all. Raises 53 when the data folder is not
// found, 75 when a folder or file cannot be made, and the engine's errors.
InstallationReport MakeInstallation(const InstallationOptions& options);

// The folder of the files that the program ships (schema, base, help, ...): $QUILLARY_SHARE, share/quillary
// beside the folder of this program. 53 when there is none.
std::filesystem::path ShareFolder();

} // namespace quillary::config
