// The focus of a form and the way of its keys.
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/panel.h"
#include "platform/controls/tab_strip.h"

#include <algorithm>

namespace quillary::controls {

namespace {

bool LiesIn(const Control& control, const Control& panel) {
    for (const Control* around = control.Container(); around; around = around->Container())
        if (around == &panel)
            return true;
    return false;
}

} // namespace

Outcome Form::LeaveActive(bool validate) {
    Control* old = active_;
    // A routine that moves the focus while it validates is not asked a second time.
    if (!old || validating_)
        return Outcome::Done();
    if (validate) {
        bool cancel = false;
        validating_ = true;
        try {
            old->Validate.Raise(cancel);
        } catch (...) {
            validating_ = false;
            throw;
        }
        validating_ = false;
        if (cancel)
            return Outcome::Refused(old->FullName() + " kept the focus");
    }
    if (active_ == old && !old->LeavingFocus())
        return Outcome::Refused(old->FullName() + " kept the focus");
    return Outcome::Done();
}

Outcome Form::FocusTo(Control& control) {
    if (!control.CanTakeFocus())
        return Outcome::Impossible(control.FullName() + " cannot take the focus");
    if (active_ == &control)
        return Outcome::Done();
    if (!focusSettled_) {
        active_ = &control;
        Tell(Aspect::Focus, active_);
        return Outcome::Done();
    }
    Control* old = active_;
    if (Outcome left = LeaveActive(control.CausesValidation); !left)
        return left;
    if (active_ == &control)
        return Outcome::Done();
    if (!control.CanTakeFocus())
        return Outcome::Refused(control.FullName() + " can no longer take the focus");
    if (active_ != old)
        return Outcome::Refused("The focus went to another control");
    active_ = &control;
    control.FocusComes();
    Tell(Aspect::Focus, active_);
    if (old)
        old->LostFocus.Raise();
    // LostFocus may have sent the focus on.
    if (active_ == &control)
        control.GotFocus.Raise();
    return Outcome::Done();
}

Outcome Form::Leave() {
    if (!active_)
        return Outcome::Done();
    Control* old = active_;
    if (Outcome left = LeaveActive(true); !left)
        return left;
    if (active_ != old)
        return Outcome::Done();
    active_ = nullptr;
    Tell(Aspect::Focus, nullptr);
    old->LostFocus.Raise();
    return Outcome::Done();
}

void Form::ControlHidden() {
    if (!active_ || active_->CanTakeFocus())
        return;
    active_ = nullptr;
    Tell(Aspect::Focus, nullptr);
}

std::vector<Control*> Form::TabOrder() const {
    std::vector<Control*> order;
    for (Control* control : controls_)
        if (control->IsTabStop() && control->GetKind() != Kind::Panel && control->CanTakeFocus())
            order.push_back(control);
    std::stable_sort(order.begin(), order.end(), [](const Control* left, const Control* right) {
        return left->TabIndex.Get() < right->TabIndex.Get();
    });
    return order;
}

Outcome Form::FocusNext(bool forward) {
    std::vector<Control*> order = TabOrder();
    if (order.empty())
        return Outcome::Impossible(name_ + " has nothing that takes the focus");
    const auto count = static_cast<std::ptrdiff_t>(order.size());
    std::ptrdiff_t next = forward ? 0 : count - 1;
    if (active_) {
        // A panel that has the focus is not in the order: what lies in it is next, else the one after its
        // place.
        const int place = active_->TabIndex;
        auto at = std::find_if(order.begin(), order.end(),
                               [this](const Control* control) { return LiesIn(*control, *active_); });
        if (at == order.end())
            at = std::find_if(order.begin(), order.end(),
                              [place](const Control* control) { return control->TabIndex.Get() >= place; });
        next = at - order.begin();
        const bool inOrder = at != order.end() && *at == active_;
        if (!forward)
            --next;
        else if (inOrder)
            ++next;
        next = (next + count) % count;
    }
    return FocusTo(*order[static_cast<std::size_t>(next)]);
}

Key Form::FilterKey(Control& control, Key key) {
    const Key swallowed;
    if (int code = key.code) {
        if (KeyPreview)
            KeyDown.Raise(code, key.shift);
        if (code)
            control.KeyDown.Raise(code, key.shift);
        if (!code)
            return swallowed;
        key.code = code;
    }
    if (int character = key.character) {
        if (KeyPreview)
            KeyPress.Raise(character);
        if (character)
            control.KeyPress.Raise(character);
        if (!character)
            return swallowed;
        key.character = character;
    }
    return key;
}

bool Form::ApplyKey(const Key& key) {
    if (key.shift & kAltMask)
        return PressAccelerator(static_cast<char32_t>(key.code)).IsDone();
    if (key.shift & kCtrlMask)
        return false;
    if (key.code == kKeyTab) {
        FocusNext(!(key.shift & kShiftMask));
        return true;
    }
    if (key.code == kKeyEscape) {
        for (Control* control : controls_)
            if (control->GetKind() == Kind::CommandButton && control->IsShown() && control->IsEnabled() &&
                static_cast<CommandButton*>(control)->Cancel) {
                control->Click.Raise();
                return true;
            }
        if (!IsModal())
            return false;
        RequestClose();
        return true;
    }
    if (key.code == kKeyReturn)
        for (Control* control : controls_)
            if (control->GetKind() == Kind::CommandButton && control->IsShown() && control->IsEnabled() &&
                static_cast<CommandButton*>(control)->Default) {
                control->Press();
                return true;
            }
    return false;
}

Outcome Form::PressKey(const Key& key) {
    if (active_)
        return active_->PressKey(key);
    int code = key.code;
    if (code && KeyPreview)
        KeyDown.Raise(code, key.shift);
    if (code)
        ApplyKey(key);
    return Outcome::Done();
}

Outcome Form::PressAccelerator(char32_t letter) {
    if (letter == 0)
        return Outcome::Impossible("no letter");
    for (Control* control : std::vector<Control*>(controls_)) {
        if (!control->IsShown() || !control->IsEnabled() || Accelerator(control->CaptionText()) != letter)
            continue;
        switch (control->GetKind()) {
        case Kind::CommandButton:
        case Kind::TitleButton:
        case Kind::CheckBox:
        case Kind::OptionButton:
            return control->Press();
        case Kind::Label: {
            for (Control* named : controls_)
                if (named->Buddy() == control && named->CanTakeFocus())
                    return FocusTo(*named);
            for (Control* next : TabOrder())
                if (next->TabIndex.Get() > control->TabIndex.Get())
                    return FocusTo(*next);
            break;
        }
        default:
            break;
        }
    }
    // What stands on the page goes before the tabs, which have other ways.
    for (Control* control : std::vector<Control*>(controls_)) {
        if (control->GetKind() != Kind::TabStrip || !control->IsShown() || !control->IsEnabled())
            continue;
        auto& strip = static_cast<TabStrip&>(*control);
        for (int tab = 0; tab < strip.TabCount(); ++tab)
            if (strip.TabKey(tab) == letter)
                return strip.PickTab(tab);
    }
    return Outcome::Impossible("no accelerator of " + name_);
}

} // namespace quillary::controls
