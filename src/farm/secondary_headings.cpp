#include "farm/secondary_headings.h"

#include "config/globals.h"
#include "config/profile_store.h"
#include "farm/secondary_headings_form.h"
#include "platform/runtime/locale.h"

namespace quillary::farm {

namespace {

constexpr const char* kNamesQuery = "qry Update Secondary heading names";

} // namespace

void UpdateSecondaryHeadings(controls::DataControl& dat_Codes) {
    dat_Codes.UpdateRecord();
    const char* names =
        "UPDATE DISTINCTROW [Account Codes] "
        "INNER JOIN [Secondary Codes] ON [Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] "
        "SET [Secondary Codes].[Cached Name] = [Account Codes].[Account Name] & ' : ' & "
        "[Secondary Codes].[Name];";
    const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    auto query = db->FindQueryDef(kNamesQuery);
    if (query)
        query->SetSQL(names);
    else
        query = db->CreateQueryDef(kNamesQuery, names);
    query->Execute(database::kFailOnError);
    query->Close();
    // Only the heading's own row takes the tax number; the others keep theirs.
    db->Execute("UPDATE DISTINCTROW [Account Codes] INNER JOIN [Secondary Codes] ON "
                "[Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] "
                "SET [Secondary Codes].TaxNumID = [Account Codes].[TaxNumber] "
                "WHERE ((([Secondary Codes].[Secondary Codes ID])=[Main Code ID]*100));",
                database::kFailOnError);
    db->Close();
}

void SecondaryHeadingsEditor::OpenCashbookHeadings() {
    SecondaryHeadingsForm form;
    form.OpenCashbook();
}

void SecondaryHeadingsEditor::Show(bool /*shellLaunch*/) {
    SecondaryHeadingsForm form;
    form.OpenHeading(account_);
}

} // namespace quillary::farm
