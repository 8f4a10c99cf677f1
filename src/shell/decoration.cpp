#include "shell/decoration.h"

#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/suite_files.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form_host.h"
#include "platform/controls/panel.h"
#include "platform/runtime/conversions.h"
#include "platform/system/paths.h"

namespace quillary::shell {

namespace {

constexpr int kRedShare = 1, kGreenShare = 256, kBlueShare = 65536;
constexpr int kOffsetLeft = 2415 / 2; // twips
constexpr int kOffsetTop = 1665 / 2;
constexpr int kFirstTitleButton = 1, kLastTitleButton = 6;

// The path of a picture of the program folder; empty when there is none.
std::string SkinPicture(std::string_view name) {
    const std::string path = system::Join(config::GetProgramDirectory(), name);
    return system::FileExists(path) ? path : std::string();
}

void TilePanel(controls::Form& form, std::string_view name, const std::string& picture) {
    if (auto* panel = dynamic_cast<controls::Panel*>(form.Find(name)); panel && !picture.empty())
        panel->Picture = picture;
}

} // namespace

void LoadCustomSkin(controls::Form& form) {
    config::gTitleColour = 0x33 * kRedShare + 0x66 * kGreenShare + 1 * kBlueShare;

    const std::string tile = SkinPicture(config::files::kMainTile);
    for (const char* name : {"vse_MainTile", "els_Form", "els_FormSideBar"})
        TilePanel(form, name, tile);

    const std::string title = SkinPicture(config::files::kTitleTile);
    if (auto* bar = dynamic_cast<controls::Panel*>(form.Find("els_TitleBar"))) {
        TilePanel(form, "els_TitleBar", title);
        bar->BorderWidth = 1;
        bar->BackColor = config::gTitleColour;
    }
    TilePanel(form, "els_Buttons", title);

    const std::string button = SkinPicture(config::files::kTitleButton);
    for (int index = kFirstTitleButton; index <= kLastTitleButton; ++index) {
        if (auto* titleButton = dynamic_cast<controls::TitleButton*>(form.Find("els_TitleButton", index))) {
            if (!button.empty())
                titleButton->Picture = button;
            titleButton->FontBold = true;
        }
    }

    if (!tile.empty())
        form.Picture = tile;
    for (const char* name :
         {"vseButton", "els_FormButtons", "Frame1(0)", "Frame1(1)", "els_FooterBar", "vseDataEntryBack",
          "vseDateBack", "vseCmdBack", "vseNoEdit", "vseHistoryBack", "vseCategoryBack", "vse_Options"})
        TilePanel(form, name, tile);
}

void GetHeadingColour(std::string_view name) {
    const std::string text = config::GetColour(name);
    const auto field = [&](int n) {
        return config::ValueAsLong(runtime::CStr(runtime::Val(GetField(text, ",", n)))).value_or(0);
    };
    config::gHeadingColour = {field(1), field(2), field(3)};
}

std::string GetField(std::string_view text, std::string_view separators, int n) {
    if (separators.empty())
        separators = " \r\n\t";
    int field = 1;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (separators.find(text[i]) == std::string_view::npos)
            continue;
        if (field == n)
            return std::string(text.substr(start, i - start));
        ++field;
        start = i + 1;
    }
    return field == n ? std::string(text.substr(start)) : std::string();
}

void CentreForm(controls::Form& form) {
    const auto* host = controls::GetFormHost();
    if (host == nullptr)
        return;
    form.Left = (host->ScreenWidth() - form.Width) / 2;
    form.Top = (host->ScreenHeight() - form.Height) / 2;
}

void OffsetForm(controls::Form& form) {
    CentreForm(form);
    form.Left = form.Left + kOffsetLeft;
    form.Top = form.Top + kOffsetTop;
}

void PlaceForm(controls::Form& form) {
    if (form.Width == 0 || form.Height == 0) {
        form.OffMiddleLeft = config::gShellLaunch ? kOffsetLeft : 0;
        form.OffMiddleTop = config::gShellLaunch ? kOffsetTop : 0;
        return;
    }
    if (config::gShellLaunch)
        OffsetForm(form);
    else
        CentreForm(form);
}

} // namespace quillary::shell
