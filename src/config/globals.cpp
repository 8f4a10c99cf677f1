#include "config/globals.h"

#include "platform/runtime/locale.h"

namespace quillary::config {

namespace {

constexpr std::size_t kFrameNameSize = 25;
constexpr std::size_t kFrameKeySize = 1;

} // namespace

FrameRecord MakeFrameRecord(std::string_view name, std::string_view key, std::int16_t frame) {
    return {std::string(runtime::LeftChars(name, kFrameNameSize)),
            std::string(runtime::LeftChars(key, kFrameKeySize)), frame};
}

void ResetGlobals() {
    gDatabase.reset();
    gFrames.clear();
    gModuleID = 0;
    gModuleKey.clear();
    gShellLaunch = gHasTaxTypes = gUnsortedStock = false;
    gHelpFile.clear();
    gFormContextID = gHowDoIContextID = 0;
    gHelpOpen = false;
    gHeadingColour = {};
    gTitleColour = 0;
    gHeadingsLoaded = gEnterprisesLoaded = gDeductionsLoaded = gContributionsLoaded = gGSTLoaded = false;
    gHeadingsChanged = false;
    gMaxEnterpriseCode = 0;
    gSeasonMin = gSeasonMax = 0;
    gDebugChecked = SetUpInfoFailed = false;
    gCurrentAction.clear();
    gLaunchTarget.clear();
    gErrorLogFile = 0;
}

} // namespace quillary::config
