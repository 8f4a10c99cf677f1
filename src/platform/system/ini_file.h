#pragma once

#include <string>
#include <string_view>

// Ini files, with the habits of the old system's profile calls. A bare file name ("Quillary.ini") lies in
// Folders::ConfigHome(); any other path goes through ToNative.
namespace quillary::system {

// A value read is cut to this many characters.
inline constexpr std::size_t kProfileValueSize = 1023;

// The value of the first such key in the first such section; names are compared without case. Blanks
// around key and value go, and one pair of matching quotes around the value; lines that begin with ";"
// and lines without "=" are passed over. defaultValue when there is no such key, section or file.
// Never fails.
// "WIN.INI" holds the system's settings: without such a file, iCountry, sLanguage, sCountry and the
// formats of its section [intl] come from the regional settings.
std::string ReadProfileString(std::string_view section, std::string_view key, std::string_view defaultValue,
                              std::string_view file);

// Sets the key, makes section and file where they are missing; every other line stays as it is, with its
// line end. The file is replaced as a whole or not at all, a link stays a link. False, with nothing
// changed, when the file or its folder is read-only or missing, or the text holds a line end.
bool WriteProfileString(std::string_view section, std::string_view key, std::string_view value,
                        std::string_view file);

} // namespace quillary::system
