#include "common/restore_points.h"

#include "common/error_report.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/suite_files.h"
#include "platform/database/engine.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace quillary::common {

namespace fs = std::filesystem;
using runtime::RunTimeError;

namespace {

constexpr int kErrPathAccess = 75;
constexpr std::string_view kTimePattern = "0000-00-00 00.00.00";
constexpr std::string_view kUnfinished = ".part";
constexpr std::size_t kLongestCause = 100; // bytes
constexpr int kMostPointsOfASecond = 99;

// "2008-08-15 09.30.00", and from the second point of a second on "2008-08-15 09.30.00-02": sorted as text
// the names come by age.
std::string TimeText(runtime::Date time, int count) {
    const runtime::DateParts parts = runtime::Split(time);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d.%02d.%02d", parts.year, parts.month,
                  parts.day, parts.hour, parts.minute, parts.second);
    std::string name = text.data();
    if (count > 1) {
        std::snprintf(text.data(), text.size(), "-%02d", count);
        name += text.data();
    }
    return name;
}

bool IsPointName(std::string_view name) {
    return name.size() >= kTimePattern.size() &&
           std::equal(kTimePattern.begin(), kTimePattern.end(), name.begin(), [](char pattern, char c) {
               return pattern == '0' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == pattern;
           });
}

// The cause as a part of a folder's name, on any file system.
std::string FileNamePart(std::string_view cause) {
    std::string part;
    for (const char c : cause) {
        const bool plain = static_cast<unsigned char>(c) >= ' ' &&
                           std::string_view("/\\:*?\"<>|").find(c) == std::string_view::npos;
        part += plain ? c : '_';
    }
    if (part.size() > kLongestCause) {
        std::size_t end = kLongestCause;
        while (end > 0 && (static_cast<unsigned char>(part[end]) & 0xC0) == 0x80) {
            --end; // within a character
        }
        part.resize(end);
    }
    while (!part.empty() && (part.back() == ' ' || part.back() == '.')) {
        part.pop_back();
    }
    return part;
}

[[noreturn]] void RaisePathError(const fs::path& path, const std::error_code& error) {
    throw RunTimeError(kErrPathAccess, "QYSettings", path.string() + ": " + error.message());
}

fs::path FreeName(const fs::path& points, std::string_view cause) {
    const runtime::Date now = runtime::Now();
    std::string words = FileNamePart(cause);
    if (!words.empty()) {
        words.insert(0, " ");
    }
    for (int count = 1; count <= kMostPointsOfASecond; ++count) {
        const std::string time = TimeText(now, count);
        std::error_code error;
        const bool taken = std::any_of(fs::directory_iterator(points, error), fs::directory_iterator(),
                                       [&](const fs::directory_entry& entry) {
                                           const std::string name = entry.path().filename().string();
                                           return name == time || name.starts_with(time + " ");
                                       });
        if (!taken) {
            return points / (time + words);
        }
    }
    throw RunTimeError(kErrPathAccess, "QYSettings",
                       points.string() + ": too many restore points in a second");
}

std::vector<fs::path> PointFolders(const fs::path& points) {
    std::vector<fs::path> folders;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(points, error)) {
        if (entry.is_directory(error) && IsPointName(entry.path().filename().string())) {
            folders.push_back(entry.path());
        }
    }
    std::sort(folders.begin(), folders.end(), std::greater<>());
    return folders;
}

bool IsUnfinished(const fs::path& folder) {
    return folder.filename().string().ends_with(kUnfinished);
}

} // namespace

fs::path RestorePointFolder(const fs::path& commonFolder) {
    return commonFolder / config::files::kRestorePointFolder;
}

std::string CreateRestorePoint(const fs::path& points, std::string_view cause,
                               const std::vector<std::string>& databases) {
    if (std::none_of(databases.begin(), databases.end(),
                     [](const std::string& path) { return system::FileExists(path); })) {
        return {};
    }
    std::error_code error;
    fs::create_directories(points, error);
    if (error) {
        RaisePathError(points, error);
    }
    const fs::path folder = FreeName(points, cause);
    // Under its name a point is whole.
    const fs::path part = folder.string() + std::string(kUnfinished);
    fs::remove_all(part, error);
    if (!fs::create_directory(part, error)) {
        RaisePathError(part, error);
    }
    try {
        for (const std::string& path : databases) {
            if (system::FileExists(path)) {
                const fs::path name = fs::path(system::ToNative(path)).filename();
                config::DbEngine().BackupDatabase(path, (part / name).string());
            }
        }
        fs::rename(part, folder, error);
        if (error) {
            RaisePathError(folder, error);
        }
    } catch (...) {
        fs::remove_all(part, error);
        throw;
    }
    return folder.filename().string();
}

void MakeRestorePoint(std::string_view cause, const std::vector<std::string>& databases) {
    Trap("MakeRestorePoint", [&] {
        const fs::path points = RestorePointFolder(system::ToNative(config::GetCommonDirectory()));
        DropOldRestorePoints(points, CreateRestorePoint(points, cause, databases));
    });
}

std::vector<RestorePoint> ListRestorePoints(const fs::path& points) {
    std::vector<RestorePoint> list;
    for (const fs::path& folder : PointFolders(points)) {
        if (IsUnfinished(folder)) {
            continue;
        }
        RestorePoint point{folder, {}};
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error)) {
            // A person who looked into a copy may have left a log beside it.
            const std::string ending = entry.path().extension().string();
            if (entry.is_regular_file(error) && !ending.ends_with("-wal") && !ending.ends_with("-shm")) {
                point.files.push_back(entry.path());
            }
        }
        std::sort(point.files.begin(), point.files.end());
        list.push_back(point);
    }
    return list;
}

void DropOldRestorePoints(const fs::path& points, std::string_view made) {
    std::size_t kept = made.empty() ? 0 : 1;
    for (const fs::path& folder : PointFolders(points)) {
        if (folder.filename().string() == made) {
            continue;
        }
        if (kept == kMostRestorePoints) {
            // One that was never finished goes by its age too: a young one may be another program's work.
            std::error_code error;
            fs::remove_all(folder, error);
            if (error) {
                RaisePathError(folder, error);
            }
        } else if (!IsUnfinished(folder)) {
            ++kept;
        }
    }
}

std::vector<database::RestoredFile> CopiedDatabases(const RestorePoint& point,
                                                    const std::vector<fs::path>& databases) {
    std::vector<database::RestoredFile> copied;
    for (const fs::path& copy : point.files) {
        const auto found = std::find_if(databases.begin(), databases.end(), [&](const fs::path& path) {
            return runtime::EqualName(path.filename().string(), copy.filename().string());
        });
        if (found == databases.end()) {
            throw RunTimeError(runtime::kErrFileNotFound, "QYSettings",
                               "The installation has no database called " + copy.filename().string() +
                                   "; nothing was brought back.");
        }
        copied.push_back({found->string(), copy.string()});
    }
    return copied;
}

void ReplaceDatabases(const std::vector<database::RestoredFile>& files, const fs::path& before) {
    bool begun = false;
    try {
        database::RestoreDatabases(files, &begun);
    } catch (const RunTimeError& error) {
        if (before.empty()) {
            throw;
        }
        if (begun) {
            throw RunTimeError(error.Number(), error.Source(),
                               error.Description() +
                                   " Not all has been replaced. What the databases held before is kept in " +
                                   before.string() + ".");
        }
        std::error_code none;
        fs::remove_all(before, none);
        throw;
    }
}

} // namespace quillary::common
