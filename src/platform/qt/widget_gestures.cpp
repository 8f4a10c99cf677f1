#include "platform/qt/widget_gestures.h"

#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/lists.h"
#include "platform/controls/menu.h"
#include "platform/controls/tab_strip.h"
#include "platform/qt/form_host.h"
#include "platform/qt/form_view.h"
#include "platform/qt/form_window.h"
#include "platform/qt/grid_view.h"
#include "platform/qt/guard.h"
#include "platform/qt/keys.h"
#include "platform/qt/text.h"
#include "platform/qt/widgets.h"
#include "platform/runtime/locale.h"

#include <algorithm>

#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabBar>
#include <QTableView>

#include <cmath>

namespace quillary::qt {

using controls::Control;
using controls::Grid;
using controls::Key;
using controls::Kind;
using controls::Outcome;

namespace {

constexpr int kTickWidth = 18; // of a check box, in points

Qt::KeyboardModifiers ModifiersOf(int shift) {
    Qt::KeyboardModifiers modifiers;
    if (shift & controls::kShiftMask)
        modifiers |= Qt::ShiftModifier;
    if (shift & controls::kCtrlMask)
        modifiers |= Qt::ControlModifier;
    if (shift & controls::kAltMask)
        modifiers |= Qt::AltModifier;
    return modifiers;
}

void SendMouse(QWidget& widget, QEvent::Type type, const QPoint& place) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, widget.mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

// The keys that type a text; a line end is one Enter.
std::vector<Key> KeysOf(std::string_view text) {
    std::vector<Key> keys;
    const auto typed = LinesToQt(text).toUcs4();
    for (const char32_t character : typed)
        keys.push_back(controls::KeyOfCharacter(character));
    return keys;
}

GridView* ViewOfGrid(QtFormHost& host, Grid& grid) {
    FormView* view = host.ViewOf(grid.GetForm());
    return view ? dynamic_cast<GridView*>(view->ViewOf(grid)) : nullptr;
}

} // namespace

void SendKey(QWidget& widget, const Key& key) {
    int code = QtKeyOf(key.code);
    QString text;
    if (key.character >= ' ') {
        const auto character = static_cast<char32_t>(key.character);
        text = QString::fromUcs4(&character, 1);
        // Only keys that have names of their own are told by code; a character is told by its text.
        if (key.character != ' ')
            code = text.at(0).toUpper().unicode() < 0x80 ? text.at(0).toUpper().unicode() : 0;
    } else if (key.code == controls::kKeyReturn) {
        text = QStringLiteral("\r");
    }
    if (key.code == controls::kKeyTab && (key.shift & controls::kShiftMask))
        code = Qt::Key_Backtab;
    QPointer<QWidget> alive(&widget);
    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
        // A list may take its choice, and close, before the press itself.
        if (!alive || !alive->isVisible())
            return;
        QKeyEvent event(type, code, ModifiersOf(key.shift), text);
        if (type == QEvent::ShortcutOverride)
            event.ignore();
        QCoreApplication::sendEvent(&widget, &event);
    }
}

void SendClick(QWidget& widget, const QPoint& place, bool twice) {
    QPointer<QWidget> alive(&widget);
    SendMouse(widget, QEvent::MouseButtonPress, place);
    if (alive)
        SendMouse(widget, QEvent::MouseButtonRelease, place);
    if (twice && alive)
        SendMouse(widget, QEvent::MouseButtonDblClick, place);
    if (twice && alive)
        SendMouse(widget, QEvent::MouseButtonRelease, place);
}

QWidget* WidgetHand::WidgetOf(const Control& control) {
    FormView* form = host_.ViewOf(control.GetForm());
    ControlView* view = form ? form->ViewOf(control) : nullptr;
    return view ? &view->Widget() : nullptr;
}

// The view of a control that the user can act on; nullptr with the reason.
ControlView* WidgetHand::Reach(Control& control, Outcome& outcome) {
    FormView* form = host_.ViewOf(control.GetForm());
    if (!form) {
        outcome = Outcome::Impossible(control.GetForm().Name() + " is not open");
        return nullptr;
    }
    form->Flush();
    ControlView* view = form->ViewOf(control);
    if (!view)
        outcome = Outcome::Impossible(control.FullName() + " has no widget");
    else if (!view->Widget().isVisible())
        outcome = Outcome::Impossible(control.FullName() + " is not visible");
    else if (!view->Widget().isEnabled())
        outcome = Outcome::Impossible(control.FullName() + " is disabled");
    else if (const controls::Form* top = controls::TopForm();
             top && top != &control.GetForm() && top->IsModal())
        outcome = Outcome::Impossible(control.GetForm().Name() + " waits for " + top->Name());
    else
        return view;
    return nullptr;
}

