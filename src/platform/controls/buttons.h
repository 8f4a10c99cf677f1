#pragma once

#include "platform/controls/control.h"
#include "platform/controls/data_bound.h"

namespace quillary::controls {

// A push button.
class CommandButton : public Control {
public:
    CommandButton(Form& form, std::string name, int index = kNoIndex);

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<bool> UseMnemonic{*this, Aspect::Caption, true}; // False: the caption is shown as it stands
    Property<std::string> Picture{*this, Aspect::Picture};
    Property<bool> Default{*this, Aspect::Other, false}; // Enter presses it
    Property<bool> Cancel{*this, Aspect::Other, false};  // Escape presses it

    std::string CaptionText() const override {
        return UseMnemonic ? Caption.Get() : LiteralCaption(Caption.Get());
    }
    Outcome Press() override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    bool TakesFocus() const override { return true; }
    bool ApplyKey(const Key& key) override;
};

// A button of the screen's title bar. It never takes the focus, so it validates nothing.
class TitleButton : public Control {
public:
    TitleButton(Form& form, std::string name, int index = kNoIndex);

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<std::string> Picture{*this, Aspect::Picture};

    std::string CaptionText() const override { return Caption; }
    Outcome Press() override;
    std::optional<std::string> PropertyText(std::string_view property) const override;
};

inline constexpr int kUnchecked = 0, kChecked = 1, kGrayed = 2;

// Value 0 clear, 1 ticked, 2 gray (a bound Null).
class CheckBox : public Control, private DataBound {
public:
    CheckBox(Form& form, std::string name, int index = kNoIndex);
    ~CheckBox() override;

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<bool> UseMnemonic{*this, Aspect::Caption, true}; // False: the caption is shown as it stands
    Property<int> Value{*this, Aspect::Value, kUnchecked};
    Property<bool> DataChanged{*this, Aspect::Other, false};

    void Bind(DataControl& source, std::string field);
    std::string CaptionText() const override {
        return UseMnemonic ? Caption.Get() : LiteralCaption(Caption.Get());
    }
    Outcome Press() override; // the other value, then Click
    Outcome Check(bool on) override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    bool TakesFocus() const override { return true; }
    void OnPropertySet(Aspect aspect) override;
    bool ApplyKey(const Key& key) override;

private:
    void Toggle();
    bool HasChanges() const override { return DataChanged; }
    void WriteChanges(database::Recordset& record) override;
    void ChangesWritten() override { DataChanged.Store(false); }
    void ShowRecord(database::Recordset* record) override;
    void SourceGone() override { binding_.Forget(); }
    FieldBinding binding_;
};

// One of several: setting it clears the other options of the same panel.
class OptionButton : public Control {
public:
    OptionButton(Form& form, std::string name, int index = kNoIndex);

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<bool> Value{*this, Aspect::Value, false};

    std::string CaptionText() const override { return Caption; }
    Outcome Press() override;
    Outcome Check(bool on) override; // Impossible to clear by hand
    // Among the options of a panel the Tab key stops at the one that is set, while one is.
    bool IsTabStop() const override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    bool TakesFocus() const override { return true; }
    void OnPropertySet(Aspect aspect) override;
    bool ApplyKey(const Key& key) override;

private:
    // The options of the panel that can take the focus, itself among them.
    std::vector<OptionButton*> Group() const;
    void Choose();
    void ClearOthers();
    // An arrow chooses the next or the former option of the panel.
    bool ChooseBeside(bool forward);
};

using CommandButtonArray = ControlArray<CommandButton>;
using TitleButtonArray = ControlArray<TitleButton>;
using CheckBoxArray = ControlArray<CheckBox>;
using OptionButtonArray = ControlArray<OptionButton>;

} // namespace quillary::controls
