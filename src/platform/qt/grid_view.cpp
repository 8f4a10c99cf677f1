#include "platform/qt/grid_view.h"

#include "platform/qt/drop_list.h"
#include "platform/qt/form_view.h"
#include "platform/qt/keys.h"
#include "platform/qt/text.h"
#include "platform/qt/theme.h"
#include "platform/qt/views.h"

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTableView>

namespace quillary::qt {

using controls::Aspect;

namespace {

constexpr int kMarkWidth = 26;
constexpr int kLongestShownList = 12;
constexpr int kDesignLine = 13; // height of a line in the design's own font, pixels
constexpr int kDropMarkHeight = 3;
// A layout's word that the columns share out the whole width of the table between them.
constexpr const char* kFillWidth = "fillWidth";

bool EndsEdit(const controls::Key& key) {
    using namespace controls;
    switch (key.code) {
    case kKeyReturn:
    case kKeyEscape:
    case kKeyTab:
    case kKeyUp:
    case kKeyDown:
    case kKeyPageUp:
    case kKeyPageDown:
        return true;
    default:
        return key.code >= kKeyF1 || ((key.shift & kAltMask) && key.code >= 'A' && key.code <= 'Z');
    }
}

} // namespace

GridView::GridView(FormView& form, controls::Grid& grid, QTableView& table)
    : ControlView(form, grid, table), grid_(grid), table_(table), model_(grid, this) {
    table_.setModel(&model_);
    table_.setItemDelegate(&delegate_);
    table_.setSelectionMode(QAbstractItemView::NoSelection);
    table_.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_.setShowGrid(false);
    table_.setWordWrap(false);
    table_.setCornerButtonEnabled(false);
    table_.setTabKeyNavigation(false);
    table_.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    QHeaderView& rows = *table_.verticalHeader();
    rows.setSectionResizeMode(QHeaderView::Fixed);
    rows.setMinimumSectionSize(8);
    rows.setDefaultSectionSize(table_.fontMetrics().height() + 11);
    rows.setFixedWidth(kMarkWidth);
    QHeaderView& heads = *table_.horizontalHeader();
    heads.setHighlightSections(false);
    heads.setMinimumSectionSize(24);
    heads.setStretchLastSection(true);
    heads.setSectionsClickable(true);

    connect(&heads, &QHeaderView::sectionClicked, this,
            [this](int col) { Do([&] { grid_.PressHead(col); }); });
    connect(&heads, &QHeaderView::sectionResized, this, [this] {
        PlaceEditor();
        widthsMoved_ |= headsHeld_ && !showing_;
    });
    heads.viewport()->installEventFilter(this);
    connect(&rows, &QHeaderView::sectionPressed, this, [this](int row) {
        Do([&] { row < grid_.RowCount() ? grid_.GoToRow(row) : grid_.GoToNewRow(); });
    });
    for (QScrollBar* bar : {table_.verticalScrollBar(), table_.horizontalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, [this] {
            PlaceEditor();
            TellShownRows();
        });
        // Rows that come while a cell is in edit move what is shown without a change of the value.
        connect(bar, &QScrollBar::rangeChanged, this, [this] { PlaceEditor(); });
    }
}

GridView::~GridView() {
    Detach();
    table_.setItemDelegate(nullptr);
}

void GridView::Released() {
    model_.Detach();
}

QWidget* GridView::FocusWidget() {
    return editor_ ? static_cast<QWidget*>(editor_) : &table_;
}

QList<QWidget*> GridView::InputWidgets() {
    return {&table_, table_.viewport()};
}

double GridView::Scale() const {
    return std::max(1.0, table_.fontMetrics().height() / static_cast<double>(kDesignLine));
}

// ---- From the grid

void GridView::Show(Aspect aspect) {
    ControlView::Show(aspect);
    switch (aspect) {
    case Aspect::Columns:
        columnsChanged_ = true;
        break;
    case Aspect::Rows:
    case Aspect::Limits:
        rowsChanged_ = true;
        break;
    case Aspect::Row:
    case Aspect::Cells:
        currentChanged_ = true;
        // The field over the cell follows at once: the next key is for it.
        if (!grid_.EditActive || editor_)
            ShowEditor();
        break;
    case Aspect::Focus:
        break;
    default:
        return;
    }
    if (std::exchange(queued_, true))
        return;
    QMetaObject::invokeMethod(
        this, [this] { Flush(); }, Qt::QueuedConnection);
}

void GridView::Flush() {
    queued_ = false;
    if (IsDetached() || flushing_)
        return;
    flushing_ = true;
    if (std::exchange(columnsChanged_, false)) {
        rowsChanged_ = false;
        currentChanged_ = true;
        model_.TakeColumns();
        ShowColumns();
    }
    if (std::exchange(rowsChanged_, false)) {
        currentChanged_ = true;
        model_.TakeRows();
    }
    if (std::exchange(currentChanged_, false)) {
        model_.TakeCurrent();
        ShowCurrent();
        const bool wasOpen = editor_ != nullptr;
        ShowEditor();
        PlaceEditor();
        // Opened by a routine: typing goes over what is there, as behind F2.
        if (editor_ && !wasOpen)
            editor_->selectAll();
    }
    flushing_ = false;
    TellShownRows();
}

void GridView::ShowColumns() {
    showing_ = true;
    QHeaderView& heads = *table_.horizontalHeader();
    heads.setTextElideMode(grid_.HeadLines > 1 ? Qt::ElideNone : Qt::ElideRight);
    const int line = table_.fontMetrics().height();
    heads.setFixedHeight(line * std::max(1, grid_.HeadLines.Get()) + 14);
    for (int col = 0; col < grid_.ColumnCount(); ++col) {
        const controls::Column& column = grid_.Columns(col);
        table_.setColumnHidden(col, !column.Visible);
        table_.setColumnWidth(col, static_cast<int>(PixelsOf(column.Width) * Scale()));
    }
    showing_ = false;
    FitColumns();
}

bool GridView::FillsWidth() const {
    return table_.property(kFillWidth).toBool();
}

// Widens the columns, each in its proportion, where they leave a part of the table empty. None gets narrower
// than its caption.
void GridView::FitColumns() {
    if (!FillsWidth())
        return;
    std::vector<int> open;
    double wanted = 0;
    for (int col = 0; col < grid_.ColumnCount(); ++col)
        if (grid_.Columns(col).Visible) {
            open.push_back(col);
            wanted += PixelsOf(grid_.Columns(col).Width);
        }
    double room = std::max<double>(table_.viewport()->width(), wanted * Scale());
    showing_ = true;
    for (bool settled = false; !settled && wanted > 0;) {
        settled = true;
        for (std::size_t at = 0; at < open.size(); ++at) {
            const int width = PixelsOf(grid_.Columns(open[at]).Width);
            const int least = CaptionWidth(open[at]);
            if (width / wanted * room >= least)
                continue;
            table_.setColumnWidth(open[at], least);
            room -= least;
            wanted -= width;
            open.erase(open.begin() + static_cast<std::ptrdiff_t>(at));
            settled = false;
            break;
        }
    }
    for (const int col : open)
        table_.setColumnWidth(col, static_cast<int>(PixelsOf(grid_.Columns(col).Width) / wanted * room));
    showing_ = false;
}

// Columns whose borders the user has moved are as wide as they are shown from now on. The last one fills the
// space that is left, which is no width of its own; columns that share out the table change together.
void GridView::KeepWidths() {
    headsHeld_ = false;
    if (!std::exchange(widthsMoved_, false) || IsDetached())
        return;
    int behindLast = grid_.ColumnCount();
    while (behindLast > 0 && !grid_.Columns(behindLast - 1).Visible)
        --behindLast;
    const double scale = Scale();
    for (int col = 0; col < (FillsWidth() ? behindLast : behindLast - 1); ++col) {
        controls::Column& column = grid_.Columns(col);
        const int pixels = table_.columnWidth(col);
        if (column.Visible && pixels != static_cast<int>(PixelsOf(column.Width) * scale))
            column.Width = static_cast<int>(pixels * kTwipsPerPixel / scale);
    }
}

bool GridView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
        headsHeld_ = true;
    else if (event->type() == QEvent::MouseButtonRelease) // which the heads are still to see
        QMetaObject::invokeMethod(
            this, [this] { KeepWidths(); }, Qt::QueuedConnection);
    return ControlView::eventFilter(watched, event);
}

