#include "platform/controls/controls.h"
#include "platform/runtime/run_time_error.h"
#include "trace.h"

#include <gtest/gtest.h>

namespace quillary::controls {
namespace {

using testing::Trace;

// Plays the user of modal forms: does what the test says and expects that to close the form.
class ScriptedHost : public FormHost {
public:
    ScriptedHost() { SetFormHost(this); }
    ~ScriptedHost() override { SetFormHost(nullptr); }
    void FormShown(Form& form, bool modal) override {
        log += (modal ? "modal " : "show ") + form.Name() + " ";
    }
    void FormHidden(Form& form) override { log += "hide " + form.Name() + " "; }
    void RunModal(Form& form) override {
        user(form);
        EXPECT_FALSE(form.IsOpen());
    }
    void PopupMenu(Form&, MenuItem& menu, int, int) override {
        for (MenuItem* entry : menu.Entries())
            log += entry->Caption.Get() + (entry->IsShown() ? " " : "(hidden) ");
    }
    void DoEvents() override {}
    int ScreenWidth() const override { return 15360; }
    int ScreenHeight() const override { return 11520; }

    std::string log;
    std::function<void(Form&)> user;
};

struct Dialog : Form {
    explicit Dialog(const char* formName) : Form(formName) {
        Load = [] {};
        Activate = [] {};
        QueryUnload = [this](bool& cancel, int mode) {
            askedMode = mode;
            cancel = refuse;
        };
        Unload = [](bool&) {};
    }
    CommandButton cmd_Okay{*this, "cmd_Okay"};
    bool refuse = false;
    int askedMode = -1;
};

TEST(Form, LifeOfScreenAndDialog) {
    ScriptedHost host;
    Trace trace;
    Dialog screen("frm_setup"), dialog("frm_Units");
    screen.MainScreen = true;
    screen.Show();
    EXPECT_EQ(trace.Take(), "Form_Load Form_Activate ");
    screen.Show(); // comes to the top again
    EXPECT_EQ(trace.Take(), "");
    Form* beside = nullptr;
    host.user = [&](Form& form) {
        beside = TopForm();
        EXPECT_TRUE(screen.cmd_Okay.Press().IsImpossible()); // it waits
        EXPECT_TRUE(screen.RequestClose().IsImpossible());
        form.UnloadForm();
    };
    dialog.ShowModal();
    EXPECT_EQ(beside, &dialog);
    EXPECT_EQ(dialog.askedMode, 1);
    // The dialog's Activate ran once, the screen's again.
    EXPECT_EQ(trace.Take(), "Form_Load Form_Activate Form_QueryUnload Form_Unload Form_Activate ");
    host.user = [](Form& form) { form.Hide(); };
    dialog.ShowModal(); // a hidden dialog stays loaded
    dialog.ShowModal();
    EXPECT_EQ(trace.Take(), "Form_Load Form_Activate Form_Activate Form_Activate Form_Activate ");
    EXPECT_EQ(Forms().size(), 2u);
    screen.refuse = true;
    EXPECT_FALSE(screen.UnloadForm(UnloadMode::TitleBar));
    EXPECT_EQ(screen.askedMode, 0);
    screen.refuse = false;
    // Unloading every form within Unload, itself among them.
    screen.Unload = [](bool&) {
        for (Form* form : std::vector<Form*>(Forms()))
            form->UnloadForm();
    };
    EXPECT_TRUE(screen.UnloadForm());
    EXPECT_TRUE(Forms().empty());
    EXPECT_EQ(TopForm(), nullptr);
    EXPECT_EQ(host.log, "show frm_setup show frm_setup modal frm_Units hide frm_Units modal frm_Units "
                        "hide frm_Units modal frm_Units hide frm_Units hide frm_setup ");
}

TEST(Form, ActivateWaitsForTheLastDialog) {
    ScriptedHost host;
    Trace trace;
    Dialog screen("frm_setup"), outer("frm_Rebates"), inner("frm_ListAccounts");
    screen.MainScreen = true;
    screen.Show();
    host.user = [&](Form& form) {
        if (&form == &outer)
            inner.ShowModal();
        trace.Take();
        form.UnloadForm();
        EXPECT_EQ(trace.Take(), "Form_QueryUnload Form_Unload ");
    };
    outer.ShowModal();
    EXPECT_EQ(trace.Take(), "Form_Activate ");
}

TEST(Form, FailingLoadLeavesNothingBehind) {
    Dialog form("frm_setup");
    form.Load = [] { throw runtime::RunTimeError(53); };
    EXPECT_THROW(form.Show(), runtime::RunTimeError);
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_TRUE(Forms().empty());
    EXPECT_TRUE(OpenForms().empty());
}

TEST(Form, UnloadedWhileItLoadsIsNotShown) {
    ScriptedHost host;
    host.user = [](Form&) { ADD_FAILURE(); };
    Dialog screen("frm_setup"), form("frm_Units");
    screen.MainScreen = true;
    screen.Show();
    form.Load = [&] { form.UnloadForm(); };
    Trace trace;
    form.ShowModal();
    EXPECT_EQ(trace.Take(), "Form_Load Form_QueryUnload Form_Unload ");
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_FALSE(form.IsOpen());
    EXPECT_EQ(TopForm(), &screen);
    EXPECT_EQ(host.log, "show frm_setup ");
}

TEST(Form, TitleBarAndEscapeAreCancelElseOk) {
    ScriptedHost host;
    for (bool withCancel : {true, false})
        for (bool byEscape : {true, false}) {
            Dialog dialog("frm_chooseMob");
            CommandButton cmd_cancel(dialog, "cmd_cancel");
            std::string pressed;
            dialog.cmd_Okay.Caption = "&OK";
            dialog.cmd_Okay.Click = [&] {
                pressed += "ok ";
                dialog.UnloadForm();
            };
            cmd_cancel.Caption = "&Cancel";
            cmd_cancel.Visible = withCancel;
            cmd_cancel.Click = [&] {
                pressed += "cancel ";
                dialog.UnloadForm();
            };
            // What was typed is given up without a check.
            dialog.cmd_Okay.Validate = [&](bool& cancel) { cancel = true; };
            host.user = [&](Form& form) {
                if (byEscape)
                    form.PressKey(ParseKey("Escape"));
                else
                    form.RequestClose();
            };
            dialog.ShowModal();
            EXPECT_EQ(pressed, withCancel ? "cancel " : "ok ") << byEscape;
        }
    // The screen itself is unloaded, unless it says otherwise; Escape leaves it alone.
    Dialog screen("frm_setup");
    screen.Show();
    screen.PressKey(ParseKey("Escape"));
    EXPECT_TRUE(screen.IsOpen());
    int asked = 0;
    screen.CloseRequest = [&] { ++asked; };
    screen.RequestClose();
    EXPECT_EQ(asked, 1);
    screen.CloseRequest = nullptr;
    screen.RequestClose();
    EXPECT_EQ(screen.askedMode, 0);
    EXPECT_FALSE(screen.IsOpen());
}

TEST(Menu, ShowsItsEntriesAndClicksThem) {
    ScriptedHost host;
    Form form("frm_setup");
    MenuItem mnu_helpmain(form, "mnu_helpmain");
    MenuItemArray mnu_help(form, "mnu_help", {0});
    std::string clicked;
    mnu_help.On(&MenuItem::Click, [&](int index) { clicked += mnu_help(index).Caption.Get() + " "; });
    for (int index : {1, 2})
        mnu_help.Load(index);
    mnu_help.Each([&](MenuItem& entry, int index) {
        entry.SetParent(&mnu_helpmain);
        entry.Caption = "Help" + std::to_string(index);
    });
    mnu_help(1).Visible = false;
    mnu_helpmain.PopUp();
    EXPECT_EQ(host.log, "Help0 Help1(hidden) Help2 ");
    EXPECT_TRUE(mnu_help(2).Press());
    EXPECT_TRUE(mnu_help(1).Press().IsImpossible());
    EXPECT_EQ(clicked, "Help2 ");
}

TEST(Form, ControlsLieInTheContainerOfTheirMaking) {
    Form form("frm_setup");
    PanelArray vse_frame(form, "vse_frame", {0, 1});
    form.SetContainer(&vse_frame(1));
    TextBox inside(form, "txt_inside");
    form.SetContainer(nullptr);
    TextBox outside(form, "txt_outside");
    vse_frame(1).Visible = false;
    EXPECT_FALSE(inside.IsShown());
    EXPECT_TRUE(inside.Visible); // its own flag
    EXPECT_TRUE(outside.IsShown());
    vse_frame(0).ZOrder();
    vse_frame(1).ZOrder();
    EXPECT_GT(vse_frame(1).StackOrder(), vse_frame(0).StackOrder());
}

} // namespace
} // namespace quillary::controls
