#include "platform/qt/demo_form.h"

#include "platform/qt/boxes.h"
#include "platform/qt/help_window.h"
#include "platform/qt/text.h"
#include "platform/qt/theme.h"
#include "platform/qt/view_services.h"
#include "platform/system/services.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillary::qt::testing {

using namespace system;

class BoxesTest : public ::testing::Test, protected QtTest {
protected:
    BoxesTest() {
        AddViewServices(services, host, [this] { return reportFile; });
    }
    // Shows the box and runs `user` on it, as soon as it stands.
    void Answer(std::function<void(QDialog&)> user) {
        SetBoxRunner([user = std::move(user)](QDialog& box) {
            box.show();
            QApplication::processEvents();
            user(box);
        });
    }
    static QString Texts(const QDialog& box) {
        QStringList texts;
        for (const QLabel* label : box.findChildren<QLabel*>())
            texts << label->text();
        return texts.join(QLatin1Char('|'));
    }
    Services services;
    std::string reportFile;
};

TEST_F(BoxesTest, MessageBoxesAnswerByNumber) {
    struct Case {
        int buttons;
        const char* key; // what the user presses
        int answer;
    };
    // Escape is Cancel where there is one, else No, else OK. Enter presses the first button.
    constexpr Case kCases[] = {
        {kButtonsOk, "Enter", kAnswerOk},
        {kButtonsOk, "Escape", kAnswerOk},
        {kButtonsOkCancel, "Enter", kAnswerOk},
        {kButtonsOkCancel, "Escape", kAnswerCancel},
        {kButtonsYesNo, "Enter", kAnswerYes},
        {kButtonsYesNo, "Escape", kAnswerNo},
        {kButtonsYesNoCancel, "Escape", kAnswerCancel},
        {kButtonsYesNo, "n", kAnswerNo}, // a button's letter alone
    };
    for (const Case& given : kCases) {
        Answer([&](QDialog& box) {
            QWidget* focused = box.focusWidget() ? box.focusWidget() : &box;
            SendKey(*focused, controls::ParseKey(given.key));
        });
        MessageRequest request;
        request.prompt = "text";
        request.buttons = given.buttons;
        EXPECT_EQ(services.messageBoxes->Show(request), given.answer) << given.buttons << " " << given.key;
    }
    for (const int answer : {kAnswerYes, kAnswerNo, kAnswerCancel}) {
        Answer([&](QDialog& box) { dynamic_cast<MessageBox&>(box).Button(answer)->click(); });
        MessageRequest request;
        request.buttons = kButtonsYesNoCancel;
        EXPECT_EQ(services.messageBoxes->Show(request), answer);
    }
}

TEST_F(BoxesTest, MessageBoxesShowWhatTheyAreGiven) {
    MessageRequest request;
    request.prompt = "First\r\n\r\nSecond & third\rlast";
    request.caption = "Smith & Sons";
    request.heading = "Please Confirm";
    request.subHeading = "Smith && Sons";
    QString title, labels, text;
    Answer([&](QDialog& box) {
        title = box.windowTitle();
        labels = Texts(box);
        text = dynamic_cast<MessageBox&>(box).Text();
        box.accept();
    });
    services.messageBoxes->Show(request);
    EXPECT_EQ(title, "Smith & Sons");
    EXPECT_TRUE(labels.contains("Please Confirm")) << labels.toStdString();
    EXPECT_TRUE(labels.contains("Smith & Sons")) << labels.toStdString();
    EXPECT_EQ(text, "First\n\nSecond & third\nlast");

    // A long text scrolls instead of growing beyond the screen.
    request.prompt = std::string(40000, 'x');
    for (std::size_t at = 40; at < request.prompt.size(); at += 40)
        request.prompt[at] = '\n';
    int height = 0, scrolls = 0;
    Answer([&](QDialog& box) {
        height = box.height();
        scrolls = box.findChild<QPlainTextEdit*>()->verticalScrollBar()->maximum();
        box.accept();
    });
    services.messageBoxes->Show(request);
    EXPECT_LT(height, QGuiApplication::primaryScreen()->availableGeometry().height());
    EXPECT_GT(scrolls, 0);

    // A word without end is broken, and all of it is seen.
    request.prompt = std::string(300, 'W') + " is too long";
    services.messageBoxes->Show(request);
    EXPECT_EQ(scrolls, 0);
}

TEST_F(BoxesTest, InputBoxesGiveTheTextOrNothing) {
    InputRequest request;
    request.prompt = "Enter Enterprise Name";
    request.title = "Add New Enterprise";
    request.defaultText = "Sheep";
    request.maxLength = 8;
    std::string typed;
    bool accept = true;
    Answer([&](QDialog& box) {
        auto& field = dynamic_cast<InputBox&>(box).Field();
        for (const char letter : typed)
            SendKey(field, controls::KeyOfCharacter(static_cast<unsigned char>(letter)));
        SendKey(field, controls::ParseKey(accept ? "Enter" : "Escape"));
    });
    EXPECT_EQ(services.inputBoxes->Ask(request), "Sheep");
    typed = "Dairy farming"; // replaces the default, which is selected, and stops at the limit
    EXPECT_EQ(services.inputBoxes->Ask(request), "Dairy fa");
    accept = false;
    EXPECT_EQ(services.inputBoxes->Ask(request), std::nullopt);
    accept = true;
    typed = "12a.5";
    request.numeric = true;
    request.defaultText = "";
    EXPECT_EQ(services.inputBoxes->Ask(request), "12.5");
}

