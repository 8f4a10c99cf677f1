#include "platform/controls/panel.h"

#include "platform/controls/property_text.h"
#include "platform/controls/tab_strip.h"

namespace quillary::controls {

Panel::Panel(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::Panel, index) {}

void Panel::ZOrder() {
    static int highest = 0;
    stackOrder_ = ++highest;
    Tell(Aspect::Order);
}

void Panel::SetTab(const TabStrip& strip, int tab) {
    strip_ = &strip;
    tab_ = tab;
    Tell(Aspect::Visible);
}

bool Panel::OnCurrentTab() const {
    return !strip_ || strip_->CurrTab == tab_;
}

Outcome Panel::Press() {
    if (!IsShown() || !IsEnabled())
        return Outcome::Impossible(FullName() + (IsShown() ? " is disabled" : " is not visible"));
    Click.Raise();
    return Outcome::Done();
}

std::optional<std::string> Panel::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "caption")
        return Caption.Get();
    if (name == "picture")
        return Picture.Get();
    return Control::PropertyText(property);
}

} // namespace quillary::controls
