#include "config/profile_store.h"

#include "config/globals.h"
#include "config/suite_files.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/ini_file.h"
#include "platform/system/paths.h"
#include "platform/system/services.h"

#include <fcntl.h>
#include <unistd.h>

namespace quillary::config {

namespace {

constexpr std::string_view kSuiteSection = "QUILLARY";

// The next line of a file; False at its end.
bool NextLine(std::string_view& rest, std::string_view& line) {
    if (rest.empty())
        return false;
    const std::size_t stop = std::min(rest.find_first_of("\r\n"), rest.size());
    line = rest.substr(0, stop);
    rest.remove_prefix(rest.substr(stop, 2) == "\r\n" ? stop + 2 : std::min(stop + 1, rest.size()));
    return true;
}

// A file is looked for where it is named: a bare name that only the profile calls resolve is not found.
std::string TextOfFile(std::string_view file) {
    return system::FileExists(file) ? system::ReadTextFile(file).value_or("") : std::string();
}

bool IsHeaderOf(std::string_view line, std::string_view section) {
    return line.size() == section.size() + 2 && IsSectionLine(line) &&
           line.substr(1, section.size()) == section;
}

std::string ValueOr(std::string value, std::string_view defaultValue) {
    return value.empty() ? std::string(defaultValue) : value;
}

} // namespace

std::string GetSuiteIniPath() {
    std::string path = system::Join(GetCommonDirectory(), files::kSuiteIni);
    return system::FileExists(path) ? path : std::string(files::kSuiteIni);
}

std::string GetProfileValue(std::string_view section, std::string_view key, std::string_view file) {
    const std::string context = "Section=" + std::string(section) + ", Key=" + std::string(key);
    const std::string upperSection = runtime::UCase(section);
    std::string value = system::ReadProfileString(upperSection, key, "", file);
    if (!SectionExists(file, upperSection)) {
        // Meant: "WIN.INI" has no path, so it is never found here and would be reported at each read.
        if (file != files::kSystemIni)
            AppendErrorLog("A section from " + std::string(file) + " is missing." + context);
        return value;
    }
    if (KeyExists(file, upperSection, key))
        return system::ReadProfileString(upperSection, key, "", file);
    // Meant: this key name is a probe, not a setting.
    if (!context.ends_with("Key=Invalid Index"))
        AppendErrorLog("A key from " + std::string(file) + " is missing." + context);
    return value;
}

std::string GetSuiteValue(std::string_view section, std::string_view key) {
    try {
        return GetProfileValue(section, key, GetSuiteIniPath());
    } catch (const runtime::RunTimeError&) {
        return {};
    }
}

std::optional<std::int32_t> ValueAsLong(const std::string& value) {
    try {
        if (runtime::IsNumeric(value))
            return runtime::CLng(value);
    } catch (const runtime::RunTimeError&) {
        // Too large: no number for a setting.
    }
    return std::nullopt;
}

void WriteProfileValue(std::string_view section, std::string_view key, std::string_view value,
                       std::string_view file) {
    // Meant: the section's name is written as given, so a new section need not be in upper case.
    system::WriteProfileString(section, key, value, file);
}

void WriteSuiteValue(std::string_view section, std::string_view key, std::string_view value) {
    WriteProfileValue(section, key, value, GetSuiteIniPath());
}

// Meant: the name counts by case here, though the reader finds it in any.
bool SectionExists(std::string_view file, std::string_view section) {
    const std::string text = TextOfFile(file);
    std::string_view rest = text, line;
    while (NextLine(rest, line)) {
        if (IsHeaderOf(line, section))
            return true;
    }
    return false;
}

bool KeyExists(std::string_view file, std::string_view section, std::string_view key) {
    if (!SectionExists(file, section))
        return false;
    const std::string text = TextOfFile(file);
    std::string_view rest = text, line;
    bool inSection = false;
    while (NextLine(rest, line)) {
        if (!inSection) {
            inSection = IsHeaderOf(line, section);
            continue;
        }
        if (LineHasEquals(line)) {
            // Meant: the start of the line counts, by case, so GSTRateOld=1 stands for the key GSTRate.
            if (line.starts_with(key))
                return true;
        } else if (IsSectionLine(line)) {
            break;
        }
    }
    return false;
}

bool LineHasEquals(std::string_view line) {
    return line.find('=') != std::string_view::npos;
}

bool IsSectionLine(std::string_view line) {
    return !line.empty() && line.front() == '[' && line.back() == ']';
}

void AppendErrorLog(std::string_view message) {
    // Meant: the number is never set back, so the first line of a process is its only one.
    if (gErrorLogFile != 0)
        return;
    gErrorLogFile = 1;
    std::string line;
    try {
        line = runtime::CStr(runtime::Now());
    } catch (const runtime::RunTimeError&) {
        return;
    }
    line.append("\t").append(message).append("\r\n");
    const std::string path = system::ToNative(system::Join(GetCommonDirectory(), files::kErrorLog));
    // Not blocking: a pipe under the log's name must not hold the program up.
    const int log = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, 0666);
    if (log < 0)
        return;
    const ssize_t written = ::write(log, line.data(), line.size());
    static_cast<void>(written); // a log that cannot be written is passed over
    ::close(log);
}

std::string GetProgramDirectory() {
    std::string folder = GetSuiteValue(kSuiteSection, "ProgramDirectory");
    return folder.empty() ? system::TheServices().folders->ProgramFolder() : folder;
}

std::string GetCommonDocuments() {
    return system::TheServices().folders->CommonDocuments();
}

std::string GetCommonDirectory() {
    return GetCommonDocuments() + "\\" + std::string(files::kCommonFolder);
}

std::string GetDataRoot() {
    return ValueOr(GetSuiteValue(kSuiteSection, "DataRoot"), GetCommonDocuments() + "\\data");
}

std::string GetDataFileName() {
    std::string name = GetSuiteValue(kSuiteSection, "DataFileName");
    return name.empty() ? GetDataRoot() + "\\" + std::string(files::kFarmData) : name;
}

std::string GetFirm() {
    return ValueOr(GetSuiteValue("START", "Firm"), "Quillary");
}

} // namespace quillary::config
