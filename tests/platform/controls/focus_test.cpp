#include "platform/controls/controls.h"
#include "platform/runtime/run_time_error.h"
#include "trace.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using testing::Trace;

// Two text boxes on a panel, a button beside it, and routines for all that can be traced.
struct Screen {
    Form form{"frm_setup"};
    Panel panel{form, "vse_frame", 0};
    TextBoxArray txt_FarmName{form, "txt_FarmName", {0, 1, 4}};
    TextBox txt_FinYear{form, "txt_FinYear"};
    CommandButton cmd_Okay{form, "cmd_Okay"};
    Label lbl_name{form, "lbl_name"};
    bool keepFocus = false;

    Screen() {
        for (int index : {0, 1, 4})
            txt_FarmName(index).PlaceIn(panel);
        txt_FarmName.On(&TextBox::Validate, [this](int, bool& cancel) { cancel = keepFocus; });
        txt_FarmName.On(&TextBox::LostFocus, [](int) {});
        txt_FarmName.On(&TextBox::GotFocus, [](int) {});
        txt_FarmName.On(&TextBox::Change, [](int) {});
        txt_FarmName.On(&TextBox::KeyPress, [this](int index, int& keyAscii) {
            if (keyAscii == 13) {
                keyAscii = 0;
                txt_FarmName(index == 0 ? 4 : 0).SetFocus();
            } else if (keyAscii == 'x') {
                keyAscii = 0;
            } else if (keyAscii == '\'') {
                keyAscii = '`';
            }
        });
        txt_FinYear.GotFocus = [] {};
        txt_FinYear.LostFocus = [] {};
        cmd_Okay.Click = [] {};
    }
};

TEST(Focus, OldControlIsValidatedAndLeftBeforeTheNewOneIsEntered) {
    Screen s;
    Trace trace;
    s.form.Load = [] {};
    s.form.Activate = [] {};
    s.form.Show();
    EXPECT_EQ(trace.Take(), "Form_Load Form_Activate txt_FarmName_GotFocus(0) ");
    EXPECT_TRUE(s.txt_FinYear.Focus());
    EXPECT_EQ(trace.Take(), "txt_FarmName_Validate(0) txt_FarmName_LostFocus(0) txt_FinYear_GotFocus ");
    EXPECT_TRUE(s.txt_FinYear.Focus());
    EXPECT_EQ(trace.Take(), "");
    EXPECT_TRUE(s.cmd_Okay.Press());
    EXPECT_EQ(trace.Take(), "txt_FinYear_LostFocus cmd_Okay_Click ");
    s.txt_FarmName(4).SetFocus();
    trace.Take();
    EXPECT_TRUE(s.form.Leave());
    EXPECT_EQ(trace.Take(), "txt_FarmName_Validate(4) txt_FarmName_LostFocus(4) ");
    EXPECT_EQ(s.form.ActiveControl(), nullptr);
}

TEST(Focus, CancelledValidateKeepsFocusAndGesture) {
    Screen s;
    s.form.Show();
    s.keepFocus = true;
    Trace trace;
    EXPECT_TRUE(s.cmd_Okay.Press().IsRefused());
    s.txt_FinYear.SetFocus(); // from code: kept as well, without an error
    EXPECT_TRUE(s.form.Leave().IsRefused());
    EXPECT_EQ(trace.Take(), "txt_FarmName_Validate(0) txt_FarmName_Validate(0) txt_FarmName_Validate(0) ");
    EXPECT_TRUE(s.txt_FarmName(0).HasFocus());
    s.cmd_Okay.CausesValidation = false;
    EXPECT_TRUE(s.cmd_Okay.Press());
    EXPECT_EQ(trace.Take(), "txt_FarmName_LostFocus(0) cmd_Okay_Click ");
}

TEST(Focus, RoutinesMayMoveTheFocusThemselves) {
    Screen s;
    s.form.Show();
    s.txt_FarmName(1).Validate = [&](bool&) { s.txt_FinYear.SetFocus(); };
    s.txt_FarmName(1).SetFocus();
    EXPECT_TRUE(s.txt_FarmName(4).Focus().IsRefused());
    EXPECT_TRUE(s.txt_FinYear.HasFocus());
    s.txt_FinYear.LostFocus = [&] { s.cmd_Okay.SetFocus(); };
    s.txt_FarmName(0).Focus();
    EXPECT_TRUE(s.cmd_Okay.HasFocus());
}