Outcome WidgetHand::Settle() {
    for (const controls::Form* form : std::vector<controls::Form*>(controls::OpenForms()))
        if (FormView* view = host_.ViewOf(*form))
            view->Flush();
    QCoreApplication::processEvents();
    if (HasError())
        throw *TakeError();
    return Outcome::Done();
}

Outcome WidgetHand::Focus(Control& control) {
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    if (!control.CanTakeFocus())
        return Outcome::Impossible(control.FullName() + " cannot take the focus");
    if (control.HasFocus())
        return Settle();
    QWidget* widget = view->FocusWidget();
    // Before the window is active the toolkit only notes the focus.
    if (!widget->window()->isActiveWindow())
        QApplication::setActiveWindow(widget->window());
    QFocusEvent came(QEvent::FocusIn, Qt::TabFocusReason);
    QCoreApplication::sendEvent(widget, &came);
    return Settle();
}

Outcome WidgetHand::TypeText(Control& control, std::string_view text) {
    if (control.GetKind() != Kind::TextBox)
        return Outcome::Impossible(control.FullName() + " cannot be typed into");
    if (Outcome focused = Focus(control); !focused || !control.HasFocus())
        return focused;
    QWidget* widget = WidgetOf(control);
    if (auto* line = qobject_cast<QLineEdit*>(widget))
        line->selectAll();
    else if (auto* lines = qobject_cast<QPlainTextEdit*>(widget))
        lines->selectAll();
    std::vector<Key> keys = KeysOf(text);
    if (keys.empty())
        keys.push_back({controls::kKeyDelete, 0, 0});
    for (const Key& key : keys) {
        // A routine may have sent the focus elsewhere, or closed the form.
        if (!control.GetForm().IsOpen() || !control.HasFocus())
            break;
        SendKey(*widget, key);
    }
    return Settle();
}

Outcome WidgetHand::PressKey(Control& control, const Key& key) {
    if (Outcome focused = Focus(control); !focused || !control.HasFocus())
        return focused;
    if (ControlView* view = host_.ViewOf(control.GetForm())->ViewOf(control))
        SendKey(*view->FocusWidget(), key);
    return Settle();
}

Outcome WidgetHand::Click(Control& control) {
    if (control.GetKind() == Kind::MenuItem) {
        Outcome pressed = control.Press();
        Settle();
        return pressed;
    }
    if (control.GetKind() == Kind::ComboBox || control.GetKind() == Kind::ListBox)
        return ClickEntry(control, static_cast<controls::ListControl&>(control).ListIndex);
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    QPoint place = view->Widget().rect().center();
    // A box takes clicks on its tick and caption alone, which stand at the left of a wide one.
    if (control.GetKind() == Kind::CheckBox || control.GetKind() == Kind::OptionButton)
        place.setX(std::min(place.x(), kTickWidth / 2));
    SendClick(view->Widget(), place);
    return Settle();
}

Outcome WidgetHand::DoubleClick(Control& control) {
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    QWidget* widget = &view->Widget();
    QPoint place = widget->rect().center();
    if (auto* list = qobject_cast<QAbstractItemView*>(widget)) {
        place = list->visualRect(list->currentIndex()).center();
        widget = list->viewport();
    }
    SendMouse(*widget, QEvent::MouseButtonDblClick, place);
    SendMouse(*widget, QEvent::MouseButtonRelease, place);
    return Settle();
}

Outcome WidgetHand::Check(Control& control, bool on) {
    bool isOn = false;
    if (control.GetKind() == Kind::CheckBox)
        isOn = static_cast<controls::CheckBox&>(control).Value == controls::kChecked;
    else if (control.GetKind() == Kind::OptionButton)
        isOn = static_cast<controls::OptionButton&>(control).Value;
    else
        return Outcome::Impossible(control.FullName() + " cannot be ticked");
    if (control.GetKind() == Kind::OptionButton && !on)
        return Outcome::Impossible(control.FullName() + " is cleared by setting another option");
    return isOn == on ? Focus(control) : Click(control);
}

