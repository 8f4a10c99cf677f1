#include "replacing.h"

#include "common/restore_points.h"
#include "platform/database/errors.h"

#include <system_error>

namespace quillary::tools {

namespace fs = std::filesystem;
using runtime::RunTimeError;

RunTimeError WithAdvice(const RunTimeError& error, const std::string& advice) {
    const std::string& text = error.Description();
    return {error.Number(), error.Source(), text + (text.ends_with(".") ? " " : ". ") + advice};
}

std::string ReplaceAndKeep(const fs::path& points, std::string_view cause,
                           const std::vector<database::RestoredFile>& files) {
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const database::RestoredFile& file : files) {
        paths.push_back(file.path);
    }
    std::string before;
    std::error_code none;
    try {
        before = common::CreateRestorePoint(points, cause, paths);
    } catch (const RunTimeError& error) {
        fs::remove(points, none); // empty where it was made for this
        throw WithAdvice(error,
                         "Nothing has been changed. If the file is damaged or of another kind, move it "
                         "elsewhere and try again.");
    }
    try {
        common::ReplaceDatabases(files, before.empty() ? fs::path() : points / before);
    } catch (const RunTimeError& error) {
        fs::remove(points, none);
        if (error.Number() != database::kErrFileInUse) {
            throw;
        }
        throw WithAdvice(error, "Close all programs of the suite and try again; nothing has been changed.");
    }
    common::DropOldRestorePoints(points, before);
    return before;
}

} // namespace quillary::tools
