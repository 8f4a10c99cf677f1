#include "platform/controls/up_down.h"

#include "platform/controls/property_text.h"
#include "platform/controls/text_box.h"
#include "platform/runtime/conversions.h"

#include <algorithm>
#include <cmath>

namespace quillary::controls {

UpDown::UpDown(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::UpDown, index) {}

void UpDown::Move(int steps) {
    TextBox* buddy = SyncBuddy ? BuddyControl.Get() : nullptr;
    long from = Value;
    // What the user has typed since the last step counts.
    if (buddy && runtime::IsNumeric(runtime::Variant(buddy->Text.Get()))) {
        const double typed = runtime::Val(buddy->Text.Get());
        if (std::abs(typed) < 1e9)
            from = std::lround(typed);
    }
    const long low = std::min(Min.Get(), Max.Get()), high = std::max(Min.Get(), Max.Get());
    const long to = std::clamp(from + static_cast<long>(steps) * Increment, low, high);
    if (to == from && to == Value)
        return;
    Value.Store(static_cast<int>(to));
    if (buddy)
        buddy->Text = std::to_string(to);
    Tell(Aspect::Value);
    Change.Raise();
}

Outcome UpDown::Step(int steps) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Move(steps);
    return Outcome::Done();
}

bool UpDown::ApplyKey(const Key& key) {
    if (key.shift & (kCtrlMask | kAltMask) || (key.code != kKeyUp && key.code != kKeyDown))
        return false;
    Move(key.code == kKeyUp ? 1 : -1);
    return true;
}

std::optional<std::string> UpDown::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "value")
        return std::to_string(Value.Get());
    if (name == "min")
        return std::to_string(Min.Get());
    if (name == "max")
        return std::to_string(Max.Get());
    return Control::PropertyText(property);
}

} // namespace quillary::controls
