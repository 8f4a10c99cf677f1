#pragma once

#include "platform/controls/form_host.h"
#include "platform/runtime/run_time_error.h"

#include <QPoint>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>

class QEventLoop;
class QMenu;
class QWidget;

namespace quillary::qt {

class FormView;
class FormWindow;

// Shows forms as windows. Those of dialogs block the windows below them until the dialog is closed.
class QtFormHost : public controls::FormHost {
public:
    QtFormHost();
    ~QtFormHost() override;

    void FormShown(controls::Form& form, bool modal) override;
    void FormHidden(controls::Form& form) override;
    void RunModal(controls::Form& form) override;
    void PopupMenu(controls::Form& form, controls::MenuItem& menu, int left, int top) override;
    void DoEvents() override;
    int ScreenWidth() const override;
    int ScreenHeight() const override;

    // The event loop of the program: returns when no form is open any more. An error that no handler took
    // (guard.h) is raised.
    void Run();
    // Called once, when the first window has been drawn.
    void SetFirstShown(std::function<void(QWidget&)> shown) { firstShown_ = std::move(shown); }

    // The window of an open form; nullptr.
    FormWindow* WindowOf(const controls::Form& form) const;
    FormView* ViewOf(const controls::Form& form) const;
    // The window of the form on top, as the parent of boxes; nullptr.
    QWidget* TopWindow() const;

private:
    std::map<const controls::Form*, QPointer<FormWindow>> windows_;
    std::map<const controls::Form*, QEventLoop*> loops_;
    QEventLoop* mainLoop_ = nullptr;
    std::function<void(QWidget&)> firstShown_;
};

} // namespace quillary::qt
