#pragma once

#include "config/installation.h"

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// One call of `qydata import`.
namespace quillary::tools {

struct ImportJob {
    struct File {
        std::filesystem::path source;
        std::filesystem::path target;
        std::filesystem::path part; // beside the target, until all are whole
        std::string role;           // which database of an installation it is, by its usual name; "" another
    };
    std::vector<File> files;
    std::filesystem::path into;
    std::filesystem::path ini; // a settings file to take over, "" none
    bool installation = false; // the folder becomes, or is, a whole installation
    config::InstallationLayout layout;
    bool replace = false;
    int codePage = 0; // of the oldest files' text; 0: as they say
    std::optional<std::int32_t> edition, country;
};

inline constexpr int kImportWhole = 0;
inline constexpr int kImportFailed = 1;
inline constexpr int kImportWithLosses = 3;

// What ends the import from outside.
inline constexpr int kEndSignals[] = {SIGTERM, SIGINT, SIGHUP, SIGPIPE};

// 3204.
[[noreturn]] void RaiseTargetExists(const std::filesystem::path& target);

// Runs the job in a process of its own, so that neither a fault of the reading nor a kill leaves anything
// behind. The result is the exit status.
int RunGuarded(const ImportJob& job);

// The job itself; raises what went wrong, and then nothing has been put in place.
int RunImport(const ImportJob& job);

// Brings what the old installation kept elsewhere: before the databases are put in place, and behind it.
void CompleteDatabases(const ImportJob& job, std::vector<std::string>& added);
void CompleteFolders(const ImportJob& job, std::vector<std::string>& added);
// What `qydata check` still has to say.
std::vector<std::string> RemainingProblems(const ImportJob& job);

} // namespace quillary::tools