TEST(Focus, GoesOnlyToWhatIsShownAndEnabled) {
    Screen s;
    s.form.Show();
    TabStrip tabs{s.form, "tab_deductions"};
    tabs.Caption = "One|Two";
    tabs.SetPage(1, s.panel);
    struct {
        const char* what;
        std::function<void(bool)> set;
    } cases[] = {{"the control hidden", [&](bool on) { s.txt_FarmName(4).Visible = on; }},
                 {"its panel hidden", [&](bool on) { s.panel.Visible = on; }},
                 {"the control disabled", [&](bool on) { s.txt_FarmName(4).Enabled = on; }},
                 {"its panel disabled", [&](bool on) { s.panel.Enabled = on; }},
                 {"another tab current", [&](bool on) { tabs.CurrTab = on ? 1 : 0; }}};
    tabs.CurrTab = 1;
    for (const auto& test : cases) {
        test.set(true);
        EXPECT_TRUE(s.txt_FarmName(4).Focus()) << test.what;
        test.set(false);
        EXPECT_EQ(s.form.ActiveControl(), nullptr) << test.what; // dropped with no events
        EXPECT_TRUE(s.txt_FarmName(4).Focus().IsImpossible()) << test.what;
        EXPECT_TRUE(s.txt_FarmName(4).TypeText("a").IsImpossible()) << test.what;
        try {
            s.txt_FarmName(4).SetFocus();
            ADD_FAILURE() << test.what;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.Number(), 5) << test.what;
        }
        test.set(true);
    }
    EXPECT_TRUE(s.lbl_name.Focus().IsImpossible());
    EXPECT_TRUE(s.lbl_name.Press());
}

TEST(Keys, TypingGoesKeyByKeyThroughPreviewAndKeyPress) {
    Screen s;
    s.form.Show();
    std::string previewed;
    s.form.KeyPreview = true;
    s.form.KeyDown = [&](int& code, int shift) {
        previewed += std::to_string(code) + (shift ? "s" : "") + " ";
        if (code == 'Q')
            code = 0;
    };
    TextBox& box = s.txt_FarmName(0);
    box.Text = "before";
    EXPECT_TRUE(box.TypeText("O'Bxqé"));
    EXPECT_EQ(box.Text, "O`Bé"); // x swallowed by KeyPress, q by the preview
    EXPECT_EQ(previewed, "79 66 88 81 ");
    box.MaxLength = 3;
    Trace trace;
    box.TypeText("äbcd");
    EXPECT_EQ(box.Text, "äbc");
    EXPECT_EQ(box.PropertyText("text"), "äbc");
    trace.Take();
    box.TypeText("");
    EXPECT_EQ(box.Text, "");
    EXPECT_EQ(trace.Take(), "Form_KeyDown txt_FarmName_Change(0) ");
    box.TypeText("ab");
    trace.Take();
    box.PressKey(ParseKey("Enter")); // swallowed, and moves on
    EXPECT_TRUE(s.txt_FarmName(4).HasFocus());
    EXPECT_EQ(trace.Take(), "Form_KeyDown txt_FarmName_KeyPress(0) txt_FarmName_Validate(0) "
                            "txt_FarmName_LostFocus(0) txt_FarmName_GotFocus(4) ");
    s.form.KeyPreview = false;
    box.Locked = true;
    EXPECT_TRUE(box.TypeText("no").IsRefused());
    EXPECT_EQ(box.Text, "ab");
}

TEST(Keys, EditTheTextAtTheCaret) {
    Screen s;
    s.form.Show();
    TextBox& box = s.txt_FinYear;
    // Whoever comes to a box types over what it holds.
    box.Text = "old";
    box.PressKey(ParseKey("n"));
    EXPECT_EQ(box.Text, "n");
    for (const auto& [keys, text] :
         std::vector<std::pair<std::vector<const char*>, const char*>>{{{"b", "c"}, "abc"},
                                                                       {{"Backspace", "Backspace"}, ""},
                                                                       {{"Home", "é", "Right", "z"}, "éaz"},
                                                                       {{"Home", "Delete"}, ""},
                                                                       {{"Ctrl+G", "Down", "Delete"}, "a"},
                                                                       {{"Shift+A", "Enter"}, "aA"}}) {
        box.Text = "a";
        for (const char* key : keys)
            box.PressKey(ParseKey(key));
        EXPECT_EQ(box.Text, text) << keys.front();
    }
    box.MultiLine = true;
    box.TypeText("one\r\ntwo\nthree");
    EXPECT_EQ(box.Text, "one\r\ntwo\r\nthree");
    EXPECT_THROW(ParseKey("Hyper+Q"), runtime::RunTimeError);
}

