#include "firstrun/field_definitions.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/engine.h"
#include "platform/database/errors.h"

#include <memory>
#include <string>

namespace quillary::firstrun {

namespace {

constexpr const char* kSupplier = "Ovanta";

void ShowFault(const std::string& text) {
    common::ShowMessage(common::Message(text, "An Error has Occurred"));
}

} // namespace

void updatefielddefs(std::string_view prefix) {
    if (!config::HasMapAndArea())
        return;
    const std::string source(prefix);
    std::shared_ptr<database::Database> db;
    std::unique_ptr<database::Recordset> definitions;
    try {
        db = config::DbEngine().OpenDatabase(config::GetDiaryFileName());
        definitions = db->OpenRecordset("Field Definition", database::RecordsetType::Dynaset);
        auto& row = *definitions;
        for (; !row.EOF_(); row.MoveNext()) {
            row.Edit();
            common::IgnoreErrors([&] { row["Field Caption"] = row[source + "FieldCaption"].Value(); });
            common::IgnoreErrors([&] { row["Unit"] = row[source + "FieldUnits"].Value(); });
            common::IgnoreErrors([&] { row["Equation"] = row[source + "FieldEquation"].Value(); });
            row.Update();
        }
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() == database::kErrRequiredField)
            ShowFault(
                config::TranslateTokens("Field Definition table contains blanks.\rPlease contact |0| for a "
                                        "new copy of skeleton diary data",
                                        std::vector<std::string>{kSupplier}));
        else
            ShowFault(error.Description() + " in UpdateFieldDefs - Units");
    }
    common::IgnoreErrors([&] {
        if (definitions)
            definitions->Close();
        if (db)
            db->Close();
    });
}

} // namespace quillary::firstrun
