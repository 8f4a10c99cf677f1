#include "tax/tax_entities.h"

#include "common/column_file.h"
#include "common/error_report.h"
#include "common/table_editor.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"

namespace quillary::tax {

namespace {

constexpr const char* kColumnFile = "Partners";
// What the suite's editor is called with; see startdata.
constexpr int kLastColumn = 4;
constexpr int kTrue = -1;
constexpr int kMode = 2;

void SetupColumnFile() {
    using common::ColumnMarks;
    const std::string number =
        config::TranslateTokens("|0| Number", std::vector<std::string>{config::GetTaxNumberName()});
    common::WriteColumnFile(
        kColumnFile,
        {{"Name", "PartnerName", 30, common::kColumnText, 1250, 1, ColumnMarks{false, true}},
         {number, "PartnerGSTNum", 30, common::kColumnText, 1150, 0, ColumnMarks{}},
         {"Default", "PartnerDefault", 5, common::kColumnBoolean, 650, 0, ColumnMarks{true, false}},
         {"Tax Percent", "PartnerTaxRate", 5, common::kColumnSingle, 550, 0, ColumnMarks{}},
         {"PartnerID", "PartnerID", 0, common::kColumnText, 0, 0, ColumnMarks{}}});
}

} // namespace

void EditTaxEntities() {
    SetupColumnFile();
    common::startdata(kLastColumn, kColumnFile, true,
                      "SELECT DISTINCTROW PartnerID, PartnerName, PartnerGSTNum, PartnerDefault, "
                      "PartnerTaxRate FROM Partners ORDER BY Partners.PartnerName",
                      "Tax Entities", "Edit Tax Entities - only one default", config::GetDataFileName(),
                      kTrue, kMode, kTrue);
    UpdatePartnerTable();
}

void UpdatePartnerTable() {
    common::Trap("UpdatePartnerTable", [] {
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto partners = db->OpenRecordset("Select PartnerName, PartnerGSTNum, PartnerDefault from Partners",
                                          database::RecordsetType::Dynaset);
        std::string number;
        for (; !partners->EOF_(); partners->MoveNext()) {
            if ((*partners)["PartnerName"].Value().IsNull()) {
                partners->Delete();
            } else if (runtime::CBool((*partners)["PartnerDefault"].Value())) {
                if (number.empty()) {
                    // Meant: a default without a number keeps its mark, and the next one is taken as well.
                    number = runtime::TextOf((*partners)["PartnerGSTNum"].Value());
                } else {
                    partners->Edit();
                    (*partners)["PartnerDefault"] = false;
                    partners->Update();
                }
            }
        }
        partners->Close();
        if (!number.empty()) {
            auto farmDetails = db->OpenRecordset("SELECT [GST Reg Number] FROM [Farm Details];",
                                                 database::RecordsetType::Dynaset);
            if (!farmDetails->EOF_()) {
                farmDetails->Edit();
                (*farmDetails)["GST Reg Number"] = number;
                farmDetails->Update();
            }
            farmDetails->Close();
        }
        db->Flush();
        db->Close();
    });
}

} // namespace quillary::tax
