#include "platform/qt/demo_form.h"

#include "platform/qt/guard.h"
#include "platform/qt/layouts.h"
#include "platform/qt/theme.h"
#include "platform/qt/view_services.h"
#include "platform/qt/widgets.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTabBar>
#include <QTableView>

#include <gtest/gtest.h>

namespace quillary::qt::testing {

using controls::QYxArray;

namespace {

template <class Widget>
Widget* Add(QWidget& parent, const char* name) {
    auto* widget = new Widget(&parent);
    widget->setObjectName(QString::fromLatin1(name));
    parent.layout()->addWidget(widget);
    return widget;
}

void BuildDemo(QWidget& window) {
    new QGridLayout(&window);
    Add<QLabel>(window, "lbl_name");
    for (const char* name : {"txt_name", "txt_line_0", "txt_line_1", "txt_season"})
        Add<QLineEdit>(window, name);
    Add<QPlainTextEdit>(window, "txt_notes");
    Add<QCheckBox>(window, "chk_sort");
    Add<QRadioButton>(window, "opt_unit_0");
    Add<QRadioButton>(window, "opt_unit_1");
    Add<QComboBox>(window, "cbo_unit");
    Add<QListView>(window, "lst_names");
    Add<DateButton>(window, "dtp_start");
    Add<StepButtons>(window, "css_season");
    Add<QTableView>(window, "tgrd_rows");
    Add<QTabBar>(window, "tab_pages");
    Add<QPushButton>(window, "cmd_add");
    Add<QPushButton>(window, "cmd_close");
    auto* stack = Add<QStackedWidget>(window, "pages");
    for (const char* name : {"vse_page_0", "vse_page_1", "vse_page_2"}) {
        auto* page = new PagePlace;
        page->setObjectName(QString::fromLatin1(name));
        stack->addWidget(page);
    }
}

void BuildLatePage(QWidget& page) {
    new QGridLayout(&page);
    Add<QLineEdit>(page, "txt_late");
}

constexpr const char* kDemoNames[] = {"lbl_name",  "txt_name",  "txt_line_0", "txt_line_1", "txt_season",
                                      "txt_notes", "chk_sort",  "opt_unit_0", "opt_unit_1", "cbo_unit",
                                      "lst_names", "dtp_start", "css_season", "tgrd_rows",  "tab_pages",
                                      "cmd_add",   "cmd_close", "vse_page_0", "vse_page_1", "vse_page_2"};
constexpr const char* kLateNames[] = {"txt_late"};

class Application : public ::testing::Environment {
public:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        application_ = std::make_unique<QApplication>(count_, words_);
        ApplyTheme(*application_);
        AddLayout({"frm_demo", kDemoNames, BuildDemo});
        AddLayout({"late_page", kLateNames, BuildLatePage});
    }
    void TearDown() override { application_.reset(); }

private:
    char name_[5] = "test";
    char* words_[2] = {name_, nullptr};
    int count_ = 1;
    std::unique_ptr<QApplication> application_;
};

const auto* const application = ::testing::AddGlobalTestEnvironment(new Application);

} // namespace

DemoForm::DemoForm(std::string name) : Form(std::move(name)) {
    Layout = "frm_demo";
    vse_page(1).Layout = "late_page";
    SetContainer(&vse_page(1));
    txt_late = std::make_unique<controls::TextBox>(*this, "txt_late");
    SetContainer(&vse_page(2));
    txt_none = std::make_unique<controls::TextBox>(*this, "txt_none");
    SetContainer(nullptr);
    tab_pages.Caption = "&First|Second|Third";
    vse_page.Each([this](controls::Panel& panel, int index) { tab_pages.SetPage(index, panel); });
    lbl_name.Caption = "&Name";
    txt_name.SetBuddy(&lbl_name);
    cmd_add.Caption = "&Add";
    cmd_close.Caption = "Close";
    opt_unit(0).Caption = "hectares";
    opt_unit(1).Caption = "acres";
    css_season.BuddyControl = &txt_season;
    css_season.SyncBuddy = true;
    css_season.Min = 2000;
    css_season.Max = 2010;
    txt_season.Text = "2008";
    txt_notes.MultiLine = true;
}

void DemoForm::LogFocus(controls::Control& control) {
    control.GotFocus = [this, &control] { log.push_back("+" + control.Name()); };
    control.LostFocus = [this, &control] { log.push_back("-" + control.Name()); };
    control.Validate = [this, &control](bool&) { log.push_back("?" + control.Name()); };
}

std::string DemoForm::TakeLog() {
    std::string all;
    for (const std::string& entry : std::exchange(log, {}))
        all += (all.empty() ? "" : " ") + entry;
    return all;
}

void DemoForm::FillGrid(long count) {
    if (tgrd_rows.ColumnCount() == 0) {
        for (const char* caption : {"Name", "Number", "Shown", "Kind"})
            tgrd_rows.AddColumn().Caption = caption;
        auto& shown = tgrd_rows.Columns(2).ValueItems;
        shown.Add(true, "True", 102);
        shown.Add(false, "False", 103);
        shown.Translate = true;
        shown.Presentation = controls::Presentation::Pictures;
        auto& kinds = tgrd_rows.Columns(3).ValueItems;
        kinds.Add(1, "Sheep");
        kinds.Add(2, "Beef");
        kinds.Translate = true;
        kinds.Presentation = controls::Presentation::DropDown;
    }
    rows->ReDim(0, count - 1, 0, 3);
    for (long row = 0; row < count; ++row) {
        (*rows)(row, 0) = "row " + std::to_string(row);
        (*rows)(row, 1) = static_cast<std::int32_t>(row);
        (*rows)(row, 2) = row % 2 == 0;
        (*rows)(row, 3) = 1;
    }
    tgrd_rows.Array = rows;
    tgrd_rows.ReBind();
}

QtTest::QtTest() = default;

QtTest::~QtTest() {
    SetBoxRunner(nullptr);
    SetErrorHandler(nullptr);
    TakeError();
}

FormView& QtTest::ViewOf(const controls::Form& form) {
    return *host.ViewOf(form);
}

void QtTest::Settle() {
    for (const controls::Form* form : controls::OpenForms())
        ViewOf(*form).Flush();
    QCoreApplication::processEvents();
}

} // namespace quillary::qt::testing
