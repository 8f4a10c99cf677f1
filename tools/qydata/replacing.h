#pragma once

#include "platform/database/restore.h"
#include "platform/runtime/run_time_error.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Databases that take the place of others.
namespace quillary::tools {

// The error with a sentence behind its text.
runtime::RunTimeError WithAdvice(const runtime::RunTimeError& error, const std::string& advice);

// Keeps what the files hold as a restore point in the folder `points`, then puts the copies in their place:
// all or, where one is damaged or in use, none. An error says what to do. The result: the point's name, ""
// where none of the files was there.
std::string ReplaceAndKeep(const std::filesystem::path& points, std::string_view cause,
                           const std::vector<database::RestoredFile>& files);

} // namespace quillary::tools
