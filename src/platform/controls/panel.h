#pragma once

#include "platform/controls/control.h"

namespace quillary::controls {

class TabStrip;

// A part of the screen that holds controls, other panels among them. Hidden or disabled, all in it is.
class Panel : public Control {
public:
    Panel(Form& form, std::string name, int index = kNoIndex);

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<std::string> Picture{*this, Aspect::Picture};
    Property<int> BevelOuter{*this, Aspect::Place, 0};
    Property<int> BorderWidth{*this, Aspect::Place, 0};
    // Twips. The view lays panels out by itself and may leave them unused.
    Property<int> Left{*this, Aspect::Place, 0};
    Property<int> Top{*this, Aspect::Place, 0};
    Property<int> Width{*this, Aspect::Place, 0};
    Property<int> Height{*this, Aspect::Place, 0};
    // Name of the Designer file that fills the panel ("farm_page"); empty: the file around it does.
    Property<std::string> Layout{*this, Aspect::Layout};

    // Brings the panel to the top of those that share its place.
    void ZOrder();
    // Counts up with each ZOrder of the process: the panel with the highest is on top.
    int StackOrder() const noexcept { return stackOrder_; }
    // The panel is a page of a tab strip: shown only while that tab is current.
    void SetTab(const TabStrip& strip, int tab);
    bool OnCurrentTab() const;

    std::string CaptionText() const override { return Caption; }
    Outcome Press() override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    // From code alone (a page that has just been brought forward); Tab passes it by.
    bool TakesFocus() const override { return true; }

private:
    const TabStrip* strip_ = nullptr;
    int tab_ = 0;
    int stackOrder_ = 0;
};

using PanelArray = ControlArray<Panel>;

} // namespace quillary::controls
