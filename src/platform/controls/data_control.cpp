#include "platform/controls/data_control.h"

#include "platform/controls/bound_recordset.h"
#include "platform/controls/field_text.h"
#include "platform/controls/property_text.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::controls {

namespace {

constexpr int kErrCannotStore = 524;

DataControl::EngineSource& Source() {
    static DataControl::EngineSource source;
    return source;
}

// Puts a flag back to what it was.
class Restored {
public:
    Restored(bool& flag, bool value) : flag_(flag), former_(flag) { flag_ = value; }
    ~Restored() { flag_ = former_; }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

private:
    bool& flag_;
    bool former_;
};

// An error of setting a field, as the one of a data control that cannot store what a control holds.
[[noreturn]] void ThrowCannotStore(const runtime::RunTimeError& error, const std::string& source,
                                   const std::string& what) {
    switch (error.Number()) {
    case database::kErrWrongType:
    case database::kErrFieldTooSmall:
    case runtime::kErrTypeMismatch:
    case runtime::kErrOverflow:
    case runtime::kErrInvalidUseOfNull:
        throw runtime::RunTimeError(kErrCannotStore, source,
                                    "The value of '" + what + "' cannot be stored: " + error.Description());
    default:
        throw error;
    }
}

} // namespace

// ---- Binding of one field

void FieldBinding::Attach(DataBound& control, DataControl& source, std::string field) {
    Detach(control);
    source_ = &source;
    field_ = std::move(field);
    source.Attach(control);
}

void FieldBinding::Detach(DataBound& control) {
    if (source_)
        source_->Detach(control);
    source_ = nullptr;
}

runtime::Variant FieldBinding::ValueIn(database::Recordset* record) const {
    // An old database may lack the field.
    if (!record || record->FindField(field_) < 0)
        return runtime::Variant::Null();
    return (*record)[field_].Value();
}

void FieldBinding::Store(const runtime::Variant& value) const {
    database::Field& field = source_->Recordset()[field_];
    try {
        field.SetValue(source_->ValueFor(field, value));
    } catch (const runtime::RunTimeError& error) {
        ThrowCannotStore(error, source_->FullName(), field_);
    }
}

// ---- DataControl

DataControl::DataControl(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::DataControl, index) {}

DataControl::~DataControl() {
    for (DataBound* control : bound_)
        control->SourceGone();
}

void DataControl::SetEngine(EngineSource source) {
    Source() = std::move(source);
}

void DataControl::Attach(DataBound& control) {
    bound_.push_back(&control);
    if (recordset_) {
        control.RowsChanged(recordset_.get());
        ShowRecord();
    }
}

void DataControl::Detach(DataBound& control) {
    std::erase(bound_, &control);
}

void DataControl::Refresh() {
    if (!Source())
        throw runtime::RunTimeError(runtime::kErrObjectNotSet);
    recordset_.reset();
    try {
        database_ = Source()().OpenDatabase(DatabaseName.Get());
        recordset_ = std::make_unique<BoundRecordset>(
            *this, database_->OpenRecordset(RecordSource.Get(), RecordsetType));
    } catch (...) {
        Abandon();
        throw;
    }
    RowsChanged();
    Repositioned();
}

void DataControl::Abandon() {
    recordset_.reset();
    database_.reset();
    RowsChanged();
    ShowRecord();
}

void DataControl::Close(int action) {
    if (!recordset_)
        return;
    if (Settle(action))
        Abandon();
}

database::Recordset& DataControl::Recordset() {
    if (!recordset_)
        throw runtime::RunTimeError(runtime::kErrObjectNotSet);
    return *recordset_;
}

bool DataControl::HasRecord() const {
    if (!recordset_ || recordset_->BOF() || recordset_->EOF_())
        return false;
    const std::optional<database::Bookmark> place = recordset_->Bookmark();
    return place && recordset_->RowOf(*place) >= 0;
}

runtime::Variant DataControl::FieldOrNull(std::string_view field) {
    return HasRecord() ? Recordset()[field].Value() : runtime::Variant::Null();
}

runtime::Variant DataControl::ValueFor(const database::Field& field, const runtime::Variant& typed) const {
    return FieldValue(field, typed, !runtime::TextOf(typed).empty() || AllowsZeroLength(field));
}

bool DataControl::AllowsZeroLength(const database::Field& field) const {
    if (!database_)
        return true;
    for (const database::TableDef& table : database_->TableDefs())
        if (runtime::EqualName(table.name, field.SourceTable()))
            for (const database::FieldDef& stored : table.fields)
                if (runtime::EqualName(stored.name, field.SourceField()))
                    return stored.allowZeroLength;
    return true;
}