TEST_F(BoxesTest, ReportsAreShownAndKept) {
    const QTemporaryDir folder;
    reportFile = FromQt(folder.filePath("QYErrorReports.txt"));
    ErrorReportText report;
    report.description = "No current record";
    report.number = 3021;
    report.routine = "frm_setup.cmd_AddBulk_Click";
    report.where = " frm_setup.cmd_AddBulk_Click";
    report.appName = "QYSettings";
    QString shown;
    Answer([&](QDialog& box) {
        shown = dynamic_cast<ErrorWindow&>(box).Text();
        box.findChild<QAbstractButton*>("copy")->click();
        box.accept();
    });
    services.errorReports->Report(report);
    services.errorReports->Report(report);
    for (const char* part : {"3021", "No current record", "frm_setup.cmd_AddBulk_Click"})
        EXPECT_TRUE(shown.contains(part)) << part;
    EXPECT_EQ(QApplication::clipboard()->text(), shown);
    QFile kept(ToQt(reportFile));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll().count("3021"), 2);

    // A file that cannot be written stops neither the report nor the program.
    reportFile = FromQt(folder.path());
    shown.clear();
    services.errorReports->Report(report);
    EXPECT_TRUE(shown.contains("3021"));
}

TEST_F(BoxesTest, HelpLeadsFromNumbersToPages) {
    const QTemporaryDir folder;
    const QDir help(folder.path());
    help.mkpath("QYFarm");
    help.mkpath("pages");
    const auto write = [&](const char* name, const char* text) {
        QFile file(help.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write("contexts.tsv", "Context\tPage\n800\tindex.html\n810\t../pages/farm.html\n811\tgone.html\n");
    write("QYFarm/index.html", "<h1>Welcome</h1>");
    write("pages/farm.html", "<h1>The Farm page</h1>");
    struct Case {
        const char* file;
        long context;
        const char* shows;
    };
    const Case cases[] = {
        {"QYFarm.chm", 0, "Welcome"},         {"QYFARM.CHM", 810, "The Farm page"},
        {"QYFarm.chm", 810, "The Farm page"}, {"QYFarm.chm", 999, "Welcome"},
        {"QYFarm.chm", 811, "Welcome"},       {"pages/farm.html", 0, "The Farm page"},
        {"Wizards.chm", 800, "Wizards"}, // not installed: the page says what is missing
    };
    for (const Case& given : cases) {
        const HelpPlace place = FindHelp(help.filePath(QString::fromLatin1(given.file)), given.context);
        HelpWindow window;
        window.Go(place);
        EXPECT_TRUE(window.Text().contains(given.shows))
            << given.file << " " << given.context << ": " << window.Text().toStdString();
        EXPECT_EQ(place.missing.isEmpty(), std::string(given.file) != "Wizards.chm");
    }
    services.helpViewer->Show(FromQt(help.filePath("QYFarm.chm")), kHelpContext, 810, "frm_setup");
    const auto helpWindows = [] {
        int windows = 0;
        for (const QWidget* window : QApplication::topLevelWidgets())
            windows += dynamic_cast<const HelpWindow*>(window) && window->isVisible();
        return windows;
    };
    EXPECT_EQ(helpWindows(), 1);
    services.helpViewer->CloseAll();
    EXPECT_EQ(helpWindows(), 0);
}

TEST_F(BoxesTest, KeysSentByTheProgramReachTheFocus) {
    DemoForm form;
    int codes = 0;
    form.txt_name.KeyDown = [&](int& keyCode, int) { codes = codes * 100 + keyCode; };
    form.Show();
    QApplication::setActiveWindow(&ViewOf(form).Window());
    form.txt_name.SetFocus();
    services.keyboard->SendKey(controls::kKeyDown, true);
    EXPECT_EQ(codes, 0) << "the key being handled comes first";
    Settle();
    EXPECT_EQ(codes, controls::kKeyDown);
    form.UnloadForm();
}

TEST(Colours, TextsStayReadableOnTheirGround) {
    const QColor light(Qt::white), dark(0x24, 0x29, 0x22), text(Qt::gray);
    EXPECT_EQ(TextColourOf(0, dark, text), text) << "black is the theme's own text";
    EXPECT_EQ(TextColourOf(controls::kDefaultColour, light, text), text);
    EXPECT_EQ(TextColourOf(255, light, text), QColor(255, 0, 0));
    EXPECT_GT(TextColourOf(0x200000, dark, text).lightness(), QColor(0, 0, 0x20).lightness());
    EXPECT_LT(TextColourOf(0x00FFFF, light, text).lightness(), QColor(255, 255, 0).lightness());
}

} // namespace quillary::qt::testing
