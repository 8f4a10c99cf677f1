#pragma once

#include "platform/controls/lists.h"

#include <QAbstractListModel>

namespace quillary::qt {

// The entries of a list control. None is copied: an entry is read when it is drawn. Changes are taken up
// together at the next turn of the event loop, so that filling a long list costs one redraw.
class ListModel : public QAbstractListModel {
public:
    ListModel(controls::ListControl& list, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // Something of the entries has changed. taken: called once they have been taken up.
    void Changed(std::function<void()> taken);
    // Takes changes up at once.
    void Flush();
    // The control is gone; the list is empty from now on.
    void Detach();

private:
    controls::ListControl* list_;
    std::function<void()> taken_;
    int count_ = 0;
    bool changed_ = false;
};

} // namespace quillary::qt
