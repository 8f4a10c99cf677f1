#pragma once

#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/panel.h"
#include "platform/database/engine.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillary::common {

class Page;

// What a page needs of the screen that it stands on; a page knows no more of it.
class Screen {
public:
    virtual ~Screen() = default;

    virtual controls::Form& ScreenForm() = 0;
    // The one row of "Farm Details", shared by the pages, and the control of the budget starts.
    virtual controls::DataControl& FarmDetails() = 0;
    virtual controls::DataControl& BudgetStarts() = 0;
    // The name of the page now shown, without blanks at its end (GetCurrentTabName).
    virtual std::string CurrentTabName() = 0;
    // Validates and saves the page now shown, as leaving it by a tab does; False: it may not be left.
    virtual bool LeaveCurrentPage() = 0;
    // The page that a frame number of the Setup table stands for; nullptr for none.
    virtual Page* PageOf(int frame) = 0;
    // Gives a dialog the suite's look and its place on the screen: called in the dialog's Load.
    virtual void Decorate(controls::Form& dialog) = 0;
};

// What the save of a page works on.
struct SaveContext {
    controls::DataControl& dat_FarmDetails;
    controls::DataControl& dat_BgtStart;
    database::Database& db; // opened for this save alone
    int frame;              // the frame number under which the page is shown
    // The words for the "|n|" of "You must fill |0|.", which a refusing page fills.
    std::vector<std::string> tokens;
};

enum class SaveResult { Saved, Refused };

// A page of the configuration screen: it owns its controls and the event routines that belong to them.
class Page {
public:
    // The controls that the page's constructor makes lie in the panel, which the Designer file named
    // layout fills ("": the panel stays empty).
    Page(Screen& screen, controls::Panel& panel, std::string_view layout) : screen_(screen) {
        panel.Layout = std::string(layout);
        screen.ScreenForm().SetContainer(&panel);
    }
    virtual ~Page() = default;
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    // At each showing; guards itself where something is to be done once. frame may be changed (the GST page
    // falls back to its short frame).
    virtual void SetUp(int& /*frame*/) {}
    // This page's branch of the save that closes a page. Errors are the save's to tell.
    virtual SaveResult Save(SaveContext& /*context*/) { return SaveResult::Saved; }
    // Puts the focus on the first control when the page is brought forward.
    virtual void FocusFirst(int /*frame*/) {}

protected:
    Screen& screen_;
};

} // namespace quillary::common
