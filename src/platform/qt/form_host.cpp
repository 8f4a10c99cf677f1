#include "platform/qt/form_host.h"

#include "platform/controls/form.h"
#include "platform/controls/menu.h"
#include "platform/qt/form_window.h"
#include "platform/qt/guard.h"
#include "platform/qt/icons.h"
#include "platform/qt/text.h"

#include <QApplication>
#include <QEventLoop>
#include <QMenu>
#include <QScreen>

namespace quillary::qt {

QtFormHost::QtFormHost() {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    controls::SetFormHost(this);
}

QtFormHost::~QtFormHost() {
    controls::SetFormHost(nullptr);
    for (auto& [form, window] : windows_)
        delete window.data();
}

FormWindow* QtFormHost::WindowOf(const controls::Form& form) const {
    const auto found = windows_.find(&form);
    return found == windows_.end() ? nullptr : found->second.data();
}

FormView* QtFormHost::ViewOf(const controls::Form& form) const {
    FormWindow* window = WindowOf(form);
    return window ? &window->View() : nullptr;
}

QWidget* QtFormHost::TopWindow() const {
    const controls::Form* top = controls::TopForm();
    return top ? WindowOf(*top) : nullptr;
}

void QtFormHost::FormShown(controls::Form& form, bool modal) {
    if (FormWindow* there = WindowOf(form)) {
        there->show();
        there->raise();
        there->activateWindow();
        return;
    }
    QWidget* below = nullptr;
    for (const controls::Form* open : controls::OpenForms())
        if (open != &form && WindowOf(*open))
            below = WindowOf(*open);
    auto* window = new FormWindow(form, modal ? below : nullptr, modal);
    windows_[&form] = window;
    if (firstShown_)
        window->SetShown([window, shown = std::exchange(firstShown_, nullptr)] { shown(*window); });
    window->Place();
    window->show();
    // Where no window manager does: without it the keyboard works, and nobody sees where it is.
    window->activateWindow();
}

void QtFormHost::FormHidden(controls::Form& form) {
    if (FormWindow* window = WindowOf(form)) {
        windows_.erase(&form);
        const bool wasDialog = window->isModal();
        window->Finish();
        // The keyboard goes back to the window below, also where no window manager sees to it.
        if (QWidget* below = wasDialog ? TopWindow() : nullptr)
            below->activateWindow();
    }
    if (const auto loop = loops_.find(&form); loop != loops_.end())
        loop->second->quit();
    if (mainLoop_ && controls::OpenForms().empty())
        mainLoop_->quit();
}

void QtFormHost::RunModal(controls::Form& form) {
    CountModalLoop();
    QEventLoop loop;
    // A routine of the form may wait for it once more; both waits end when it closes.
    QEventLoop* outer = std::exchange(loops_[&form], &loop);
    if (form.IsOpen() && !HasError())
        loop.exec();
    if (outer) {
        loops_[&form] = outer;
        if (!form.IsOpen())
            outer->quit();
    } else {
        loops_.erase(&form);
    }
    // An error within the dialog that nobody took ends the routine that showed it, too.
    if (HasError())
        throw *TakeError();
}

void QtFormHost::PopupMenu(controls::Form& form, controls::MenuItem& menu, int left, int top) {
    FormWindow* window = WindowOf(form);
    if (!window)
        return;
    QMenu popup(window);
    std::map<QAction*, controls::MenuItem*> entries;
    for (controls::MenuItem* entry : menu.Entries()) {
        if (!entry->Visible)
            continue;
        if (entry->Caption == "-") {
            popup.addSeparator();
            continue;
        }
        QAction* action = popup.addAction(ToQt(entry->Caption.Get()));
        action->setEnabled(entry->Enabled);
        action->setCheckable(entry->Checked);
        action->setChecked(entry->Checked);
        entries[action] = entry;
    }
    if (entries.empty())
        return;
    QPoint place = window->mapToGlobal(QPoint(PixelsOf(left), PixelsOf(top)));
    QWidget* button = window->View().Pressed();
    // Opened by a key: below the button of the title bar all the same.
    for (const controls::Control* control : form.Controls())
        if (!button && control->GetKind() == controls::Kind::TitleButton && control->IsShown())
            if (const ControlView* view = window->View().ViewOf(*control))
                button = &view->Widget();
    if (left == 0 && top == 0 && button && button->isVisible())
        place = button->mapToGlobal(QPoint(button->width() - popup.sizeHint().width(), button->height() + 2));
    CountModalLoop();
    QPointer<FormWindow> alive(window);
    const QAction* chosen = popup.exec(place);
    // Pressed when the menu is gone, as its routine may run for long.
    if (!alive || !chosen)
        return;
    controls::MenuItem* entry = entries.at(const_cast<QAction*>(chosen));
    entry->Press();
}

void QtFormHost::DoEvents() {
    QCoreApplication::processEvents();
}

int QtFormHost::ScreenWidth() const {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return (screen ? screen->availableSize().width() : 0) * kTwipsPerPixel;
}

int QtFormHost::ScreenHeight() const {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return (screen ? screen->availableSize().height() : 0) * kTwipsPerPixel;
}

void QtFormHost::Run() {
    QEventLoop loop;
    mainLoop_ = &loop;
    if (!controls::OpenForms().empty() && !HasError())
        loop.exec();
    mainLoop_ = nullptr;
    if (HasError())
        throw *TakeError();
}

} // namespace quillary::qt