// What the caption needs: all of it on one line, the longest word where it may wrap.
int GridView::CaptionWidth(int col) const {
    const QHeaderView& heads = *table_.horizontalHeader();
    const int whole = heads.sectionSizeHint(col);
    if (grid_.HeadLines <= 1)
        return whole;
    const QString caption = ToQt(grid_.Columns(col).Caption.Get());
    int longest = 0;
    for (const QString& word : caption.split(QLatin1Char(' ')))
        longest = std::max(longest, heads.fontMetrics().horizontalAdvance(word));
    return whole - heads.fontMetrics().horizontalAdvance(caption) + longest;
}

void GridView::ShowCurrent() {
    const int row = static_cast<int>(grid_.Row.Get());
    const int col = grid_.Col;
    delegate_.SetCurrent(row, col, grid_.HasFocus());
    const QModelIndex current = model_.index(row, col);
    if (current.isValid() && table_.currentIndex() != current) {
        table_.selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        table_.scrollTo(current);
    }
    table_.viewport()->update();
}

void GridView::TellShownRows() {
    if (IsDetached() || !table_.isVisible())
        return;
    const int first = table_.rowAt(0);
    int last = table_.rowAt(table_.viewport()->height() - 1);
    if (last < 0)
        last = model_.rowCount() - 1;
    if (first >= 0)
        Do([&] { grid_.RowsShown(first, last); });
}