bool DataControl::HasChanges() const {
    for (const DataBound* control : bound_)
        if (control->HasChanges())
            return true;
    return false;
}

bool DataControl::IsAdding() const {
    for (const DataBound* control : bound_)
        if (control->IsAdding())
            return true;
    return false;
}

bool DataControl::RaiseValidate(int action, bool& save) {
    Restored validating(validating_, true);
    int answer = action;
    Validate.Raise(answer, save);
    return answer != kActionCancel;
}

void DataControl::WriteBound() {
    for (DataBound* control : bound_)
        if (control->HasChanges())
            control->WriteChanges(*recordset_);
}

void DataControl::UpdateRow(bool becomesCurrent) {
    database::Recordset& below = recordset_->Below();
    below.Update();
    for (DataBound* control : bound_)
        control->ChangesWritten();
    if (becomesCurrent)
        if (const std::optional<database::Bookmark> added = below.LastModified())
            below.SetBookmark(*added);
}

bool DataControl::Settle(int action) {
    if (validating_)
        return true;
    database::Recordset& below = recordset_->Below();
    const bool codeEdits = below.Editing() != database::EditMode::None;
    // A deleted row has nothing to write to.
    const bool changes = action != kActionDelete && HasChanges() && (codeEdits || HasRecord() || IsAdding());
    const bool adding = changes && IsAdding();
    if (codeEdits && !changes && action != kActionUpdate)
        below.CancelUpdate(); // a move drops a pending row in silence
    bool save = changes;
    try {
        if (changes) {
            if (!codeEdits)
                adding ? below.AddNew() : below.Edit();
            WriteBound();
        }
        Restored saving(savingRow_, changes || (codeEdits && action == kActionUpdate));
        if (!RaiseValidate(action, save)) {
            if (changes && below.Editing() != database::EditMode::None)
                below.CancelUpdate();
            return false;
        }
        if (action == kActionUpdate || (changes && save))
            UpdateRow(adding);
        else if (changes)
            below.CancelUpdate();
    } catch (...) {
        if (changes && below.Editing() != database::EditMode::None)
            below.CancelUpdate();
        throw;
    }
    return true;
}

void DataControl::UpdateRecord() {
    if (!recordset_)
        return;
    database::Recordset& below = recordset_->Below();
    const bool codeEdits = below.Editing() != database::EditMode::None;
    const bool adding = IsAdding() && HasChanges();
    if (!codeEdits && !adding && !HasRecord())
        return;
    if (!codeEdits && !below.Updatable() && !HasChanges())
        return;
    const bool rowComes = adding || below.Editing() == database::EditMode::AddNew;
    const bool nothingToWrite = !codeEdits && !HasChanges();
    try {
        if (!codeEdits)
            adding ? below.AddNew() : below.Edit();
        try {
            WriteBound();
        } catch (const runtime::RunTimeError& error) {
            ThrowCannotStore(error, FullName(), "the row in edit"); // of a grid, whose own writing tells more
        }
        UpdateRow(adding);
    } catch (const runtime::RunTimeError& error) {
        if (below.Editing() != database::EditMode::None)
            below.CancelUpdate();
        // A row that another program has deleted is no current record any more.
        if (error.Number() == database::kErrRecordDeleted && nothingToWrite)
            return;
        throw;
    }
    if (rowComes)
        RowsChanged();
    ShowRecord();
}

void DataControl::UpdateControls() {
    ShowRecord();
}

void DataControl::ShowRecord() {
    const bool shows = recordset_ && (HasRecord() || recordset_->Editing() == database::EditMode::AddNew);
    for (DataBound* control : std::vector<DataBound*>(bound_)) {
        try {
            control->ShowRecord(shows ? recordset_.get() : nullptr);
        } catch (const runtime::RunTimeError&) {
            // Another program has deleted the row.
            control->ShowRecord(nullptr);
        }
    }
}

void DataControl::RowsChanged() {
    for (DataBound* control : std::vector<DataBound*>(bound_))
        control->RowsChanged(recordset_.get());
}

void DataControl::Repositioned() {
    ShowRecord();
    Reposition.Raise();
}

std::optional<std::string> DataControl::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "recordsource")
        return RecordSource.Get();
    if (name == "databasename")
        return DatabaseName.Get();
    return Control::PropertyText(property);
}

} // namespace quillary::controls
