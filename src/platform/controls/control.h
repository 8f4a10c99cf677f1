#pragma once

#include "platform/controls/event.h"
#include "platform/controls/gesture.h"
#include "platform/controls/property.h"
#include "platform/runtime/variant.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Controls without a toolkit: state, properties, events and the gestures of a user. The view and the
// scenario driver work on the same objects by the same calls.
namespace quillary::controls {

class Form;
class Panel;

enum class Kind {
    Label,
    TextBox,
    CommandButton,
    TitleButton,
    CheckBox,
    OptionButton,
    ComboBox,
    ListBox,
    Panel,
    PictureBox,
    TabStrip,
    DatePicker,
    UpDown,
    Grid,
    DataControl,
    MenuItem,
};

// Colours are red + green * 256 + blue * 65536, as the suite holds them; kDefaultColour leaves it to the
// theme (black text is 0, red 255).
inline constexpr int kDefaultColour = -1;
inline constexpr int kMenuColour = -2; // the system's menu background

class Control : public PropertyOwner, public EventSource {
public:
    static constexpr int kNoIndex = -1;

    // The form keeps a plain pointer to the control until the control dies. The control lies in the form's
    // current container (Form::SetContainer); its TabIndex is its place in the order of creation.
    Control(Form& form, std::string name, Kind kind, int index = kNoIndex);
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Property<bool> Visible{*this, Aspect::Visible, true};
    Property<bool> Enabled{*this, Aspect::Enabled, true};
    Property<std::string> ToolTip{*this, Aspect::ToolTip};
    Property<int> ForeColor{*this, Aspect::Colour, 0};
    Property<int> BackColor{*this, Aspect::Colour, kDefaultColour};
    Property<bool> FontBold{*this, Aspect::Font, false};
    Property<int> TabIndex{*this, Aspect::Order, 0};
    Property<bool> TabStop{*this, Aspect::Other, true};
    Property<bool> CausesValidation{*this, Aspect::Other, true}; // moving here validates the control left
    // What a screen reader says; empty: the caption of the buddy label, else the control's own caption.
    Property<std::string> AccessibleName{*this, Aspect::Other};

    Event<> Click{*this, "Click"};
    Event<> DblClick{*this, "DblClick"};
    Event<> GotFocus{*this, "GotFocus"};
    Event<> LostFocus{*this, "LostFocus"};
    Event<bool&> Validate{*this, "Validate"};   // cancel := true keeps the focus
    Event<int&, int> KeyDown{*this, "KeyDown"}; // keyCode, shift
    Event<int&> KeyPress{*this, "KeyPress"};    // keyAscii := 0 swallows the key

    const std::string& Name() const noexcept { return name_; }
    int Index() const noexcept { return index_; }
    // "txt_FarmName(0)"
    std::string FullName() const;
    // "txt_FarmName_0": the name of the widget in the Designer file.
    std::string WidgetName() const;
    Kind GetKind() const noexcept { return kind_; }
    controls::Form& GetForm() const noexcept { return form_; }
    Panel* Container() const noexcept { return container_; }
    void PlaceIn(Panel& container);
    std::string EventName(std::string_view event) const override;

    // Itself and all panels around it visible (a panel of a tab strip only on the current tab). Whether
    // the form is open does not count.
    bool IsShown() const;
    // Itself and all panels around it enabled.
    bool IsEnabled() const;
    // Impossible where the control is hidden or disabled, or its form waits for a dialog.
    Outcome Reachable() const;
    // It is of a kind that takes the focus, shown and enabled.
    bool CanTakeFocus() const;
    bool HasFocus() const;
    // The Tab key stops here while the control can take the focus.
    virtual bool IsTabStop() const { return TabStop; }
    // From code: moves the focus with all its events. Raises 5 when the control cannot take it. A
    // cancelled Validate keeps the focus, without an error.
    void SetFocus();

    // The label that names the control to the user (for accessible names and its accelerator).
    void SetBuddy(Control* label) { buddy_ = label; }
    Control* Buddy() const noexcept { return buddy_; }
    virtual std::string CaptionText() const { return {}; }
    std::string AccessibleText() const;

    // The view's hook: called with what changed, from code or by a gesture. One a control.
    using Observer = std::function<void(Aspect)>;
    void SetObserver(Observer observer) { observer_ = std::move(observer); }
    void PropertySet(Aspect aspect) override;

    // ---- Gestures. Each first moves the focus to the control, where it can take it, with the events that
    // this brings. A kind that does not know a gesture answers Impossible.

