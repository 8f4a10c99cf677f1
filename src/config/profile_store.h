#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The suite's one ini file, the folders that it lies in and names, and the log of what it lacks. Nothing
// is cached: other modules change the file at any time, and each read sees the moment.
namespace quillary::config {

// Quillary.ini in the common folder; the bare name when there is none.
std::string GetSuiteIniPath();

// The value, "" when absent. An absent section or key leaves a line in the error log.
std::string GetProfileValue(std::string_view section, std::string_view key, std::string_view file);
// A key of the suite's ini file. Never fails: what goes wrong reads as "".
std::string GetSuiteValue(std::string_view section, std::string_view key);
// A value as a number: nullopt for a text that is none, or too large for 32 bits.
std::optional<std::int32_t> ValueAsLong(const std::string& value);

// A file that cannot be written is passed over in silence.
void WriteProfileValue(std::string_view section, std::string_view key, std::string_view value,
                       std::string_view file);
void WriteSuiteValue(std::string_view section, std::string_view key, std::string_view value);

// What the log goes by: stricter than the reader, see the .cpp file.
bool SectionExists(std::string_view file, std::string_view section);
bool KeyExists(std::string_view file, std::string_view section, std::string_view key);
bool LineHasEquals(std::string_view line);
bool IsSectionLine(std::string_view line);

// Date and time, a tab, the message: one line, at most once a process. Never fails.
void AppendErrorLog(std::string_view message);

// Folders and files, without a separator at the end. Not checked for being there.
std::string GetProgramDirectory();
std::string GetCommonDocuments();
std::string GetCommonDirectory();
std::string GetDataRoot();
std::string GetDataFileName();
std::string GetFirm();

} // namespace quillary::config
