#include "config/module_catalogue.h"

#include "config/globals.h"
#include "config/settings.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

namespace quillary::config {

namespace {

using database::RecordsetType;
using runtime::Variant;

std::string TextIn(database::Recordset& row, std::string_view field) {
    return runtime::TextOf(row[field].Value());
}

std::int32_t NumberIn(database::Recordset& row, std::string_view field) {
    const Variant value = row[field].Value();
    return value.IsNull() ? 0 : runtime::CLng(value);
}

// The first row of a query, nullptr when it has none.
std::unique_ptr<database::Recordset> FirstRow(database::Database& database, std::string_view sql) {
    auto rows = database.OpenRecordset(sql, RecordsetType::Snapshot);
    if (rows->EOF_())
        return nullptr;
    return rows;
}

std::int32_t ContextOf(database::Database& database, std::int32_t number, std::string_view field) {
    const auto row =
        FirstRow(database, "SELECT * FROM HelpContexts WHERE [Number] = " + std::to_string(number));
    return row ? NumberIn(*row, field) : 0;
}

} // namespace

ModuleCatalogue::ModuleCatalogue() : database_(DbEngine().OpenDatabase(GetModuleFileName(), true)) {}

std::int32_t ModuleCatalogue::ModuleNumber() const {
    const auto row = FirstRow(*database_, "SELECT ModuleNumber FROM Catalogue");
    return row ? NumberIn(*row, "ModuleNumber") : 0;
}

std::string ModuleCatalogue::ModuleKey() const {
    const auto row = FirstRow(*database_, "SELECT ModuleKey FROM Catalogue");
    return row ? TextIn(*row, "ModuleKey") : std::string();
}

std::string ModuleCatalogue::ProgramPath() const {
    const auto row = FirstRow(*database_, "SELECT ProgramPath FROM Catalogue");
    return row ? TextIn(*row, "ProgramPath") : std::string();
}

std::vector<MenuEntry> ModuleCatalogue::MenuEntries() const {
    std::vector<MenuEntry> entries;
    const auto rows =
        database_->OpenRecordset("SELECT * FROM MenuEntries ORDER BY [Order]", RecordsetType::Snapshot);
    for (; !rows->EOF_(); rows->MoveNext()) {
        const Variant visible = (*rows)["Visible"].Value();
        entries.push_back({TextIn(*rows, "Caption"), !visible.IsNull() && runtime::CBool(visible),
                           TextIn(*rows, "Group"), TextIn(*rows, "FileName"), NumberIn(*rows, "HelpType")});
    }
    return entries;
}

bool ModuleCatalogue::FindEntryByCaption(std::string_view caption, MenuEntry& entry) const {
    for (MenuEntry& candidate : MenuEntries()) {
        if (runtime::EqualText(runtime::RTrim(candidate.caption), runtime::RTrim(caption))) {
            entry = std::move(candidate);
            return true;
        }
    }
    return false;
}

std::int32_t ModuleCatalogue::FormContext(std::int32_t number) const {
    return ContextOf(*database_, number, "FormContext");
}

std::int32_t ModuleCatalogue::HowDoIContext(std::int32_t number) const {
    return ContextOf(*database_, number, "HowDoIContext");
}

} // namespace quillary::config
