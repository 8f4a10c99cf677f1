#include "wages/occupations.h"

#include "common/error_report.h"
#include "config/globals.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"

#include <algorithm>
#include <cstdlib>

namespace quillary::wages {

namespace {

enum SetButton { kAddAll, kAdd, kMoveUp, kMoveDown, kRemove, kRemoveAll };

} // namespace

Occupations::Occupations(common::Screen& screen, controls::Panel& panel)
    : Label7((screen.ScreenForm().SetContainer(&panel), screen.ScreenForm()), "Label7"),
      com_award(screen.ScreenForm(), "com_award"), cmd_Award(screen.ScreenForm(), "cmd_Award"),
      vsit_settings(screen.ScreenForm(), "vsit_settings"), lbl_mess(screen.ScreenForm(), "lbl_mess"),
      tgrd_selected(screen.ScreenForm(), "tgrd_selected"),
      com_Set(screen.ScreenForm(), "com_Set", {kAddAll, kAdd, kMoveUp, kMoveDown, kRemove, kRemoveAll}),
      lbl_master(screen.ScreenForm(), "lbl_master"), tgrd_master(screen.ScreenForm(), "tgrd_master"),
      cmd_EditAward(screen.ScreenForm(), "cmd_EditAward"), lists_(tgrd_selected, tgrd_master) {
    Label7.Caption = "Select";
    com_award.SetBuddy(&Label7);
    com_award.AccessibleName = "Occupation";
    cmd_Award.Caption = "Add/Edit &Occupations";
    vsit_settings.Caption = "Pay rates|Taxable allowances|Non taxable allowances";
    vsit_settings.AccessibleName = "Lists of the occupation";
    lbl_mess.Caption = "for <occupation>";
    lbl_mess.UseMnemonic = false; // an occupation's name may hold an "&"
    lbl_master.Caption = "Master List";
    tgrd_selected.SetBuddy(&lbl_mess);
    tgrd_master.SetBuddy(&lbl_master);
    cmd_EditAward.Caption = "&Edit List";
    com_Set(kAddAll).Caption = "<< &Add All";
    com_Set(kAdd).Caption = "< A&dd";
    com_Set(kMoveUp).Caption = "Move &Up";
    com_Set(kMoveDown).Caption = "Move Do&wn";
    com_Set(kRemove).Caption = "Remo&ve >";
    com_Set(kRemoveAll).Caption = "&Remove All >>";
    for (controls::Grid* grid : {&tgrd_selected, &tgrd_master}) {
        grid->AllowUpdate = false; // names and rates are edited in the master tables
        grid->DragRows = true;
    }

    com_award.Click = [this] { com_award_Click(); };
    com_award.Validate = [this](bool&) { com_award_Validate(); };
    vsit_settings.Switch = [this](int oldTab, int& newTab, bool& cancel) {
        vsit_settings_Switch(oldTab, newTab, cancel);
    };
    com_Set.On(&controls::CommandButton::Click, [this](int index) { com_Set_Click(index); });
    tgrd_master.DblClick = [this] { com_Set_Click(kAdd); };
    tgrd_selected.DblClick = [this] { com_Set_Click(kRemove); };
    tgrd_selected.RowDropped = [this](const controls::Grid& from, long before) {
        tgrd_selected_RowDropped(from, before);
    };
    tgrd_master.RowDropped = [this](const controls::Grid& from, long) {
        if (&from == &tgrd_selected) // the master list is ordered by its names
            com_Set_Click(kRemove);
    };
}

void Occupations::FillOccupations() {
    auto db = config::DbEngine().OpenDatabase(config::GetWageFileName());
    auto occupations = db->OpenRecordset("SELECT DISTINCTROW EmployeeAwardType.[EmployeetypeID], "
                                         "EmployeeAwardType.[Employeetype], EmployeeAwardType.[Unitofpay] "
                                         "From EmployeeAwardType "
                                         "ORDER BY EmployeeAwardType.[Employeetype];",
                                         database::RecordsetType::Snapshot);
    const int remembered = com_award.ListIndex > -1 ? com_award.ListIndex.Get() : 0;
    com_award.Clear();
    for (; !occupations->EOF_(); occupations->MoveNext())
        com_award.AddItem(runtime::TextOf((*occupations)["Employeetype"].Value()) + " (" +
                              runtime::TextOf((*occupations)["Unitofpay"].Value()) + ")",
                          runtime::CLng((*occupations)["EmployeetypeID"].Value()));
    // Meant: by its number in the list, whatever stands there now. Beyond the end nothing is selected.
    if (remembered < com_award.ListCount())
        com_award.ListIndex = remembered;
    occupations->Close();
    db->Close();
}

void Occupations::Show() {
    if (mOccupationID_ == 0)
        mOccupationID_ = com_award.ItemData(com_award.ListIndex);
    // Meant: the lists are read anew, and moves and removals that are not saved yet are gone.
    ShowOccupationLists(mOccupationID_, vsit_settings.CurrTab);
}

void Occupations::OccupationsEdited() {
    FillOccupations();
    // One that has been deleted is not shown any more, and nothing is written for it.
    if (mOccupationID_ != 0 && com_award.FindData(mOccupationID_) == -1) {
        mOccupationID_ = 0;
        lists_.ReleaseSelectionArrays();
    }
    // Meant: another one keeps its lists, though the box may name the one that stands at its number now.
    if (mOccupationID_ == 0 && com_award.ListIndex > -1)
        Show();
}

void Occupations::SelectFirst() {
    if (com_award.ListIndex > -1 || com_award.ListCount() == 0)
        return;
    com_award.ListIndex = 0;
    com_award_Click(); // set from code it raises no click
}

void Occupations::SaveSelections() {
    lists_.SaveSelections(mSettingsTab_, mOccupationID_);
}

void Occupations::ShowOccupationLists(std::int32_t occupationID, int listNumber) {
    const std::string& caption = vsit_settings.TabCaption(listNumber);
    const std::vector<std::string> tokens = {caption, com_award.Text};
    lists_.UpdateSelections(listNumber, occupationID);
    lbl_mess.Caption = config::TranslateTokens("|0| for |1|", tokens);
    lbl_master.Caption = caption;
}

// False: what is in memory could not be written. It stays, and so does the occupation with its lists.
bool Occupations::SaveShown(int listNumber) {
    return lists_.SaveSelections(listNumber, mOccupationID_) || lists_.NothingToLose();
}

void Occupations::ShowOccupation() {
    mOccupationID_ = com_award.ItemData(com_award.ListIndex);
    ShowOccupationLists(mOccupationID_, vsit_settings.CurrTab);
}

void Occupations::com_award_Click() {
    common::Trap("frm_setup.com_award_Click", [&] {
        if (mOccupationID_ == 0 || SaveShown(vsit_settings.CurrTab))
            ShowOccupation();
        else
            com_award.ListIndex = com_award.FindData(mOccupationID_);
    });
}

void Occupations::com_award_Validate() {
    common::Trap("frm_setup.com_award_Validate", [&] {
        if (mOccupationID_ != 0 && !SaveShown(vsit_settings.CurrTab))
            return;
        if (com_award.ListIndex == -1 && com_award.ListCount() > 0)
            com_award.ListIndex = 0;
        if (com_award.ListIndex != -1)
            ShowOccupation();
    });
}

void Occupations::vsit_settings_Switch(int oldTab, int newTab, bool& cancel) {
    common::Trap("frm_setup.vsit_settings_Switch", [&] {
        if (!SaveShown(oldTab)) {
            cancel = true;
            return;
        }
        mSettingsTab_ = newTab;
        ShowOccupationLists(mOccupationID_, newTab);
    });
}

void Occupations::com_Set_Click(int index) {
    common::Trap("com_Set_click", [&] {
        const int list = vsit_settings.CurrTab;
        controls::Grid& grid = index <= kAdd ? tgrd_master : tgrd_selected;
        grid.SetFocus();
        controls::Grid::BookmarkType current = grid.Bookmark;
        switch (index) {
        case kAddAll:
            grid.MoveFirst();
            current = grid.Bookmark;
            if (current)
                lists_.AddAllToSelected(list, mOccupationID_);
            break;
        case kAdd:
            if (!current)
                grid.MoveFirst();
            current = grid.Bookmark;
            if (!current)
                break;
            lists_.AddToSelected(mOccupationID_, list, tgrd_selected, static_cast<long>(*current), 1);
            current = grid.Bookmark;
            // Meant: there are never fewer rows than the number of one, so it is the first that is next.
            if (current && grid.RowCount() >= *current)
                grid.MoveFirst();
            break;
        case kMoveUp:
        case kMoveDown:
            lists_.MoveSelectedRow(index == kMoveUp);
            break;
        case kRemove:
            lists_.RemoveFromSelected(grid);
            break;
        case kRemoveAll:
            lists_.RemoveAllSelected(list, mOccupationID_);
            break;
        default:
            break;
        }
    });
}

// From the master list it is Add; within the list the row moves step by step to where it was let go.
void Occupations::tgrd_selected_RowDropped(const controls::Grid& from, long before) {
    if (&from == &tgrd_master) {
        com_Set_Click(kAdd);
        return;
    }
    if (&from != &tgrd_selected)
        return;
    const long row = tgrd_selected.Row;
    const long steps = (before > row ? before - 1 : before) - row; // its own place is a gap less
    for (long step = 0; step < std::abs(steps); ++step)
        com_Set_Click(steps < 0 ? kMoveUp : kMoveDown);
}

} // namespace quillary::wages
