#include "shell/page_assembly.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "shell/frm_setup.h"
#include "shell/help_menu.h"

#include <algorithm>
#include <memory>

namespace quillary::shell {

using config::gFrames;

namespace {

constexpr int kTaxFrame = 9;      // of a database with TaxTypes
constexpr int kOlderTaxFrame = 3; // of one without
constexpr int kLastFrame = 10;
constexpr std::size_t kTaxRow = 3; // the row that takes the tax's name, whatever the table says
constexpr int kEditionWithoutTaxRow = 2;
constexpr int kLetterT = 0x54;
constexpr int kShortcutButton = 1;

std::string RowName(std::size_t row) {
    return std::string(runtime::RTrim(gFrames.at(row).Name));
}

// A snapshot of the edition's rows; where the sorted form fails, as on an old file without "Order", the same
// without the sort.
std::unique_ptr<database::Recordset> OpenEditionRows(database::Database& modules, bool valueAddedTax) {
    const std::string taxFrame = std::to_string(config::gHasTaxTypes ? kTaxFrame : kOlderTaxFrame);
    const std::string rows = "SELECT DISTINCTROW Setup.* "
                             "From Setup "
                             "WHERE (([Setup].[modules] = '" +
                             config::gModuleKey + "'))";
    const std::string withoutTax = " AND (Setup.frame<>" + taxFrame + ")";
    try {
        return modules.OpenRecordset(rows + (valueAddedTax ? " " : withoutTax + " ") +
                                         "ORDER BY [Setup].[Order];",
                                     database::RecordsetType::Snapshot);
    } catch (const runtime::RunTimeError&) {
        return modules.OpenRecordset(rows + (valueAddedTax ? "" : withoutTax) + ";",
                                     database::RecordsetType::Snapshot);
    }
}

void ReadFrames(bool valueAddedTax) {
    auto modules = config::DbEngine().OpenDatabase(config::GetModuleFileName());
    auto setup = OpenEditionRows(*modules, valueAddedTax);
    if (setup->EOF_()) {
        // Meant: the common list does not look at the tax switch.
        setup = modules->OpenRecordset("SELECT DISTINCTROW Setup.* From Setup "
                                       "WHERE (([Setup].[modules] = 'ALL')) ORDER BY [Setup].[Order];",
                                       database::RecordsetType::Snapshot);
        if (config::GetDebug())
            common::ShowSystemMessage("Modules/setup has no entries for " + config::gModuleKey);
    }
    gFrames.clear();
    for (; !setup->EOF_(); setup->MoveNext())
        gFrames.push_back(config::MakeFrameRecord(runtime::TextOf((*setup)["Name"].Value()),
                                                  runtime::TextOf((*setup)["Key"].Value()),
                                                  runtime::CInt((*setup)["Frame"].Value())));
    setup->Close();
    modules->Close();
}

} // namespace

void gSetupSetup(FrmSetup& form) {
    common::Trap("gSetupSetup", [&] {
        const bool valueAddedTax = config::GetValueAddedTax();
        ReadFrames(valueAddedTax);

        form.dat_BgtStart.DatabaseName = config::GetDataFileName();
        form.dat_FarmDetails.DatabaseName = config::GetDataFileName();
        form.dat_FarmDetails.RecordSource = "SELECT DISTINCTROW [Farm Details].* FROM [Farm Details];";
        form.dat_FarmDetails.Refresh();

        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto& farmPage = form.Farm();
        ShowFarmUnit(form, *db);
        if (config::gModuleID == config::kBusinessEdition || config::gModuleID == config::kClubEdition)
            farmPage.cboUnits.Visible = false;

        form.Headings().ShowTaxColumn(valueAddedTax, valueAddedTax ? config::GetTaxName() : std::string());
        form.Planner().ShowTaxPanel(valueAddedTax);

        if (config::gModuleID == config::kClubEdition)
            farmPage.lbl_name.Caption = "Club Name";
        else if (!gFrames.empty())
            farmPage.lbl_name.Caption = RowName(0);

        form.Headings().ShowEditionColumns(config::gModuleID == config::kFarmEdition);
        SetTabCaptions(form);
        db->Close();
    });
}

void ShowFarmUnit(FrmSetup& form, database::Database& db) {
    if (config::HasMapAndArea())
        form.Farm().ShowUnit(common::IsMetric(db) ? "hectares" : "acres");
}

void SetTabCaptions(FrmSetup& form) {
    if (config::GetValueAddedTax() && config::gModuleID != kEditionWithoutTaxRow &&
        gFrames.size() > kTaxRow) {
        const std::string taxName = config::GetTaxName();
        config::FrameRecord& row = gFrames[kTaxRow];
        row = config::MakeFrameRecord(taxName, runtime::LeftChars(taxName, 1), row.Frame);
    }
    if (gFrames.empty())
        throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
    std::string captions = config::gModuleID == config::kClubEdition ? "Club" : RowName(0);
    std::string keys = gFrames[0].Key;
    for (std::size_t row = 1; row < gFrames.size(); ++row) {
        captions += "|" + RowName(row);
        keys += "|" + gFrames[row].Key;
    }
    form.tab_Setup.Keys = keys;
    form.tab_Setup.Caption = captions;
    form.tab_Setup.TabsPerPage = static_cast<int>(gFrames.size());
}

void ChangeZOrder(int newTab, FrmSetup& form, int oldTab) {
    common::Trap("ChangeZOrder", [&] {
        if (newTab < 0 || newTab >= static_cast<int>(gFrames.size()))
            throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
        auto& row = gFrames[static_cast<std::size_t>(newTab)];
        if (row.Frame < 0 || row.Frame > kLastFrame)
            return;
        if (common::Page* page = form.PageOf(row.Frame)) {
            // The row's own number is handed on: a page may fall back to another frame for good. One that
            // cannot be set up is brought forward all the same, as its tab is.
            int frame = row.Frame;
            common::Trap("ChangeZOrder", [&] { page->SetUp(frame); });
            row.Frame = static_cast<std::int16_t>(frame);
        }
        controls::Panel& panel = form.vse_frame(row.Frame);
        panel.BevelOuter = 0;
        panel.Visible = true;
        panel.ZOrder();
        panel.SetFocus();
        SetPageFocus(row.Frame, form);

        if (oldTab >= 0 && oldTab < static_cast<int>(gFrames.size())) {
            const int oldFrame = gFrames[static_cast<std::size_t>(oldTab)].Frame;
            if (oldFrame != row.Frame && form.vse_frame.Has(oldFrame))
                form.vse_frame(oldFrame).Visible = false;
        }
    });
}

void SetPageFocus(int frame, FrmSetup& form) {
    if (frame > kLastFrame)
        return;
    if (common::Page* page = form.PageOf(frame))
        page->FocusFirst(frame);
}

void SelectTabByKey(int keyCode, int shift, FrmSetup& form) {
    common::Trap("SelectTabByKey", [&] {
        if ((shift & controls::kCtrlMask) == 0)
            return;
        if (keyCode == kLetterT) {
            ShowHelpMenuPopup(kShortcutButton, form); // meant: this button opens nothing
            return;
        }
        const auto row = std::find_if(gFrames.begin(), gFrames.end(), [&](const config::FrameRecord& frame) {
            return frame.Key.size() == 1 && static_cast<unsigned char>(frame.Key[0]) == keyCode;
        });
        const auto tab = static_cast<int>(row - gFrames.begin());
        // Picked as by the mouse, so that the control with the focus is left before its page is saved.
        if (row != gFrames.end() && tab != form.tab_Setup.CurrTab)
            form.tab_Setup.PickTab(tab);
    });
}

} // namespace quillary::shell
