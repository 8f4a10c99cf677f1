#include "platform/qt/form_view.h"

#include "platform/controls/panel.h"
#include "platform/controls/tab_strip.h"
#include "platform/qt/guard.h"
#include "platform/qt/keys.h"
#include "platform/qt/layouts.h"
#include "platform/qt/widgets.h"

#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollArea>
#include <QStackedWidget>

#include <algorithm>

namespace quillary::qt {

using controls::Aspect;
using controls::Control;
using controls::Kind;
using controls::Panel;

namespace {

int& LoopCount() {
    static int loops = 0;
    return loops;
}

QHash<QString, QWidget*> WidgetsByName(QWidget& parent) {
    QHash<QString, QWidget*> byName;
    for (QWidget* widget : parent.findChildren<QWidget*>())
        byName.insert(widget->objectName(), widget);
    return byName;
}

[[noreturn]] void ThrowMissing(const Control& control, const std::string& layout) {
    throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall, control.GetForm().Name(),
                                "The control " + control.FullName() + " has no widget " +
                                    control.WidgetName() + " in " + layout + ".ui");
}

// The scroll area around a page follows the focus.
void ScrollTo(QWidget* widget) {
    for (QWidget* around = widget->parentWidget(); around; around = around->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(around))
            area->ensureWidgetVisible(widget);
}

} // namespace

int ModalLoops() {
    return LoopCount();
}

void CountModalLoop() {
    ++LoopCount();
}

FormView::FormView(controls::Form& form, QWidget& window) : form_(form), window_(window) {
    const std::string layout = LayoutOf(form_);
    FindLayout(layout).build(window_);
    built_.insert(layout);
    const QHash<QString, QWidget*> widgets = WidgetsByName(window_);
    for (const Control* control : form_.Controls())
        if (dynamic_cast<PagePlace*>(widgets.value(QString::fromStdString(control->WidgetName()))))
            pagePlaces_.insert(control);
    CheckNames();
    form_.SetObserver([this](Aspect aspect, Control* control) { Told(aspect, control); });
    window_.installEventFilter(this);
    try {
        BindAll(layout, window_);
    } catch (...) {
        Detach(); // a form that cannot be shown tells no view that is gone
        throw;
    }
    Told(Aspect::Caption, nullptr);
    Told(Aspect::Enabled, nullptr);
    Told(Aspect::Pointer, nullptr);
}

FormView::~FormView() {
    Detach();
}

void FormView::Detach() {
    if (detached_)
        return;
    detached_ = true;
    form_.SetObserver(nullptr);
    for (auto& [control, view] : views_)
        view->Detach();
}

// ---- Building

std::string FormView::LayoutOf(const controls::Form& form) {
    if (!form.Layout.empty())
        return form.Layout;
    std::string name = form.Name();
    for (char& letter : name)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return name;
}

std::string FormView::LayoutOf(const Control& control) const {
    for (const Panel* panel = control.Container(); panel; panel = panel->Container())
        if (!panel->Layout.empty())
            return panel->Layout;
        else if (pagePlaces_.contains(panel))
            return {};
    return LayoutOf(form_);
}

void FormView::CheckNames() {
    std::unordered_map<std::string, std::set<std::string_view>> names;
    for (const Control* control : form_.Controls()) {
        if (!HasWidget(control->GetKind()))
            continue;
        const std::string file = LayoutOf(*control);
        if (file.empty())
            continue;
        auto known = names.find(file);
        if (known == names.end()) {
            const Layout& layout = FindLayout(file);
            known =
                names.emplace(file, std::set<std::string_view>(layout.widgets.begin(), layout.widgets.end()))
                    .first;
        }
        if (!known->second.contains(control->WidgetName()))
            ThrowMissing(*control, file);
    }
}

void FormView::Build(const std::string& file, QWidget& parent) {
    if (!built_.insert(file).second)
        return;
    FindLayout(file).build(parent);
    BindAll(file, parent);
}

void FormView::BindAll(const std::string& file, QWidget& parent) {
    const QHash<QString, QWidget*> widgets = WidgetsByName(parent);
    std::vector<Control*> here;
    for (Control* control : form_.Controls())
        if (HasWidget(control->GetKind()) && !views_.contains(control) && LayoutOf(*control) == file)
            here.push_back(control);
    for (Control* control : here) {
        QWidget* widget = widgets.value(QString::fromStdString(control->WidgetName()));
        if (!widget)
            ThrowMissing(*control, file);
        Bind(*control, *widget, file);
    }
    ++building_;
    for (Control* control : here)
        views_.at(control)->ShowAll();
    --building_;
    ShowPanels();
}

