#include "wages/master_lists.h"

#include "common/error_report.h"
#include "common/table_editor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillary::wages {

using common::ColumnDefinition;
using common::kColumnBoolean;
using common::kColumnSingle;
using common::kColumnText;

namespace {

struct MasterTable {
    const char* table; // and the name of its definition file
    const char* title;
    const char* subtitle;
    const char* sql;
    std::vector<ColumnDefinition> columns;
};

ColumnDefinition Key(const char* field) {
    return {.caption = field, .field = field};
}

// The editor is told the columns without the key.
void Edit(const MasterTable& master) {
    common::WriteColumnFile(master.table, master.columns);
    common::startdata(static_cast<int>(master.columns.size()) - 1, master.table, true, master.sql,
                      master.title, master.subtitle, "", 0, 1, 0);
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

bool MasterLists::ShowPayments() {
    return common::Trap("frm_setup.ShowPayments", [] {
        Edit({"PaymentNames",
              "Payments",
              "Edit existing payments",
              "SELECT DISTINCTROW PaymentNames.[PaymentNameID], PaymentNames.[PayUnitname], "
              "PaymentNames.Calculation, PaymentNames.Salary "
              "FROM PaymentNames "
              "ORDER BY PaymentNames.[PayUnitname]",
              {{"Payment", "PayUnitname", 30, kColumnText, 2000, 1},
               {"Calculation", "Calculation", 10, kColumnSingle, 1000, 0},
               {"Salary", "Salary", 5, kColumnBoolean, 500, 0},
               Key("PaymentNameID")}});
    });
}

bool MasterLists::ShowTaxAllow() {
    return common::Trap("frm_setup.ShowTaxAllow", [] {
        Edit({"TaxAllowName",
              "Taxable Allowances",
              "",
              "SELECT DISTINCTROW TaxAllowName.[TaxNameID], TaxAllowName.[taxAllowancename], "
              "TaxAllowName.[taxallowrate] "
              "FROM TaxAllowName "
              "order by TaxAllowName.[taxAllowancename];",
              {{"Taxable Allowance", "taxAllowancename", 30, kColumnText, 2000, 1},
               {"Rate", "taxallowrate", 10, kColumnSingle, 1000, 0},
               Key("TaxNameID")}});
    });
}

bool MasterLists::ShowNonTaxAllow() {
    return common::Trap("frm_setup.ShowNonTaxAllow", [] {
        Edit({"NonTaxAllowName",
              "Nontaxable Allowances",
              "",
              "SELECT DISTINCTROW NonTaxAllowName.[NonTaxNameID], NonTaxAllowName.[NonTaxallowname], "
              "NonTaxAllowName.[NonTaxRate] "
              "FROM NonTaxAllowName "
              "order by NonTaxAllowName.[NonTaxallowname];",
              {{"Non Taxable Allowance", "NonTaxallowname", 30, kColumnText, 2000, 1},
               {"Rate", "NonTaxRate", 10, kColumnSingle, 1000, 0},
               Key("NonTaxNameID")}});
    });
}

void MasterLists::ShowAwards() {
    common::Trap("frm_setup.ShowAwards", [&] {
        Edit({"EmployeeAwardType",
              "Occupations",
              "",
              "SELECT DISTINCTROW EmployeeAwardType.EmployeetypeID, EmployeeAwardType.Employeetype, "
              "EmployeeAwardType.Unitofpay "
              "FROM EmployeeAwardType "
              "order by EmployeeAwardType.Employeetype;",
              {{"Occupation", "Employeetype", 30, kColumnText, 2000, 1},
               {"Unit of Pay", "Unitofpay", 10, kColumnText, 1000, 0},
               Key("EmployeetypeID")}});
        occupations_.OccupationsEdited();
    });
}

void MasterLists::EditMaster(int listNumber) {
    common::Trap("frm_setup.EditMaster", [&] {
        bool edited = true;
        if (listNumber == kPayRates)
            edited = ShowPayments();
        else if (listNumber == kTaxableAllowances)
            edited = ShowTaxAllow();
        else if (listNumber == kNonTaxableAllowances)
            edited = ShowNonTaxAllow();
        if (!edited) // without an editor nothing has changed, and the moves stay
            return;
        // Meant: the selected list comes as last saved; moves that are not saved are gone.
        occupations_.Lists().RefreshSelected();
        occupations_.Lists().RefreshMaster();
    });
}

} // namespace quillary::wages
