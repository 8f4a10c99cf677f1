#include "common/tax_records.h"

#include "common/error_report.h"
#include "common/value_checks.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "platform/runtime/conversions.h"

#include <memory>
#include <optional>

namespace quillary::common {

using runtime::RunTimeError;
using runtime::Variant;

namespace {

// The value as the field's type number asks for it; nullopt for a type that is not stored into.
std::optional<Variant> AsStored(const Variant& value, database::FieldType type) {
    switch (type) {
    case database::FieldType::Long:
        return Variant(runtime::CLng(value));
    case database::FieldType::Text:
        return Variant(runtime::CStr(value));
    case database::FieldType::Date:
        return Variant(runtime::CDate(value));
    case database::FieldType::Boolean:
        return Variant(runtime::CBool(value));
    default:
        return std::nullopt; // meant: a field of another type keeps what it holds, silently
    }
}

} // namespace

void UpdatePartnerField(const Variant& value, std::string_view fieldName) {
    Trap("UpdatePartnerTable", [&] { // meant: the tidy-up of the table and this routine share the name
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto partners = db->OpenRecordset("SELECT * FROM Partners;", database::RecordsetType::Dynaset);
        if (partners->EOF_()) {
            partners->AddNew();
            (*partners)["PartnerDefault"] = true;
        } else {
            partners->Edit();
        }
        if (!value.IsNull()) {
            (*partners)[fieldName] = ReplaceApostrophes(runtime::CStr(value));
            partners->Update();
        }
        partners->Close();
    });
}

Variant payeinfo(database::Database& db, std::string_view key, const Variant& defaultValue) {
    Variant result;
    std::optional<RunTimeError> pending;
    try {
        auto record = db.OpenRecordset("PayeInfo", database::RecordsetType::Snapshot);
        if (!record->EOF_()) {
            const Variant stored = (*record)[key].Value();
            if (!stored.IsNull())
                result = stored;
        }
        record->Close();
    } catch (const RunTimeError& error) {
        pending = error;
    }
    if (runtime::TextOf(result).empty())
        result = defaultValue;
    if (pending)
        ShowErrorBox(*pending, "commoncode.payeinfo", key);
    return result;
}

void savepayeinfo(database::Database& db, std::string_view key, const Variant& value) {
    // Every statement ignores the error of the one before it, and the last error is the one told.
    std::optional<RunTimeError> last;
    const auto attempt = [&last](const auto& statement) {
        try {
            statement();
        } catch (const RunTimeError& error) {
            last = error;
        }
    };
    std::unique_ptr<database::Recordset> record;
    database::Field* field = nullptr;
    attempt([&] { record = db.OpenRecordset("PayeInfo", database::RecordsetType::Dynaset); });
    if (record) {
        attempt([&] { field = &(*record)[key]; });
        attempt([&] { record->EOF_() ? record->AddNew() : record->Edit(); });
        attempt([&] {
            if (const auto stored = field ? AsStored(value, field->Type()) : std::nullopt)
                *field = *stored;
        });
        attempt([&] { record->Update(); });
        attempt([&] { record->Close(); });
    }
    if (last)
        ShowErrorBox(*last, "commoncode.savepayeinfo", key);
}

} // namespace quillary::common
