#pragma once

#include "config/installation.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// An installation whose databases and settings were brought along from another machine.
namespace quillary::config {

// Adds the tables, fields and saved queries that every installation has and this database lacks; new tables
// get the rows of a new installation's module catalogue. file: the database's name in an installation
// ("Farm32.mdb"); another one is left alone. The catalogue answers the edition of the options where it is
// new or editionGiven is set. The result: what was added, in words.
std::vector<std::string> CompleteDatabase(const std::filesystem::path& path, std::string_view file,
                                          const InstallationOptions& options, bool editionGiven);

// Writes the settings file of the layout from the one of the other machine: all sections and keys stay, the
// folders and files in the values become those of the layout. 75 when it cannot be written.
void TakeOverSettings(const std::filesystem::path& from, const InstallationLayout& layout);

} // namespace quillary::config
