#include "platform/controls/control.h"

#include "platform/controls/form.h"
#include "platform/controls/panel.h"
#include "platform/controls/property_text.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::controls {

Control::Control(controls::Form& form, std::string name, Kind kind, int index)
    : form_(form), name_(std::move(name)), kind_(kind), index_(index), container_(form.Container()) {
    form_.Add(*this);
}

Control::~Control() {
    form_.Remove(*this);
}

std::string Control::FullName() const {
    return index_ == kNoIndex ? name_ : name_ + "(" + std::to_string(index_) + ")";
}

std::string Control::WidgetName() const {
    return index_ == kNoIndex ? name_ : name_ + "_" + std::to_string(index_);
}

std::string Control::EventName(std::string_view event) const {
    std::string result = form_.Name() + "." + name_ + "_" + std::string(event);
    if (index_ != kNoIndex)
        result += "(" + std::to_string(index_) + ")";
    return result;
}

void Control::PlaceIn(Panel& container) {
    container_ = &container;
    VisibilityChanged();
}

bool Control::IsShown() const {
    for (const Control* control = this; control; control = control->container_) {
        if (!control->Visible)
            return false;
        if (control->kind_ == Kind::Panel && !static_cast<const Panel*>(control)->OnCurrentTab())
            return false;
    }
    return true;
}

bool Control::IsEnabled() const {
    for (const Control* control = this; control; control = control->container_)
        if (!control->Enabled)
            return false;
    return true;
}

bool Control::CanTakeFocus() const {
    return TakesFocus() && IsShown() && IsEnabled();
}

bool Control::HasFocus() const {
    return form_.ActiveControl() == this;
}

void Control::SetFocus() {
    Outcome moved = form_.FocusTo(*this);
    if (moved.IsImpossible())
        throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall, form_.Name(), moved.Reason());
}

std::string Control::AccessibleText() const {
    if (!AccessibleName.empty())
        return AccessibleName;
    for (const Control* named : {static_cast<const Control*>(buddy_), this})
        if (named)
            if (std::string caption = PlainCaption(named->CaptionText()); !caption.empty())
                return caption;
    return ToolTip.empty() ? name_ : ToolTip.Get();
}

void Control::PropertySet(Aspect aspect) {
    OnPropertySet(aspect);
    if (aspect == Aspect::Visible || aspect == Aspect::Enabled)
        VisibilityChanged();
    Tell(aspect);
}

void Control::VisibilityChanged() {
    form_.ControlHidden();
}

void Control::Tell(Aspect aspect) {
    if (observer_)
        observer_(aspect);
}

Outcome Control::Reachable() const {
    if (const Form* top = TopForm(); top && top != &form_ && top->IsModal() && form_.IsOpen())
        return Outcome::Impossible(form_.Name() + " waits for " + top->Name());
    if (!IsShown())
        return Outcome::Impossible(FullName() + " is not visible");
    if (!IsEnabled())
        return Outcome::Impossible(FullName() + " is disabled");
    return Outcome::Done();
}

Outcome Control::Reach() {
    if (Outcome reachable = Reachable(); !reachable)
        return reachable;
    return TakesFocus() ? form_.FocusTo(*this) : Outcome::Done();
}

Outcome Control::NoSuchGesture(std::string_view gesture) const {
    return Outcome::Impossible(FullName() + " cannot be " + std::string(gesture));
}

Outcome Control::Focus() {
    return TakesFocus() ? Reach() : NoSuchGesture("given the focus");
}

Outcome Control::Press() {
    return NoSuchGesture("pressed");
}

Outcome Control::DoublePress() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    DblClick.Raise();
    return Outcome::Done();
}

Outcome Control::TypeText(std::string_view) {
    return NoSuchGesture("typed into");
}

Outcome Control::PressKey(const Key& key) {
    if (!TakesFocus())
        return NoSuchGesture("given keys");
    if (Outcome reached = Reach(); !reached)
        return reached;
    Key filtered = form_.FilterKey(*this, key);
    // A routine that has sent the focus elsewhere has used the key.
    if ((filtered.code != 0 || filtered.character != 0) && HasFocus() && !ApplyKey(filtered))
        form_.ApplyKey(filtered);
    return Outcome::Done();
}

Outcome Control::Check(bool) {
    return NoSuchGesture("ticked");
}

Outcome Control::Choose(int) {
    return NoSuchGesture("chosen from");
}

Outcome Control::ChooseText(std::string_view) {
    return NoSuchGesture("chosen from");
}

Outcome Control::Pick(runtime::Date) {
    return NoSuchGesture("given a date");
}

Outcome Control::Step(int) {
    return NoSuchGesture("spun");
}

Outcome Control::PickTab(int) {
    return NoSuchGesture("switched");
}

Outcome Control::PickTabText(std::string_view) {
    return NoSuchGesture("switched");
}

std::optional<std::string> Control::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "visible")
        return BoolText(Visible);
    if (name == "enabled")
        return BoolText(Enabled);
    if (name == "tooltip")
        return ToolTip.Get();
    if (name == "forecolor")
        return std::to_string(ForeColor.Get());
    if (name == "backcolor")
        return std::to_string(BackColor.Get());
    if (name == "fontbold")
        return BoolText(FontBold);
    if (name == "focus")
        return BoolText(HasFocus());
    return std::nullopt;
}

void ThrowMissingElement(const std::string& name, int index) {
    throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange, "Controls",
                                "Control array element '" + name + "(" + std::to_string(index) +
                                    ")' does not exist");
}

namespace {

// "VAT & duty": an "&" before a blank is one, since a blank cannot be underlined.
bool IsLiteral(std::string_view caption, std::size_t at) {
    return caption[at] == '&' && at + 1 < caption.size() && caption[at + 1] == ' ';
}

} // namespace

std::string PlainCaption(std::string_view caption) {
    std::string plain;
    for (std::size_t at = 0; at < caption.size(); ++at) {
        if (caption[at] == '&' && !IsLiteral(caption, at) && ++at == caption.size())
            break;
        plain += caption[at];
    }
    return plain;
}

std::string MarkedCaption(std::string_view caption) {
    std::string marked;
    for (std::size_t at = 0; at < caption.size(); ++at) {
        if (IsLiteral(caption, at))
            marked += '&';
        else if (caption[at] == '&' && at + 1 < caption.size())
            marked += caption[at++];
        marked += caption[at];
    }
    return marked;
}

std::string LiteralCaption(std::string_view text) {
    std::string caption;
    for (const char letter : text)
        caption += letter == '&' ? std::string("&&") : std::string(1, letter);
    return caption;
}

char32_t Accelerator(std::string_view caption) {
    for (std::size_t at = 0; at + 1 < caption.size(); ++at) {
        if (caption[at] != '&' || IsLiteral(caption, at))
            continue;
        if (caption[at + 1] != '&') {
            std::string letter = runtime::UCase(runtime::LeftChars(caption.substr(at + 1), 1));
            return static_cast<char32_t>(ParseKey(letter).character);
        }
        ++at;
    }
    return 0;
}

} // namespace quillary::controls