void FormView::Bind(Control& control, QWidget& widget, const std::string& layout) {
    std::unique_ptr<ControlView> view = MakeView(*this, control, widget, layout);
    byWidget_[&widget] = view.get();
    for (QWidget* input : view->InputWidgets()) {
        byWidget_[input] = view.get();
        input->installEventFilter(this);
        // A mouse press goes through the control, which decides where the focus is.
        if (control.GetKind() != Kind::Panel && input->focusPolicy() != Qt::NoFocus)
            input->setFocusPolicy(Qt::TabFocus);
    }
    views_[&control] = std::move(view);
}

void FormView::BuildPanel(Panel& panel) {
    if (panel.Layout.empty() || built_.contains(panel.Layout))
        return;
    if (ControlView* view = ViewOf(panel))
        Build(panel.Layout, view->Widget());
}

void FormView::ShowPanels() {
    if (building_ > 0)
        return;
    std::map<QStackedWidget*, Panel*> tops;
    for (Control* control : form_.Controls()) {
        if (control->GetKind() != Kind::Panel || !views_.contains(control))
            continue;
        auto& panel = static_cast<Panel&>(*control);
        QWidget& widget = views_.at(control)->Widget();
        const bool seen = panel.Visible && panel.OnCurrentTab();
        auto* stack = qobject_cast<QStackedWidget*>(widget.parentWidget());
        if (stack) {
            Panel*& top = tops[stack];
            if (seen && (!top || panel.StackOrder() >= top->StackOrder()))
                top = &panel;
        } else {
            widget.setVisible(seen);
        }
    }
    for (const auto& [stack, top] : tops) {
        if (top) {
            stack->setCurrentWidget(&views_.at(top)->Widget());
            continue;
        }
        auto* empty = stack->findChild<QWidget*>(QStringLiteral("empty_page"), Qt::FindDirectChildrenOnly);
        if (!empty) {
            empty = new QWidget;
            empty->setObjectName(QStringLiteral("empty_page"));
            stack->addWidget(empty);
        }
        stack->setCurrentWidget(empty);
    }
    // What is shown now is built now.
    for (Control* control : std::vector<Control*>(form_.Controls()))
        if (control->GetKind() == Kind::Panel && control->IsShown() && views_.contains(control))
            BuildPanel(static_cast<Panel&>(*control));
}

ControlView* FormView::ViewOf(const Control& control) {
    for (Panel* panel = control.Container(); panel; panel = panel->Container())
        if (!panel->Layout.empty()) {
            BuildPanel(*panel);
            break;
        }
    const auto found = views_.find(&control);
    return found == views_.end() ? nullptr : found->second.get();
}

ControlView* FormView::ViewAt(const QWidget* widget) const {
    for (; widget && widget != &window_; widget = widget->parentWidget())
        if (const auto found = byWidget_.find(widget); found != byWidget_.end())
            return found->second->IsDetached() ? nullptr : found->second; // one that goes takes no events
    return nullptr;
}

void FormView::Flush() {
    // What is shown may build a page, and with it more views.
    std::vector<ControlView*> present;
    for (auto& [control, view] : views_)
        present.push_back(view.get());
    for (ControlView* view : present)
        view->Flush();
}

// ---- What the form tells

void FormView::Told(Aspect aspect, Control* control) {
    switch (aspect) {
    case Aspect::Focus:
        ShowFocus(focusReason_);
        break;
    case Aspect::Controls:
        ControlGone(control);
        break;
    case Aspect::Caption:
        window_.setWindowTitle(QString::fromStdString(form_.Caption));
        break;
    case Aspect::Pointer:
        if (form_.MousePointer == controls::kPointerHourglass)
            window_.setCursor(Qt::WaitCursor);
        else
            window_.unsetCursor();
        break;
    case Aspect::Enabled:
        window_.setEnabled(form_.Enabled);
        break;
    default:
        break;
    }
}

void FormView::ControlGone(Control* control) {
    const auto& present = form_.Controls();
    if (std::find(present.begin(), present.end(), control) != present.end())
        return;
    const auto found = views_.find(control);
    if (found == views_.end())
        return;
    found->second->Detach();
    // The toolkit gives its keyboard to some neighbour; that is no move of the user's.
    const bool before = std::exchange(showingFocus_, true);
    found->second->Widget().hide();
    showingFocus_ = before;
    std::erase_if(byWidget_, [&](const auto& entry) { return entry.second == found->second.get(); });
    // It may be the very view that is at work.
    gone_.push_back(std::move(found->second));
    views_.erase(found);
}

