#include "platform/qt/control_view.h"

#include "platform/controls/form.h"
#include "platform/qt/form_view.h"
#include "platform/qt/guard.h"
#include "platform/qt/keys.h"
#include "platform/qt/text.h"
#include "platform/qt/views.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>

namespace quillary::qt {

using controls::Aspect;
using controls::Kind;

ControlView::ControlView(FormView& form, controls::Control& control, QWidget& widget)
    : form_(form), control_(control), widget_(widget) {
    control_.SetObserver([this](Aspect aspect) { Show(aspect); });
}

ControlView::~ControlView() {
    Detach();
}

void ControlView::Detach() {
    if (detached_)
        return;
    detached_ = true;
    control_.SetObserver(nullptr);
    Released();
}

void ControlView::ShowAll() {
    for (const Aspect aspect : {Aspect::Colour, Aspect::Font, Aspect::Limits, Aspect::Range, Aspect::List,
                                Aspect::Columns, Aspect::Rows, Aspect::Row, Aspect::Cells, Aspect::Caption,
                                Aspect::Text, Aspect::Value, Aspect::ListIndex, Aspect::CurrTab,
                                Aspect::Picture, Aspect::ToolTip, Aspect::Enabled, Aspect::Visible})
        Show(aspect);
    ShowAccessibleName();
}

void ControlView::Show(Aspect aspect) {
    switch (aspect) {
    case Aspect::Visible:
        widget_.setVisible(control_.Visible);
        break;
    case Aspect::Enabled:
        widget_.setEnabled(control_.Enabled);
        break;
    case Aspect::ToolTip:
        widget_.setToolTip(ToQt(control_.ToolTip.Get()));
        break;
    case Aspect::Colour:
        ShowColours();
        break;
    case Aspect::Font: {
        // What the layout draws bold stays bold.
        if (control_.FontBold) {
            QFont font = widget_.font();
            font.setBold(true);
            widget_.setFont(font);
        }
        break;
    }
    case Aspect::Caption:
    case Aspect::Other:
        ShowAccessibleName();
        break;
    default:
        break;
    }
}

void ControlView::ShowColours() {
    const QPalette theme = widget_.parentWidget() ? widget_.parentWidget()->palette() : QPalette();
    QPalette palette = widget_.palette();
    const QColor ground = ColourOf(control_.BackColor);
    const bool field = control_.GetKind() == Kind::TextBox;
    // A label takes its roles from the ground that it lies on.
    const QPalette::ColorRole groundRole = field ? QPalette::Base : widget_.backgroundRole();
    const QPalette::ColorRole textRole = field ? QPalette::Text : widget_.foregroundRole();
    if (ground.isValid())
        palette.setColor(groundRole, ground);
    const QColor text = TextColourOf(control_.ForeColor, palette.color(groundRole), theme.color(textRole));
    if (palette.color(textRole) == text && !ground.isValid())
        return;
    palette.setColor(QPalette::Active, textRole, text);
    palette.setColor(QPalette::Inactive, textRole, text);
    widget_.setPalette(palette);
}

void ControlView::ShowAccessibleName() {
    const bool named =
        !control_.AccessibleName.empty() || control_.Buddy() != nullptr || !control_.CaptionText().empty();
    // The layout may give a name where the page gives none.
    if (named || widget_.accessibleName().isEmpty())
        widget_.setAccessibleName(ToQt(control_.AccessibleText()));
}

bool ControlView::KeyPressed(const QKeyEvent& event) {
    const controls::Key key = KeyOf(event);
    if (key.code == 0 && key.character == 0)
        return false;
    Do([&] { control_.PressKey(key); });
    return true;
}

bool ControlView::FilterKey(const QKeyEvent& event, QWidget& editor,
                            const std::function<bool(const controls::Key&)>& leaves) {
    if (passing_)
        return false;
    const controls::Key key = KeyOf(event);
    if (key.code == 0 && key.character == 0)
        return false;
    controls::Key rest;
    if (!Do([&] { rest = control_.GetForm().FilterKey(control_, key); }))
        return true;
    const bool swallowed = rest.code == 0 && rest.character == 0;
    // A routine that has sent the focus elsewhere has used the key.
    if (swallowed || !control_.HasFocus())
        return true;
    if (leaves(rest)) {
        Do([&] { control_.GetForm().ApplyKey(rest); });
        return true;
    }
    if (rest.character == key.character && rest.code == key.code)
        return false;
    if (rest.character >= ' ') {
        const auto code = static_cast<char32_t>(rest.character);
        QKeyEvent typed(QEvent::KeyPress, 0, Qt::NoModifier, QString::fromUcs4(&code, 1));
        passing_ = true;
        QCoreApplication::sendEvent(&editor, &typed);
        passing_ = false;
    }
    return true;
}

bool ControlView::WantsKey(const QKeyEvent& event) {
    const controls::Key key = KeyOf(event);
    if (key.shift & controls::kAltMask)
        return form_.HasAccelerator(static_cast<char32_t>(key.code));
    return key.code != 0 || key.character != 0;
}

bool ControlView::MousePressed(QWidget&, const QMouseEvent&) {
    return !ReachByMouse();
}

bool ControlView::ReachByMouse() {
    if (!control_.CanTakeFocus())
        return true;
    if (control_.HasFocus()) {
        form_.ShowFocus(Qt::MouseFocusReason);
        return true;
    }
    const int loops = ModalLoops();
    bool reached = false;
    form_.SetFocusReason(Qt::MouseFocusReason);
    Do([&] { reached = control_.Focus().IsDone(); });
    form_.SetFocusReason(Qt::OtherFocusReason);
    return reached && loops == ModalLoops();
}

bool ControlView::Do(const std::function<void()>& gesture) {
    if (detached_)
        return false;
    QPointer<ControlView> alive(this);
    Guarded(gesture);
    return alive && !detached_;
}

bool HasWidget(Kind kind) {
    return kind != Kind::DataControl && kind != Kind::MenuItem;
}

std::unique_ptr<ControlView> MakeView(FormView& form, controls::Control& control, QWidget& widget,
                                      const std::string& layout) {
    std::unique_ptr<ControlView> view;
    switch (control.GetKind()) {
    case Kind::Label:
        view = MakeLabelView(form, control, widget);
        break;
    case Kind::TextBox:
        view = MakeTextView(form, control, widget);
        break;
    case Kind::CommandButton:
    case Kind::TitleButton:
    case Kind::CheckBox:
    case Kind::OptionButton:
        view = MakeButtonView(form, control, widget);
        break;
    case Kind::ComboBox:
        view = MakeComboView(form, control, widget);
        break;
    case Kind::ListBox:
        view = MakeListView(form, control, widget);
        break;
    case Kind::Panel:
        view = MakePanelView(form, control, widget);
        break;
    case Kind::PictureBox:
        view = MakePictureView(form, control, widget);
        break;
    case Kind::TabStrip:
        view = MakeTabView(form, control, widget);
        break;
    case Kind::DatePicker:
        view = MakeDateView(form, control, widget);
        break;
    case Kind::UpDown:
        view = MakeUpDownView(form, control, widget);
        break;
    case Kind::Grid:
        view = MakeGridView(form, control, widget);
        break;
    case Kind::DataControl:
    case Kind::MenuItem:
        break;
    }
    if (!view)
        throw runtime::RunTimeError(runtime::kErrTypeMismatch, control.GetForm().Name(),
                                    "The control " + control.FullName() + " cannot be shown by the " +
                                        widget.metaObject()->className() + " of that name in " + layout +
                                        ".ui");
    return view;
}

} // namespace quillary::qt
