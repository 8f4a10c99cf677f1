#pragma once

#include <array>
#include <filesystem>
#include <string_view>

// Databases made once in a process and copied from then on: a run of scenarios makes hundreds of
// installations. They lie in a folder that goes with the process.
namespace quillary::config {

struct InstallationOptions;

struct DatabaseFile {
    std::string_view name;
    std::string_view folder; // its scripts' folder within each level of the data folder
    bool shared;             // lies in the common folder
};

const std::array<DatabaseFile, 4>& InstallationDatabases();

// options: settled, with country, season and key. The program path of the module catalogue is left empty.
std::filesystem::path TemplateOf(const InstallationOptions& options, const DatabaseFile& file);

} // namespace quillary::config
