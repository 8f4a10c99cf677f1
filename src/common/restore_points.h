#pragma once

#include "platform/database/restore.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// The safety net under the cascades that delete: copies of the databases from before, in a folder for each
// such moment, called by its time and its cause, below the folder Backup of the common folder.
namespace quillary::common {

inline constexpr std::size_t kMostRestorePoints = 20;

// Copies the databases before an action that deletes. Asks and tells nothing; a failure is reported under
// "MakeRestorePoint" and the program goes on: the user's action is worth more than the net below it. A
// database that is missing is left out, for the action to tell. cause: a few words, "Deleting Ewes".
// databases: paths as the settings give them. Points beyond the newest kMostRestorePoints are deleted.
void MakeRestorePoint(std::string_view cause, const std::vector<std::string>& databases);

struct RestorePoint {
    std::filesystem::path folder; // its name is the point's: "2008-08-15 09.30.00 Deleting Ewes"
    std::vector<std::filesystem::path> files;
};

// The folder of the points of a common folder.
std::filesystem::path RestorePointFolder(const std::filesystem::path& commonFolder);

// The same as MakeRestorePoint, in a folder of points of one's own choice; nothing is deleted. Gives the
// point's name, "" when no database was there. Raises what went wrong: 75 for folders, else the engine's
// numbers.
std::string CreateRestorePoint(const std::filesystem::path& points, std::string_view cause,
                               const std::vector<std::string>& databases);

// Newest first; what is no restore point is passed over.
std::vector<RestorePoint> ListRestorePoints(const std::filesystem::path& points);
// Deletes the points beyond the newest kMostRestorePoints. made: the point of this moment, which stays even
// where a clock that was once set ahead makes it look the oldest.
void DropOldRestorePoints(const std::filesystem::path& points, std::string_view made);

// The point's files, each with the database that it is a copy of, by their names. 53 when one has no
// counterpart.
std::vector<database::RestoredFile> CopiedDatabases(const RestorePoint& point,
                                                    const std::vector<std::filesystem::path>& databases);

// Puts copies in place of databases: all or, where one is in use (3045), none. before: the point just made of
// what the databases hold, if any. It goes again where nothing has been changed; where it came to an end half
// way (a full disk) it stays, and the error's text names it.
void ReplaceDatabases(const std::vector<database::RestoredFile>& files,
                      const std::filesystem::path& before = {});

} // namespace quillary::common
