#pragma once

#include "platform/controls/control.h"
#include "platform/controls/gesture.h"

#include <string_view>

class QPoint;
class QWidget;

namespace quillary::controls {
class Grid;
}

namespace quillary::qt {

class ControlView;
class QtFormHost;

// What a user does, as key presses and mouse clicks on the widgets of an open form. Made for tests and the
// scenario driver; the program does not use it, so the linker leaves it out.
//
// A gesture answers Impossible where the user would find nothing to act on (a control that is hidden,
// disabled or without a widget), else Done: whether the program's rules refused it is seen in the controls.
// An error that a routine raised, and nobody took, is raised here.
class WidgetHand {
public:
    explicit WidgetHand(QtFormHost& host) : host_(host) {}

    // The widget bound to a control, its page built; nullptr for a control without one.
    QWidget* WidgetOf(const controls::Control& control);

    controls::Outcome Focus(controls::Control& control);
    controls::Outcome TypeText(controls::Control& control, std::string_view text);
    controls::Outcome PressKey(controls::Control& control, const controls::Key& key);
    // A button; a list's selected entry; a menu entry, whose menu need not be open.
    controls::Outcome Click(controls::Control& control);
    controls::Outcome DoubleClick(controls::Control& control);
    controls::Outcome Check(controls::Control& control, bool on);
    controls::Outcome Choose(controls::Control& control, int entry);
    controls::Outcome ChooseText(controls::Control& control, std::string_view text);
    controls::Outcome PickTab(controls::Control& control, int tab);
    controls::Outcome PickTabText(controls::Control& control, std::string_view caption);
    controls::Outcome PickDate(controls::Control& control, runtime::Date date);
    controls::Outcome Spin(controls::Control& control, int steps);

    controls::Outcome GoToRow(controls::Grid& grid, long row);
    controls::Outcome GoToNewRow(controls::Grid& grid);
    controls::Outcome MoveToColumn(controls::Grid& grid, int col);
    controls::Outcome EditCell(controls::Grid& grid, int col, std::string_view text);
    controls::Outcome ToggleCell(controls::Grid& grid, int col);
    controls::Outcome CommitRow(controls::Grid& grid);
    controls::Outcome DeleteRow(controls::Grid& grid);
    controls::Outcome PressHead(controls::Grid& grid, int col);
    // Takes hold of a row and lets it go before a row of another grid, or of the same; RowCount() for the
    // place below the last row.
    controls::Outcome DragRow(controls::Grid& from, long row, controls::Grid& to, long before);

    // Moves the focus off the current control to no other.
    controls::Outcome Leave(controls::Form& form);
    // As the window's own close button does.
    controls::Outcome CloseForm(controls::Form& form);

private:
    ControlView* Reach(controls::Control& control, controls::Outcome& outcome);
    controls::Outcome Settle();
    controls::Outcome ClickEntry(controls::Control& control, int entry);

    QtFormHost& host_;
};

// Single events, as the widgets get them from the screen.
void SendKey(QWidget& widget, const controls::Key& key);
void SendClick(QWidget& widget, const QPoint& place, bool twice = false);

} // namespace quillary::qt
