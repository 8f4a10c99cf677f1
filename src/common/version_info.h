#pragma once

#include <string>
#include <string_view>

// The version data of a file, as words. The program's own version: platform/system/program_version.h.
namespace quillary::common {

// Of the file last read; empty when it had none.
inline std::string gFileVersionShort; // major "." minor
inline std::string gFileVersion;      // four parts
inline std::string gProductVersion;   // four parts
inline std::string gFileFlags;        // "Debug PreRel "; empty without a flag
inline std::string gFileOS;
inline std::string gFileType; // for a driver with its sub-type

// Fills the texts above and returns gFileVersion. A file without version data: a message, and "".
std::string GetFileVersionInfo(std::string_view path);

} // namespace quillary::common
