#pragma once

#include "platform/runtime/variant.h"

#include <optional>
#include <string>
#include <string_view>

// Paths are text with "\" between folders, or native ones, or a mixture of both. Here they become native.
namespace quillary::system {

// The native path. A folder or file that is there under another case is found (exact case first). Never
// fails: what is not there is given back as it would be made.
std::string ToNative(std::string_view path);

// All tests follow links, and are False for an empty path and for what cannot be reached.
bool FileExists(std::string_view path); // a file, not a folder
bool FolderExists(std::string_view path);

// folder "\" name; no second separator where the folder ends in one.
std::string Join(std::string_view folder, std::string_view name);
// Behind and before the last separator of either kind.
std::string_view FileNameOf(std::string_view path);
std::string_view FolderOf(std::string_view path); // "" when the path is a bare name

// Local time of the last change; nullopt when the file is not there.
std::optional<runtime::Date> FileDate(std::string_view path);

// The whole file as UTF-8 without a byte order mark: a file that is no UTF-8 is read as Windows Latin.
// nullopt for what is no readable plain file.
std::optional<std::string> ReadTextFile(std::string_view path);
// The bytes of a plain file under its native path.
std::optional<std::string> ReadBytes(const std::string& native);

} // namespace quillary::system
