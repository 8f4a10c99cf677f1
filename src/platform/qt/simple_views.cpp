// Labels, buttons, panels, pictures, tab strips, up-downs and date pickers.
#include "platform/controls/buttons.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/label.h"
#include "platform/controls/panel.h"
#include "platform/controls/picture_box.h"
#include "platform/controls/tab_strip.h"
#include "platform/controls/up_down.h"
#include "platform/qt/form_view.h"
#include "platform/qt/keys.h"
#include "platform/qt/text.h"
#include "platform/qt/views.h"
#include "platform/qt/widgets.h"
#include "platform/system/paths.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QToolButton>

#include <cmath>

namespace quillary::qt {

using controls::Aspect;

namespace {

constexpr int kWidestLabel = 420; // pixels that a label's text may ask of its window

QString NativePath(const std::string& path) {
    return path.empty() ? QString() : ToQt(system::ToNative(path));
}

class LabelView : public ControlView {
public:
    LabelView(FormView& form, controls::Label& label, QLabel& widget)
        : ControlView(form, label, widget), label_(label), text_(widget), drawnWidth_(widget.minimumWidth()) {
        // Names of farms and headings may look like markup.
        text_.setTextFormat(Qt::PlainText);
    }

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect == Aspect::Caption)
            ShowCaption();
    }

    bool MousePressed(QWidget&, const QMouseEvent& event) override {
        if (event.button() == Qt::LeftButton && label_.Click)
            Do([this] { label_.Press(); });
        return false;
    }

private:
    void ShowCaption() {
        const std::string caption = label_.CaptionText();
        // The toolkit underlines only beside a widget that the label names.
        QWidget* named = nullptr;
        if (controls::Accelerator(caption) != 0)
            for (const controls::Control* control : label_.GetForm().Controls())
                if (control->Buddy() == &label_)
                    if (ControlView* view = Form().ViewOf(*control))
                        named = &view->Widget();
        text_.setBuddy(named);
        text_.setText(named ? ToQt(controls::MarkedCaption(caption)) : ToQt(controls::PlainCaption(caption)));
        // A path or a name of the settings has any length: it is cut, rather than its window widened beyond
        // the screen.
        const bool wide = !text_.wordWrap() && text_.sizeHint().width() > kWidestLabel;
        text_.setMinimumWidth(wide && drawnWidth_ == 0 ? kWidestLabel : drawnWidth_);
    }

    controls::Label& label_;
    QLabel& text_;
    int drawnWidth_; // the least width that the Designer file gives; 0 none
};

// All kinds of buttons: the click is the control's, and the box shows what the control makes of it.
class ButtonView : public ControlView {
public:
    ButtonView(FormView& form, controls::Control& control, QAbstractButton& button)
        : ControlView(form, control, button), button_(button) {
        if (control.GetKind() == controls::Kind::OptionButton)
            button_.setAutoExclusive(false); // the control clears the others
        connect(&button_, &QAbstractButton::clicked, this, [this] {
            Form().SetPressed(&button_);
            if (Do([this] { GetControl().Press(); }))
                ShowValue();
        });
    }

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect == Aspect::Caption)
            button_.setText(ToQt(controls::MarkedCaption(GetControl().CaptionText())));
        else if (aspect == Aspect::Value)
            ShowValue();
        else if (aspect == Aspect::Other || aspect == Aspect::Limits)
            ShowRole();
    }

    // A press alone does nothing; the focus moves with the click.
    bool MousePressed(QWidget&, const QMouseEvent&) override { return false; }

private:
    void ShowValue() {
        if (GetControl().GetKind() == controls::Kind::CheckBox) {
            const int value = static_cast<controls::CheckBox&>(GetControl()).Value;
            auto& box = static_cast<QCheckBox&>(button_);
            box.setTristate(value == controls::kGrayed);
            box.setCheckState(value == controls::kGrayed    ? Qt::PartiallyChecked
                              : value == controls::kChecked ? Qt::Checked
                                                            : Qt::Unchecked);
        } else if (GetControl().GetKind() == controls::Kind::OptionButton) {
            button_.setChecked(static_cast<controls::OptionButton&>(GetControl()).Value);
        }
    }

    void ShowRole() {
        if (GetControl().GetKind() != controls::Kind::CommandButton)
            return;
        auto* push = qobject_cast<QPushButton*>(&button_);
        if (push)
            push->setDefault(static_cast<controls::CommandButton&>(GetControl()).Default);
    }

    QAbstractButton& button_;
};

