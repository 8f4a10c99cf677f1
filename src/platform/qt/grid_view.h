#pragma once

#include "platform/controls/grid.h"
#include "platform/qt/control_view.h"
#include "platform/qt/grid_delegate.h"
#include "platform/qt/grid_model.h"

class QLineEdit;
class QListView;
class QTableView;

namespace quillary::qt {

// A grid as a table. The grid decides what is current and what is in edit; the table shows it, with a field
// over the cell in edit and a list that drops down where the column has one.
class GridView : public ControlView {
public:
    GridView(FormView& form, controls::Grid& grid, QTableView& table);
    ~GridView() override;

    QWidget* FocusWidget() override;
    QList<QWidget*> InputWidgets() override;
    void Show(controls::Aspect aspect) override;
    void Flush() override;
    bool KeyPressed(const QKeyEvent& event) override;
    bool WantsKey(const QKeyEvent& event) override;
    bool MousePressed(QWidget& on, const QMouseEvent& event) override;
    bool TakesWheel() override { return true; }
    bool OtherEvent(QWidget& on, QEvent& event) override;
    bool eventFilter(QObject* watched, QEvent* event) override; // of the heads

    // The field over the cell in edit; nullptr.
    QLineEdit* Editor() const { return editor_; }
    // Drops down the list of the current cell's column; nullptr when it has none.
    QListView* DropDown();

private:
    void Released() override;
    void ShowColumns();
    void ShowCurrent();
    void ShowEditor();
    void PlaceEditor();
    void CloseEditor();
    void TellShownRows();
    bool FillsWidth() const;
    void FitColumns();
    void KeepWidths();
    // Puts the text of the current cell on the clipboard, or all that the row shows, between tabs.
    void Copy(bool wholeRow) const;
    int CaptionWidth(int col) const; // pixels
    void PressCell(int row, int col, bool wasCurrent, bool onArrow, bool twice);
    // A row that the user has taken hold of follows the mouse.
    void DragTo(const QPoint& place);
    void EndDrag(const QPoint& place);
    GridView* DropTarget(const QPoint& place) const;
    int GapAt(const QPoint& place) const; // the row before the nearest gap between rows of this table
    void ShowDropMark(int row);           // -1: none
    bool HasDropDown(int col) const;
    double Scale() const; // pixels of the screen a pixel of the design

    controls::Grid& grid_;
    QTableView& table_;
    GridModel model_;
    GridDelegate delegate_;
    QLineEdit* editor_ = nullptr;
    int editorRow_ = -1, editorCol_ = -1;
    int heldRow_ = -1; // the row that the mouse was pressed on, where rows can be dragged
    QPoint heldAt_;
    bool dragging_ = false;
    QPointer<GridView> dropTarget_;
    QPointer<QWidget> dropMark_;
    bool columnsChanged_ = false, rowsChanged_ = false, currentChanged_ = false, flushing_ = false;
    bool showing_ = false, queued_ = false;
    bool headsHeld_ = false, widthsMoved_ = false; // the mouse is down on the heads; it has moved a border
};

} // namespace quillary::qt
