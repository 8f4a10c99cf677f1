#include "platform/controls/form.h"

#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form_host.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>

namespace quillary::controls {

namespace {

struct OpenState {
    std::vector<Form*> loaded, open;
    FormHost* host = nullptr;
    ControlMessage message;
};
OpenState& State() {
    static OpenState state;
    return state;
}

std::string LookupName(std::string_view name) {
    std::string key(name);
    for (char& letter : key)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return key;
}

// Sets a flag while it lives.
class Flagged {
public:
    explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }
    ~Flagged() { flag_ = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    bool& flag_;
};

} // namespace

void SetFormHost(FormHost* host) {
    State().host = host;
}

FormHost* GetFormHost() {
    return State().host;
}

void SetControlMessage(ControlMessage message) {
    State().message = std::move(message);
}

void ShowControlMessage(const std::string& text) {
    if (State().message)
        State().message(text);
}

const std::vector<Form*>& Forms() {
    return State().loaded;
}

const std::vector<Form*>& OpenForms() {
    return State().open;
}

Form* TopForm() {
    return State().open.empty() ? nullptr : State().open.back();
}

void DoEvents() {
    if (FormHost* host = GetFormHost())
        host->DoEvents();
}

Form::Form(std::string name) : name_(std::move(name)) {}

Form::~Form() {
    std::erase(State().loaded, this);
    if (open_) {
        std::erase(State().open, this);
        open_ = false;
        if (FormHost* host = GetFormHost())
            host->FormHidden(*this);
    }
}

std::string Form::EventName(std::string_view event) const {
    return name_ + ".Form_" + std::string(event);
}

// ---- Life

void Form::LoadForm() {
    if (loaded_)
        return;
    loaded_ = true;
    State().loaded.push_back(this);
    try {
        Load.Raise();
    } catch (...) {
        loaded_ = false;
        std::erase(State().loaded, this);
        throw;
    }
}

bool Form::Open(bool modal) {
    LoadForm();
    if (!loaded_)
        return false;
    modal_ = modal;
    std::erase(State().open, this);
    State().open.push_back(this);
    const bool wasOpen = std::exchange(open_, true);
    if (FormHost* host = GetFormHost())
        host->FormShown(*this, modal);
    if (wasOpen)
        return true;
    Tell(Aspect::Shown, nullptr);
    Activate.Raise();
    if (open_)
        FocusAtShow();
    return true;
}

void Form::FocusAtShow() {
    if (!active_ || !active_->CanTakeFocus()) {
        std::vector<Control*> order = TabOrder();
        active_ = order.empty() ? nullptr : order.front();
    }
    focusSettled_ = true;
    if (!active_)
        return;
    Control* first = active_;
    first->FocusComes();
    Tell(Aspect::Focus, first);
    first->GotFocus.Raise();
}

void Form::Show() {
    Open(false);
}

void Form::ShowModal() {
    if (!Open(true))
        return;
    if (FormHost* host = GetFormHost(); host && open_)
        host->RunModal(*this);
    // A dialog's own Activate runs once only; the main screen's each time that it comes to the front again.
    if (Form* top = TopForm(); !open_ && top && top->MainScreen)
        top->Activate.Raise();
}

void Form::CloseWindow() {
    if (!open_)
        return;
    open_ = false;
    focusSettled_ = false;
    std::erase(State().open, this);
    if (FormHost* host = GetFormHost())
        host->FormHidden(*this);
    Tell(Aspect::Shown, nullptr);
}

void Form::Hide() {
    CloseWindow();
}

bool Form::UnloadForm(UnloadMode mode) {
    // A form that is unloading already (its own Unload routine may unload all forms) goes on with that.
    if (!loaded_ || unloading_)
        return true;
    Flagged unloading(unloading_);
    if (active_ && open_ && !active_->LeavingFocus())
        return false;
    bool cancel = false;
    QueryUnload.Raise(cancel, static_cast<int>(mode));
    if (cancel)
        return false;
    Unload.Raise(cancel);
    if (cancel)
        return false;
    for (Control* control : std::vector<Control*>(controls_))
        if (control->GetKind() == Kind::DataControl) {
            auto& data = static_cast<DataControl&>(*control);
            try {
                data.Close(kActionUnload);
            } catch (const runtime::RunTimeError& error) {
                // Too late to keep the form: its own data are released already.
                ShowControlMessage(error.Description());
                data.Abandon();
            }
        }
    CloseWindow();
    active_ = nullptr;
    loaded_ = false;
    std::erase(State().loaded, this);
    return true;
}

Outcome Form::RequestClose() {
    if (Form* top = TopForm(); top != this && top && top->IsModal())
        return Outcome::Impossible(name_ + " waits for " + top->Name());
    if (CloseRequest) {
        CloseRequest();
        return Outcome::Done();
    }
    if (IsModal()) {
        CommandButton* cancel = nullptr;
        CommandButton* okay = nullptr;
        for (Control* control : controls_) {
            if (control->GetKind() != Kind::CommandButton || !control->IsShown() || !control->IsEnabled())
                continue;
            auto* button = static_cast<CommandButton*>(control);
            const std::string caption = PlainCaption(button->Caption);
            if (button->Cancel || (!cancel && caption == "Cancel"))
                cancel = button;
            if (button->Default || (!okay && caption == "OK"))
                okay = button;
        }
        if (cancel) {
            // Validates nothing: what was typed is given up.
            cancel->Click.Raise();
            return Outcome::Done();
        }
        if (okay)
            return okay->Press();
    }
    return UnloadForm(UnloadMode::TitleBar) ? Outcome::Done()
                                            : Outcome::Refused(name_ + " did not let itself be closed");
}

// ---- Controls

void Form::Add(Control& control) {
    control.TabIndex.Store(nextTabIndex_++);
    controls_.push_back(&control);
    byName_[LookupName(control.FullName())] = &control;
    Tell(Aspect::Controls, &control);
}

void Form::Remove(Control& control) {
    if (active_ == &control)
        active_ = nullptr;
    std::erase(controls_, &control);
    if (auto found = byName_.find(LookupName(control.FullName()));
        found != byName_.end() && found->second == &control)
        byName_.erase(found);
    Tell(Aspect::Controls, &control);
}

Control* Form::Find(std::string_view fullName) const {
    auto found = byName_.find(LookupName(fullName));
    return found == byName_.end() ? nullptr : found->second;
}

Control* Form::Find(std::string_view name, int index) const {
    return Find(index == Control::kNoIndex ? std::string(name)
                                           : std::string(name) + "(" + std::to_string(index) + ")");
}

void Form::Tell(Aspect aspect, Control* control) {
    if (observer_)
        observer_(aspect, control);
}

} // namespace quillary::controls
