#pragma once

#include "platform/controls/control.h"
#include "platform/controls/form.h"
#include "platform/controls/form_host.h"
#include "platform/controls/grid.h"

#include <memory>
#include <string>
#include <string_view>

// Who carries out the gestures of a scenario. Every gesture moves the focus to its control first, where the
// control can take it.
namespace quillary::tools {

using controls::Outcome;

class Hand {
public:
    virtual ~Hand() = default;

    // What shows the forms while this hand plays. runModal plays on until the form is closed.
    virtual controls::FormHost& Host() = 0;

    virtual Outcome Focus(controls::Control& control) = 0;
    virtual Outcome TypeText(controls::Control& control, std::string_view text) = 0;
    virtual Outcome PressKey(controls::Control& control, std::string_view key) = 0;
    virtual Outcome Click(controls::Control& control) = 0;
    virtual Outcome Check(controls::Control& control, bool on) = 0;
    virtual Outcome Choose(controls::Control& control, int entry) = 0;
    virtual Outcome Pick(controls::Control& control, runtime::Date date) = 0;
    virtual Outcome Spin(controls::Control& control, bool up) = 0;
    virtual Outcome PickTab(controls::Control& control, int tab) = 0;
    virtual Outcome GoToRow(controls::Grid& grid, long row) = 0;
    virtual Outcome GoToNewRow(controls::Grid& grid) = 0;
    virtual Outcome EditCell(controls::Grid& grid, int col, std::string_view text) = 0;
    virtual Outcome MoveToColumn(controls::Grid& grid, int col) = 0;
    virtual Outcome ToggleCell(controls::Grid& grid, int col) = 0;
    virtual Outcome CommitRow(controls::Grid& grid) = 0;
    virtual Outcome DeleteRow(controls::Grid& grid) = 0;
    virtual Outcome Leave(controls::Form& form) = 0;
    virtual Outcome Close(controls::Form& form) = 0;

    // Lets what the gesture has set off come to its end, and raises an error that ended it.
    virtual void Settle() {}
};

// Called by a host's RunModal: plays commands until the form is no longer open.
using ModalPlay = std::function<void(controls::Form&)>;

std::unique_ptr<Hand> MakeDirectHand(ModalPlay play);
// Needs the toolkit's application object.
std::unique_ptr<Hand> MakeWidgetHand(ModalPlay play);

} // namespace quillary::tools