// ---- The field over the cell

void GridView::ShowEditor() {
    if (!grid_.EditActive) {
        CloseEditor();
        return;
    }
    const int row = static_cast<int>(grid_.Row.Get()), col = grid_.Col;
    if (editor_ && (row != editorRow_ || col != editorCol_))
        CloseEditor();
    const QString text = ToQt(grid_.EditText());
    if (!editor_) {
        if (grid_.Columns(col).ShowsPictures())
            return;
        editor_ = new QLineEdit(table_.viewport());
        editor_->setFrame(false);
        editor_->setTextMargins(4, 0, 4, 0);
        editor_->setAutoFillBackground(true);
        editor_->setAccessibleName(ToQt(grid_.Columns(col).Caption.Get()));
        const int limit = grid_.Columns(col).MaxLength;
        if (limit > 0)
            GiveRoom(*editor_, limit, text);
        // It stands where the cell's text stands.
        editor_->setAlignment(model_.index(row, col).data(Qt::TextAlignmentRole).value<Qt::Alignment>());
        editorRow_ = row;
        editorCol_ = col;
        Form().Watch(*editor_);
        editor_->setText(text);
        connect(editor_, &QLineEdit::textEdited, this, [this, limit] {
            if (limit > 0)
                CutTo(*editor_, limit, grid_.EditText());
            Do([&] { grid_.SetEditText(FromQt(editor_->text())); });
        });
        const QModelIndex cell = model_.index(row, col);
        table_.scrollTo(cell);
        PlaceEditor();
        editor_->show();
        if (grid_.HasFocus())
            Form().ShowFocus(Qt::MouseFocusReason); // marks nothing: typing goes on behind what is there
        return;
    }
    if (editor_->text() != text)
        editor_->setText(text);
}

void GridView::PlaceEditor() {
    if (editor_)
        editor_->setGeometry(table_.visualRect(model_.index(editorRow_, editorCol_)).adjusted(1, 1, -1, -1));
}

void GridView::CloseEditor() {
    if (!editor_)
        return;
    QLineEdit* closing = std::exchange(editor_, nullptr);
    if (closing->hasFocus())
        table_.setFocus(Qt::OtherFocusReason);
    closing->hide();
    closing->deleteLater();
}

// ---- From the user

bool GridView::HasDropDown(int col) const {
    if (col < 0 || col >= grid_.ColumnCount())
        return false;
    const controls::ValueItems& items = grid_.Columns(col).ValueItems;
    return items.Translate && items.Presentation == controls::Presentation::DropDown && items.Count() > 0;
}

bool GridView::WantsKey(const QKeyEvent& event) {
    const controls::Key key = KeyOf(event);
    if (key.shift & controls::kAltMask)
        return key.code == controls::kKeyDown || ControlView::WantsKey(event);
    return (key.code != 0 || key.character != 0) && !(editor_ && (key.shift & controls::kCtrlMask));
}

