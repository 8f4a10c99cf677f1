#include "wages/deductions.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "common/recordset_editing.h"
#include "common/value_checks.h"
#include "config/globals.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/engine.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"

#include <string>
#include <vector>

namespace quillary::wages {

using runtime::Variant;

namespace {

constexpr int kAddRate = 0, kDeleteRate = 1, kEditRate = 2;
constexpr int kNameColumn = 0, kPercentageColumn = 1;
constexpr int kLongestName = 200; // in a grid; the add takes its own limits

struct FieldColumn {
    const char* caption;
    const char* field;
    const char* format;
    int width; // twips
};

void MakeColumns(controls::Grid& grid, std::initializer_list<FieldColumn> columns) {
    for (const FieldColumn& column : columns) {
        controls::Column& added = grid.AddColumn();
        added.Caption = column.caption;
        added.DataField = column.field;
        added.NumberFormat = column.format;
        added.Width = column.width;
        if (*column.format != '\0')
            added.Alignment = controls::Column::Align::Right;
    }
}

void Open(controls::DataControl& data, const std::string& sql) {
    data.DatabaseName = config::GetWageFileName();
    data.RecordSource = sql;
    data.Refresh();
}

common::FieldPrompt NamePrompt(const char* field, const char* word, int maxLength) {
    common::FieldPrompt prompt;
    prompt.fieldName = field;
    prompt.promptWord = word;
    prompt.maxLength = maxLength;
    return prompt;
}

// The Validate routine of a grid.
void SaveLeft(controls::Grid& grid, controls::DataControl& data, const char* routine, bool& cancel) {
    common::Trap(routine, [&] {
        // The cell that is still in edit belongs to the row that is written.
        if (grid.EndEdit())
            common::SaveGridRecordset(grid, data);
        else
            cancel = true;
    });
    if (grid.DataChanged) // it could not be written, which was told, and stays
        cancel = true;
}

} // namespace

Deductions::Deductions(common::Screen& screen, controls::Panel& rates, controls::Panel& deductions,
                       controls::Panel& contributions)
    : dat_taxrates((screen.ScreenForm().SetContainer(&rates), screen.ScreenForm()), "dat_taxrates"),
      tgrd_taxrates(screen.ScreenForm(), "tgrd_taxrates"),
      cmd_Rate(screen.ScreenForm(), "cmd_Rate", {kAddRate, kDeleteRate, kEditRate}),
      dat_deductions((screen.ScreenForm().SetContainer(&deductions), screen.ScreenForm()), "dat_deductions"),
      tgrd_deductions(screen.ScreenForm(), "tgrd_deductions"),
      cmd_AddDeduction(screen.ScreenForm(), "cmd_AddDeduction"),
      cmd_DelDeduction(screen.ScreenForm(), "cmd_DelDeduction"),
      dat_Contributions((screen.ScreenForm().SetContainer(&contributions), screen.ScreenForm()),
                        "dat_Contributions"),
      tgrd_Contributions(screen.ScreenForm(), "tgrd_Contributions"),
      cmd_AddContribution(screen.ScreenForm(), "cmd_AddContribution"),
      cmd_DelContribution(screen.ScreenForm(), "cmd_DelContribution") {
    MakeColumns(tgrd_taxrates, {{"Tax Rate", "TaxName", "", 4000}});
    MakeColumns(tgrd_deductions, {{"Deduction", "DeductionName", "", 3000},
                                  {"Percentage", "Percentage", "Fixed", 1200},
                                  {"Lower Threshold", "LowerThreshold", "Currency", 1600},
                                  {"Upper Threshold", "UpperThreshold", "Currency", 1600},
                                  {"Maximum %", "MaxPercent", "Fixed", 1200}});
    MakeColumns(tgrd_Contributions, {{"Contribution", "ContributionName", "", 3000},
                                     {"Percentage", "Percentage", "Fixed", 1200},
                                     {"Lower Threshold", "LowerThreshold", "Currency", 1600},
                                     {"Upper Threshold", "UpperThreshold", "Currency", 1600},
                                     {"Amount", "Amount", "Fixed", 1200}});
    tgrd_taxrates.SetDataSource(&dat_taxrates);
    tgrd_deductions.SetDataSource(&dat_deductions);
    tgrd_Contributions.SetDataSource(&dat_Contributions);
    tgrd_taxrates.AccessibleName = "Tax rates";
    tgrd_deductions.AccessibleName = "Deductions";
    tgrd_Contributions.AccessibleName = "Contributions";
    cmd_Rate(kAddRate).Caption = "&Add Rate";
    cmd_Rate(kDeleteRate).Caption = "&Delete Rate";
    cmd_Rate(kEditRate).Caption = "&Edit Rate";
    cmd_AddDeduction.Caption = "&Add Deduction";
    cmd_DelDeduction.Caption = "&Delete Deduction";
    cmd_AddContribution.Caption = "&Add Contribution";
    cmd_DelContribution.Caption = "&Delete Contribution";

    cmd_Rate.On(&controls::CommandButton::Click, [this](int index) {
        common::Trap("frm_setup.cmd_Rate_Click", [&] { TaxRateCommands(index); });
    });
    cmd_AddDeduction.Click = [this] {
        common::Trap("frm_setup.cmd_AddDeduction_Click", [&] { AddDeduct(); });
    };
    cmd_AddContribution.Click = [this] {
        common::Trap("frm_setup.cmd_AddContribution_Click", [&] { AddContribution(); });
    };
    cmd_DelDeduction.Click = [this] {
        DeleteUnlessStatutory(dat_deductions, "DeductionName", "Deduction", "cmd_delDeduction_click");
    };
    cmd_DelContribution.Click = [this] {
        DeleteUnlessStatutory(dat_Contributions, "ContributionName", "Contribution",
                              "cmd_delContribution_click");
    };
    tgrd_taxrates.BeforeColUpdate = [this](int, Variant&, bool& cancel) {
        tgrd_taxrates_BeforeColUpdate(cancel);
    };
    tgrd_deductions.BeforeColUpdate = [this](int col, Variant&, bool& cancel) {
        tgrd_deductions_BeforeColUpdate(col, cancel);
    };
    tgrd_taxrates.Validate = [this](bool& cancel) {
        SaveLeft(tgrd_taxrates, dat_taxrates, "frm_setup.tgrd_taxrates_Validate", cancel);
    };
    tgrd_deductions.Validate = [this](bool& cancel) {
        SaveLeft(tgrd_deductions, dat_deductions, "frm_setup.tgrd_deductions_Validate", cancel);
    };
}

void Deductions::OpenDeductions() {
    Open(dat_deductions, "Select distinctrow * from DeductNames where CountryPhone = 0 or CountryPhone = " +
                             std::to_string(config::GetCountryCode()));
}

void Deductions::OpenTaxRates() {
    Open(dat_taxrates, "SELECT DISTINCTROW TaxTypes.* From TaxTypes "
                       "WHERE (((TaxTypes.CountryPhone) Is Null)) OR (((TaxTypes.CountryPhone)=0)) OR "
                       "(((TaxTypes.CountryPhone)=" +
                           std::to_string(config::GetCountryCode()) +
                           ")) "
                           "ORDER BY TaxTypes.Order, TaxTypes.Taxname;");
}

void Deductions::OpenContributions() {
    // Meant: the placeholder is left out of the country's own rows alone.
    Open(dat_Contributions,
         "Select distinctrow * from ContributionNames where CountryPhone = 0 or CountryPhone = " +
             std::to_string(config::GetCountryCode()) + " AND ContributionName<>\"<Please Select>\"");
}

void Deductions::TabShown(int tab) {
    if (tab == 0)
        common::SaveGridRecordset(tgrd_taxrates, dat_taxrates);
    else if (tab == 1)
        common::SaveGridRecordset(tgrd_deductions, dat_deductions);
}

// A table that could not be opened when the page was shown is tried again; the error is the caller's to tell.
bool Deductions::IsOpen(const controls::DataControl& data) const {
    if (!data.HasRecordset() && SetUpAgain)
        SetUpAgain();
    return data.HasRecordset();
}

void Deductions::AddTaxRate() {
    common::Trap("bas_Deductions.AddTaxRate", [&] {
        common::AddRecordsetRecord(dat_taxrates, {NamePrompt("Taxname", "Tax Rate", 255)}, "TaxRate");
        tgrd_taxrates.SetFocus();
    });
}

void Deductions::AddDeduct() {
    common::Trap("bas_Deductions.AddDeduct", [&] {
        if (!IsOpen(dat_deductions))
            return;
        common::AddRecordsetRecord(dat_deductions, {NamePrompt("Deductionname", "Deduction", 30)},
                                   "Deductions");
        tgrd_deductions.SetFocus();
    });
}

void Deductions::AddContribution() {
    common::Trap("bas_Deductions.AddContribution", [&] {
        if (!IsOpen(dat_Contributions))
            return;
        common::AddRecordsetRecord(dat_Contributions, {NamePrompt("ContributionName", "Contribution", 30)},
                                   "Contributions");
        tgrd_Contributions.SetFocus();
    });
}

void Deductions::TaxRateCommands(int index) {
    if (!IsOpen(dat_taxrates))
        return;
    database::Recordset& rates = dat_taxrates.Recordset();
    if (rates.EOF_()) // meant: without a rate none can be added either
        return;
    const std::int32_t taxTypeID = runtime::CLng(rates["TaxTypeID"].Value());
    if (index == kAddRate) {
        AddTaxRate();
    } else if (index == kDeleteRate) {
        if (bNotCountryRate(taxTypeID)) {
            common::DeleteRecordsetRecord(dat_taxrates, "taxname", "Tax Rate");
        } else {
            const std::vector<std::string> tokens = {config::GetCountryName()};
            common::ShowMessage(common::Message(
                config::TranslateTokens("|0| specific rate, not deletable", tokens), "Required Value"));
        }
    } else if (index == kEditRate && ShowTaxSteps) {
        ShowTaxSteps();
    }
}

// True for a rate that the user has added, and for every rate while the program is being developed.
bool Deductions::bNotCountryRate(std::int32_t taxTypeID) {
    bool result = false;
    common::Trap("bNotCountryRate", [&] {
        auto db = config::DbEngine().OpenDatabase(config::GetWageFileName());
        auto rate = db->OpenRecordset("Select distinctrow CountryPhone from TaxTypes where TaxTypeID = " +
                                          std::to_string(taxTypeID),
                                      database::RecordsetType::Snapshot);
        result = !rate->EOF_() && (*rate)["CountryPhone"].Value().IsNull();
        rate->Close();
        db->Close();
    });
    return config::GetDevelopment() || result;
}

void Deductions::DeleteUnlessStatutory(controls::DataControl& data, const char* nameField, const char* noun,
                                       const char* routine) {
    common::Trap(routine, [&] {
        if (!IsOpen(data))
            return;
        try {
            const Variant country = data.Recordset()["CountryPhone"].Value();
            if (!country.IsNull() && runtime::CLng(country) > 0) {
                common::ShowMessage(common::Message(
                    "This " + std::string(noun) + " is needed for Tax Reports", "Required Entry"));
                return;
            }
            common::DeleteRecordsetRecord(data, nameField, noun);
        } catch (const runtime::RunTimeError& error) {
            if (error.Number() != database::kErrNoCurrentRecord)
                throw;
        }
    });
}

void Deductions::tgrd_deductions_BeforeColUpdate(int col, bool& cancel) {
    common::Trap("frm_setup.tgrd_deductions_BeforeColUpdate", [&] {
        Variant text = tgrd_deductions.Columns(col).Text.Get();
        if (col == kNameColumn) {
            cancel = common::TooLong(text, kLongestName, true);
            if (cancel)
                return;
            const Variant country = dat_deductions.FieldOrNull("CountryPhone");
            if (!country.IsNull() && runtime::CLng(country) > 0)
                common::ShowMessage(common::Message(
                    "Note this Deduction will still be included in Tax Reports", "Information"));
        } else if (col == kPercentageColumn) {
            cancel = common::OutOfRange(text, common::kRangeWhole);
        }
    });
}

void Deductions::tgrd_taxrates_BeforeColUpdate(bool& cancel) {
    common::Trap("frm_setup.tgrd_taxrates_BeforeColUpdate", [&] {
        Variant text = tgrd_taxrates.Columns(kNameColumn).Text.Get();
        cancel = common::TooLong(text, kLongestName, true);
    });
}

} // namespace quillary::wages