TEST(Keys, UnusedKeysReachTheForm) {
    Screen s;
    std::string pressed;
    CommandButton cmd_Add{s.form, "cmd_Add"};
    cmd_Add.Caption = "&Add";
    cmd_Add.Click = [&] { pressed += "add "; };
    s.cmd_Okay.Caption = "&OK";
    s.cmd_Okay.Default = true;
    s.cmd_Okay.Click = [&] { pressed += "ok "; };
    Label caption{s.form, "lbl_year"};
    caption.Caption = "Financial &Year && more";
    s.txt_FinYear.SetBuddy(&caption);
    s.form.Show();
    s.txt_FinYear.PressKey(ParseKey("Enter"));
    s.txt_FinYear.PressKey(ParseKey("Alt+a"));
    EXPECT_EQ(pressed, "ok add ");
    s.cmd_Okay.PressKey(ParseKey("Alt+Y"));
    EXPECT_TRUE(s.txt_FinYear.HasFocus());
    EXPECT_EQ(s.txt_FinYear.AccessibleText(), "Financial Year & more");
    s.txt_FinYear.PressKey(ParseKey("Tab"));
    EXPECT_TRUE(s.cmd_Okay.HasFocus());
    s.cmd_Okay.PressKey(ParseKey("Shift+Tab"));
    EXPECT_TRUE(s.txt_FinYear.HasFocus());
    cmd_Add.SetFocus();
    s.form.FocusNext();
    EXPECT_TRUE(s.txt_FarmName(0).HasFocus()); // round the end
}

// A page that has just been brought forward has the focus itself: Tab goes into it, not to what was made
// before it.
TEST(Keys, TabGoesIntoAPanel) {
    Form form("frm_setup");
    TabStrip tabs{form, "tab_Setup"};
    Panel page{form, "vse_frame", 5}, card{form, "vse_card"}, empty{form, "vse_frame", 6};
    CommandButton close{form, "cmd_Okay"};
    form.SetContainer(&page);
    card.PlaceIn(page);
    form.SetContainer(&card);
    TextBox first{form, "txt_first"}, second{form, "txt_second"};
    close.TabIndex = 1000;
    form.Show();
    page.SetFocus();
    form.FocusNext();
    EXPECT_TRUE(first.HasFocus());
    page.SetFocus();
    form.FocusNext(false);
    EXPECT_TRUE(tabs.HasFocus());
    empty.SetFocus();
    form.FocusNext();
    EXPECT_TRUE(first.HasFocus()); // nothing lies in it: the next after its place
    form.FocusNext();
    form.FocusNext();
    EXPECT_TRUE(close.HasFocus());
}

TEST(Keys, CaptionsMarkLettersAlone) {
    const struct {
        const char *caption, *plain, *marked;
        char32_t letter;
    } cases[] = {
        {"&Add", "Add", "&Add", U'A'},
        {"R&&D && &more", "R&D & more", "R&&D && &more", U'M'},
        {"&Add VAT & duty types", "Add VAT & duty types", "&Add VAT && duty types", U'A'},
        {"VAT & duty", "VAT & duty", "VAT && duty", 0},
        {"R&& D&", "R& D", "R&& D&", 0},
        {"", "", "", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PlainCaption(c.caption), c.plain);
        EXPECT_EQ(MarkedCaption(c.caption), c.marked);
        EXPECT_EQ(Accelerator(c.caption), c.letter) << c.caption;
        EXPECT_EQ(PlainCaption(LiteralCaption(c.caption)), c.caption);
    }
}

TEST(Names, ControlsAreFoundByNameAndIndex) {
    Screen s;
    EXPECT_EQ(s.form.Find("TXT_farmname(4)"), &s.txt_FarmName(4));
    EXPECT_EQ(s.form.Find("txt_finyear"), &s.txt_FinYear);
    EXPECT_EQ(s.form.Find("txt_FarmName"), nullptr);
    EXPECT_EQ(s.txt_FarmName(4).WidgetName(), "txt_FarmName_4");
    try {
        s.txt_FarmName(2);
        ADD_FAILURE();
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.Number(), 9);
    }
    // Elements made later have the array's routines.
    Trace trace;
    s.form.Show();
    s.txt_FarmName.Load(7).Focus();
    s.txt_FinYear.Focus();
    EXPECT_NE(trace.Take().find("txt_FarmName_LostFocus(7)"), std::string::npos);
    s.txt_FarmName.Unload(7);
    EXPECT_EQ(s.form.Find("txt_FarmName(7)"), nullptr);
}

} // namespace
} // namespace quillary::controls
