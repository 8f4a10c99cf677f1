#include "platform/qt/list_model.h"

#include "platform/qt/text.h"

namespace quillary::qt {

ListModel::ListModel(controls::ListControl& list, QObject* parent)
    : QAbstractListModel(parent), list_(&list), count_(list.ListCount()) {}

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count_;
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (!list_ || !index.isValid())
        return {};
    if (role == Qt::DisplayRole || role == Qt::EditRole || role == Qt::AccessibleTextRole)
        return ToQt(list_->List(index.row()));
    return {};
}

void ListModel::Changed(std::function<void()> taken) {
    taken_ = std::move(taken);
    if (std::exchange(changed_, true))
        return;
    QMetaObject::invokeMethod(
        this, [this] { Flush(); }, Qt::QueuedConnection);
}

void ListModel::Flush() {
    if (!list_ || !std::exchange(changed_, false))
        return;
    beginResetModel();
    count_ = list_->ListCount();
    endResetModel();
    if (taken_)
        taken_();
}

void ListModel::Detach() {
    beginResetModel();
    list_ = nullptr;
    count_ = 0;
    endResetModel();
}

} // namespace quillary::qt
