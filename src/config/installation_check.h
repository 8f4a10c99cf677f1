#pragma once

#include "config/installation.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillary::config {

// Where the files of an installation lie (of either layout), as its ini file tells.
struct InstallationFiles {
    std::filesystem::path ini; // in the common folder
    std::filesystem::path modules, farm, wages, diary;
};
InstallationFiles FilesOfInstallation(const std::filesystem::path& folder);
// By a new ini file.
InstallationFiles UsualFiles(const InstallationLayout& layout);
// Where files that are to be made belong: as the ini file tells where there is one and its folders exist,
// else at the usual places.
InstallationFiles PlacesFor(const InstallationLayout& layout);

struct FileCheck {
    std::filesystem::path file;
    std::vector<std::string> problems; // empty: the file is whole
};

// Opens the ini file and every database of the installation in a folder (of either layout) and compares
// the databases with the schema: tables, fields with their types and widths, unique keys, saved queries.
// Changes nothing. Faults of the files are told, not raised.
std::vector<FileCheck> CheckInstallation(const std::filesystem::path& folder);

} // namespace quillary::config
