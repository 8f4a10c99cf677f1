#include "common/recordset_editing.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "common/value_checks.h"
#include "config/tokens.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

namespace quillary::common {

using runtime::Variant;

namespace {

constexpr const char* kAddRoutine = "AddRecordsetRecord";
constexpr const char* kDeleteRoutine = "DeleteRecordsetRecord";

std::string WithWord(std::string_view text, std::string_view word) {
    return config::TranslateTokens(text, {std::string(word)});
}

// The value of a new row's field, the user's where none is given; "" for a cancelled or blank answer.
Variant ValueOf(const FieldPrompt& prompt) {
    if (!runtime::TextOf(prompt.value).empty())
        return prompt.value;
    return ShowInputBox(WithWord("Enter |0| Name", prompt.promptWord), WithWord("Add |0|", prompt.promptWord),
                        {}, prompt.maxLength);
}

// False: the user has cancelled the row.
bool FillNewRow(database::Recordset& records, const std::vector<FieldPrompt>& fields) {
    for (const FieldPrompt& prompt : fields) {
        if (prompt.fieldName.empty())
            continue;
        const Variant value = ValueOf(prompt);
        if (runtime::Trim(runtime::TextOf(value)).empty())
            return false;
        switch (prompt.fieldType) {
        case kPromptLong:
            records[prompt.fieldName] = runtime::CLng(value);
            break;
        case kPromptText:
            records[prompt.fieldName] = runtime::CStr(value);
            break;
        default:
            ShowSystemMessage("need another case statement");
        }
    }
    return true;
}

void ZeroDeductionNumbers(database::Recordset& records) {
    records["CountryPhone"] = 0;
    records["Order"] = 0;
    for (const char* number : {"percentage", "LowerThreshold", "UpperThreshold", "MaxPercent"})
        records[number] = NullToZero(records[number].Value());
}

// The name by which the user is asked, Null where the row has none.
Variant NameOfRow(database::Recordset& records, std::string_view fieldName) {
    return fieldName.empty() ? Variant::Null() : records[fieldName].Value();
}

void TellUndeleted(const runtime::RunTimeError& error, const std::string& name) {
    if (error.Number() == database::kErrRelatedRows)
        ShowMessage(Message(WithWord("|0| can't be deleted as it is being used in a wage calculation", name),
                            "Invalid Selection"));
    else
        ReportError(error, kDeleteRoutine);
}

} // namespace

void AddRecordsetRecord(controls::DataControl& data, const std::vector<FieldPrompt>& fields,
                        std::string_view tableWord) {
    const bool done = Trap(kAddRoutine, [&] {
        database::Recordset& records = data.Recordset();
        records.AddNew();
        const bool complete = FillNewRow(records, fields);
        if (tableWord == "Deductions")
            ZeroDeductionNumbers(records);
        if (complete)
            data.UpdateRecord();
        // After a cancel the move drops the pending row; without any row it has nowhere to go.
        if (!complete && records.BOF() && records.EOF_())
            records.CancelUpdate();
        else
            records.MoveLast();
    });
    if (!done && data.HasRecordset() && data.Recordset().Editing() == database::EditMode::AddNew)
        IgnoreErrors([&] { data.Recordset().CancelUpdate(); });
}

void DeleteRecordsetRecord(controls::DataControl& data, std::string_view fieldName, std::string_view noun) {
    std::string name;
    bool confirmed = true;
    const bool asked = Trap(kDeleteRoutine, [&] {
        database::Recordset& records = data.Recordset();
        // Meant: counts the rows seen so far; the only one cannot be deleted, and nothing is said.
        if (records.RecordCount() <= 1) {
            confirmed = false;
            return;
        }
        const Variant shown = NameOfRow(records, fieldName);
        if (shown.IsNull())
            return;
        name = runtime::TextOf(shown);
        Message question(WithWord("Delete |0|?", name), "Confirm " + std::string(noun) + " Deletion");
        question.buttons = kButtonsYesNo;
        confirmed = ShowMessage(question) == kAnswerYes;
    });
    if (!asked || !confirmed)
        return;
    // Each of the two goes on where the other has failed.
    try {
        data.Recordset().Delete();
    } catch (const runtime::RunTimeError& error) {
        TellUndeleted(error, name);
    }
    try {
        data.Recordset().MoveLast();
    } catch (const runtime::RunTimeError& error) {
        TellUndeleted(error, name);
    }
}

void SaveGridRecordset(controls::Grid& grid, controls::DataControl& data) {
    Trap("SaveGridRecordset", [&] {
        if (!grid.DataChanged)
            return;
        database::Recordset& records = data.Recordset();
        records.Edit();
        records.Update();
        if (const std::optional<database::Bookmark> written = records.LastModified())
            records.SetBookmark(*written);
        grid.DataChanged = false;
    });
}

} // namespace quillary::common
