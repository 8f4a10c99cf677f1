#include "platform/controls/controls.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "trace.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using testing::Trace;

struct Screen {
    Form form{"frm_setup"};
    TextBox txt_season{form, "txt_season"};
    CheckBox chk{form, "chk"};
    OptionButtonArray opt{form, "opt_diary", {0, 1}};
    ComboBox cbo{form, "cboUnits"};
    ListBox lst{form, "lst"};
    TabStrip tab{form, "tab_Setup"};
    DatePicker picker{form, "DatePicker_FinYear"};
    UpDown spin{form, "css_bgtseason"};

    Screen() {
        runtime::SetLocale("en_NZ");
        txt_season.Change = [] {};
        chk.Click = [] {};
        opt.On(&OptionButton::Click, [](int) {});
        cbo.Click = [] {};
        lst.Click = [] {};
        cbo.AddItem("acres", 2);
        cbo.AddItem("hectares", 5);
        tab.Caption = "&Farm|Headings|R&&D";
        tab.Switch = [](int, int&, bool&) {};
        picker.DateChanged = [] {};
        spin.Change = [] {};
        spin.Min = 2000;
        spin.Max = 2010;
        form.Show();
    }
};

TEST(Properties, SetFromCodeTheyRaiseNothingAndTellTheView) {
    Screen s;
    Trace trace;
    std::vector<Aspect> told;
    Control* all[] = {&s.txt_season, &s.chk, &s.opt(1), &s.cbo, &s.picker, &s.spin};
    for (Control* control : all)
        control->SetObserver([&](Aspect aspect) { told.push_back(aspect); });
    s.txt_season.Text = "2008";
    s.txt_season.Text = "2008";
    s.txt_season.ForeColor = 255;
    s.chk.Value = 1;
    s.opt(1).Value = true;
    s.cbo.ListIndex = 1;
    s.picker.Value = "1/7/2007";
    s.spin.Value = 2005;
    EXPECT_EQ(trace.Take(), "");
    EXPECT_EQ(told, (std::vector<Aspect>{Aspect::Text, Aspect::Colour, Aspect::Value, Aspect::Value,
                                         Aspect::ListIndex, Aspect::Value, Aspect::Value}));
    EXPECT_EQ(s.cbo.Text, "hectares");
}

TEST(Buttons, TickingRaisesClickOnlyWhereItChangesSomething) {
    Screen s;
    Trace trace;
    s.chk.Check(true);
    s.chk.Check(true);
    EXPECT_EQ(trace.Take(), "chk_Click ");
    s.chk.Press();
    EXPECT_EQ(s.chk.Value, 0);
    s.opt(0).Check(true);
    s.opt(1).Check(true);
    s.opt(1).Check(true);
    EXPECT_EQ(trace.Take(), "chk_Click opt_diary_Click(0) opt_diary_Click(1) ");
    EXPECT_FALSE(s.opt(0).Value);
    Panel panel{s.form, "frame"};
    OptionButton other{s.form, "opt_other"};
    other.PlaceIn(panel);
    other.Value = true; // options of another panel stay
    EXPECT_TRUE(s.opt(1).Value);
    EXPECT_TRUE(s.opt(1).Check(false).IsImpossible());
    // Arrows choose within the panel, and stop at its ends.
    s.form.Show();
    s.opt(1).SetFocus();
    trace.Take();
    for (const char* key : {"Down", "Up", "Left", "Right"})
        s.form.PressKey(ParseKey(key));
    EXPECT_EQ(trace.Take(), "opt_diary_Click(0) opt_diary_Click(1) ");
    EXPECT_TRUE(s.opt(1).HasFocus());
    // Tab stops at the option that is set, in both directions; where none is, at each.
    s.chk.SetFocus();
    s.form.FocusNext(true);
    EXPECT_TRUE(s.opt(1).HasFocus());
    s.form.FocusNext(true);
    EXPECT_TRUE(s.cbo.HasFocus());
    s.form.FocusNext(false);
    EXPECT_TRUE(s.opt(1).HasFocus());
    s.opt(1).Value = false;
    s.form.FocusNext(false);
    EXPECT_TRUE(s.opt(0).HasFocus());
}

