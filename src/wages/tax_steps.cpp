#include "wages/tax_steps.h"

#include "common/error_report.h"
#include "common/table_editor.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"

#include <string>
#include <vector>

namespace quillary::wages {

namespace {

constexpr const char* kTable = "TaxSteps";
constexpr int kColumns = 3;

std::string StepsOf(std::int32_t taxTypeID) {
    return "SELECT DISTINCTROW TaxSteps.[TaxStepsID], TaxSteps.[upperlimit], TaxSteps.[taxrate], "
           "TaxSteps.[taxtypeID] "
           "From TaxSteps "
           "WHERE (((TaxSteps.[taxtypeID])=" +
           std::to_string(taxTypeID) +
           ")) "
           "order by TaxSteps.[upperlimit];";
}

void WriteDefinition(const char* firstCaption, std::int32_t taxTypeID) {
    common::WriteColumnFile(kTable, {{firstCaption, "upperlimit", 30, common::kColumnCurrency, 2000, 1},
                                     {"Rate", "taxrate", 30, common::kColumnSingle, 2000, 0},
                                     {.caption = "TaxStepsID", .field = "TaxStepsID"},
                                     {"taxtypeID", "taxtypeID", 0, common::kColumnFixed, taxTypeID, 0}});
}

} // namespace

void ShowTaxSteps(controls::DataControl& dat_taxrates) {
    common::Trap("frm_setup.ShowTaxSteps", [&] {
        database::Recordset& rates = dat_taxrates.Recordset();
        const std::vector<std::string> tokens = {runtime::TextOf(rates["TaxName"].Value())};
        const std::string title = config::TranslateTokens("Tax Steps for |0|", tokens);
        const std::int32_t taxTypeID = runtime::CLng(rates["TaxTypeID"].Value());
        WriteDefinition("Upper Limit", taxTypeID);
        common::startdata(kColumns, kTable, true, StepsOf(taxTypeID), title, "", "", 0, 1, 0);
    });
}

void SetUpTaxSteps(std::int32_t taxTypeID) {
    common::Trap("frm_setup.SetUpTaxSteps", [&] {
        WriteDefinition("UpperLimit", taxTypeID); // meant: without the blank
        if (common::mDataModule)
            common::mDataModule->Run(kColumns, kTable, StepsOf(taxTypeID), "Tax Steps");
        common::Close_Data();
    });
}

} // namespace quillary::wages
