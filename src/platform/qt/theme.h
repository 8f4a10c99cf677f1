#pragma once

#include <QColor>

class QApplication;
class QFont;
class QWidget;

namespace quillary::qt {

// Colours beyond the palette's roles.
struct Theme {
    bool dark = false;
    QColor card;     // ground of cards
    QColor line;     // their frames, and those of fields
    QColor strong;   // frames under the mouse
    QColor accent;   // the suite's green
    QColor onAccent; // text upon it
    QColor faint;    // explanations, captions without emphasis
    QColor wrong;    // an entry that is not accepted
    QColor shaded;   // cells that are for display alone
};

const Theme& CurrentTheme();

// Style, palette and font of the program. Dark or light follows the system; QUILLARY_THEME=dark or =light
// is stronger.
void ApplyTheme(QApplication& application);

// The edge of a dialog that nobody gives a frame to: on a display without a window manager it could not be
// told from the window below it. Called while the dialog is painted.
void DrawBareEdge(QWidget& dialog);

} // namespace quillary::qt
