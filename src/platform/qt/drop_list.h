#pragma once

#include <QFrame>
#include <QListView>

namespace quillary::qt {

// The list that drops down below a cell of a grid. It closes by Escape, a click beside it, or a choice.
class DropList : public QFrame {
public:
    DropList(QWidget* parent, const QStringList& entries);
    QListView& List() { return *list_; }

private:
    QListView* list_;
};

} // namespace quillary::qt