Outcome WidgetHand::ClickEntry(Control& control, int entry) {
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    if (entry < 0 || entry >= static_cast<controls::ListControl&>(control).ListCount())
        return Outcome::Impossible(control.FullName() + " has no entry " + std::to_string(entry));
    QAbstractItemView* list = qobject_cast<QListView*>(&view->Widget());
    if (auto* combo = qobject_cast<QComboBox*>(&view->Widget())) {
        SendClick(*combo, combo->rect().center());
        list = combo->view();
        if (!list->isVisible()) // the focus was refused, or a message came in between
            return Settle();
    }
    const QModelIndex index = list->model()->index(entry, 0);
    list->setCurrentIndex(index);
    list->scrollTo(index);
    // The toolkit takes a click for part of the one that has opened the list, when it comes so soon.
    if (qobject_cast<QComboBox*>(&view->Widget()))
        SendKey(*list, {controls::kKeyReturn, 0, 13});
    else
        SendClick(*list->viewport(), list->visualRect(index).center());
    return Settle();
}

Outcome WidgetHand::Choose(Control& control, int entry) {
    if (control.GetKind() != Kind::ComboBox && control.GetKind() != Kind::ListBox)
        return Outcome::Impossible(control.FullName() + " cannot be chosen from");
    return ClickEntry(control, entry);
}

Outcome WidgetHand::ChooseText(Control& control, std::string_view text) {
    if (control.GetKind() != Kind::ComboBox && control.GetKind() != Kind::ListBox)
        return Outcome::Impossible(control.FullName() + " cannot be chosen from");
    const int entry = static_cast<controls::ListControl&>(control).FindText(text);
    if (entry < 0)
        return Outcome::Impossible(control.FullName() + " has no entry '" + std::string(text) + "'");
    return ClickEntry(control, entry);
}

Outcome WidgetHand::PickTab(Control& control, int tab) {
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    auto* bar = qobject_cast<QTabBar*>(&view->Widget());
    if (!bar || tab < 0 || tab >= bar->count())
        return Outcome::Impossible(control.FullName() + " has no tab " + std::to_string(tab));
    SendClick(*bar, bar->tabRect(tab).center());
    return Settle();
}

Outcome WidgetHand::PickTabText(Control& control, std::string_view caption) {
    if (control.GetKind() != Kind::TabStrip)
        return Outcome::Impossible(control.FullName() + " has no tabs");
    const auto& strip = static_cast<controls::TabStrip&>(control);
    for (int tab = 0; tab < strip.TabCount(); ++tab)
        if (runtime::EqualText(controls::PlainCaption(strip.TabCaption(tab)),
                               controls::PlainCaption(caption)))
            return PickTab(control, tab);
    return Outcome::Impossible(control.FullName() + " has no tab '" + std::string(caption) + "'");
}

Outcome WidgetHand::PickDate(Control& control, runtime::Date date) {
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    auto* button = dynamic_cast<DateButton*>(&view->Widget());
    if (!button)
        return Outcome::Impossible(control.FullName() + " cannot be given a date");
    SendClick(*button, button->rect().center());
    if (QCalendarWidget* calendar = button->Calendar()) {
        calendar->setSelectedDate(QDate(1899, 12, 30).addDays(static_cast<qint64>(std::floor(date.days))));
        if (auto* days = calendar->findChild<QTableView*>())
            SendKey(*days, {controls::kKeyReturn, 0, 13});
    }
    return Settle();
}

Outcome WidgetHand::Spin(Control& control, int steps) {
    Outcome outcome = Outcome::Done();
    ControlView* view = Reach(control, outcome);
    if (!view)
        return outcome;
    auto* buttons = dynamic_cast<StepButtons*>(&view->Widget());
    if (!buttons)
        return Outcome::Impossible(control.FullName() + " cannot be spun");
    QWidget& arrow = steps > 0 ? buttons->Up() : buttons->Down();
    for (int step = 0; step < std::abs(steps); ++step)
        SendClick(arrow, arrow.rect().center());
    return Settle();
}

// ---- Grids

