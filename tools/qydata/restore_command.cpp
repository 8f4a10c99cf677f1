#include "commands.h"

#include "common/restore_points.h"
#include "config/installation_check.h"
#include "platform/database/errors.h"
#include "platform/runtime/run_time_error.h"

#include <filesystem>
#include <iostream>

namespace quillary::tools {

namespace {

namespace fs = std::filesystem;
using common::RestorePoint;

void Print(const std::vector<RestorePoint>& points) {
    int number = 0;
    for (const RestorePoint& point : points) {
        std::cout << ++number << "  " << point.folder.filename().string() << "  (";
        const char* separator = "";
        for (const fs::path& file : point.files) {
            std::cout << separator << file.filename().string();
            separator = ", ";
        }
        std::cout << ")\n";
    }
}

// By the number of the list or by the name; nullptr for neither.
const RestorePoint* Find(const std::vector<RestorePoint>& points, const std::string& word) {
    std::size_t number = 0;
    for (const RestorePoint& point : points) {
        if (word == std::to_string(++number) || word == point.folder.filename().string()) {
            return &point;
        }
    }
    return nullptr;
}

int Restore(const config::InstallationFiles& files, const RestorePoint& point) {
    const std::vector<fs::path> copied =
        common::CopiedDatabases(point, {files.farm, files.diary, files.wages, files.modules});
    std::vector<std::string> replaced;
    replaced.reserve(copied.size());
    for (const fs::path& path : copied) {
        replaced.push_back(path.string());
    }
    const fs::path points = point.folder.parent_path();
    std::string before;
    try {
        before = common::CreateRestorePoint(points, "Before bringing back", replaced);
    } catch (const runtime::RunTimeError& error) {
        throw runtime::RunTimeError(error.Number(), error.Source(),
                                    error.Description() +
                                        " Nothing has been changed. If the file is damaged, "
                                        "move it elsewhere and try again.");
    }
    try {
        common::BringBack(point, copied, before.empty() ? fs::path() : points / before);
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() != database::kErrFileInUse) {
            throw;
        }
        throw runtime::RunTimeError(
            error.Number(), error.Source(),
            error.Description() +
                " Close all programs of the suite and try again; nothing has been changed.");
    }
    for (const std::string& path : replaced) {
        std::cout << "brought back " << path << "\n";
    }
    if (!before.empty()) {
        std::cout << "what it held before: " << before << "\n";
    }
    common::DropOldRestorePoints(points, before);
    return 0;
}

} // namespace

int RestoreCommand(const Words& words) {
    for (const std::string& word : words) {
        if (word.starts_with("-") && word.size() > 1) {
            return WrongUse("unknown option '" + word + "'");
        }
    }
    if (words.empty() || words[0].empty()) {
        return WrongUse("no folder given");
    }
    if (words.size() > 2) {
        return WrongUse("more than one restore point given; put quotes around its name");
    }
    const config::InstallationFiles files = config::FilesOfInstallation(words[0]);
    const fs::path folder = common::RestorePointFolder(files.ini.parent_path());
    const std::vector<RestorePoint> points = common::ListRestorePoints(folder);
    if (words.size() == 1) {
        Print(points);
        if (points.empty()) {
            std::cout << "no restore points in " << folder.string() << "\n";
        }
        return 0;
    }
    const RestorePoint* point = Find(points, words[1]);
    if (point == nullptr) {
        std::cerr << "qydata: no restore point '" << words[1] << "' in " << folder.string() << "\n";
        return 1;
    }
    return Restore(files, *point);
}

} // namespace quillary::tools
