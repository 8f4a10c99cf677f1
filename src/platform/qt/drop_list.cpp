#include "platform/qt/drop_list.h"

#include <QStringListModel>
#include <QVBoxLayout>

namespace quillary::qt {

DropList::DropList(QWidget* parent, const QStringList& entries)
    : QFrame(parent, Qt::Popup), list_(new QListView) {
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setUniformItemSizes(true);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setMinimumSize(1, 1); // two entries are no less a list: no empty rows below them
    list_->setModel(new QStringListModel(entries, list_));
    layout->addWidget(list_);
    setFocusProxy(list_);
}

} // namespace quillary::qt