Outcome WidgetHand::GoToRow(Grid& grid, long row) {
    Outcome outcome = Outcome::Done();
    if (!Reach(grid, outcome))
        return outcome;
    auto& table = static_cast<QTableView&>(*WidgetOf(grid));
    const bool newRow = row == grid.RowCount() && grid.HasNewRow();
    if (row < 0 || (row >= grid.RowCount() && !newRow))
        return Outcome::Impossible(grid.FullName() + " has no row " + std::to_string(row) + ", it has " +
                                   std::to_string(grid.RowCount()));
    const int section = static_cast<int>(row);
    table.scrollTo(table.model()->index(section, std::max(0, grid.Col.Get())));
    QHeaderView& rows = *table.verticalHeader();
    const QPoint place(rows.width() / 2,
                       rows.sectionViewportPosition(section) + rows.sectionSize(section) / 2);
    SendClick(*rows.viewport(), place);
    return Settle();
}

Outcome WidgetHand::GoToNewRow(Grid& grid) {
    if (!grid.HasNewRow())
        return Outcome::Impossible(grid.FullName() + " takes no new rows");
    return GoToRow(grid, grid.RowCount());
}

Outcome WidgetHand::MoveToColumn(Grid& grid, int col) {
    if (Outcome focused = Focus(grid); !focused || !grid.HasFocus())
        return focused;
    if (col < 0 || col >= grid.ColumnCount() || !grid.Columns(col).Visible)
        return Outcome::Impossible(grid.FullName() + " shows no column " + std::to_string(col));
    GridView* view = ViewOfGrid(host_, grid);
    if (!view)
        return Outcome::Impossible(grid.FullName() + " has no widget");
    auto& table = static_cast<QTableView&>(view->Widget());
    const QModelIndex cell = table.model()->index(static_cast<int>(grid.Row.Get()), col);
    if (col == grid.Col) {
        if (grid.EditActive)
            SendKey(*view->FocusWidget(), {controls::kKeyReturn, 0, 13});
    } else if (cell.isValid() && !grid.Columns(col).ShowsPictures()) {
        table.scrollTo(cell);
        SendClick(*table.viewport(), table.visualRect(cell).center());
    } else {
        // A click in a picture cell would change it; the arrows move without a click.
        const int code = col > grid.Col ? controls::kKeyRight : controls::kKeyLeft;
        for (int step = 0; step < grid.ColumnCount() && grid.Col != col; ++step)
            SendKey(table, {code, 0, 0});
    }
    return Settle();
}

Outcome WidgetHand::EditCell(Grid& grid, int col, std::string_view text) {
    if (Outcome moved = MoveToColumn(grid, col); !moved || grid.Col != col || !grid.HasFocus())
        return moved;
    const controls::Column& column = grid.Columns(col);
    if (column.ShowsPictures() && text == " ")
        return ToggleCell(grid, col);
    if (column.ShowsPictures())
        return Outcome::Impossible(grid.FullName() + ": column " + std::to_string(col) +
                                   " shows pictures, which are clicked");
    GridView* view = ViewOfGrid(host_, grid);
    const int entry = column.ValueItems.Translate ? column.ValueItems.FindShown(text) : -1;
    if (entry >= 0 && column.ValueItems.Presentation == controls::Presentation::DropDown) {
        if (QListView* list = view->DropDown()) {
            const QModelIndex index = list->model()->index(entry, 0);
            list->setCurrentIndex(index);
            SendKey(*list, {controls::kKeyReturn, 0, 13});
        }
        return Settle();
    }
    std::vector<Key> keys = KeysOf(text);
    if (keys.empty()) {
        SendKey(*view->FocusWidget(), {controls::kKeyF1 + 1, 0, 0});
        if (view->Editor())
            view->Editor()->selectAll();
        keys.push_back({controls::kKeyDelete, 0, 0});
    }
    bool begun = grid.EditActive;
    for (const Key& key : keys) {
        if (!grid.HasFocus())
            break;
        if (!begun && key.code == controls::kKeyDelete)
            return Settle(); // the edit was refused; Delete alone would be for the row
        SendKey(*view->FocusWidget(), key);
        begun = grid.EditActive;
        if (!begun && key.character != ' ')
            break; // the cell is not to be edited
    }
    if (grid.EditActive)
        SendKey(*view->FocusWidget(), {controls::kKeyReturn, 0, 13});
    return Settle();
}

