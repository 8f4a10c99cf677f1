#pragma once

#include "platform/controls/grid.h"

#include <QAbstractTableModel>

namespace quillary::qt {

inline constexpr int kPictureRole = Qt::UserRole; // number of the picture that a cell shows; none: invalid
inline constexpr int kDropDownRole = Qt::UserRole + 1; // the cell's values are picked from a list
inline constexpr int kPendingRole = Qt::UserRole + 2;  // the row holds edits that are not written

// Rows and cells of a grid, read when they are drawn: a hundred thousand rows cost no more than the few
// that are seen. The empty row for adding is the last one.
class GridModel : public QAbstractTableModel {
public:
    GridModel(controls::Grid& grid, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // The columns are others now.
    void TakeColumns();
    // Rows have come or gone, or all their cells are others.
    void TakeRows();
    // The current row has moved, or its cells or edits have changed.
    void TakeCurrent();
    void Detach();

private:
    QVariant CellData(const QModelIndex& index, int role) const;
    runtime::Variant StoredKind(long row, int col) const;
    Qt::Alignment HeadingAlignment(int col) const;
    QVariant Mark(int row) const; // what stands beside a row: current, in edit, for adding
    void RowChanged(int row);
    controls::Grid* grid_;
    int rows_ = 0, columns_ = 0, current_ = -1;
};

} // namespace quillary::qt
