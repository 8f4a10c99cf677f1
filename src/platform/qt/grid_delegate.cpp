#include "platform/qt/grid_delegate.h"

#include "platform/controls/grid_columns.h"
#include "platform/qt/grid_model.h"
#include "platform/qt/icons.h"
#include "platform/qt/theme.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

namespace quillary::qt {

namespace {

constexpr int kCellMargin = 7;
constexpr int kArrowWidth = 22;

} // namespace

void GridDelegate::SetCurrent(int row, int column, bool focused) {
    row_ = row;
    column_ = column;
    focused_ = focused;
}

QRect GridDelegate::ArrowOf(const QRect& cell) {
    return {cell.right() - kArrowWidth, cell.top(), kArrowWidth, cell.height()};
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const Theme& theme = CurrentTheme();
    const bool currentRow = index.row() == row_;
    const bool currentCell = currentRow && index.column() == column_;
    QColor ground = option.palette.color(QPalette::Base);
    if (const QVariant asked = index.data(Qt::BackgroundRole); asked.isValid())
        ground = asked.value<QColor>();
    if (currentRow)
        ground = option.palette.color(QPalette::Highlight);
    painter->fillRect(option.rect, ground);
    painter->setPen(theme.shaded);
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    painter->drawLine(option.rect.topRight(), option.rect.bottomRight());

    QRect space = option.rect.adjusted(kCellMargin, 0, -kCellMargin, 0);
    const bool drops = index.data(kDropDownRole).toBool();
    if (currentCell && drops) {
        const QRect arrow = ArrowOf(option.rect);
        Draw(*painter, Drawing::ChevronDown, QRectF(arrow.left() + 4, arrow.center().y() - 6, 13, 13),
             option.palette.color(QPalette::Text));
        space.setRight(arrow.left());
    }
    if (const int picture = index.data(kPictureRole).toInt()) {
        const int size = std::min(18, option.rect.height() - 6);
        const QRectF place(option.rect.center().x() - size / 2.0, option.rect.center().y() - size / 2.0, size,
                           size);
        if (picture == controls::kTickedPicture || picture == controls::kClearPicture)
            Draw(*painter, picture == controls::kTickedPicture ? Drawing::Ticked : Drawing::Unticked, place,
                 theme.strong);
    } else {
        QFont font = option.font;
        if (const QVariant asked = index.data(Qt::FontRole); asked.isValid())
            font.setBold(asked.value<QFont>().bold());
        painter->setFont(font);
        QColor text = option.palette.color(currentRow ? QPalette::HighlightedText : QPalette::Text);
        if (const QVariant asked = index.data(Qt::ForegroundRole); asked.isValid())
            text = asked.value<QColor>();
        painter->setPen(text);
        const auto alignment = index.data(Qt::TextAlignmentRole).value<Qt::Alignment>();
        painter->drawText(space, static_cast<int>(alignment) | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(index.data(Qt::DisplayRole).toString(),
                                                        Qt::ElideRight, space.width()));
    }
    if (currentCell && focused_) {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(theme.accent, 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRectF(option.rect).adjusted(1, 1, -1.5, -1.5));
        painter->restore();
    }
}

bool GridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index) {
    const QString text = index.data(Qt::DisplayRole).toString();
    const bool whole =
        QFontMetrics(option.font).horizontalAdvance(text) <= option.rect.width() - 2 * kCellMargin;
    if (event->type() != QEvent::ToolTip || whole)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::showText(event->globalPos(), Qt::convertFromPlainText(text, Qt::WhiteSpaceNoWrap), view);
    return true;
}

QSize GridDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {0, option.fontMetrics.height() + 10};
}

} // namespace quillary::qt
