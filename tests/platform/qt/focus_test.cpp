#include "platform/qt/demo_form.h"

#include "platform/qt/guard.h"
#include "platform/qt/view_services.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace quillary::qt::testing {

using controls::Key;

namespace {
constexpr Key kTab{controls::kKeyTab, 0, 0};
constexpr Key kBackTab{controls::kKeyTab, controls::kShiftMask, 0};
constexpr Key kEscape{controls::kKeyEscape, 0, 27};
} // namespace

class FocusTest : public ::testing::Test, protected QtTest {
protected:
    FocusTest() {
        form.LogFocus(form.txt_name);
        form.LogFocus(form.txt_line(0));
        form.LogFocus(form.cmd_add);
    }
    QWidget* Focused() { return QApplication::focusWidget(); }
    void ShowForm() {
        form.Show();
        QApplication::setActiveWindow(&ViewOf(form).Window());
        form.txt_name.SetFocus();
        Settle();
        form.TakeLog();
    }
    DemoForm form;
};

TEST_F(FocusTest, KeysAndMouseMoveItInTheOrderOfTheControls) {
    ShowForm();
    EXPECT_EQ(Focused(), hand.WidgetOf(form.txt_name));
    SendKey(*Focused(), kTab);
    EXPECT_EQ(form.TakeLog(), "?txt_name -txt_name +txt_line");
    EXPECT_EQ(Focused(), hand.WidgetOf(form.txt_line(0)));
    SendKey(*Focused(), kBackTab);
    EXPECT_EQ(form.TakeLog(), "?txt_line -txt_line +txt_name");
    // A click in a field, and a click on a button, whose routine finds the focus moved.
    SendClick(*hand.WidgetOf(form.txt_line(0)), {3, 3});
    EXPECT_EQ(form.TakeLog(), "?txt_name -txt_name +txt_line");
    form.cmd_add.Click = [&] { form.log.push_back("click"); };
    hand.Click(form.cmd_add);
    EXPECT_EQ(form.TakeLog(), "?txt_line -txt_line +cmd_add click");
    EXPECT_EQ(Focused(), hand.WidgetOf(form.cmd_add));
    // From code, and by the toolkit itself (a screen reader, a label's accelerator).
    form.txt_name.SetFocus();
    EXPECT_EQ(Focused(), hand.WidgetOf(form.txt_name));
    form.TakeLog();
    hand.WidgetOf(form.txt_line(0))->setFocus(Qt::ShortcutFocusReason);
    EXPECT_EQ(form.TakeLog(), "?txt_name -txt_name +txt_line");
    hand.Leave(form);
    EXPECT_EQ(form.TakeLog(), "?txt_line -txt_line");
    EXPECT_EQ(form.ActiveControl(), nullptr);
}

TEST_F(FocusTest, ARefusedValidateKeepsItWhateverTheUserDoes) {
    form.txt_name.Validate = [](bool& cancel) { cancel = true; };
    int clicks = 0;
    form.cmd_add.Click = [&] { ++clicks; };
    form.chk_sort.Click = [&] { ++clicks; };
    ShowForm();
    QWidget* const name = hand.WidgetOf(form.txt_name);
    const std::function<void()> ways[] = {
        [&] { SendKey(*name, kTab); },
        [&] {
            SendClick(*hand.WidgetOf(form.txt_line(0)), {3, 3});
        },
        [&] { hand.Click(form.cmd_add); },
        [&] { hand.Click(form.chk_sort); },
        [&] { hand.PickTab(form.tab_pages, 1); },
        [&] { hand.Choose(form.lst_names, 0); },
        [&] { hand.WidgetOf(form.txt_line(0))->setFocus(Qt::OtherFocusReason); },
    };
    form.lst_names.AddItem("a");
    for (const auto& way : ways) {
        way();
        Settle();
        EXPECT_EQ(Focused(), name);
        EXPECT_TRUE(form.txt_name.HasFocus());
    }
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(form.chk_sort.Value, controls::kUnchecked);
    EXPECT_EQ(form.tab_pages.CurrTab, 0);
    EXPECT_EQ(form.lst_names.ListIndex, -1);
}

TEST_F(FocusTest, TheFormPreviewsKeysAndAcceleratorsWork) {
    int clicks = 0;
    form.cmd_add.Click = [&] { ++clicks; };
    form.KeyPreview = true;
    std::string seen;
    form.KeyDown = [&](int& keyCode, int shift) {
        seen += std::to_string(keyCode) + "/" + std::to_string(shift) + " ";
        if (keyCode == 'X')
            keyCode = 0;
    };
    ShowForm();
    SendKey(*Focused(), controls::ParseKey("Ctrl+G"));
    SendKey(*Focused(), controls::ParseKey("x"));
    SendKey(*Focused(), controls::ParseKey("y"));
    SendKey(*Focused(), controls::ParseKey("Alt+A"));
    EXPECT_EQ(seen, "71/2 88/0 89/0 65/4 ");
    EXPECT_EQ(form.txt_name.Text, "y");
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(Focused(), hand.WidgetOf(form.cmd_add));
    SendKey(*Focused(), controls::ParseKey("Alt+N"));
    EXPECT_EQ(Focused(), hand.WidgetOf(form.txt_name));
}

