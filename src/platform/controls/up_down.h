#pragma once

#include "platform/controls/control.h"

namespace quillary::controls {

class TextBox;

// Two arrows that count a number up and down within limits, mostly that of a text box beside them.
class UpDown : public Control {
public:
    UpDown(Form& form, std::string name, int index = kNoIndex);

    Property<int> Min{*this, Aspect::Range, 0};
    Property<int> Max{*this, Aspect::Range, 100};
    Property<int> Value{*this, Aspect::Value, 0};
    Property<int> Increment{*this, Aspect::Other, 1};
    Property<TextBox*> BuddyControl{*this, Aspect::Other, nullptr};
    // Steps count from the number in the buddy's text, and write it back there.
    Property<bool> SyncBuddy{*this, Aspect::Other, false};

    // After a step of the user's that changed the value; value and text have moved by then.
    Event<> Change{*this, "Change"};

    Outcome Step(int steps) override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    bool TakesFocus() const override { return true; }
    bool ApplyKey(const Key& key) override;

private:
    void Move(int steps);
};

using UpDownArray = ControlArray<UpDown>;

} // namespace quillary::controls
