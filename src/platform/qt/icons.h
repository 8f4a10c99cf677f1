#pragma once

#include <QIcon>
#include <QPixmap>

class QPainter;
class QRectF;
class QColor;

// The program's drawings. They are drawn when they are needed, in the colours of the theme and at the
// screen's own resolution, so no picture file is read at the start.
namespace quillary::qt {

enum class Drawing {
    Correct,  // a pencil: an entry to be corrected
    Notice,   // an exclamation
    Question, // a question mark
    Calendar,
    ChevronDown,
    ChevronUp,
    ChevronLeft,
    ChevronRight,
    House,
    Ticked,   // the suite's picture 102
    Unticked, // the suite's picture 103
    Pencil,   // a row in edit
    Star,     // the row for adding
    Leaf,     // the program's sign
};

void Draw(QPainter& painter, Drawing drawing, const QRectF& place, const QColor& colour);
QPixmap DrawnPixmap(Drawing drawing, int size, const QColor& colour, qreal pixelRatio);
QIcon DrawnIcon(Drawing drawing, const QColor& colour);
// The icon of the program's windows.
QIcon ProgramIcon();

} // namespace quillary::qt
