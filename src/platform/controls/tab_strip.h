#pragma once

#include "platform/controls/control.h"
#include "platform/controls/panel.h"

namespace quillary::controls {

// Tabs over a stack of panels. Tabs count from 0.
class TabStrip : public Control {
public:
    TabStrip(Form& form, std::string name, int index = kNoIndex);

    // The captions of all tabs, joined by "|", accelerators marked by "&". A current tab beyond the new
    // last one becomes the first, without an event.
    Property<std::string> Caption{*this, Aspect::List};
    // The letter of each tab, joined by "|" ("F|H||"): the view underlines it. With Alt it picks the tab; any
    // other key is the form's affair.
    Property<std::string> Keys{*this, Aspect::Other};
    Property<int> TabsPerPage{*this, Aspect::Place, 0};

    // Asked before a tab becomes current: oldTab, newTab, cancel. Within it CurrTab already is the new tab.
    // cancel := true brings the old one back; another newTab is gone to instead. The tab that is current
    // already raises it too when the user presses it.
    Event<int, int&, bool&> Switch{*this, "Switch"};

private:
    int ReadCurrTab() const { return currTab_; }
    void WriteCurrTab(int tab);

public:
    // Set from code it raises Switch when the tab changes (the one property that raises an event). 380 for
    // a tab that does not exist.
    ComputedProperty<int, TabStrip, &TabStrip::ReadCurrTab, &TabStrip::WriteCurrTab> CurrTab{*this};

    int TabCount() const noexcept { return static_cast<int>(tabs_.size()); }
    // 9 for a tab that does not exist.
    const std::string& TabCaption(int tab) const;
    // Its letter as a capital, from Keys, else from the accelerator mark of its caption; 0 without one.
    char32_t TabKey(int tab) const;
    void SetTabCaption(int tab, std::string caption);
    // The panel is shown only while this tab is current.
    void SetPage(int tab, Panel& panel) { panel.SetTab(*this, tab); }

    // A cancelled switch gives the focus back to the control that had it.
    Outcome PickTab(int tab) override;
    // By its caption, without case and accelerator mark.
    Outcome PickTabText(std::string_view caption) override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    bool TakesFocus() const override { return true; }
    void OnPropertySet(Aspect aspect) override;
    bool ApplyKey(const Key& key) override; // Left and Right

private:
    bool SwitchTo(int tab); // false: cancelled
    std::vector<std::string> tabs_;
    int currTab_ = 0;
};

using TabStripArray = ControlArray<TabStrip>;

} // namespace quillary::controls
