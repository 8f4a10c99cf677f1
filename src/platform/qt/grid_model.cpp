#include "platform/qt/grid_model.h"

#include "platform/qt/icons.h"
#include "platform/qt/text.h"
#include "platform/qt/theme.h"
#include "platform/runtime/run_time_error.h"

#include <QFont>

#include <algorithm>
#include <limits>

namespace quillary::qt {

using controls::Column;

namespace {

constexpr long kRowsThatTell = 10; // that are looked at for what a column holds

int RowsOf(const controls::Grid& grid) {
    const long rows = grid.RowCount() + (grid.HasNewRow() ? 1 : 0);
    return static_cast<int>(std::min<long>(rows, std::numeric_limits<int>::max()));
}

bool IsNumber(const runtime::Variant& value) {
    using runtime::VarType;
    switch (value.Type()) {
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
        return true;
    default:
        return false;
    }
}

} // namespace

GridModel::GridModel(controls::Grid& grid, QObject* parent)
    : QAbstractTableModel(parent), grid_(&grid), rows_(RowsOf(grid)), columns_(grid.ColumnCount()),
      current_(static_cast<int>(grid.Row.Get())) {}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    try {
        return CellData(index, role);
    } catch (const runtime::RunTimeError& error) {
        // The data went out of reach while the cell was drawn: the cell says so.
        return role == Qt::DisplayRole ? QVariant(QStringLiteral("#%1").arg(error.Number())) : QVariant();
    }
}

QVariant GridModel::CellData(const QModelIndex& index, int role) const {
    // Between a change and its showing the grid may have fewer cells than the model.
    if (!grid_ || !index.isValid() || index.column() >= grid_->ColumnCount() ||
        index.row() > grid_->RowCount())
        return {};
    const long row = index.row();
    const int col = index.column();
    const Column& column = grid_->Columns(col);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        if (role == Qt::DisplayRole && column.ShowsPictures())
            return {};
        return ToQt(grid_->Shown(row, col));
    case Qt::AccessibleTextRole:
        return ToQt(column.Caption.Get() + ": " + grid_->Shown(row, col));
    case Qt::TextAlignmentRole: {
        Qt::Alignment alignment = Qt::AlignLeft;
        switch (column.Alignment.Get()) {
        case Column::Align::Right:
            alignment = Qt::AlignRight;
            break;
        case Column::Align::Centre:
            alignment = Qt::AlignHCenter;
            break;
        case Column::Align::General:
            if (!column.ValueItems.Translate && IsNumber(StoredKind(row, col)))
                alignment = Qt::AlignRight;
            break;
        case Column::Align::Left:
            break;
        }
        return QVariant::fromValue(Qt::Alignment(alignment | Qt::AlignVCenter));
    }
    case Qt::BackgroundRole:
        if (!column.FetchStyle && !grid_->FetchCellStyle)
            return {};
        if (const QColor colour = ColourOf(grid_->StyleOf(row, col).backColor); colour.isValid())
            return colour;
        return {};
    case Qt::ForegroundRole:
        if (const int colour = grid_->StyleOf(row, col).foreColor; colour > 0)
            return TextColourOf(colour, CurrentTheme().card, {});
        return {};
    case Qt::FontRole:
        if (grid_->StyleOf(row, col).bold) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    case kPictureRole:
        if (const int picture = grid_->CellPicture(row, col))
            return picture;
        return {};
    case kDropDownRole:
        return column.ValueItems.Translate &&
               column.ValueItems.Presentation == controls::Presentation::DropDown && grid_->CellEditable(col);
    case kPendingRole:
        return row == grid_->Row && grid_->DataChanged;
    default:
        return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (!grid_)
        return {};
    if (orientation == Qt::Vertical)
        return role == Qt::DecorationRole ? Mark(section) : QVariant();
    if (section < 0 || section >= grid_->ColumnCount())
        return {};
    const Column& column = grid_->Columns(section);
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return ToQt(column.Caption.Get());
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(HeadingAlignment(section) | Qt::AlignVCenter));
    return {};
}

// The cell's value; what has been typed and is not written yet, as what it will be stored as.
runtime::Variant GridModel::StoredKind(long row, int col) const {
    runtime::Variant value = grid_->CellValue(row, col);
    if (row != grid_->Row || !grid_->DataChanged || value.IsNull() || value.IsEmpty())
        return value;
    try {
        return grid_->Rows()->Convert(col, value);
    } catch (const runtime::RunTimeError&) {
        return value; // it will be refused
    }
}

// A heading stands where its column's values stand.
Qt::Alignment GridModel::HeadingAlignment(int col) const {
    const Column& column = grid_->Columns(col);
    switch (column.Alignment.Get()) {
    case Column::Align::Right:
        return Qt::AlignRight;
    case Column::Align::Centre:
        return Qt::AlignHCenter;
    case Column::Align::General:
        break;
    case Column::Align::Left:
        return Qt::AlignLeft;
    }
    if (column.ShowsPictures())
        return Qt::AlignHCenter;
    if (column.ValueItems.Translate)
        return Qt::AlignLeft;
    try {
        const long rows = std::min<long>(grid_->RowCount(), kRowsThatTell);
        for (long row = 0; row < rows; ++row) {
            const runtime::Variant value = StoredKind(row, col);
            if (!value.IsNull() && !value.IsEmpty())
                return IsNumber(value) ? Qt::AlignRight : Qt::AlignLeft;
        }
    } catch (const runtime::RunTimeError&) {
        // The data went out of reach; the cells say so.
    }
    return Qt::AlignLeft;
}

QVariant GridModel::Mark(int row) const {
    const Theme& theme = CurrentTheme();
    if (row == grid_->Row) {
        if (grid_->DataChanged || grid_->EditActive)
            return DrawnIcon(Drawing::Pencil, theme.accent);
        return DrawnIcon(Drawing::ChevronRight, theme.accent);
    }
    if (grid_->HasNewRow() && row == grid_->RowCount())
        return DrawnIcon(Drawing::Star, theme.faint);
    return {};
}

void GridModel::TakeColumns() {
    beginResetModel();
    columns_ = grid_ ? grid_->ColumnCount() : 0;
    rows_ = grid_ ? RowsOf(*grid_) : 0;
    current_ = grid_ ? static_cast<int>(grid_->Row.Get()) : -1;
    endResetModel();
}

void GridModel::TakeRows() {
    if (!grid_)
        return;
    const int rows = RowsOf(*grid_);
    if (rows > rows_) {
        beginInsertRows({}, rows_, rows - 1);
        rows_ = rows;
        endInsertRows();
    } else if (rows < rows_) {
        beginRemoveRows({}, rows, rows_ - 1);
        rows_ = rows;
        endRemoveRows();
    }
    current_ = static_cast<int>(grid_->Row.Get());
    if (rows_ > 0 && columns_ > 0) {
        emit dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
        emit headerDataChanged(Qt::Vertical, 0, rows_ - 1);
        emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
    }
}

void GridModel::TakeCurrent() {
    if (!grid_)
        return;
    const int former = std::exchange(current_, static_cast<int>(grid_->Row.Get()));
    RowChanged(former);
    if (former != current_)
        RowChanged(current_);
}

void GridModel::RowChanged(int row) {
    if (row < 0 || row >= rows_ || columns_ == 0)
        return;
    emit dataChanged(index(row, 0), index(row, columns_ - 1));
    emit headerDataChanged(Qt::Vertical, row, row);
}

void GridModel::Detach() {
    beginResetModel();
    grid_ = nullptr;
    rows_ = columns_ = 0;
    endResetModel();
}

} // namespace quillary::qt