class PanelView : public ControlView {
public:
    PanelView(FormView& form, controls::Panel& panel, QWidget& widget)
        : ControlView(form, panel, widget), panel_(panel) {}

    void Show(Aspect aspect) override {
        switch (aspect) {
        case Aspect::Visible:
        case Aspect::Order:
        case Aspect::Layout:
            Form().ShowPanels();
            break;
        case Aspect::Caption:
            if (auto* group = qobject_cast<QGroupBox*>(&Widget()))
                group->setTitle(ToQt(panel_.Caption.Get()));
            else if (auto* band = dynamic_cast<TitleBand*>(&Widget()))
                band->SetTitle(ToQt(panel_.Caption.Get())); // no accelerator: an "&" is one
            break;
        case Aspect::Colour:
            if (auto* band = dynamic_cast<TitleBand*>(&Widget()))
                band->SetColour(ColourOf(panel_.BackColor));
            break;
        case Aspect::Enabled:
            Widget().setEnabled(panel_.Enabled);
            break;
        default:
            break;
        }
    }

    bool KeyPressed(const QKeyEvent&) override { return false; }
    bool WantsKey(const QKeyEvent&) override { return false; }
    bool MousePressed(QWidget& on, const QMouseEvent& event) override {
        if (&on == &Widget() && event.button() == Qt::LeftButton && panel_.Click)
            Do([this] { panel_.Press(); });
        return false;
    }
    bool TakesWheel() override { return true; }

private:
    controls::Panel& panel_;
};

class PictureView : public ControlView {
public:
    PictureView(FormView& form, controls::PictureBox& picture, PictureFrame& frame)
        : ControlView(form, picture, frame), picture_(picture), frame_(frame) {}

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect == Aspect::Picture)
            frame_.SetPicture(NativePath(picture_.Picture));
        else if (aspect == Aspect::Place || aspect == Aspect::Limits)
            frame_.SetStretch(picture_.Stretch);
    }

    bool MousePressed(QWidget&, const QMouseEvent& event) override {
        if (event.button() == Qt::LeftButton && picture_.Click)
            Do([this] { picture_.Press(); });
        return false;
    }

private:
    controls::PictureBox& picture_;
    PictureFrame& frame_;
};

class TabView : public ControlView {
public:
    TabView(FormView& form, controls::TabStrip& strip, QTabBar& bar)
        : ControlView(form, strip, bar), strip_(strip), bar_(bar) {
        bar_.setExpanding(false);
        bar_.setUsesScrollButtons(true);
        bar_.setDrawBase(false);
        bar_.setElideMode(Qt::ElideNone);
        // The toolkit moves its own mark when the strip is too short for all tabs and a button scrolls it.
        connect(&bar_, &QTabBar::currentChanged, this, [this] { ShowCurrent(); });
    }

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect == Aspect::List)
            ShowTabs();
        else if (aspect == Aspect::CurrTab)
            ShowCurrent();
    }

    bool MousePressed(QWidget&, const QMouseEvent& event) override {
        const int tab = bar_.tabAt(event.position().toPoint());
        if (tab < 0 || event.button() != Qt::LeftButton)
            return true;
        Do([this, tab] { strip_.PickTab(tab); });
        return true;
    }

private:
    void ShowTabs() {
        showing_ = true;
        const int count = strip_.TabCount();
        while (bar_.count() > count)
            bar_.removeTab(bar_.count() - 1);
        for (int tab = 0; tab < count; ++tab) {
            const QString caption = Underlined(tab);
            if (tab >= bar_.count())
                bar_.addTab(caption);
            else if (bar_.tabText(tab) != caption)
                bar_.setTabText(tab, caption);
        }
        showing_ = false;
        ShowCurrent();
    }

    // The caption as the toolkit marks it: its own "&" doubled, one before the letter of the tab.
    QString Underlined(int tab) const {
        const char32_t key = strip_.TabKey(tab);
        if (strip_.Keys.empty() || key == 0)
            return ToQt(controls::MarkedCaption(strip_.TabCaption(tab)));
        QString caption = ToQt(strip_.TabCaption(tab)).replace(QLatin1Char('&'), QLatin1String("&&"));
        const qsizetype place = caption.indexOf(QChar(static_cast<char16_t>(key)), 0, Qt::CaseInsensitive);
        if (place >= 0)
            caption.insert(place, QLatin1Char('&'));
        return caption;
    }

    void ShowCurrent() {
        if (showing_)
            return;
        showing_ = true;
        bar_.setCurrentIndex(strip_.CurrTab);
        showing_ = false;
        Form().ShowPanels();
    }

    controls::TabStrip& strip_;
    QTabBar& bar_;
    bool showing_ = false;
};

