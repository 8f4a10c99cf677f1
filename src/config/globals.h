#pragma once

#include "platform/runtime/run_time_error.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillary::database {
class Database;
class Engine;
} // namespace quillary::database

// The global state of the program: all of it but what a page keeps for itself.
namespace quillary::config {

// Editions of the suite, as gModuleID holds them.
inline constexpr std::int32_t kBusinessEdition = 11;
inline constexpr std::int32_t kFarmEdition = 14;
inline constexpr std::int32_t kClubEdition = 16;
inline constexpr std::int32_t kDiaryEdition = 18;

struct FrameRecord {
    std::string Name; // at most 25 characters
    std::string Key;  // at most 1 character
    std::int16_t Frame = 0;
};
// Cuts name and key to their sizes.
FrameRecord MakeFrameRecord(std::string_view name, std::string_view key, std::int16_t frame);

struct Rgb {
    std::int32_t red = 0, green = 0, blue = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

inline std::shared_ptr<database::Database> gDatabase; // the main database, open as long as the screen lives
inline std::vector<FrameRecord> gFrames;              // the pages of this edition
inline std::int32_t gModuleID = 0;                    // the edition
inline std::string gModuleKey;
// The farm and diary editions own a map and an area.
inline bool HasMapAndArea() {
    return gModuleID == kFarmEdition || gModuleID == kDiaryEdition;
}
inline std::string gCommandTail;  // what stood behind the program's name
inline bool gShellLaunch = false; // "/TRUE" was given
inline bool gHasTaxTypes = false; // the main database has the table TaxTypes
inline bool gUnsortedStock = false;
inline std::string gHelpFile;            // the default help file
inline std::string gApplicationHelpFile; // the help file that F1 and the help menu open
inline std::string gProgramPath;         // as the catalogue tells it
inline std::int32_t gFormContextID = 0;
inline std::int32_t gHowDoIContextID = 0;
inline bool gHelpOpen = false;
inline Rgb gHeadingColour;
inline std::int32_t gTitleColour = 0; // red + 256 * green + 65536 * blue
inline bool gHeadingsLoaded = false;  // this page has been set up once; so the next four
inline bool gEnterprisesLoaded = false;
inline bool gDeductionsLoaded = false;
inline bool gContributionsLoaded = false;
inline bool gGSTLoaded = false;
inline bool gHeadingsChanged = false;       // a heading was edited since the Headings page was saved
inline std::int32_t gMaxEnterpriseCode = 0; // the highest code seen; new enterprises count on from it
inline std::int16_t gSeasonMin = 0;         // range of css_bgtseason
inline std::int16_t gSeasonMax = 0;
inline bool gDebugChecked = false;
inline std::string gCurrentAction; // label of the action under way, for error texts
// The Setup Information dialog, closing, could not store the tax office; nothing here reads it.
inline bool SetUpInfoFailed = false;
inline std::string gLaunchTarget;      // caption of the sibling tool's window
inline std::int16_t gErrorLogFile = 0; // 0 before the first log line of the process

// All of them as at the start of a process; closes gDatabase.
void ResetGlobals();

// The one engine of the process, made on first need.
database::Engine& DbEngine();

// Reads the edition from the module catalogue. Errors are raised again with the routine's label in front
// of their description.
void ReadmenuOptions();

// ReadmenuOptions for the screen: an error goes to `report` with the routine's name, and the program goes
// on with edition 0.
using ErrorReporter = std::function<void(const runtime::RunTimeError& error, std::string_view routine)>;
void LoadGlobalVars(const ErrorReporter& report);

} // namespace quillary::config
