#include "import_job.h"
#include "import_progress.h"
#include "replacing.h"

#include "common/restore_points.h"
#include "jet_import/importer.h"
#include "jet_import/jet_reader.h"
#include "platform/database/bulk_load.h"
#include "platform/runtime/run_time_error.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace quillary::tools {

namespace fs = std::filesystem;
using jet_import::ImportReport;
using runtime::RunTimeError;

namespace {

constexpr int kErrFileExists = 3204;
constexpr int kErrPathAccess = 75;
constexpr const char* kUnchanged = "Nothing has been changed.";

ImportReport ImportFile(const ImportJob::File& file, int codePage) {
    const std::string name = file.source.filename().string();
    try {
        const auto source = jet_import::OpenJetFile(file.source.string(), codePage);
        database::BulkLoad target(file.part.string());
        ImportProgress progress(name);
        return jet_import::Import(*source, target,
                                  [&](const std::string& table, std::int64_t rows, std::int64_t total) {
                                      progress.Show(table, rows, total);
                                  });
    } catch (const RunTimeError& error) {
        throw WithAdvice({error.Number(), error.Source(), file.source.string() + ": " + error.Description()},
                         kUnchanged);
    }
}

void HoldBackEnds() {
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : kEndSignals) {
        sigaddset(&ends, signal);
    }
    sigprocmask(SIG_BLOCK, &ends, nullptr);
}

void SyncFolder(const fs::path& folder) {
    const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        fsync(handle);
        close(handle);
    }
}

// False where the target has come into being meanwhile, by another import or program.
bool MoveToFreePlace(const ImportJob::File& file) {
    if (renameat2(AT_FDCWD, file.part.c_str(), AT_FDCWD, file.target.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    std::error_code error(errno, std::generic_category());
    if (error == std::errc::invalid_argument) { // a file system that knows no such move
        fs::create_hard_link(file.part, file.target, error);
        if (error && error != std::errc::file_exists) {
            error.clear();
            if (fs::exists(fs::symlink_status(file.target))) {
                return false;
            }
            fs::rename(file.part, file.target, error);
        } else if (!error) {
            fs::remove(file.part, error);
        }
    }
    if (error && error != std::errc::file_exists) {
        throw RunTimeError(kErrPathAccess, "",
                           "Path/File access error: " + file.target.string() + ": " + error.message());
    }
    return !error;
}

void ReplaceOld(const ImportJob& job, const std::vector<database::RestoredFile>& replaced) {
    const fs::path points = common::RestorePointFolder(job.installation ? job.layout.common : job.into);
    const std::string point = ReplaceAndKeep(points, "Before an import", replaced);
    std::cout << "kept what was there: " << (points / point).string() << "\n";
    std::error_code none;
    for (const auto& file : replaced) {
        fs::remove(file.copy, none);
    }
}

// All or, where one of those that are replaced is in use or a place has been taken meanwhile, none.
void PutInPlace(const ImportJob& job) {
    std::vector<database::RestoredFile> replaced;
    std::vector<const ImportJob::File*> moved;
    try {
        for (const auto& file : job.files) {
            if (job.replace && fs::exists(file.target)) {
                replaced.push_back({file.target.string(), file.part.string()});
            } else if (MoveToFreePlace(file)) {
                moved.push_back(&file);
            } else {
                RaiseTargetExists(file.target);
            }
        }
        if (!replaced.empty()) {
            ReplaceOld(job, replaced);
        }
    } catch (const RunTimeError&) {
        for (const auto* file : moved) {
            std::error_code none;
            fs::rename(file->target, file->part, none);
        }
        throw;
    }
    for (const auto& file : job.files) {
        SyncFolder(file.target.parent_path());
    }
}

void PrintTables(const ImportJob::File& file, const ImportReport& report) {
    constexpr int kNumberWidth = 10;
    std::cout << "\n" << file.target.string() << "\n";
    std::cout << std::setw(kNumberWidth) << "read" << std::setw(kNumberWidth) << "written"
              << "  table\n";
    std::int64_t rows = 0;
    for (const auto& table : report.tables) {
        std::cout << std::setw(kNumberWidth) << table.read << std::setw(kNumberWidth) << table.written << "  "
                  << table.name << "\n";
        rows += table.written;
    }
    std::cout << "  " << report.tables.size() << " tables, " << rows << " rows, " << report.indexes
              << " indexes, " << report.relations << " relations, " << report.queries << " saved queries\n";
}

void PrintList(const std::string& heading, const std::vector<std::string>& lines) {
    if (lines.empty()) {
        return;
    }
    std::cout << "\n" << heading << "\n";
    for (const std::string& line : lines) {
        std::cout << "  " << line << "\n";
    }
}

} // namespace

void RaiseTargetExists(const fs::path& target) {
    throw RunTimeError(kErrFileExists, "",
                       "Database '" + target.string() +
                           "' already exists. With --replace the new one takes its place, and the old one is "
                           "kept as a restore point.");
}

int RunImport(const ImportJob& job) {
    std::vector<ImportReport> reports;
    for (const auto& file : job.files) {
        reports.push_back(ImportFile(file, job.codePage));
    }
    std::vector<std::string> completed;
    try {
        if (job.installation) {
            CompleteDatabases(job, completed);
        }
    } catch (const RunTimeError& error) {
        throw WithAdvice(error, kUnchanged);
    }
    std::vector<std::string> notes, losses;
    // From here on an end from outside comes too late: all files are put in place, and what goes with them.
    HoldBackEnds();
    PutInPlace(job);
    if (job.installation) {
        try {
            CompleteFolders(job, completed);
        } catch (const RunTimeError& error) {
            losses.push_back("the databases are in place, but the installation is not whole yet: " +
                             WithAdvice(error, "When that is mended, run the same command again with "
                                               "--replace.")
                                 .Description());
        }
    }
    for (std::size_t i = 0; i < job.files.size(); ++i) {
        PrintTables(job.files[i], reports[i]);
        const std::string name = job.files[i].source.filename().string() + ": ";
        for (const auto& note : reports[i].notes) {
            notes.push_back(name + note);
        }
        for (const auto& loss : reports[i].losses) {
            losses.push_back(name + loss);
        }
    }
    PrintList("Added to make the installation whole:", completed);
    PrintList("Carried, though not quite as it was:", notes);
    if (job.installation) {
        const auto problems = RemainingProblems(job);
        losses.insert(losses.end(), problems.begin(), problems.end());
    }
    PrintList("Not carried:", losses);
    std::cout << (losses.empty() ? "\nEverything has come across.\n"
                                 : "\nNot everything has come across; see the list above.\n");
    return losses.empty() ? kImportWhole : kImportWithLosses;
}

} // namespace quillary::tools
