#include "commands.h"
#include "replacing.h"

#include "common/restore_points.h"
#include "config/installation_check.h"

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

// What a folder's points are of: the databases of an installation, or those that were imported into a plain
// folder.
struct Place {
    fs::path points;
    std::vector<fs::path> databases;
};

Place PlaceOf(const fs::path& folder) {
    const config::InstallationFiles files = config::FilesOfInstallation(folder);
    Place place{common::RestorePointFolder(files.ini.parent_path()),
                {files.farm, files.diary, files.wages, files.modules}};
    const fs::path own = common::RestorePointFolder(fs::absolute(folder).lexically_normal());
    if (fs::exists(place.points) || !fs::exists(own)) {
        return place;
    }
    place = {own, {}};
    for (const RestorePoint& point : common::ListRestorePoints(own)) {
        for (const fs::path& file : point.files) {
            place.databases.push_back(own.parent_path() / file.filename());
        }
    }
    return place;
}

int Restore(const Place& place, const RestorePoint& point) {
    const auto files = common::CopiedDatabases(point, place.databases);
    const std::string before = ReplaceAndKeep(place.points, "Before bringing back", files);
    for (const auto& file : files) {
        std::cout << "brought back " << file.path << "\n";
    }
    if (!before.empty()) {
        std::cout << "what it held before: " << before << "\n";
    }
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
    if (!fs::is_directory(words[0])) {
        std::cerr << "qydata: there is no folder '" << words[0] << "'\n";
        return 1;
    }
    const Place place = PlaceOf(words[0]);
    const std::vector<RestorePoint> points = common::ListRestorePoints(place.points);
    if (words.size() == 1) {
        Print(points);
        if (points.empty()) {
            std::cout << "no restore points in " << place.points.string() << "\n";
        }
        return 0;
    }
    const RestorePoint* point = Find(points, words[1]);
    if (point == nullptr) {
        std::cerr << "qydata: no restore point '" << words[1] << "' in " << place.points.string()
                  << "; without its name the command lists them\n";
        return 1;
    }
    return Restore(place, *point);
}

} // namespace quillary::tools
