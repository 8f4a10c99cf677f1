#include "firstrun/paye_defaults.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/tax_records.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"

#include <memory>
#include <string_view>

namespace quillary::firstrun {

using database::Recordset;
using database::RecordsetType;
using runtime::Variant;

namespace {

constexpr double kCodesOfHeading = 100; // a secondary heading's number is its heading's and two digits
constexpr int kFirstName = 2, kLastName = 5;

// The routine goes on here after an error, which has been reported by then.
void CloseQuietly(const std::unique_ptr<Recordset>& rows) {
    if (rows)
        common::IgnoreErrors([&] { rows->Close(); });
}

// Null takes the default, which is asked for only then; another value stays.
template <class Default>
void FillNull(Recordset& record, std::string_view field, Default&& defaultValue) {
    auto& stored = record[field];
    if (stored.Value().IsNull())
        stored = Variant(defaultValue());
}

} // namespace

bool UpdatePAYEInfo(database::Database& db, const std::string& taxOffice) {
    if (taxOffice.empty())
        return false;
    bool result = false;
    std::unique_ptr<Recordset> address;
    common::Trap(" UpdatePAYEInfo", [&] {
        std::int32_t id = runtime::CLng(common::payeinfo(db, "PayeAddressID", config::GetPAYEAddressID()));
        address =
            db.OpenRecordset("Select Distinctrow * from Addresses Where AddressID= " + std::to_string(id),
                             RecordsetType::Dynaset);
        if (address->EOF_())
            address->AddNew();
        else
            address->Edit();
        // Meant: nothing marks a new address as a business, so the PAYE page does not list it.
        (*address)["BusName"] = taxOffice;
        address->Update();
        if (id == 0) {
            address->MoveLast();
            id = runtime::CLng((*address)["AddressID"].Value());
            common::savepayeinfo(db, "PayeAddressID", id);
        }
        result = CheckPAYEAccounts(db);
    });
    CloseQuietly(address);
    return result;
}

bool CheckPAYEAccounts(database::Database& db) {
    bool result = false;
    std::unique_ptr<Recordset> record;
    common::Trap(" CheckPAYEAccounts", [&] {
        // Meant: the country alone decides, not what the settings call the wage tax.
        const std::string paye = config::GetCountryCode() == config::kAustralia ? "PAYG" : "PAYE";
        record = db.OpenRecordset("Select distinctrow * From PayeInfo ", RecordsetType::Dynaset);
        auto& info = *record;
        const bool isNew = info.EOF_();
        if (isNew)
            info.AddNew();
        else
            info.Edit();
        const auto account = [&](std::string_view field, std::int32_t (*number)(), std::string_view name) {
            FillNull(info, field, number);
            CheckPayeAcctsSecCodes(db, runtime::CLng(info[field].Value()),
                                   config::TranslateTokens(name, std::vector<std::string>{paye}));
        };
        account("PayeAccount", config::GetPAYEAccount, "|0| Account");
        FillNull(info, "PayeFreq", config::GetPAYEFreq);
        account("WageAccount", config::GetWageAccount, "Wage Account");
        account("PaymentAccount", config::GetPaymentAccount, "|0| Payment Account");
        FillNull(info, "PayeStart", [&] { return runtime::CDate(common::GetPAYEStartText(db)); });
        // A yes/no field is never Null in a stored record.
        if (isNew || info["PayeNonCash"].Value().IsNull())
            info["PayeNonCash"] = config::GetPAYENonCash();
        FillNull(info, "PayeAddressID", config::GetPAYEAddressID);
        account("AdjustAccount", config::GetAdjustAccount, "Adjust Account");
        FillNull(info, "TaxFreq", config::GetIncomeTaxFreq);
        info.Update();
        result = true;
    });
    CloseQuietly(record);
    return result;
}

void CheckPayeAcctsSecCodes(database::Database& db, std::int32_t code, const std::string& name) {
    std::unique_ptr<Recordset> heading, secondary;
    common::Trap(" CheckPayeAcctsseccode", [&] {
        // Meant: rounded, so that a number from 51 on in its hundred belongs to the next heading.
        const std::int16_t main = runtime::CInt(code / kCodesOfHeading);
        heading = db.OpenRecordset("Select Distinctrow [Account Name], TaxNumber From [Account Codes] "
                                   "Where [Account Code] = " +
                                       std::to_string(main),
                                   RecordsetType::Snapshot);
        if (heading->EOF_())
            return;
        const Variant accountName = (*heading)["Account Name"].Value();
        const Variant taxNumber = (*heading)["TaxNumber"].Value();
        secondary = db.OpenRecordset("Select distinctrow [Main code ID], [Cached Name], Name, Englishname, "
                                     "Spanishname, Portuguesename, TaxnumID, [Secondary Codes ID] "
                                     "From [Secondary codes] Where [Secondary Codes ID]= " +
                                         std::to_string(code),
                                     RecordsetType::Dynaset);
        auto& row = *secondary;
        if (row.EOF_())
            row.AddNew();
        else
            row.Edit();
        row["Secondary Codes ID"] = code;
        row["Main Code ID"] = static_cast<std::int32_t>(main);
        for (int field = kFirstName; field <= kLastName; ++field)
            row[field] = name;
        row["Cached Name"] = runtime::TextOf(accountName) + " : " + name;
        row["Taxnumid"] = taxNumber;
        row.Update();
    });
    CloseQuietly(secondary);
    CloseQuietly(heading);
}

} // namespace quillary::firstrun