Outcome WidgetHand::ToggleCell(Grid& grid, int col) {
    Outcome outcome = Outcome::Done();
    if (!Reach(grid, outcome))
        return outcome;
    auto& table = static_cast<QTableView&>(*WidgetOf(grid));
    const QModelIndex cell = table.model()->index(static_cast<int>(grid.Row.Get()), col);
    if (!cell.isValid() || !grid.Columns(col).ShowsPictures())
        return Outcome::Impossible(grid.FullName() + ": column " + std::to_string(col) +
                                   " shows no pictures");
    table.scrollTo(cell);
    SendClick(*table.viewport(), table.visualRect(cell).center());
    return Settle();
}

Outcome WidgetHand::CommitRow(Grid& grid) {
    if (!grid.HasFocus()) { // a row is left from elsewhere without going to it
        Outcome reachable = grid.Reachable();
        return reachable ? grid.CommitRow() : reachable;
    }
    return PressKey(grid, {controls::kKeyReturn, controls::kCtrlMask, 0});
}

Outcome WidgetHand::DeleteRow(Grid& grid) {
    if (Outcome focused = Focus(grid); !focused || !grid.HasFocus())
        return focused;
    if (grid.EditActive) {
        if (GridView* view = ViewOfGrid(host_, grid))
            SendKey(*view->FocusWidget(), {controls::kKeyReturn, 0, 13});
    }
    return PressKey(grid, {controls::kKeyDelete, 0, 0});
}

Outcome WidgetHand::PressHead(Grid& grid, int col) {
    Outcome outcome = Outcome::Done();
    if (!Reach(grid, outcome))
        return outcome;
    if (col < 0 || col >= grid.ColumnCount() || !grid.Columns(col).Visible)
        return Outcome::Impossible(grid.FullName() + " shows no column " + std::to_string(col));
    auto& heads = *static_cast<QTableView&>(*WidgetOf(grid)).horizontalHeader();
    SendClick(*heads.viewport(),
              {heads.sectionViewportPosition(col) + heads.sectionSize(col) / 2, heads.height() / 2});
    return Settle();
}

Outcome WidgetHand::DragRow(Grid& from, long row, Grid& to, long before) {
    Outcome outcome = Outcome::Done();
    if (!Reach(from, outcome) || !Reach(to, outcome))
        return outcome;
    auto& source = static_cast<QTableView&>(*WidgetOf(from));
    auto& target = static_cast<QTableView&>(*WidgetOf(to));
    const auto placeOf = [](QTableView& table, long wanted) { // its upper part
        const int rows = table.model()->rowCount();
        const int at = static_cast<int>(wanted);
        if (at >= rows)
            return QPoint(table.viewport()->width() / 2, table.viewport()->height() - 2);
        table.scrollTo(table.model()->index(at, 0));
        return QPoint(table.viewport()->width() / 2, table.rowViewportPosition(at) + table.rowHeight(at) / 4);
    };
    if (row < 0 || row >= from.RowCount())
        return Outcome::Impossible(from.FullName() + " has no row " + std::to_string(row));
    QWidget& viewport = *source.viewport();
    const QPoint start = placeOf(source, row);
    const QPoint end = viewport.mapFromGlobal(target.viewport()->mapToGlobal(placeOf(target, before)));
    SendMouse(viewport, QEvent::MouseButtonPress, start);
    // In two steps: the first one only tells that this is no click.
    SendMouse(viewport, QEvent::MouseMove, (start + end) / 2);
    SendMouse(viewport, QEvent::MouseMove, end);
    SendMouse(viewport, QEvent::MouseButtonRelease, end);
    return Settle();
}

// ---- Forms

Outcome WidgetHand::Leave(controls::Form& form) {
    Outcome left = form.Leave();
    Settle();
    return left;
}

Outcome WidgetHand::CloseForm(controls::Form& form) {
    FormWindow* window = host_.WindowOf(form);
    if (!window)
        return Outcome::Impossible(form.Name() + " is not open");
    if (const controls::Form* top = controls::TopForm(); top && top != &form && top->IsModal())
        return Outcome::Impossible(form.Name() + " waits for " + top->Name());
    window->close();
    return Settle();
}

} // namespace quillary::qt
