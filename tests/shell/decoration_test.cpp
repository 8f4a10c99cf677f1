#include "shell/decoration.h"

#include "config/globals.h"
#include "platform/controls/form_host.h"

#include <gtest/gtest.h>

namespace quillary::shell {

TEST(Decoration, FieldsOfASeparatedText) {
    const struct {
        const char* text;
        const char* separators;
        int n;
        const char* expected;
    } cases[] = {
        {"10,20,30", ",", 2, "20"}, {"10,20,30", ",", 3, "30"}, {"10,20,30", ",", 4, ""},
        {"10,,30", ",", 2, ""},     {"a b\tc", "", 3, "c"},     {"a\r\nb", "", 2, ""},
        {"a,b;c", ",;", 3, "c"},    {"", ",", 1, ""},           {"10", ",", 0, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(GetField(c.text, c.separators, c.n), c.expected) << c.text << " " << c.n;
}

// Started by the suite's main window the program keeps clear of its side bar and header, in dialogs whose
// size their layout gives, too.
TEST(Decoration, PlaceOfSizedAndUnsizedForms) {
    struct Screen : controls::FormHost {
        Screen() { controls::SetFormHost(this); }
        ~Screen() override { controls::SetFormHost(nullptr); }
        void FormShown(controls::Form&, bool) override {}
        void FormHidden(controls::Form&) override {}
        void RunModal(controls::Form&) override {}
        void PopupMenu(controls::Form&, controls::MenuItem&, int, int) override {}
        void DoEvents() override {}
        int ScreenWidth() const override { return 15000; }
        int ScreenHeight() const override { return 12000; }
    } screen;
    for (const bool shellLaunch : {false, true}) {
        config::gShellLaunch = shellLaunch;
        controls::Form sized("frm_setup"), unsized("frm_Units");
        sized.Width = 9000;
        sized.Height = 6000;
        PlaceForm(sized);
        PlaceForm(unsized);
        const int right = shellLaunch ? 1207 : 0, down = shellLaunch ? 832 : 0;
        EXPECT_EQ(sized.Left, 3000 + right);
        EXPECT_EQ(sized.Top, 3000 + down);
        EXPECT_EQ(unsized.Left, 0);
        EXPECT_EQ(unsized.OffMiddleLeft, right);
        EXPECT_EQ(unsized.OffMiddleTop, down);
    }
    config::gShellLaunch = false;
}

} // namespace quillary::shell