TEST_F(FocusTest, KeysReachTheFormWhereNoControlHasTheFocus) {
    std::string seen;
    form.KeyPreview = true;
    form.KeyDown = [&](int& keyCode, int) { seen += static_cast<char>(keyCode); };
    ShowForm();
    hand.Leave(form);
    SendKey(*Focused(), controls::ParseKey("Ctrl+B"));
    form.vse_page(0).SetFocus(); // a page without anything that takes the focus
    SendKey(*Focused(), controls::ParseKey("Ctrl+C"));
    EXPECT_EQ(seen, "BC");
}

TEST_F(FocusTest, AMessageDuringTheMoveDoesNotLoseTheClick) {
    // The routine that validates shows a message; the user's click on the button counts all the same, and
    // a list does not stay open behind it.
    form.txt_name.Validate = [](bool&) {
        CountModalLoop();
        QApplication::processEvents();
    };
    int clicks = 0;
    form.cmd_add.Click = [&] { ++clicks; };
    ShowForm();
    hand.Click(form.cmd_add);
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(form.cmd_add.HasFocus());
}

TEST_F(FocusTest, DialogsBlockUntilTheyAreClosedAndAreAskedFirst) {
    DemoForm dialog("frm_dialog");
    bool refuse = true;
    dialog.QueryUnload = [&](bool& cancel, int) { cancel = std::exchange(refuse, false); };
    dialog.cmd_close.Cancel = true;
    dialog.cmd_close.Click = [&] { dialog.UnloadForm(); };
    ShowForm();
    std::string order;
    QTimer::singleShot(0, [&] {
        order += "shown ";
        EXPECT_TRUE(hand.Click(form.cmd_add).IsImpossible());
        SendKey(*hand.WidgetOf(dialog.txt_name), kEscape); // refused once
        order += dialog.IsOpen() ? "open " : "closed ";
        hand.CloseForm(dialog);
        order += dialog.IsOpen() ? "open " : "closed ";
    });
    dialog.ShowModal();
    order += "returned";
    EXPECT_EQ(order, "shown open closed returned");
    EXPECT_EQ(host.ViewOf(dialog), nullptr);
    EXPECT_TRUE(form.IsOpen());
}

TEST_F(FocusTest, TheWindowsCloseButtonAsksTheForm) {
    bool allowed = false;
    form.QueryUnload = [&](bool& cancel, int) { cancel = !allowed; };
    ShowForm();
    hand.CloseForm(form);
    EXPECT_TRUE(form.IsOpen());
    EXPECT_TRUE(ViewOf(form).Window().isVisible());
    allowed = true;
    hand.CloseForm(form);
    EXPECT_FALSE(form.IsOpen());
    EXPECT_EQ(host.WindowOf(form), nullptr);
    host.Run(); // no form is open: the program ends
}

TEST_F(FocusTest, AnErrorNobodyTookEndsTheLoop) {
    form.cmd_add.Click = [] { throw runtime::RunTimeError(3021, "engine", "No current record"); };
    ShowForm();
    QTimer::singleShot(0, [&] { SendClick(*hand.WidgetOf(form.cmd_add), {4, 4}); });
    try {
        host.Run();
        FAIL() << "the error was lost";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.Number(), 3021);
    }
}

TEST_F(FocusTest, AFormThatDiesWhileItIsOpenRaisesNothing) {
    auto dying = std::make_unique<DemoForm>("frm_dying");
    int raised = 0;
    dying->txt_name.LostFocus = [&] { ++raised; };
    dying->txt_line(0).GotFocus = [&] { ++raised; };
    dying->Show();
    QApplication::setActiveWindow(&ViewOf(*dying).Window());
    dying->txt_name.SetFocus();
    Settle();
    dying.reset();
    Settle();
    EXPECT_EQ(raised, 0);
}

TEST_F(FocusTest, AnElementTakenFromTheFormTakesItsWidgetAlong) {
    ShowForm();
    QWidget* const widget = hand.WidgetOf(form.txt_line(1));
    form.txt_line.Unload(1);
    EXPECT_FALSE(widget->isVisible());
    hand.PressKey(form.txt_line(0), kTab);
    EXPECT_EQ(form.ActiveControl(), &form.txt_notes);
}

} // namespace quillary::qt::testing