class UpDownView : public ControlView {
public:
    UpDownView(FormView& form, controls::UpDown& upDown, StepButtons& buttons)
        : ControlView(form, upDown, buttons), upDown_(upDown), buttons_(buttons) {
        buttons_.SetStepped([this](int steps) {
            if (Do([this, steps] { upDown_.Step(steps); }))
                Show(Aspect::Value);
        });
    }

private:
    controls::UpDown& upDown_;
    StepButtons& buttons_;
};

// Days since 30 December 1899, as the controls count dates.
const QDate& DayZero() {
    static const QDate zero(1899, 12, 30);
    return zero;
}

class DateView : public ControlView {
public:
    DateView(FormView& form, controls::DatePicker& picker, DateButton& button)
        : ControlView(form, picker, button), picker_(picker), button_(button) {
        connect(&button_, &QToolButton::clicked, this, [this] { Open(); });
        button_.SetPicked([this](QDate date) {
            const runtime::Date picked{static_cast<double>(DayZero().daysTo(date))};
            if (Do([&] { picker_.Pick(picked); }))
                Show(Aspect::Value);
        });
    }

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect != Aspect::Value)
            return;
        const auto date = picker_.Date();
        button_.SetDate(date ? DayZero().addDays(static_cast<qint64>(std::floor(date->days))) : QDate());
        if (picker_.ToolTip.empty())
            button_.setToolTip(ToQt(picker_.Text.Get()));
    }

    bool MousePressed(QWidget&, const QMouseEvent&) override { return false; }

    bool KeyPressed(const QKeyEvent& event) override {
        const bool opens = event.key() == Qt::Key_Space || event.key() == Qt::Key_F4 ||
                           (event.key() == Qt::Key_Down && (event.modifiers() & Qt::AltModifier));
        if (!opens)
            return ControlView::KeyPressed(event);
        Open();
        return true;
    }

private:
    void Open() {
        if (ReachByMouse())
            button_.Drop();
    }

    controls::DatePicker& picker_;
    DateButton& button_;
};

template <class View, class Control, class Widget>
std::unique_ptr<ControlView> Make(FormView& form, controls::Control& control, QWidget& widget) {
    auto* fitting = dynamic_cast<Widget*>(&widget);
    return fitting ? std::make_unique<View>(form, static_cast<Control&>(control), *fitting) : nullptr;
}

} // namespace

std::unique_ptr<ControlView> MakeLabelView(FormView& form, controls::Control& control, QWidget& widget) {
    return Make<LabelView, controls::Label, QLabel>(form, control, widget);
}

std::unique_ptr<ControlView> MakeButtonView(FormView& form, controls::Control& control, QWidget& widget) {
    using controls::Kind;
    auto* button = qobject_cast<QAbstractButton*>(&widget);
    const Kind kind = control.GetKind();
    if (!button || (kind == Kind::CheckBox && !qobject_cast<QCheckBox*>(button)) ||
        (kind == Kind::OptionButton && !qobject_cast<QRadioButton*>(button)))
        return nullptr;
    return std::make_unique<ButtonView>(form, control, *button);
}

std::unique_ptr<ControlView> MakePanelView(FormView& form, controls::Control& control, QWidget& widget) {
    return Make<PanelView, controls::Panel, QWidget>(form, control, widget);
}

std::unique_ptr<ControlView> MakePictureView(FormView& form, controls::Control& control, QWidget& widget) {
    return Make<PictureView, controls::PictureBox, PictureFrame>(form, control, widget);
}

std::unique_ptr<ControlView> MakeTabView(FormView& form, controls::Control& control, QWidget& widget) {
    return Make<TabView, controls::TabStrip, QTabBar>(form, control, widget);
}

std::unique_ptr<ControlView> MakeDateView(FormView& form, controls::Control& control, QWidget& widget) {
    return Make<DateView, controls::DatePicker, DateButton>(form, control, widget);
}

std::unique_ptr<ControlView> MakeUpDownView(FormView& form, controls::Control& control, QWidget& widget) {
    return Make<UpDownView, controls::UpDown, StepButtons>(form, control, widget);
}

} // namespace quillary::qt
