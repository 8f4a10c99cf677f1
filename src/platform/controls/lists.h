#pragma once

#include "platform/controls/control.h"

namespace quillary::controls {

// What combo boxes (drop-down lists: nothing can be typed into them) and list boxes have in common:
// entries, each with a number beside it. Entries count from 0.
class ListControl : public Control {
public:
    // index: the place of the new entry; left out: at the end, or in order when Sorted. Raises 5 beyond
    // the list. Adding and removing move ListIndex along with its entry.
    void AddItem(std::string_view text, int data = 0, std::optional<int> index = std::nullopt);
    void RemoveItem(int index);
    void Clear();
    int ListCount() const noexcept { return static_cast<int>(items_.size()); }
    // Text of an entry; "" outside the list.
    const std::string& List(int index) const;
    void SetList(int index, std::string text);
    // The number beside an entry; outside the list (nothing selected) it is 0.
    int ItemData(int index) const;
    void SetItemData(int index, int data);
    int NewIndex() const noexcept { return newIndex_; } // of the entry added last; -1
    // The entry with this number beside it, or with this text (without case); -1.
    int FindData(int data) const;
    int FindText(std::string_view text) const;

    // Sorted holds for entries added from then on.
    Property<bool> Sorted{*this, Aspect::Other, false};

private:
    struct Item {
        std::string text;
        int data = 0;
    };
    int ReadListIndex() const { return listIndex_; }
    void WriteListIndex(int index);
    std::string ReadText() const;
    void WriteText(std::string text);
    std::vector<Item> items_;
    int listIndex_ = -1, newIndex_ = -1;

public:
    // The selected entry, -1: none. Setting raises no Click; 380 beyond the list.
    ComputedProperty<int, ListControl, &ListControl::ReadListIndex, &ListControl::WriteListIndex> ListIndex{
        *this};
    // Text of the selected entry, else "". Setting selects the entry that reads so; 383 when none does.
    ComputedProperty<std::string, ListControl, &ListControl::ReadText, &ListControl::WriteText> Text{*this};

    Outcome Press() override; // the selected entry
    Outcome DoublePress() override;
    Outcome Choose(int entry) override;
    Outcome ChooseText(std::string_view text) override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    ListControl(Form& form, std::string name, Kind kind, int index);
    bool TakesFocus() const override { return true; }
    bool ApplyKey(const Key& key) override; // arrows, pages, Home, End, the first letter of an entry

private:
    void UserChooses(int entry);
};

class ComboBox : public ListControl {
public:
    ComboBox(Form& form, std::string name, int index = kNoIndex);
};

class ListBox : public ListControl {
public:
    ListBox(Form& form, std::string name, int index = kNoIndex);
};

using ComboBoxArray = ControlArray<ComboBox>;
using ListBoxArray = ControlArray<ListBox>;

} // namespace quillary::controls
