#pragma once

#include "platform/controls/control.h"

namespace quillary::controls {

// An entry of a menu. Entries hang below another entry (mnu_help(0) below mnu_helpmain); the parent is
// what Form's PopupMenu shows.
class MenuItem : public Control {
public:
    MenuItem(Form& form, std::string name, int index = kNoIndex);

    Property<std::string> Caption{*this, Aspect::Caption}; // "-" is a line between entries
    Property<bool> Checked{*this, Aspect::Value, false};

    void SetParent(MenuItem* parent) { parent_ = parent; }
    MenuItem* Parent() const noexcept { return parent_; }
    // The entries below this one, in the order of creation.
    std::vector<MenuItem*> Entries() const;
    // Shows them as a pop-up through the host, twips from the form's corner.
    void PopUp(int left = 0, int top = 0);

    std::string CaptionText() const override { return Caption; }
    // The user clicks the entry; its menu need not be open.
    Outcome Press() override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

private:
    MenuItem* parent_ = nullptr;
};

using MenuItemArray = ControlArray<MenuItem>;

} // namespace quillary::controls
