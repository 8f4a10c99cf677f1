#pragma once

#include "platform/controls/control.h"
#include "platform/controls/event.h"
#include "platform/controls/gesture.h"
#include "platform/controls/property.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillary::controls {

// Why a form is asked to close: QueryUnload's second argument.
enum class UnloadMode { TitleBar = 0, FromCode = 1, SystemEnds = 2 };

inline constexpr int kPointerDefault = 0;
inline constexpr int kPointerHourglass = 11;

// A window: it knows its controls by name and index and owns the focus among them. Life: LoadForm (event
// Load), Show or ShowModal (Activate), UnloadForm (QueryUnload, Unload), after which it may be loaded
// again. A form that dies while it is loaded leaves without events.
class Form : public PropertyOwner, public EventSource {
public:
    explicit Form(std::string name);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<bool> Enabled{*this, Aspect::Enabled, true};
    Property<bool> KeyPreview{*this, Aspect::Other, false};
    Property<int> MousePointer{*this, Aspect::Pointer, kPointerDefault};
    Property<int> HelpContextID{*this, Aspect::Other, 0};
    Property<std::string> Picture{*this, Aspect::Picture};
    Property<int> BackColor{*this, Aspect::Colour, kDefaultColour};
    // Place on the screen and size in twips; 0 for both sizes leaves them to the layout.
    Property<int> Left{*this, Aspect::Place, 0};
    Property<int> Top{*this, Aspect::Place, 0};
    Property<int> Width{*this, Aspect::Place, 0};
    Property<int> Height{*this, Aspect::Place, 0};
    // Where the view puts the form in the middle of the screen, since it has no place of its own: how far off
    // the middle it stands, to the right and below, in twips.
    Property<int> OffMiddleLeft{*this, Aspect::Place, 0};
    Property<int> OffMiddleTop{*this, Aspect::Place, 0};
    // Name of the Designer file that lays the form out; empty: the form's own name in small letters.
    Property<std::string> Layout{*this, Aspect::Layout};
    // The one screen of the program: its Activate runs again each time a dialog over it closes, that of
    // any other form once, when it is shown.
    Property<bool> MainScreen{*this, Aspect::Other, false};

    Event<> Load{*this, "Load"};
    Event<> Activate{*this, "Activate"};
    Event<bool&, int> QueryUnload{*this, "QueryUnload"}; // cancel, UnloadMode
    Event<bool&> Unload{*this, "Unload"};                // cancel
    Event<int&, int> KeyDown{*this, "KeyDown"};          // with KeyPreview: before the control's own
    Event<int&> KeyPress{*this, "KeyPress"};

    const std::string& Name() const noexcept { return name_; }
    std::string EventName(std::string_view event) const override;

    // ---- Life

    bool IsLoaded() const noexcept { return loaded_; }
    bool IsOpen() const noexcept { return open_; } // shown to the user
    bool IsModal() const noexcept { return open_ && modal_; }
    // Nothing when it is loaded. A form that unloads itself in its Load routine is not loaded afterwards,
    // and Show and ShowModal show nothing.
    void LoadForm();
    void Show();
    // Returns when the form has been hidden or unloaded.
    void ShowModal();
    void Hide();
    // false: QueryUnload or Unload cancelled it. The data controls of the form write what their controls
    // hold, and let go of their recordsets.
    bool UnloadForm(UnloadMode mode = UnloadMode::FromCode);
    // What the title bar does. A dialog: its Cancel button, where it has one, else its OK (the Default
    // button); without either, and on a form that is not modal, UnloadForm. CloseRequest replaces all of it.
    Outcome RequestClose();
    std::function<void()> CloseRequest;

    // ---- Controls

    // In the order of creation.
    const std::vector<Control*>& Controls() const noexcept { return controls_; }
    // "txt_FinYear" or "txt_FarmName(0)", without case; nullptr when there is none.
    Control* Find(std::string_view fullName) const;
    Control* Find(std::string_view name, int index) const;
    // Where controls lie that are made from now on; nullptr: on the form itself.
    void SetContainer(Panel* container) { container_ = container; }
    Panel* Container() const noexcept { return container_; }

    // ---- Focus and keys

    Control* ActiveControl() const noexcept { return active_; }
    // Validate and LostFocus of the old control, then GotFocus of the new one. Refused when Validate was
    // cancelled, Impossible when the control cannot take the focus. While the form is not shown the focus
    // is only noted; its GotFocus comes when the form is shown.
    Outcome FocusTo(Control& control);
    // Moves the focus off the current control to no other.
    Outcome Leave();
    // The next (or former) control in tab order that can take the focus.
    Outcome FocusNext(bool forward = true);
    // The first half of a key press: KeyDown of form and control, KeyPress of both. What comes back is the
    // key to apply; code and character are 0 where a routine swallowed them. For views whose widgets
    // apply keys themselves.
    Key FilterKey(Control& control, Key key);
    // The second half for keys that the control has no use for: Tab, Enter (Default button), Escape
    // (closes a dialog as its title bar does), Alt and a letter. true: the key did something.
    bool ApplyKey(const Key& key);
    // Presses the button, goes to the control, or picks the tab whose caption has this accelerator.
    Outcome PressAccelerator(char32_t letter);
    // A key that goes to the form while no control has the focus.
    Outcome PressKey(const Key& key);

    // The view's hook. control: which one was added, taken away or has the focus; else nullptr.
    using Observer = std::function<void(Aspect, Control*)>;
    void SetObserver(Observer observer) { observer_ = std::move(observer); }
    void PropertySet(Aspect aspect) override { Tell(aspect, nullptr); }

private:
    friend class Control;
    void Add(Control& control);
    void Remove(Control& control);
    void ControlHidden(); // drops the focus of a control that can no longer have it
    void Tell(Aspect aspect, Control* control);
    bool Open(bool modal); // false: the form unloaded itself while it loaded
    void CloseWindow();
    void FocusAtShow();
    // Validate (unless told otherwise) and what the control does before it loses the focus.
    Outcome LeaveActive(bool validate);
    std::vector<Control*> TabOrder() const;

    std::string name_;
    std::vector<Control*> controls_;
    std::unordered_map<std::string, Control*> byName_; // small letters, "txt_farmname(0)"
    Panel* container_ = nullptr;
    Control* active_ = nullptr;
    bool loaded_ = false, open_ = false, modal_ = false, unloading_ = false;
    bool focusSettled_ = false; // false: the focus is only noted
    bool validating_ = false;   // within the Validate routine of the active control
    int nextTabIndex_ = 0;
    Observer observer_;
};

// The loaded forms in the order in which they were loaded.
const std::vector<Form*>& Forms();
// The forms that are shown, the topmost last.
const std::vector<Form*>& OpenForms();
Form* TopForm(); // nullptr without one
// Lets pending events run; nothing without a host.
void DoEvents();

} // namespace quillary::controls