TEST(Lists, EntriesKeepTheirNumbersAndTheSelectionItsEntry) {
    Screen s;
    s.lst.Sorted = true;
    for (const char* text : {"pear", "Apple", "fig"})
        s.lst.AddItem(text, static_cast<int>(std::string_view(text).size()));
    EXPECT_EQ(s.lst.PropertyText("List"), "Apple|fig|pear");
    EXPECT_EQ(s.lst.NewIndex(), 1);
    s.lst.ListIndex = 2;
    s.lst.AddItem("Banana", 6);
    EXPECT_EQ(s.lst.ListIndex, 3);
    s.lst.RemoveItem(0);
    EXPECT_EQ(s.lst.Text, "pear");
    EXPECT_EQ(s.lst.ItemData(s.lst.ListIndex), 4);
    s.lst.RemoveItem(2);
    EXPECT_EQ(s.lst.ListIndex, -1);
    EXPECT_EQ(s.lst.ItemData(-1), 0);
    EXPECT_THROW(s.lst.ListIndex = 2, runtime::RunTimeError);
    s.lst.Text = "BANANA";
    EXPECT_EQ(s.lst.ListIndex, 0);
    EXPECT_THROW(s.lst.Text = "plum", runtime::RunTimeError);
}

TEST(Lists, ChoosingClicksAlsoForTheSelectedEntry) {
    Screen s;
    Trace trace;
    EXPECT_TRUE(s.cbo.ChooseText("HECTARES"));
    EXPECT_TRUE(s.cbo.Choose(1));
    EXPECT_TRUE(s.cbo.Press());
    EXPECT_EQ(trace.Take(), "cboUnits_Click cboUnits_Click cboUnits_Click ");
    EXPECT_TRUE(s.cbo.ChooseText("miles").IsImpossible());
    EXPECT_TRUE(s.cbo.Choose(2).IsImpossible());
    s.cbo.PressKey(ParseKey("a"));
    EXPECT_EQ(s.cbo.Text, "acres");
    s.cbo.PressKey(ParseKey("Up"));
    EXPECT_EQ(trace.Take(), "cboUnits_Click ");
    s.cbo.PressKey(ParseKey("Down"));
    EXPECT_EQ(s.cbo.Text, "hectares");
    for (int entry = 0; entry < 40; ++entry)
        s.lst.AddItem("entry " + std::to_string(entry));
    s.lst.PressKey(ParseKey("PageDown"));
    s.lst.PressKey(ParseKey("PageDown"));
    const int paged = s.lst.ListIndex;
    EXPECT_TRUE(paged > 2 && paged < s.lst.ListCount() - 1) << paged;
    s.lst.PressKey(ParseKey("End"));
    s.lst.PressKey(ParseKey("PageDown"));
    EXPECT_EQ(s.lst.ListIndex, s.lst.ListCount() - 1);
    s.lst.PressKey(ParseKey("Home"));
    s.lst.PressKey(ParseKey("PageUp"));
    EXPECT_EQ(s.lst.ListIndex, 0);
}

TEST(TabStrip, AsksBeforeItSwitches) {
    Screen s;
    std::string asked;
    int redirect = -1;
    bool refuse = false;
    s.tab.Switch = [&](int oldTab, int& newTab, bool& cancel) {
        asked += std::to_string(oldTab) + ">" + std::to_string(newTab) + "@" +
                 std::to_string(s.tab.CurrTab.Get()) + " ";
        cancel = refuse;
        if (redirect >= 0)
            newTab = redirect;
    };
    s.cbo.SetFocus();
    EXPECT_TRUE(s.tab.PickTab(1));
    EXPECT_TRUE(s.tab.HasFocus());
    EXPECT_EQ(asked, "0>1@1 "); // the new tab is current within the routine
    asked.clear();
    refuse = true;
    s.cbo.SetFocus();
    EXPECT_TRUE(s.tab.PickTabText("r&d"));
    EXPECT_EQ(s.tab.CurrTab, 1);
    EXPECT_TRUE(s.cbo.HasFocus()); // the focus is where it was
    s.tab.CurrTab = 0;             // from code it is asked as well
    EXPECT_EQ(s.tab.CurrTab, 1);
    s.tab.CurrTab = 1; // no change, no event
    s.tab.PickTab(1);  // the user's press of the current tab is one
    EXPECT_EQ(asked, "1>2@2 1>0@0 1>1@1 ");
    refuse = false;
    redirect = 2;
    s.tab.PickTab(0);
    EXPECT_EQ(s.tab.CurrTab, 2);
    EXPECT_TRUE(s.tab.PickTab(3).IsImpossible());
    EXPECT_THROW(s.tab.CurrTab = 3, runtime::RunTimeError);
    s.tab.Switch = [](int, int&, bool&) { throw runtime::RunTimeError(13); };
    EXPECT_THROW(s.tab.PickTab(0), runtime::RunTimeError);
    EXPECT_EQ(s.tab.CurrTab, 2);
    asked.clear();
    s.tab.Caption = "One|Two"; // the current tab is gone
    EXPECT_EQ(s.tab.CurrTab, 0);
    EXPECT_EQ(s.tab.TabCaption(1), "Two");
    EXPECT_THROW(s.tab.TabCaption(2), runtime::RunTimeError);
}

