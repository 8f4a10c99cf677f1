#include "farm/account_picker.h"

#include "common/error_report.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "platform/controls/characters.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::farm {

namespace {

constexpr int kDialogWidth = 6300; // twips
constexpr int kDialogHeight = 7800;
constexpr int kBlank = 32;
constexpr int kRed = 255;

} // namespace

FrmListAccounts::FrmListAccounts(common::Screen& screen)
    : controls::Form("frm_ListAccounts"), lbl_Find(*this, "lbl_Find"), txt_Find(*this, "txt_Find"),
      lst_Accounts(*this, "lst_Accounts"), cmd_Ok(*this, "cmd_Ok"), cmd_cancel(*this, "cmd_cancel") {
    Layout = "account_picker";
    Caption = "Headings";
    Width = kDialogWidth;
    Height = kDialogHeight;
    lbl_Find.Caption = "&Find";
    cmd_Ok.Caption = "&OK";
    cmd_Ok.Default = true;
    cmd_cancel.Caption = "Cancel";
    cmd_cancel.Cancel = true;
    cmd_cancel.CausesValidation = false;
    txt_Find.SetBuddy(&lbl_Find);
    lst_Accounts.AccessibleName = "Headings";

    Load = [this, &screen] { common::Trap("frm_ListAccounts.Form_Load", [&] { screen.Decorate(*this); }); };
    Activate = [this] { Form_Activate(); };
    txt_Find.Change = [this] { SearchFor(txt_Find.Text); };
    txt_Find.KeyDown = [this](int& keyCode, int shift) { txt_Find_KeyDown(keyCode, shift); };
    lst_Accounts.KeyPress = [this](int& keyAscii) { lst_Accounts_KeyPress(keyAscii); };
    // What was typed has done its work once the user chooses by hand.
    lst_Accounts.Click = [this] { txt_Find.Text = ""; };
    lst_Accounts.DblClick = [this] { cmd_Ok_Click(); };
    cmd_Ok.Click = [this] { cmd_Ok_Click(); };
    cmd_cancel.Click = [this] { UnloadForm(); };
}

void FrmListAccounts::Form_Activate() {
    common::Trap("frm_ListAccounts.Form_Activate", [&] {
        lst_Accounts.Clear();
        Codes.clear();
        lowerNames_.clear();
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto accounts =
            db->OpenRecordset("SELECT * FROM [Account Codes] ORDER BY [Account Codes].[Account Name] ASC",
                              database::RecordsetType::Snapshot);
        if (!accounts->EOF_()) {
            accounts->MoveLast();
            accounts->MoveFirst();
            Codes.reserve(static_cast<std::size_t>(accounts->RecordCount()));
        }
        const database::Field& code = (*accounts)["Account Code"];
        const database::Field& name = (*accounts)["Account Name"];
        for (; !accounts->EOF_(); accounts->MoveNext()) {
            Codes.push_back(runtime::CInt(code.Value()));
            lst_Accounts.AddItem(runtime::TextOf(name.Value()));
            if (Codes.back() == SelectedCode)
                lst_Accounts.ListIndex = lst_Accounts.NewIndex();
        }
        accounts->Close();
        db->Close();
        if (lst_Accounts.CanTakeFocus())
            lst_Accounts.SetFocus();
    });
}

void FrmListAccounts::cmd_Ok_Click() {
    common::Trap("frm_ListAccounts.cmd_Ok_Click", [&] {
        if (lst_Accounts.ListIndex >= 0)
            SelectedCode = Codes.at(static_cast<std::size_t>(lst_Accounts.ListIndex));
        UnloadForm();
    });
}

// ---- Search

void FrmListAccounts::txt_Find_KeyDown(int& keyCode, int shift) {
    if (shift != 0 || (keyCode != controls::kKeyDown && keyCode != controls::kKeyUp))
        return;
    Step(keyCode == controls::kKeyDown ? 1 : -1);
    keyCode = 0;
}

// Typing in the list searches too; the box shows what is being searched.
void FrmListAccounts::lst_Accounts_KeyPress(int& keyAscii) {
    std::string text = txt_Find.Text;
    if (keyAscii == controls::kKeyBack)
        text = std::string(runtime::LeftChars(text, std::max<std::size_t>(runtime::CharCount(text), 1) - 1));
    else if (keyAscii >= kBlank)
        text += controls::Utf8(static_cast<char32_t>(keyAscii));
    else
        return;
    keyAscii = 0;
    txt_Find.Text = text;
    SearchFor(text);
}

const std::vector<std::string>& FrmListAccounts::LowerNames() {
    if (lowerNames_.empty())
        for (int entry = 0; entry < lst_Accounts.ListCount(); ++entry)
            lowerNames_.push_back(runtime::LCase(lst_Accounts.List(entry)));
    return lowerNames_;
}

void FrmListAccounts::SearchFor(const std::string& text) {
    txt_Find.ForeColor = 0;
    if (text.empty())
        return;
    const std::string wanted = runtime::LCase(text);
    const auto& names = LowerNames();
    auto found = std::find_if(names.begin(), names.end(),
                              [&](const std::string& name) { return name.starts_with(wanted); });
    if (found == names.end())
        found = std::find_if(names.begin(), names.end(),
                             [&](const std::string& name) { return name.find(wanted) != std::string::npos; });
    auto entry = found - names.begin();
    if (found == names.end() && runtime::IsNumeric(text))
        entry = std::find(Codes.begin(), Codes.end(), runtime::Val(text)) - Codes.begin();
    if (entry < lst_Accounts.ListCount())
        lst_Accounts.ListIndex = static_cast<int>(entry);
    else
        txt_Find.ForeColor = kRed; // nothing reads so
}

void FrmListAccounts::Step(int step) {
    const std::string wanted = runtime::LCase(txt_Find.Text);
    const auto& names = LowerNames();
    for (int entry = lst_Accounts.ListIndex + step; entry >= 0 && entry < lst_Accounts.ListCount();
         entry += step) {
        if (names[static_cast<std::size_t>(entry)].find(wanted) != std::string::npos) {
            lst_Accounts.ListIndex = entry;
            return;
        }
    }
}

} // namespace quillary::farm
