#pragma once

#include "platform/controls/form.h"
#include "platform/qt/control_view.h"

#include <QObject>
#include <QPointer>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class QStackedWidget;
class QWidget;

namespace quillary::controls {
class Panel;
}

namespace quillary::qt {

// Joins the controls of a form to the widgets of its layouts by their names, and keeps focus and keys of
// both sides together. The widgets of a panel that names a layout of its own are made when the panel is
// first shown. A PagePlace whose panel names none stays empty, and the controls on it have no widgets.
class FormView : public QObject {
public:
    // window: the empty widget that the form's layout fills. Raises 53 for a layout that does not exist and
    // 5 for a control that has no widget of its name, naming control and file; all layouts are looked
    // through, also those that are not built yet.
    FormView(controls::Form& form, QWidget& window);
    ~FormView() override;

    controls::Form& GetForm() const { return form_; }
    QWidget& Window() const { return window_; }
    // The form has closed; nothing is told to its controls any more.
    void Detach();
    bool IsDetached() const noexcept { return detached_; }

    // The view of a control; its page is built where that is still to be done. nullptr for a control
    // without a widget.
    ControlView* ViewOf(const controls::Control& control);
    // The view to which a widget, or one of those around it, belongs; nullptr.
    ControlView* ViewAt(const QWidget* widget) const;
    // Everything that waits for the event loop is shown now.
    void Flush();

    // The widget of the control that has the focus gets the keyboard.
    void ShowFocus(Qt::FocusReason reason);
    void SetFocusReason(Qt::FocusReason reason) { focusReason_ = reason; }
    // A control that is shown has this letter underlined.
    bool HasAccelerator(char32_t letter) const;
    // A widget that a view makes while it runs (an editor in a grid) sends its keys here, too.
    void Watch(QWidget& widget) { widget.installEventFilter(this); }

    // The button that was pressed last: a menu that its click opens hangs below it.
    void SetPressed(QWidget* button) { pressed_ = button; }
    QWidget* Pressed() const { return pressed_; }

    // Which pages are seen: of panels that share a place the one brought to the top last.
    void ShowPanels();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static std::string LayoutOf(const controls::Form& form);
    // The file that holds the control's widget; empty for one on a page that is not built yet, which has
    // none.
    std::string LayoutOf(const controls::Control& control) const;
    void CheckNames();
    void Build(const std::string& layout, QWidget& parent);
    void BindAll(const std::string& layout, QWidget& parent);
    void BuildPanel(controls::Panel& panel);
    void Bind(controls::Control& control, QWidget& widget, const std::string& layout);
    void Told(controls::Aspect aspect, controls::Control* control);
    void ControlGone(controls::Control* control);
    bool WindowHasKeyboard() const;
    bool KeyPressed(ControlView& view, const QKeyEvent& event);
    void FocusCame(ControlView& view, Qt::FocusReason reason);

    controls::Form& form_;
    QWidget& window_;
    std::unordered_map<const controls::Control*, std::unique_ptr<ControlView>> views_;
    std::vector<std::unique_ptr<ControlView>> gone_;
    std::unordered_map<const QWidget*, ControlView*> byWidget_;
    std::set<std::string> built_;
    std::set<const controls::Control*> pagePlaces_;
    Qt::FocusReason focusReason_ = Qt::OtherFocusReason;
    int building_ = 0;
    QPointer<QWidget> pressed_;
    bool showingFocus_ = false, detached_ = false;
};

// Counts up with each nested event loop that the view runs (dialogs, message boxes, menus).
int ModalLoops();
void CountModalLoop();

} // namespace quillary::qt
