#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillary::database {

// What is broken within a database file, in words; empty when all is well. Reads every page and every
// index, and follows the relations. path: native. Raises what OpenDatabase raises for a file that cannot
// be opened.
std::vector<std::string> CheckIntegrity(std::string_view path);

} // namespace quillary::database
