#pragma once

#include "platform/controls/control.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>

class QKeyEvent;
class QMouseEvent;

namespace quillary::qt {

class FormView;

// Keeps one control and its widget in step: what code sets is shown, what the user does becomes a gesture
// of the control. The widget decides nothing by itself: after a gesture it shows what the control holds.
class ControlView : public QObject {
public:
    ControlView(FormView& form, controls::Control& control, QWidget& widget);
    ~ControlView() override;

    controls::Control& GetControl() const { return control_; }
    QWidget& Widget() const { return widget_; }
    // The widget that has the keyboard when the control has the focus.
    virtual QWidget* FocusWidget() { return &widget_; }
    // The widgets whose keys and mouse presses belong to the control.
    virtual QList<QWidget*> InputWidgets() { return {&widget_}; }

    // Shows all that the control holds.
    void ShowAll();
    // Something of the control has changed.
    virtual void Show(controls::Aspect aspect);
    // Shows now what was put off to the next turn of the event loop.
    virtual void Flush() {}

    // A key in one of the input widgets; true when the widget is not to see it. By default every key goes
    // to the control.
    virtual bool KeyPressed(const QKeyEvent& event);
    // Whether the widget's own shortcut handling is to leave a key to KeyPressed.
    virtual bool WantsKey(const QKeyEvent& event);
    // A mouse press in one of the input widgets. By default it first moves the focus to the control; true
    // when the widget is not to see the press.
    virtual bool MousePressed(QWidget& on, const QMouseEvent& event);

    // Whether the mouse wheel over the widget is for the widget; else it scrolls the page.
    virtual bool TakesWheel() { return false; }
    // Any other event of an input widget; true when the widget is not to see it.
    virtual bool OtherEvent(QWidget&, QEvent&) { return false; }

    // The control is going, or the form has closed: no way leads to it any more.
    void Detach();
    bool IsDetached() const noexcept { return detached_; }

protected:
    // Called once when the view is detached: what reads the control must stop.
    virtual void Released() {}
    // Runs a gesture; false when the control is out of reach afterwards.
    bool Do(const std::function<void()>& gesture);
    // Moves the focus to the control as a mouse press does. false: it was refused, or a message came in
    // between and the press has had its effect.
    bool ReachByMouse();
    FormView& Form() const { return form_; }
    // For widgets that edit text by themselves: takes the key through the events of form and control. true
    // when the widget is not to see it: it was swallowed, or another character was typed in its place, or
    // `leaves` says that it is the form's and it went there.
    bool FilterKey(const QKeyEvent& event, QWidget& editor,
                   const std::function<bool(const controls::Key&)>& leaves);

private:
    void ShowColours();
    void ShowAccessibleName();
    FormView& form_;
    controls::Control& control_;
    QWidget& widget_;
    bool detached_ = false, passing_ = false;
};

// The view that fits the control. Raises 13, naming control and file, when the widget is of another kind
// than the control needs.
std::unique_ptr<ControlView> MakeView(FormView& form, controls::Control& control, QWidget& widget,
                                      const std::string& layout);
// Whether controls of this kind are seen on the form.
bool HasWidget(controls::Kind kind);

} // namespace quillary::qt
