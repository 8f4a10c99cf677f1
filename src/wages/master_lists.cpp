#include "wages/master_lists.h"

#include "common/error_report.h"
#include "common/table_editor.h"

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace quillary::wages {

using common::ColumnDefinition;
using common::kColumnBoolean;
using common::kColumnSingle;
using common::kColumnText;

namespace {

constexpr int kOccupations = 3; // behind the numbers of the lists

// A master table as the editor shows it.
struct MasterTable {
    const char* routine; // errors are reported under its name
    const char* table;   // and the name of its definition file
    const char* title;
    const char* subtitle;
    const char* sql;
    std::vector<ColumnDefinition> columns; // the key comes last
};

ColumnDefinition Key(const char* field) {
    return {.caption = field, .field = field};
}

const MasterTable& MasterOf(int number) {
    static const std::array<MasterTable, 4> masters = {{
        {"frm_setup.ShowPayments",
         "PaymentNames",
         "Payments",
         "Edit existing payments",
         "SELECT DISTINCTROW PaymentNames.[PaymentNameID], PaymentNames.[PayUnitname], "
         "PaymentNames.Calculation, PaymentNames.Salary "
         "FROM PaymentNames "
         "ORDER BY PaymentNames.[PayUnitname]",
         {{"Payment", "PayUnitname", 30, kColumnText, 2000, 1},
          {"Calculation", "Calculation", 10, kColumnSingle, 1000, 0},
          {"Salary", "Salary", 5, kColumnBoolean, 500, 0},
          Key("PaymentNameID")}},
        {"frm_setup.ShowTaxAllow",
         "TaxAllowName",
         "Taxable Allowances",
         "",
         "SELECT DISTINCTROW TaxAllowName.[TaxNameID], TaxAllowName.[taxAllowancename], "
         "TaxAllowName.[taxallowrate] "
         "FROM TaxAllowName "
         "order by TaxAllowName.[taxAllowancename];",
         {{"Taxable Allowance", "taxAllowancename", 30, kColumnText, 2000, 1},
          {"Rate", "taxallowrate", 10, kColumnSingle, 1000, 0},
          Key("TaxNameID")}},
        {"frm_setup.ShowNonTaxAllow",
         "NonTaxAllowName",
         "Nontaxable Allowances",
         "",
         "SELECT DISTINCTROW NonTaxAllowName.[NonTaxNameID], NonTaxAllowName.[NonTaxallowname], "
         "NonTaxAllowName.[NonTaxRate] "
         "FROM NonTaxAllowName "
         "order by NonTaxAllowName.[NonTaxallowname];",
         {{"Non Taxable Allowance", "NonTaxallowname", 30, kColumnText, 2000, 1},
          {"Rate", "NonTaxRate", 10, kColumnSingle, 1000, 0},
          Key("NonTaxNameID")}},
        {"frm_setup.ShowAwards",
         "EmployeeAwardType",
         "Occupations",
         "",
         "SELECT DISTINCTROW EmployeeAwardType.EmployeetypeID, EmployeeAwardType.Employeetype, "
         "EmployeeAwardType.Unitofpay "
         "FROM EmployeeAwardType "
         "order by EmployeeAwardType.Employeetype;",
         {{"Occupation", "Employeetype", 30, kColumnText, 2000, 1},
          {"Unit of Pay", "Unitofpay", 10, kColumnText, 1000, 0},
          Key("EmployeetypeID")}},
    }};
    return masters.at(static_cast<std::size_t>(number));
}

// Writes the definition file, opens the editor and runs what is to follow it. False: an error was reported;
// without the file no editor was opened.
bool Show(int number, const std::function<void()>& afterwards = {}) {
    const MasterTable& master = MasterOf(number);
    return common::Trap(master.routine, [&] {
        common::WriteColumnFile(master.table, master.columns);
        // The editor is told the columns without the key.
        common::startdata(static_cast<int>(master.columns.size()) - 1, master.table, true, master.sql,
                          master.title, master.subtitle, "", 0, 1, 0);
        if (afterwards)
            afterwards();
    });
}

} // namespace

MasterLists::MasterLists(Occupations& occupations) : occupations_(occupations) {
    occupations_.cmd_Award.Click = [this] {
        common::Trap("frm_setup.cmd_Award_Click", [&] { ShowAwards(); });
    };
    occupations_.cmd_EditAward.Click = [this] {
        common::Trap("frm_setup.cmd_EditAward_Click",
                     [&] { EditMaster(occupations_.vsit_settings.CurrTab); });
    };
}

void MasterLists::ShowAwards() {
    Show(kOccupations, [&] { occupations_.OccupationsEdited(); });
}

void MasterLists::EditMaster(int listNumber) {
    common::Trap("frm_setup.EditMaster", [&] {
        if (!Show(listNumber)) // without an editor nothing has changed, and the moves stay
            return;
        // Meant: the selected list comes as last saved; moves that are not saved are gone.
        occupations_.Lists().RefreshSelected();
        occupations_.Lists().RefreshMaster();
    });
}

} // namespace quillary::wages
