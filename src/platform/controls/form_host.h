#pragma once

#include <functional>
#include <string>

namespace quillary::controls {

class Form;
class MenuItem;

// What shows forms: the view, or the scenario driver. One a process.
class FormHost {
public:
    virtual ~FormHost() = default;
    // The form's window appears, or comes to the top.
    virtual void FormShown(Form& form, bool modal) = 0;
    // The form was hidden or unloaded.
    virtual void FormHidden(Form& form) = 0;
    // Lets the user work on the form until it is no longer shown (Form::IsOpen() is false).
    virtual void RunModal(Form& form) = 0;
    // Shows the entries below a menu entry at a place of the form (twips from its corner) and returns when
    // one was clicked or the menu was closed.
    virtual void PopupMenu(Form& form, MenuItem& menu, int left, int top) = 0;
    // Lets pending events run.
    virtual void DoEvents() = 0;
    // The screen's size in twips.
    virtual int ScreenWidth() const = 0;
    virtual int ScreenHeight() const = 0;
};

// Without a host forms are opened and closed all the same; ShowModal then returns at once.
void SetFormHost(FormHost* host);
FormHost* GetFormHost();

// Shows a message that a control has of its own (a grid whose row was refused and whose Error event did
// not answer it). Without one nothing is shown.
using ControlMessage = std::function<void(const std::string& text)>;
void SetControlMessage(ControlMessage message);
void ShowControlMessage(const std::string& text);

} // namespace quillary::controls