    // Moves the focus here.
    virtual Outcome Focus();
    // Clicks a button, a panel or a picture, the selected entry of a list.
    virtual Outcome Press();
    virtual Outcome DoublePress();
    // Replaces the whole text by typing, key by key.
    virtual Outcome TypeText(std::string_view text);
    // One key with all that it does: preview by the form, KeyDown, KeyPress, then its effect.
    Outcome PressKey(const Key& key);
    // Ticks or clears a box, sets an option. No event where it is so already.
    virtual Outcome Check(bool on);
    // Picks an entry; raises Click also for the one that is selected.
    virtual Outcome Choose(int entry);
    virtual Outcome ChooseText(std::string_view text);
    virtual Outcome Pick(runtime::Date date);
    virtual Outcome Step(int steps);
    virtual Outcome PickTab(int tab);
    virtual Outcome PickTabText(std::string_view caption);

    // The text of a property for checks: Text, Caption, Value, Visible, "Cell(0,1)", ... Names without
    // case; Booleans True and False. nullopt: the control has no such property.
    virtual std::optional<std::string> PropertyText(std::string_view property) const;

protected:
    // The kinds that take the focus.
    virtual bool TakesFocus() const { return false; }
    // A property was set from code; the view is told afterwards.
    virtual void OnPropertySet(Aspect) {}
    // The effect of a key that no routine swallowed. true: the key is used up and goes no further.
    virtual bool ApplyKey(const Key&) { return false; }
    // About to lose the focus, after its Validate event, before LostFocus; false keeps the focus. Where a
    // grid writes its row.
    virtual bool LeavingFocus() { return true; }
    // Has the focus from now on, before GotFocus.
    virtual void FocusComes() {}
    void Tell(Aspect aspect);
    // Controls may be hidden now: the form drops a focus that is no longer possible.
    void VisibilityChanged();
    // Moves the focus here where the control can take it; Impossible as above.
    Outcome Reach();
    Outcome NoSuchGesture(std::string_view gesture) const;

private:
    friend class controls::Form;
    Form& form_;
    std::string name_;
    Kind kind_;
    int index_;
    Panel* container_ = nullptr;
    Control* buddy_ = nullptr;
    Observer observer_;
};

// Raises 9.
[[noreturn]] void ThrowMissingElement(const std::string& name, int index);

// Controls of one name, told apart by their index: `txt_FarmName(4)`.
template <class T>
class ControlArray {
public:
    ControlArray(Form& form, std::string name, std::initializer_list<int> indexes)
        : form_(form), name_(std::move(name)) {
        for (int index : indexes)
            Load(index);
    }
    ControlArray(const ControlArray&) = delete;
    ControlArray& operator=(const ControlArray&) = delete;

    // Raises 9 for an element that does not exist.
    T& operator()(int index) const {
        auto found = elements_.find(index);
        if (found == elements_.end())
            ThrowMissingElement(name_, index);
        return *found->second;
    }
    bool Has(int index) const { return elements_.contains(index); }
    int Count() const { return static_cast<int>(elements_.size()); }
    int LBound() const { return elements_.empty() ? 0 : elements_.begin()->first; }
    int UBound() const { return elements_.empty() ? -1 : elements_.rbegin()->first; }

    // Makes an element while the program runs (one that exists is kept), with the array's routines.
    T& Load(int index) {
        auto& element = elements_[index];
        if (!element) {
            element = std::make_unique<T>(form_, name_, index);
            for (const auto& attach : routines_)
                attach(*element, index);
        }
        return *element;
    }
    void Unload(int index) { elements_.erase(index); }

    // Calls f(element, index) for each element.
    template <class F>
    void Each(F f) const {
        for (const auto& [index, element] : elements_)
            f(*element, index);
    }

    // The event routine of all elements; it gets the index first:
    // `txt_FarmName.On(&TextBox::KeyPress, [this](int index, int& keyAscii) { ... });`
    template <class Owner, class... Args, class F>
    void On(Event<Args...> Owner::*event, F routine) {
        auto attach = [event, routine](T& element, int index) {
            element.*event = [index, routine](Args... args) { routine(index, std::forward<Args>(args)...); };
        };
        Each(attach);
        routines_.push_back(attach);
    }

private:
    Form& form_;
    std::string name_;
    std::map<int, std::unique_ptr<T>> elements_;
    std::vector<std::function<void(T&, int)>> routines_;
};

// "&Add" -> "Add", "R&&D" -> "R&D", "VAT & duty" as it is: what the user reads of a caption.
std::string PlainCaption(std::string_view caption);
// "VAT & duty" -> "VAT && duty": for toolkits, in which every single "&" marks.
std::string MarkedCaption(std::string_view caption);
// "R&D" -> "R&&D": the caption of a control without accelerators, which shows every "&" of its text.
std::string LiteralCaption(std::string_view text);
// The accelerator of a caption as a capital letter; 0 when it has none.
char32_t Accelerator(std::string_view caption);

} // namespace quillary::controls
