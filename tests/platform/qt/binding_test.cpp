#include "platform/qt/demo_form.h"

#include "platform/qt/layouts.h"
#include "platform/qt/text.h"
#include "platform/qt/widgets.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <set>

namespace quillary::qt::testing {

using controls::Outcome;

class BindingTest : public ::testing::Test, protected QtTest {
protected:
    DemoForm form;
};

TEST_F(BindingTest, WidgetsShowWhatTheControlsHoldBeforeAndAfterTheShowing) {
    form.txt_name.Text = "Hill Top";
    form.chk_sort.Value = controls::kChecked;
    form.cbo_unit.AddItem("acres");
    form.cbo_unit.AddItem("hectares");
    form.cbo_unit.ListIndex = 1;
    form.txt_notes.Text = "one\r\ntwo";
    form.txt_line(1).Enabled = false;
    form.cmd_add.Visible = false;
    form.Caption = "Demo";
    form.lbl_name.Caption = std::string(500, 'w'); // such as a path of the settings
    form.Show();

    EXPECT_LT(ViewOf(form).Window().width(), ViewOf(form).Window().screen()->size().width());
    EXPECT_EQ(WidgetOf<QLineEdit>(form.txt_name).text(), "Hill Top");
    EXPECT_TRUE(WidgetOf<QCheckBox>(form.chk_sort).isChecked());
    EXPECT_EQ(WidgetOf<QComboBox>(form.cbo_unit).currentText(), "hectares");
    EXPECT_EQ(WidgetOf<QPlainTextEdit>(form.txt_notes).toPlainText(), "one\ntwo");
    EXPECT_FALSE(WidgetOf<QLineEdit>(form.txt_line(1)).isEnabled());
    EXPECT_FALSE(WidgetOf<QPushButton>(form.cmd_add).isVisible());
    EXPECT_EQ(ViewOf(form).Window().windowTitle(), "Demo");
    EXPECT_EQ(WidgetOf<QTabBar>(form.tab_pages).tabText(0), "&First");

    form.txt_name.Text = "R&D";
    form.chk_sort.Value = controls::kGrayed;
    form.opt_unit(1).Value = true;
    form.cbo_unit.ListIndex = -1;
    form.cmd_add.Visible = true;
    form.txt_name.Locked = true;
    form.txt_name.MaxLength = 5;
    form.lst_names.AddItem("b");
    form.lst_names.AddItem("a");
    form.lst_names.ListIndex = 1;
    Settle();
    EXPECT_EQ(WidgetOf<QLineEdit>(form.txt_name).text(), "R&D");
    EXPECT_EQ(WidgetOf<QCheckBox>(form.chk_sort).checkState(), Qt::PartiallyChecked);
    EXPECT_TRUE(WidgetOf<QRadioButton>(form.opt_unit(1)).isChecked());
    EXPECT_FALSE(WidgetOf<QRadioButton>(form.opt_unit(0)).isChecked());
    EXPECT_EQ(WidgetOf<QComboBox>(form.cbo_unit).currentIndex(), -1);
    EXPECT_TRUE(WidgetOf<QPushButton>(form.cmd_add).isVisible());
    EXPECT_TRUE(WidgetOf<QLineEdit>(form.txt_name).isReadOnly());
    EXPECT_EQ(WidgetOf<QListView>(form.lst_names).currentIndex().row(), 1);
}

TEST_F(BindingTest, ABoxThatItsRoutineResetsShowsWhatTheControlHolds) {
    form.chk_sort.Click = [&] { form.chk_sort.Value = controls::kUnchecked; };
    form.cbo_unit.AddItem("acres");
    form.cbo_unit.AddItem("hectares");
    form.cbo_unit.Click = [&] { form.cbo_unit.ListIndex = 0; };
    form.Show();
    hand.Check(form.chk_sort, true);
    hand.Choose(form.cbo_unit, 1);
    EXPECT_FALSE(WidgetOf<QCheckBox>(form.chk_sort).isChecked());
    EXPECT_EQ(WidgetOf<QComboBox>(form.cbo_unit).currentIndex(), 0);
}

TEST_F(BindingTest, EveryWayOfEditingReachesTheControl) {
    form.txt_name.KeyPress = [](int& keyAscii) {
        if (keyAscii == '\'')
            keyAscii = '`';
        else if (keyAscii >= '0' && keyAscii <= '9')
            keyAscii = 0;
    };
    form.Show();
    hand.TypeText(form.txt_name, "café1");
    EXPECT_EQ(form.txt_name.Text, "café");

    // The clipboard and undo are the field's own, and reach the control as edits.
    auto& line = WidgetOf<QLineEdit>(form.txt_name);
    line.selectAll();
    line.insert("1 '"); // pasted text is not typed: nothing swallows it
    EXPECT_EQ(form.txt_name.Text, "1 '");
    line.undo();
    EXPECT_EQ(form.txt_name.Text, "café");

    QInputMethodEvent composed;
    composed.setCommitString("9'x");
    line.selectAll();
    QApplication::sendEvent(&line, &composed);
    EXPECT_EQ(form.txt_name.Text, "`x");
}

TEST_F(BindingTest, LimitsHoldForTheUserAlone) {
    form.txt_name.MaxLength = 3;
    form.Show();
    hand.TypeText(form.txt_name, "abcdef");
    EXPECT_EQ(form.txt_name.Text, "abc");
    // Characters are counted, whatever the toolkit counts; a paste is cut like what is typed.
    hand.TypeText(form.txt_name, "ab\U0001F411d");
    EXPECT_EQ(form.txt_name.Text, "ab\U0001F411");
    auto& line = WidgetOf<QLineEdit>(form.txt_name);
    line.selectAll();
    line.insert("12345");
    EXPECT_EQ(form.txt_name.Text, "123");
    // A longer text of a database is shown and kept, also when it is edited.
    form.txt_name.Text = "from code";
    Settle();
    EXPECT_EQ(line.text(), "from code");
    line.end(false);
    line.insert("x");
    EXPECT_EQ(form.txt_name.Text, "from code");
    line.backspace();
    EXPECT_EQ(form.txt_name.Text, "from cod");
    hand.TypeText(form.txt_notes, "one\ntwo");
    EXPECT_EQ(form.txt_notes.Text, "one\r\ntwo");
    form.txt_notes.Locked = true;
    hand.TypeText(form.txt_notes, "x");
    EXPECT_EQ(form.txt_notes.Text, "one\r\ntwo");
}

TEST_F(BindingTest, PagesAreBuiltWhenTheyAreFirstShown) {
    form.Show();
    QWidget& window = ViewOf(form).Window();
    EXPECT_EQ(window.findChild<QLineEdit*>("txt_late"), nullptr);
    form.txt_late->Text = "kept";
    ASSERT_TRUE(hand.PickTabText(form.tab_pages, "Second"));
    auto* late = window.findChild<QLineEdit*>("txt_late");
    ASSERT_NE(late, nullptr);
    EXPECT_EQ(late->text(), "kept");
    EXPECT_TRUE(late->isVisible());
    ASSERT_TRUE(hand.PickTab(form.tab_pages, 2));
    EXPECT_FALSE(late->isVisible());
    EXPECT_EQ(hand.WidgetOf(*form.txt_none), nullptr);
    EXPECT_TRUE(hand.TypeText(*form.txt_late, "x").IsImpossible());
}

TEST_F(BindingTest, ARefusedTabStaysInBothHands) {
    form.tab_pages.Switch = [](int, int&, bool& cancel) { cancel = true; };
    form.Show();
    hand.PickTab(form.tab_pages, 1);
    EXPECT_EQ(form.tab_pages.CurrTab, 0);
    EXPECT_EQ(WidgetOf<QTabBar>(form.tab_pages).currentIndex(), 0);
}

TEST(Layouts, AMissingOrUnfitWidgetIsNamedWithItsFile) {
    struct Unfinished : controls::Form {
        explicit Unfinished(const char* layout) : Form("frm_bad") { Layout = layout; }
        controls::TextBoxArray txt_code{*this, "txt_code", {3}};
    };
    static constexpr const char* kNames[] = {"txt_code_3"};
    AddLayout({"without", std::span<const char* const>(), [](QWidget&) {}});
    AddLayout({"unfit", kNames, [](QWidget& window) {
                   auto* button = new QPushButton(&window);
                   button->setObjectName("txt_code_3");
               }});
    const auto failure = [](const char* layout) {
        Unfinished form(layout);
        QtFormHost host;
        try {
            form.Show();
        } catch (const runtime::RunTimeError& error) {
            return error.Description();
        }
        return std::string("no error");
    };
    EXPECT_EQ(failure("without"), "The control txt_code(3) has no widget txt_code_3 in without.ui");
    EXPECT_EQ(failure("unfit"), "The control txt_code(3) cannot be shown by the QPushButton of that name in "
                                "unfit.ui");
    EXPECT_EQ(failure("nowhere"), "There is no layout 'nowhere.ui'");
}

// Each Designer file builds, names each widget once, and gives every field a name for screen readers.
TEST(Layouts, AllFilesBuild) {
    ASSERT_FALSE(Layouts().empty());
    for (const Layout& layout : Layouts()) {
        QWidget window;
        layout.build(window);
        std::set<std::string> names;
        for (const char* name : std::span(layout.widgets).subspan(layout.widgets.empty() ? 0 : 1)) {
            EXPECT_TRUE(names.insert(name).second) << layout.name << ": " << name << " stands there twice";
            EXPECT_NE(window.findChild<QWidget*>(name), nullptr) << layout.name << ": " << name;
        }
        for (const QLabel* label : window.findChildren<QLabel*>())
            EXPECT_FALSE(label->buddy() && label->buddy()->objectName().isEmpty()) << layout.name;
    }
}

TEST_F(BindingTest, ScreenReadersAreToldNamesAndTheWheelChangesNothing) {
    form.txt_line(0).AccessibleName = "Address, first line";
    form.cbo_unit.AddItem("acres");
    form.cbo_unit.AddItem("hectares");
    form.cbo_unit.ListIndex = 0;
    form.Show();
    form.txt_name.SetFocus();
    EXPECT_EQ(WidgetOf<QLineEdit>(form.txt_name).accessibleName(), "Name");
    EXPECT_EQ(WidgetOf<QLineEdit>(form.txt_line(0)).accessibleName(), "Address, first line");
    auto& combo = WidgetOf<QComboBox>(form.cbo_unit);
    QWheelEvent wheel(QPointF(2, 2), combo.mapToGlobal(QPointF(2, 2)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&combo, &wheel);
    EXPECT_EQ(form.cbo_unit.ListIndex, 0);
    EXPECT_EQ(combo.currentIndex(), 0);
}

TEST_F(BindingTest, AShortPageOfAStackDoesNotScrollForALongOne) {
    QStackedWidget stack;
    for (const int height : {900, 40}) {
        auto* page = new StackPage;
        auto* lines = new QLabel(QStringLiteral("a text of two words"), page);
        lines->setWordWrap(true);
        lines->setMinimumHeight(height);
        (new QVBoxLayout(page))->addWidget(lines);
        stack.addWidget(page);
    }
    stack.show();
    EXPECT_GE(stack.heightForWidth(300), 900);
    stack.setCurrentIndex(1);
    EXPECT_LT(stack.heightForWidth(300), 200);
    EXPECT_LT(stack.minimumSizeHint().height(), 200);
}

} // namespace quillary::qt::testing
