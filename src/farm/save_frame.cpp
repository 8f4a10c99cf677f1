#include "farm/save_frame.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/tokens.h"
#include "platform/database/errors.h"

#include <memory>

namespace quillary::farm {

namespace {

void ShowFault(const char* text, int number) {
    common::Message message(text, "An Error has Occurred");
    message.subHeading = "Error " + std::to_string(number);
    common::ShowMessage(message);
}

int FrameAt(int frameIndex) {
    if (frameIndex < 0 || frameIndex >= static_cast<int>(config::gFrames.size()))
        throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
    return config::gFrames[static_cast<std::size_t>(frameIndex)].Frame;
}

} // namespace

bool SaveFrame(common::Screen& screen, int frameIndex, bool closing) {
    bool mayLeave = true;
    std::vector<std::string> tokens;
    std::shared_ptr<database::Database> db; // closed on every path
    try {
        auto& dat_FarmDetails = screen.FarmDetails();
        dat_FarmDetails.UpdateRecord();
        db = config::DbEngine().OpenDatabase(config::GetDataFileName());

        const int frame = FrameAt(frameIndex);
        if (common::Page* page = screen.PageOf(frame)) {
            common::SaveContext context{dat_FarmDetails, screen.BudgetStarts(), *db, frame, {}};
            // A page that fails after it has refused stays refused.
            const auto keepRefusal = [&] {
                tokens = context.tokens;
                if (!tokens.empty())
                    mayLeave = false;
            };
            try {
                if (page->Save(context) == common::SaveResult::Refused)
                    mayLeave = false;
            } catch (const runtime::RunTimeError&) {
                keepRefusal();
                throw;
            }
            keepRefusal();
        }
        db->Flush();
    } catch (const runtime::RunTimeError& error) {
        // An error's own text stands in for the page's message.
        switch (error.Number()) {
        case kErrBoundValue:
            ShowFault("Invalid entry caused error while updating the database", error.Number());
            return false;
        case database::kErrUnknownTable:
            ShowFault("Query Missing!  Need to update your database", error.Number());
            return mayLeave;
        default:
            common::ReportError(error, "cmd_OK_Click_Error", "SETUP.FRM");
            return mayLeave;
        }
    }

    if (!mayLeave) {
        const std::string text = config::TranslateTokens("You must fill |0|.", tokens);
        if (closing)
            throw runtime::RunTimeError(kErrPageRefused, "ResetVars", text);
        common::ShowMessage(common::Message(text, "Input Required"));
    }
    return mayLeave;
}

} // namespace quillary::farm