bool GridView::KeyPressed(const QKeyEvent& event) {
    const bool alt = event.modifiers() & Qt::AltModifier;
    const bool down = event.key() == Qt::Key_Down;
    if (HasDropDown(grid_.Col) && (event.key() == Qt::Key_F4 || (down && (alt || editor_)))) {
        DropDown();
        return true;
    }
    // Writes the row without leaving it.
    if ((event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
        (event.modifiers() & Qt::ControlModifier)) {
        Do([&] { grid_.CommitRow(); });
        return true;
    }
    const bool wholeRow =
        event.key() == Qt::Key_C && event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
    if (!editor_ && (wholeRow || event.matches(QKeySequence::Copy))) {
        // Unless the key is the form's, as that of a tab.
        FilterKey(event, table_, [&](const controls::Key&) {
            Copy(wholeRow);
            return true;
        });
        return true;
    }
    if (!editor_) {
        const bool used = ControlView::KeyPressed(event);
        if (!IsDetached() && grid_.EditActive && !editor_) {
            ShowEditor();
            // Typing goes on behind the first character; F2 marks the whole for typing over.
            if (editor_ && event.text().isEmpty())
                editor_->selectAll();
        }
        return used;
    }
    const controls::Key key = KeyOf(event);
    if (EndsEdit(key))
        return ControlView::KeyPressed(event);
    return FilterKey(event, *editor_, [](const controls::Key&) { return false; });
}

void GridView::Copy(bool wholeRow) const {
    const long row = grid_.Row;
    if (row < 0 || row >= grid_.RowCount())
        return;
    QStringList texts;
    for (int col = 0; col < grid_.ColumnCount(); ++col)
        if (wholeRow ? grid_.Columns(col).Visible : col == grid_.Col)
            texts << ToQt(grid_.Shown(row, col));
    QGuiApplication::clipboard()->setText(texts.join(QLatin1Char('\t')));
}

bool GridView::MousePressed(QWidget& on, const QMouseEvent& event) {
    if (editor_ && (&on == editor_ || editor_->isAncestorOf(&on)))
        return false;
    if (&on != table_.viewport() || event.button() != Qt::LeftButton)
        return false;
    Flush();
    const QPoint place = event.position().toPoint();
    const QModelIndex cell = table_.indexAt(place);
    if (!cell.isValid()) {
        ReachByMouse();
        return true;
    }
    const int row = cell.row(), col = cell.column();
    const bool wasCurrent = grid_.HasFocus() && row == grid_.Row && col == grid_.Col;
    const bool onArrow = GridDelegate::ArrowOf(table_.visualRect(cell)).contains(place);
    const bool twice = event.type() == QEvent::MouseButtonDblClick;
    heldRow_ = grid_.DragRows && !twice && row < grid_.RowCount() ? row : -1;
    heldAt_ = place;
    PressCell(row, col, wasCurrent, onArrow, twice);
    return true;
}

void GridView::PressCell(int row, int col, bool wasCurrent, bool onArrow, bool twice) {
    const int loops = ModalLoops();
    bool there = false;
    const bool here = Do([&] {
        // Within a new row that waits to be written the other cells are filled first.
        const bool moved = row < grid_.RowCount() ? grid_.GoToRow(row).IsDone()
                                                  : row == grid_.Row || grid_.GoToNewRow().IsDone();
        if (!moved)
            return;
        const controls::Column& column = grid_.Columns(col);
        if (column.ShowsPictures()) {
            grid_.ToggleCell(col);
        } else if (column.Button && (onArrow || twice)) {
            grid_.PressCellButton(col);
        } else if (grid_.MoveToColumn(col)) {
            there = loops == ModalLoops();
        }
    });
    if (!here || !there)
        return;
    if (twice && grid_.DblClick) {
        Do([&] { grid_.DoublePress(); });
        return;
    }
    Flush();
    if (HasDropDown(col) && grid_.CellEditable(col) && (wasCurrent || onArrow || twice)) {
        DropDown();
    } else if (wasCurrent || twice) {
        Do([&] { grid_.BeginEdit(col); });
        ShowEditor();
    }
}

// ---- Dragging of rows

int GridView::GapAt(const QPoint& place) const {
    const int row = table_.rowAt(place.y());
    const int rows = static_cast<int>(grid_.RowCount());
    if (row < 0)
        return rows;
    const int middle = table_.rowViewportPosition(row) + table_.rowHeight(row) / 2;
    return std::min(rows, place.y() > middle ? row + 1 : row);
}

void GridView::ShowDropMark(int row) {
    if (row < 0) {
        delete dropMark_;
        return;
    }
    if (!dropMark_) {
        dropMark_ = new QFrame(table_.viewport());
        dropMark_->setAutoFillBackground(true);
        QPalette accent = dropMark_->palette();
        accent.setColor(dropMark_->backgroundRole(), CurrentTheme().accent);
        dropMark_->setPalette(accent);
        dropMark_->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    const int last = static_cast<int>(grid_.RowCount()) - 1;
    const int top = row <= last ? table_.rowViewportPosition(row)
                    : last < 0  ? 0
                                : table_.rowViewportPosition(last) + table_.rowHeight(last);
    dropMark_->setGeometry(0, std::max(0, top - 1), table_.viewport()->width(), kDropMarkHeight);
    dropMark_->show();
}

// The grid below a place of this table's viewport that takes rows.
GridView* GridView::DropTarget(const QPoint& place) const {
    const QWidget& window = Form().Window();
    const QWidget* below = window.childAt(table_.viewport()->mapTo(&window, place));
    auto* view = dynamic_cast<GridView*>(below ? Form().ViewAt(below) : nullptr);
    return view && view->grid_.RowDropped ? view : nullptr;
}

void GridView::DragTo(const QPoint& place) {
    if (!dragging_ && (place - heldAt_).manhattanLength() < QApplication::startDragDistance())
        return;
    dragging_ = true;
    GridView* target = DropTarget(place);
    table_.viewport()->setCursor(target ? Qt::ClosedHandCursor : Qt::ForbiddenCursor);
    if (dropTarget_ && dropTarget_ != target)
        dropTarget_->ShowDropMark(-1);
    dropTarget_ = target;
    // Only within its own list does the row go to the place below the mouse.
    if (target == this)
        ShowDropMark(GapAt(place));
}

void GridView::EndDrag(const QPoint& place) {
    const int row = std::exchange(heldRow_, -1);
    if (!std::exchange(dragging_, false))
        return;
    table_.viewport()->unsetCursor();
    if (dropTarget_)
        dropTarget_->ShowDropMark(-1);
    dropTarget_ = nullptr;
    if (GridView* target = DropTarget(place)) {
        const int before =
            target->GapAt(target->table_.viewport()->mapFromGlobal(table_.viewport()->mapToGlobal(place)));
        Do([&] { target->grid_.DropRow(grid_, row, before); });
    }
}

bool GridView::OtherEvent(QWidget& on, QEvent& event) {
    if (heldRow_ >= 0 && &on == table_.viewport()) {
        const auto* mouse = dynamic_cast<QMouseEvent*>(&event);
        if (event.type() == QEvent::MouseMove && mouse->buttons() & Qt::LeftButton) {
            DragTo(mouse->position().toPoint());
            return true;
        }
        if (event.type() == QEvent::MouseButtonRelease) {
            EndDrag(mouse->position().toPoint());
            return true;
        }
    }
    if (event.type() == QEvent::Resize && &on == table_.viewport()) {
        if (!headsHeld_)
            FitColumns();
        PlaceEditor();
        TellShownRows();
    } else if (event.type() == QEvent::FocusIn || event.type() == QEvent::FocusOut ||
               event.type() == QEvent::Show) {
        currentChanged_ = true;
        Show(Aspect::Row);
    }
    return false;
}

QListView* GridView::DropDown() {
    const int col = grid_.Col;
    if (!HasDropDown(col) || !grid_.CellEditable(col) || grid_.Row < 0)
        return nullptr;
    const controls::ValueItems& items = grid_.Columns(col).ValueItems;
    QStringList entries;
    for (int item = 0; item < items.Count(); ++item)
        entries << ToQt(items[item].displayValue);
    // What has been typed so far points at an entry.
    const QString typed = editor_ ? editor_->text() : ToQt(grid_.Columns(col).Text.Get());
    int selected = static_cast<int>(entries.indexOf(typed));
    for (int item = 0; selected < 0 && item < entries.size(); ++item)
        if (!typed.isEmpty() && entries[item].startsWith(typed, Qt::CaseInsensitive))
            selected = item;

    auto* popup = new DropList(&table_, entries);
    QListView& list = popup->List();
    // Some desktops activate an entry by the click that has chosen it already.
    const auto choose = [this, popup, col, chosen = std::make_shared<bool>(false)](const QModelIndex& entry) {
        if (std::exchange(*chosen, true))
            return;
        const QString text = entry.data().toString();
        popup->close();
        Do([&] {
            if (grid_.EditActive)
                grid_.CancelEdit();
            grid_.EditCell(col, FromQt(text));
        });
    };
    connect(&list, &QListView::clicked, this, choose);
    connect(&list, &QListView::activated, this, choose);
    list.setCurrentIndex(list.model()->index(std::max(selected, 0), 0));

    const QRect cell = table_.visualRect(model_.index(static_cast<int>(grid_.Row.Get()), col));
    const int shown = std::min(kLongestShownList, items.Count());
    const int height = shown * list.sizeHintForRow(0) + 4;
    const int width = std::max(cell.width(), list.sizeHintForColumn(0) + 40);
    popup->setGeometry(QRect(table_.viewport()->mapToGlobal(cell.bottomLeft()), QSize(width, height)));
    popup->show();
    list.setFocus(Qt::PopupFocusReason);
    list.scrollTo(list.currentIndex());
    return &list;
}

std::unique_ptr<ControlView> MakeGridView(FormView& form, controls::Control& control, QWidget& widget) {
    auto* table = qobject_cast<QTableView*>(&widget);
    return table ? std::make_unique<GridView>(form, static_cast<controls::Grid&>(control), *table) : nullptr;
}

} // namespace quillary::qt
