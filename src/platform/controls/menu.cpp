#include "platform/controls/menu.h"

#include "platform/controls/form.h"
#include "platform/controls/form_host.h"
#include "platform/controls/property_text.h"

namespace quillary::controls {

MenuItem::MenuItem(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::MenuItem, index) {}

std::vector<MenuItem*> MenuItem::Entries() const {
    std::vector<MenuItem*> entries;
    for (Control* control : GetForm().Controls())
        if (control->GetKind() == Kind::MenuItem)
            if (auto* entry = static_cast<MenuItem*>(control); entry->parent_ == this)
                entries.push_back(entry);
    return entries;
}

void MenuItem::PopUp(int left, int top) {
    if (FormHost* host = GetFormHost())
        host->PopupMenu(GetForm(), *this, left, top);
}

Outcome MenuItem::Press() {
    if (!IsShown() || !IsEnabled())
        return Outcome::Impossible(FullName() + (IsShown() ? " is disabled" : " is not visible"));
    Click.Raise();
    return Outcome::Done();
}

std::optional<std::string> MenuItem::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "caption")
        return Caption.Get();
    if (name == "checked")
        return BoolText(Checked);
    return Control::PropertyText(property);
}

} // namespace quillary::controls
