#pragma once

#include "platform/controls/controls.h"
#include "platform/qt/form_host.h"
#include "platform/qt/form_view.h"
#include "platform/qt/form_window.h"
#include "platform/qt/widget_gestures.h"

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

namespace quillary::qt::testing {

// A form with one of each kind of control, a page that is built when it is first shown, and a log of what
// its routines were told.
class DemoForm : public controls::Form {
public:
    explicit DemoForm(std::string name = "frm_demo");

    controls::Label lbl_name{*this, "lbl_name"};
    controls::TextBox txt_name{*this, "txt_name"};
    controls::TextBoxArray txt_line{*this, "txt_line", {0, 1}};
    controls::TextBox txt_notes{*this, "txt_notes"};
    controls::CheckBox chk_sort{*this, "chk_sort"};
    controls::OptionButtonArray opt_unit{*this, "opt_unit", {0, 1}};
    controls::ComboBox cbo_unit{*this, "cbo_unit"};
    controls::ListBox lst_names{*this, "lst_names"};
    controls::DatePicker dtp_start{*this, "dtp_start"};
    controls::TextBox txt_season{*this, "txt_season"};
    controls::UpDown css_season{*this, "css_season"};
    controls::Grid tgrd_rows{*this, "tgrd_rows"};
    controls::TabStrip tab_pages{*this, "tab_pages"};
    controls::PanelArray vse_page{*this, "vse_page", {0, 1, 2}};
    controls::CommandButton cmd_add{*this, "cmd_add"};
    controls::CommandButton cmd_close{*this, "cmd_close"};
    std::unique_ptr<controls::TextBox> txt_late; // on page 1, which has a layout of its own
    std::unique_ptr<controls::TextBox> txt_none; // on page 2, which has none

    std::vector<std::string> log;
    void LogFocus(controls::Control& control);
    std::string TakeLog(); // joined by blanks, and emptied

    std::shared_ptr<controls::QYxArray> rows = std::make_shared<controls::QYxArray>();
    // Columns name, number, yes/no as pictures, kind from a list.
    void FillGrid(long count);
};

// The application and the host of a test. Boxes answer by the functions that the test sets.
class QtTest {
protected:
    QtTest();
    ~QtTest();
    FormView& ViewOf(const controls::Form& form);
    template <class Widget>
    Widget& WidgetOf(const controls::Control& control) {
        return dynamic_cast<Widget&>(*hand.WidgetOf(control));
    }
    void Settle(); // everything that waits is shown

    QtFormHost host;
    WidgetHand hand{host};
};

} // namespace quillary::qt::testing
