#include "farm/system_info.h"

#include "common/error_report.h"
#include "config/locale_info.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/suite_files.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/format.h"

#include <functional>
#include <string>

namespace quillary::farm {

namespace {

constexpr int kEnter = 13, kEscape = 27;
constexpr double kSample = 1234.5678;

// A file that an installation may do without: empty where the settings do not name it.
std::string NamedFile(std::string_view section, std::string_view key) {
    return config::GetSuiteValue(section, key);
}

} // namespace

FrmSystemInfo::FrmSystemInfo(common::Screen& screen)
    : controls::Form("frm_systeminfo"),
      lbl_Quillary(*this, "lbl_Quillary", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), lbl_short(*this, "lbl_short"),
      lbl_now(*this, "lbl_now"), lbl_long(*this, "lbl_long"), lbl_currency(*this, "lbl_currency"),
      lbl_fixed(*this, "lbl_fixed"), lbl_country(*this, "lbl_country"), lbl_fmt(*this, "lbl_fmt"),
      cmd_OK(*this, "cmd_OK"), screen_(screen) {
    Layout = "system_info";
    Caption = "System Information";
    KeyPreview = true;
    cmd_OK.Caption = "&OK";
    lbl_fmt.ToolTip = "0 month first, 1 day first, 2 year first";

    Load = [this] { Form_Load(); };
    KeyPress = [this](int& keyAscii) { Form_KeyPress(keyAscii); };
    cmd_OK.Click = [this] { UnloadForm(); };
}

void FrmSystemInfo::Form_Load() {
    common::Trap("frm_systeminfo.Form_Load", [&] {
        FillSystemInfo();
        screen_.Decorate(*this);
    });
}

void FrmSystemInfo::Form_KeyPress(int& keyAscii) {
    if (keyAscii != kEnter && keyAscii != kEscape)
        return;
    keyAscii = 0;
    UnloadForm();
}

void FrmSystemInfo::FillSystemInfo() {
    // A report: what cannot be had leaves its label as it stands.
    const auto show = [](controls::Label& label, const std::function<std::string()>& text) {
        label.UseMnemonic = false;
        common::IgnoreErrors([&] { label.Caption = text(); });
    };
    const runtime::Date today = runtime::Today();
    show(lbl_now, [&] { return runtime::Format(today, "medium date"); });
    show(lbl_long, [&] { return runtime::Format(today, "Long date"); });
    show(lbl_short, [&] { return runtime::Format(today, "Short Date"); });
    show(lbl_currency, [] { return runtime::Format(kSample, "currency"); });
    show(lbl_fixed, [] { return runtime::Format(kSample, "fixed"); });
    show(lbl_Quillary(0), config::GetDataFileName);
    show(lbl_Quillary(1), [] { return NamedFile("MAP", "MapFileName"); });
    show(lbl_Quillary(2), [] { return NamedFile("QUILLARY", "DiaryFileName"); });
    show(lbl_Quillary(3), [] { return NamedFile("QUILLARY", "WageFileName"); });
    show(lbl_Quillary(4), config::GetModuleFileName);
    show(lbl_Quillary(5), config::GetWizardFileName);
    show(lbl_Quillary(6), config::GetInternetFileName);
    show(lbl_Quillary(7), config::GetImportWizardFileName);
    show(lbl_Quillary(8), config::GetExportFileName);
    show(lbl_Quillary(9), [] { return runtime::CStr(config::GetCountryCode()); });
    show(lbl_Quillary(10), config::GetLanguage);
    show(lbl_country, [] { return config::GetProfileValue("intl", "sCountry", config::files::kSystemIni); });
    show(lbl_fmt, config::GetDateOrder);
    // A path may be longer than the screen is wide.
    lbl_Quillary.Each([](controls::Label& label, int) { label.ToolTip = label.Caption.Get(); });
}

} // namespace quillary::farm
