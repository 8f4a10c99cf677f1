#pragma once

#include "platform/database/sqlite/connection.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

// The connections of the process, one for each file, kept open when nobody uses them.
//
// One for the whole process, since locks on a file belong to the process: a second open of the same file
// beside SQLite's own would lose them.
namespace quillary::database::sqlite {

// 3024 missing, 3051 a directory or unreadable, 3343 no database or a damaged one, 3045 locked. A file
// that is refused is left as it is, and nothing is made beside it.
std::shared_ptr<Connection> OpenConnection(const std::string& path);

// 3204 when something is there already, 3044 when its folder is not.
std::shared_ptr<Connection> CreateFile(const std::string& path);

// 3024, 3204.
void CopyFile(const std::string& path, const std::string& target);

// The native path of a path as the program gives it; by default the same.
std::string NativePath(std::string_view path);
void SetNativePath(std::function<std::string(std::string_view)> resolver);

// Closes the connections that nobody uses.
void CloseIdleConnections();

} // namespace quillary::database::sqlite
