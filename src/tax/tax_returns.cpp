#include "tax/tax_returns.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "common/restore_points.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/format.h"

#include <array>

namespace quillary::tax {

namespace {

// The field of "TransactionDetails" that links a line to its return, by the return's RtnType: 0 sales tax,
// 1 PAYE, 2 income tax.
constexpr std::array kLinkFields = {"TaxReturnID", "PAYERtnID", "IncomeTaxRtnID"};

// The returns of the type with this id or a higher one, and the links to them.
void DeleteReturns(database::Database& db, std::size_t type, std::int32_t firstID) {
    const std::string id = std::to_string(firstID);
    const std::string name = kLinkFields.at(type);
    db.Execute("DELETE DISTINCTROW TaxReturns.TaxReturnID From TaxReturns WHERE RtnType = " +
                   std::to_string(type) + " AND [TaxReturnID]>=" + id + ";",
               database::kFailOnError);
    db.Execute("UPDATE DISTINCTROW TransactionDetails SET " + name + " = 0 WHERE " + name + ">=" + id + ";",
               database::kFailOnError);
}

// returns: those from the date on, the lowest id of each type first. Meant: from there on the id counts and
// no more the date, so that a return of an earlier date that was made later goes, too.
void DeleteReturns(database::Database& db, database::Recordset& returns) {
    for (std::size_t type = 0; type < kLinkFields.size(); ++type) {
        returns.FindFirst("RtnType=" + std::to_string(type));
        if (!returns.NoMatch())
            DeleteReturns(db, type, runtime::CLng(returns["TaxReturnID"].Value()));
    }
}

} // namespace

bool ValidateGSTDate(const std::string& /*dateText*/) {
    bool yes = false;
    common::Trap("ValidateGSTDate", [&] {
        common::Message message(
            config::TranslateTokens("It is recommended that the |0| start date is the date that |0| first "
                                    "needed to be accounted for, not the begining of the current year.",
                                    std::vector{config::GetTaxName()}) +
                "\r\n\r\nDo you still want to make this change?",
            "Please Confirm");
        message.buttons = common::kButtonsYesNo;
        message.subHeading = "GST Date Changed"; // meant: whatever the tax is called
        yes = common::ShowMessage(message) == common::kAnswerYes;
    });
    return yes;
}

void ResetTaxReturns(const std::string& dateText) {
    if (!config::gHasTaxTypes)
        return;
    common::Trap("ResetTaxReturns", [&] {
        const std::string dataFile = config::GetDataFileName();
        const runtime::Date date = runtime::CDate(dateText);
        auto db = config::DbEngine().OpenDatabase(dataFile);
        auto returns = db->OpenRecordset("SELECT TaxReturnID, StartDate, RtnType "
                                         "From TaxReturns "
                                         "WHERE TaxReturns.StartDate>=" +
                                             JetDateLiteral(date) +
                                             " "
                                             "ORDER BY RtnType, TaxReturns.TaxReturnID;",
                                         database::RecordsetType::Snapshot);
        if (returns->EOF_()) {
            if (config::GetDebug())
                common::ShowMessage(common::Message("No returns to delete"));
            return;
        }

        common::Message message(
            config::TranslateTokens("Delete |1| returns dated |0| or after to enable them to be regenerated",
                                    std::vector{runtime::ShortDate(date), config::GetTaxName()}),
            "Please Confirm");
        message.buttons = common::kButtonsYesNo;
        if (common::ShowMessage(message) != common::kAnswerYes)
            return;

        common::MakeRestorePoint("Deleting tax returns", {dataFile});
        try {
            DeleteReturns(*db, *returns);
        } catch (const runtime::RunTimeError& error) {
            common::ShowMessage(common::Message("Error deleting TAX Returns: " + error.Description(),
                                                "An Error has Occurred"));
        }
        returns->Close();
        db->Flush();
        db->Close();
    });
}

std::string JetDateLiteral(runtime::Date date) {
    return "#" + runtime::Format(runtime::Variant(date), "mm") + "/" +
           runtime::Format(runtime::Variant(date), "dd") + "/" +
           runtime::Format(runtime::Variant(date), "yyyy") + "#";
}

} // namespace quillary::tax
