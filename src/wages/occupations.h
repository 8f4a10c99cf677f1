#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/panel.h"
#include "platform/controls/tab_strip.h"
#include "wages/selection_lists.h"

#include <cstdint>

namespace quillary::wages {

// Which pay rates and allowances belong to each occupation, and in what order. The lists are worked by the
// six buttons between them; a double click and a drag do what the buttons do.
class Occupations {
public:
    // The controls lie in the panel.
    Occupations(common::Screen& screen, controls::Panel& panel);

    controls::Label Label7;
    controls::ComboBox com_award; // the number beside an entry: its EmployeetypeID
    controls::CommandButton cmd_Award;
    controls::TabStrip vsit_settings;
    controls::Label lbl_mess;
    controls::Grid tgrd_selected;
    controls::CommandButtonArray com_Set; // add all, add, move up, move down, remove, remove all
    controls::Label lbl_master;
    controls::Grid tgrd_master;
    controls::CommandButton cmd_EditAward;

    // Fills com_award; its entry number stays selected, without a click. The engine's errors.
    void FillOccupations();
    // The table of the occupations has been edited: fills the box anew.
    void OccupationsEdited();
    // The tab of the occupations is brought forward.
    void Show();
    // When nothing is selected the first occupation becomes so, as by a click.
    void SelectFirst();
    SelectionLists& Lists() { return lists_; }
    // The program is left: writes the list in use.
    void SaveSelections();

private:
    void ShowOccupationLists(std::int32_t occupationID, int listNumber);
    void ShowOccupation();
    bool SaveShown(int listNumber);
    void com_award_Click();
    void com_award_Validate();
    void vsit_settings_Switch(int oldTab, int newTab, bool& cancel);
    void com_Set_Click(int index);
    void tgrd_selected_RowDropped(const controls::Grid& from, long before);

    SelectionLists lists_;
    std::int32_t mOccupationID_ = 0; // the occupation shown; 0 until one is
    int mSettingsTab_ = 0;           // the list shown
};

} // namespace quillary::wages