TEST(DatePicker, TakesTextAndToldDates) {
    Screen s;
    Trace trace;
    s.picker.DateSelected = "15/8/2008";
    EXPECT_EQ(runtime::IsoText(*s.picker.Date()), "2008-08-15");
    EXPECT_THROW(s.picker.Text = "no date", runtime::RunTimeError);
    EXPECT_EQ(trace.Take(), "");
    s.picker.Pick(runtime::MakeDate(2008, 8, 15)); // the same date counts as picked
    EXPECT_EQ(trace.Take(), "DatePicker_FinYear_DateChanged ");
    s.picker.Value = "";
    EXPECT_FALSE(s.picker.Date());
    EXPECT_EQ(s.picker.Text, "");
}

TEST(UpDown, StepsFromTheTextOfItsBuddyWithinItsLimits) {
    Screen s;
    s.spin.BuddyControl = &s.txt_season;
    s.spin.SyncBuddy = true;
    s.spin.Value = 2005;
    for (const auto& [typed, step, shown, events] :
         std::vector<std::tuple<const char*, int, const char*, const char*>>{
             {"2008", 1, "2009", "css_bgtseason_Change "},
             {"2010", 1, "2010", ""},
             {"2000", -1, "2000", "css_bgtseason_Change "}, // the value was elsewhere
             {"abc", 1, "2001", "css_bgtseason_Change "},   // from the value
             {"1850", 1, "2000", "css_bgtseason_Change "}}) {
        s.txt_season.Text = typed;
        if (std::string_view(typed) == "2010")
            s.spin.Value = 2010;
        Trace trace;
        s.spin.Step(step);
        EXPECT_EQ(s.txt_season.Text, shown) << typed;
        EXPECT_EQ(s.spin.Value, std::stoi(shown)) << typed;
        EXPECT_EQ(trace.Take(), events) << typed;
    }
    s.spin.SyncBuddy = false;
    s.spin.Step(1);
    EXPECT_EQ(s.txt_season.Text, "2000");
    EXPECT_EQ(s.spin.Value, 2001);
}

TEST(Array, KeepsItsBounds) {
    QYxArray array;
    EXPECT_EQ(array.UpperBound(1), -1);
    EXPECT_EQ(array.UpperBound(2), -1);
    array.ReDim(0, -1, 0, 8);
    EXPECT_EQ(array.UpperBound(1), -1);
    EXPECT_EQ(array.UpperBound(2), 8); // without rows it keeps its columns
    array.ReDim(0, 1, 0, 2);
    array(0, 0) = "a";
    array(1, 2) = "b";
    array.InsertRows(1);
    EXPECT_EQ(array(2, 2), runtime::Variant("b"));
    EXPECT_TRUE(array(1, 2).IsEmpty());
    array.AppendRows(2);
    array.ReDim(0, 2, 0, 3); // what lies within both bounds stays
    EXPECT_EQ(array.UpperBound(1), 2);
    EXPECT_EQ(array(2, 2), runtime::Variant("b"));
    array.DeleteRows(0, 2);
    EXPECT_EQ(array(0, 2), runtime::Variant("b"));
    std::function<void()> outside[] = {[&] { array(1, 0) = 1; },        [&] { array(0, 4) = 1; },
                                       [&] { array(-1, 0) = 1; },       [&] { array.InsertRows(3); },
                                       [&] { array.DeleteRows(0, 2); }, [&] { array.ReDim(0, -2, 0, 1); },
                                       [&] { array.UpperBound(3); },    [&] { QYxArray().AppendRows(); }};
    for (auto& reach : outside) {
        try {
            reach();
            ADD_FAILURE() << &reach - outside;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.Number(), 9);
        }
    }
}

} // namespace
} // namespace quillary::controls
