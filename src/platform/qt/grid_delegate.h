#pragma once

#include <QStyledItemDelegate>

namespace quillary::qt {

// Draws the cells of a grid: the current row tinted, the current cell framed, pictures in place of text, an
// arrow where a list drops down. A text that a cell cuts off is read in full below the mouse.
class GridDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void SetCurrent(int row, int column, bool focused);
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The part of a cell that drops the list down.
    static QRect ArrowOf(const QRect& cell);

private:
    int row_ = -1, column_ = -1;
    bool focused_ = false;
};

} // namespace quillary::qt
