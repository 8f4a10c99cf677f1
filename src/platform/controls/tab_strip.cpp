#include "platform/controls/tab_strip.h"

#include "platform/controls/form.h"
#include "platform/controls/property_text.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::controls {

namespace {

constexpr int kErrInvalidPropertyValue = 380;

} // namespace

TabStrip::TabStrip(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::TabStrip, index) {}

void TabStrip::OnPropertySet(Aspect aspect) {
    if (aspect != Aspect::List)
        return;
    tabs_.clear();
    const std::string& captions = Caption;
    for (std::size_t start = 0; !captions.empty();) {
        const std::size_t bar = captions.find('|', start);
        tabs_.push_back(captions.substr(start, bar - start));
        if (bar == std::string::npos)
            break;
        start = bar + 1;
    }
    if (currTab_ >= TabCount())
        currTab_ = 0;
}

const std::string& TabStrip::TabCaption(int tab) const {
    if (tab < 0 || tab >= TabCount())
        throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange, "Controls",
                                    FullName() + " has no tab " + std::to_string(tab));
    return tabs_[static_cast<std::size_t>(tab)];
}

char32_t TabStrip::TabKey(int tab) const {
    std::string_view keys = Keys.Get();
    for (int i = 0; i < tab && !keys.empty(); ++i) {
        const std::size_t bar = keys.find('|');
        keys = bar == std::string_view::npos ? std::string_view() : keys.substr(bar + 1);
    }
    const std::string_view key = keys.substr(0, keys.find('|'));
    return key.empty() ? Accelerator(TabCaption(tab)) : Accelerator("&" + std::string(key));
}

void TabStrip::SetTabCaption(int tab, std::string caption) {
    TabCaption(tab);
    tabs_[static_cast<std::size_t>(tab)] = std::move(caption);
    std::string captions;
    for (const std::string& text : tabs_)
        captions += (&text == tabs_.data() ? "" : "|") + text;
    Caption.Store(std::move(captions));
    Tell(Aspect::List);
}

bool TabStrip::SwitchTo(int tab) {
    const int oldTab = currTab_;
    int newTab = tab;
    bool cancel = false;
    currTab_ = tab;
    try {
        Switch.Raise(oldTab, newTab, cancel);
    } catch (...) {
        currTab_ = oldTab;
        Tell(Aspect::CurrTab);
        throw;
    }
    if (cancel) {
        // A routine that has itself gone to a third tab keeps that one.
        if (currTab_ == tab)
            currTab_ = oldTab;
    } else if (newTab != tab && newTab >= 0 && newTab < TabCount()) {
        currTab_ = newTab;
    }
    Tell(Aspect::CurrTab);
    VisibilityChanged();
    return !cancel;
}

void TabStrip::WriteCurrTab(int tab) {
    if (tab == currTab_)
        return;
    if (tab < 0 || tab >= TabCount())
        throw runtime::RunTimeError(kErrInvalidPropertyValue, "Controls",
                                    FullName() + ".CurrTab: Invalid property value");
    SwitchTo(tab);
}

Outcome TabStrip::PickTab(int tab) {
    Control* former = GetForm().ActiveControl();
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (tab < 0 || tab >= TabCount())
        return Outcome::Impossible(FullName() + " has no tab " + std::to_string(tab));
    if (!SwitchTo(tab) && former && HasFocus() && former->CanTakeFocus())
        GetForm().FocusTo(*former);
    return Outcome::Done();
}

Outcome TabStrip::PickTabText(std::string_view caption) {
    for (int tab = 0; tab < TabCount(); ++tab)
        if (runtime::EqualText(PlainCaption(TabCaption(tab)), caption) ||
            runtime::EqualText(TabCaption(tab), caption))
            return PickTab(tab);
    return Outcome::Impossible(FullName() + " has no tab '" + std::string(caption) + "'");
}

bool TabStrip::ApplyKey(const Key& key) {
    if (key.shift & (kCtrlMask | kAltMask) || (key.code != kKeyLeft && key.code != kKeyRight))
        return false;
    const int tab = currTab_ + (key.code == kKeyLeft ? -1 : 1);
    if (tab >= 0 && tab < TabCount())
        SwitchTo(tab);
    return true;
}

std::optional<std::string> TabStrip::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "currtab")
        return std::to_string(currTab_);
    if (name == "tabs" || name == "caption")
        return Caption.Get();
    return Control::PropertyText(property);
}

} // namespace quillary::controls
