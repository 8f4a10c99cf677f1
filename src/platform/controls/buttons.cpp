#include "platform/controls/buttons.h"

#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/property_text.h"
#include "platform/runtime/conversions.h"

#include <algorithm>
#include <vector>

namespace quillary::controls {

namespace {

bool IsPlain(const Key& key, int code) {
    return key.code == code && !(key.shift & (kCtrlMask | kAltMask));
}

} // namespace

// ---- CommandButton

CommandButton::CommandButton(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::CommandButton, index) {}

Outcome CommandButton::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Click.Raise();
    return Outcome::Done();
}

bool CommandButton::ApplyKey(const Key& key) {
    if (!IsPlain(key, kKeySpace) && !IsPlain(key, kKeyReturn))
        return false;
    Click.Raise();
    return true;
}

std::optional<std::string> CommandButton::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "caption")
        return Caption.Get();
    if (name == "picture")
        return Picture.Get();
    return Control::PropertyText(property);
}

// ---- TitleButton

TitleButton::TitleButton(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::TitleButton, index) {}

Outcome TitleButton::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Click.Raise();
    return Outcome::Done();
}

std::optional<std::string> TitleButton::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "caption")
        return Caption.Get();
    if (name == "picture")
        return Picture.Get();
    return Control::PropertyText(property);
}

// ---- CheckBox

CheckBox::CheckBox(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::CheckBox, index) {}

CheckBox::~CheckBox() {
    binding_.Detach(*this);
}

void CheckBox::Bind(DataControl& source, std::string field) {
    binding_.Attach(*this, source, std::move(field));
}

void CheckBox::OnPropertySet(Aspect aspect) {
    if (aspect == Aspect::Value)
        DataChanged.Store(true);
}

void CheckBox::Toggle() {
    Value.Store(Value == kUnchecked ? kChecked : kUnchecked);
    DataChanged.Store(true);
    Tell(Aspect::Value);
    Click.Raise();
}

Outcome CheckBox::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Toggle();
    return Outcome::Done();
}

Outcome CheckBox::Check(bool on) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    // A gray box is clicked until it shows what is wanted.
    for (const int wanted = on ? kChecked : kUnchecked; Value != wanted;) {
        const int before = Value;
        Toggle();
        if (Value == before) // the Click routine has put it back
            break;
    }
    return Outcome::Done();
}

bool CheckBox::ApplyKey(const Key& key) {
    if (!IsPlain(key, kKeySpace))
        return false;
    Toggle();
    return true;
}

std::optional<std::string> CheckBox::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "caption")
        return Caption.Get();
    if (name == "value")
        return std::to_string(Value.Get());
    if (name == "datachanged")
        return BoolText(DataChanged);
    return Control::PropertyText(property);
}

void CheckBox::WriteChanges(database::Recordset&) {
    binding_.Store(Value == kGrayed ? runtime::Variant::Null() : runtime::Variant(Value == kChecked));
}

void CheckBox::ShowRecord(database::Recordset* record) {
    const runtime::Variant value = binding_.ValueIn(record);
    Value.Store(value.IsNull() ? (record ? kGrayed : kUnchecked)
                               : (runtime::CBool(value) ? kChecked : kUnchecked));
    DataChanged.Store(false);
    Tell(Aspect::Value);
}

// ---- OptionButton

OptionButton::OptionButton(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::OptionButton, index) {}

void OptionButton::ClearOthers() {
    for (Control* control : GetForm().Controls()) {
        if (control == this || control->GetKind() != Kind::OptionButton ||
            control->Container() != Container())
            continue;
        auto& other = static_cast<OptionButton&>(*control);
        if (!other.Value)
            continue;
        other.Value.Store(false);
        other.Tell(Aspect::Value);
    }
}

void OptionButton::OnPropertySet(Aspect aspect) {
    if (aspect == Aspect::Value && Value)
        ClearOthers();
}

void OptionButton::Choose() {
    if (Value)
        return;
    Value.Store(true);
    ClearOthers();
    Tell(Aspect::Value);
    Click.Raise();
}

Outcome OptionButton::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Choose();
    return Outcome::Done();
}

Outcome OptionButton::Check(bool on) {
    return on ? Press() : Outcome::Impossible(FullName() + " is cleared by choosing another option");
}

bool OptionButton::ApplyKey(const Key& key) {
    if (IsPlain(key, kKeyDown) || IsPlain(key, kKeyRight))
        return ChooseBeside(true);
    if (IsPlain(key, kKeyUp) || IsPlain(key, kKeyLeft))
        return ChooseBeside(false);
    if (!IsPlain(key, kKeySpace))
        return false;
    Choose();
    return true;
}

std::vector<OptionButton*> OptionButton::Group() const {
    std::vector<OptionButton*> options;
    for (Control* control : GetForm().Controls())
        if (control->GetKind() == Kind::OptionButton && control->Container() == Container() &&
            control->CanTakeFocus())
            options.push_back(static_cast<OptionButton*>(control));
    return options;
}

bool OptionButton::IsTabStop() const {
    const std::vector<OptionButton*> options = Group();
    const bool oneIsSet = std::any_of(options.begin(), options.end(),
                                      [](const OptionButton* option) -> bool { return option->Value; });
    return TabStop && (Value || !oneIsSet);
}

bool OptionButton::ChooseBeside(bool forward) {
    const std::vector<OptionButton*> options = Group();
    const auto here = std::find(options.begin(), options.end(), this);
    if (forward && here != options.end() && here + 1 != options.end())
        (*(here + 1))->Press();
    else if (!forward && here != options.begin())
        (*(here - 1))->Press();
    return true; // at an end the key does nothing
}

std::optional<std::string> OptionButton::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "caption")
        return Caption.Get();
    if (name == "value")
        return BoolText(Value);
    return Control::PropertyText(property);
}

} // namespace quillary::controls