// ---- Focus and keys

void FormView::ShowFocus(Qt::FocusReason reason) {
    if (detached_)
        return;
    Control* active = form_.ActiveControl();
    const bool before = std::exchange(showingFocus_, true);
    if (!WindowHasKeyboard()) {
        if (ControlView* view = ViewOf(*active)) {
            QWidget* widget = view->FocusWidget();
            // Whoever comes by key, or is led here by Enter, types over what is there; a click places the
            // cursor.
            if (!widget->hasFocus()) {
                widget->setFocus(reason);
                if (auto* line = qobject_cast<QLineEdit*>(widget); line && reason != Qt::MouseFocusReason)
                    line->selectAll();
            }
            ScrollTo(widget);
        }
    } else if (QWidget* focused = window_.focusWidget()) {
        focused->clearFocus();
        window_.setFocus(Qt::OtherFocusReason);
    }
    showingFocus_ = before;
}

void FormView::FocusCame(ControlView& view, Qt::FocusReason reason) {
    if (showingFocus_ || detached_ || reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
        return;
    Control& control = view.GetControl();
    if (control.HasFocus() || control.GetKind() == Kind::Panel)
        return;
    bool moved = false;
    QPointer<FormView> alive(this);
    Guarded([&] { moved = control.Focus().IsDone(); });
    if (!alive || detached_ || moved)
        return;
    // Not within the toolkit's own change of focus.
    QMetaObject::invokeMethod(
        this, [this] { Guarded([this] { ShowFocus(Qt::OtherFocusReason); }); }, Qt::QueuedConnection);
}

bool FormView::HasAccelerator(char32_t letter) const {
    if (letter == 0)
        return false;
    return std::any_of(form_.Controls().begin(), form_.Controls().end(), [&](const Control* control) {
        if (!control->IsShown())
            return false;
        if (control->GetKind() != Kind::TabStrip)
            return controls::Accelerator(control->CaptionText()) == letter;
        const auto& strip = static_cast<const controls::TabStrip&>(*control);
        for (int tab = 0; tab < strip.TabCount(); ++tab)
            if (strip.TabKey(tab) == letter)
                return true;
        return false;
    });
}

bool FormView::KeyPressed(ControlView& view, const QKeyEvent& event) {
    QPointer<FormView> alive(this);
    focusReason_ = event.key() == Qt::Key_Tab       ? Qt::TabFocusReason
                   : event.key() == Qt::Key_Backtab ? Qt::BacktabFocusReason
                                                    : Qt::OtherFocusReason;
    const bool used = view.KeyPressed(event);
    if (alive)
        focusReason_ = Qt::OtherFocusReason;
    return used;
}

// No control has the focus, or a panel, which has no widget for keys (a page that is empty).
bool FormView::WindowHasKeyboard() const {
    const Control* active = form_.ActiveControl();
    return !active || active->GetKind() == Kind::Panel;
}

bool FormView::eventFilter(QObject* watched, QEvent* event) {
    if (detached_ || !watched->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    ControlView* view = ViewAt(widget);
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (view && view->WantsKey(*static_cast<QKeyEvent*>(event))) {
            event->accept();
            return true;
        }
        return false;
    case QEvent::KeyPress:
        if (view)
            return KeyPressed(*view, *static_cast<QKeyEvent*>(event));
        if (widget == &window_ && WindowHasKeyboard()) {
            const controls::Key key = KeyOf(*static_cast<QKeyEvent*>(event));
            Guarded([&] { form_.PressKey(key); });
            return true;
        }
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return view && view->MousePressed(*widget, *static_cast<QMouseEvent*>(event));
    case QEvent::FocusIn:
        if (view)
            FocusCame(*view, static_cast<QFocusEvent*>(event)->reason());
        return view && view->OtherEvent(*widget, *event);
    case QEvent::Wheel:
        // The wheel scrolls the page; it changes a list or a date only where the keyboard is.
        if (view && !view->TakesWheel()) {
            event->ignore();
            return true;
        }
        return false;
    default:
        return view && view->OtherEvent(*widget, *event);
    }
}

} // namespace quillary::qt
