#include "fake_database.h"

#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"

namespace quillary::controls::testing {

namespace {

using database::EditMode;

class FakeRecordset;

class FakeFieldObject final : public database::Field {
public:
    FakeFieldObject(FakeRecordset& owner, int position) : owner_(owner), position_(position) {}
    const std::string& Name() const override;
    FieldType Type() const override;
    int Size() const override;
    bool Required() const override;
    bool Counter() const override;
    bool Updatable() const override { return true; }
    const std::string& SourceTable() const override;
    const std::string& SourceField() const override { return Name(); }
    Variant Value() const override;
    void SetValue(const Variant& value) override;

private:
    FakeRecordset& owner_;
    int position_;
};

class FakeRecordset final : public database::Recordset {
public:
    FakeRecordset(FakeTable& table, bool readOnly) : table_(table), readOnly_(readOnly) {
        for (std::size_t field = 0; field < table.fields.size(); ++field)
            fields_.push_back(std::make_unique<FakeFieldObject>(*this, static_cast<int>(field)));
        Requery();
    }

    database::RecordsetType Type() const override { return database::RecordsetType::Dynaset; }
    bool Updatable() const override { return !readOnly_; }
    bool BOF() const override { return at_ < 0; }
    bool EOF_() const override { return at_ >= Count(); }
    void MoveFirst() override { Go(0); }
    void MoveLast() override { Go(Count() - 1); }
    void MoveNext() override { Go(at_ + (deletedCurrent_ ? 0 : 1)); }
    void MovePrevious() override { Go(at_ - 1); }
    long RecordCount() const override { return visited_; }
    long RowTotal() const override { return Count(); }
    database::Bookmark BookmarkAt(long row) const override { return keys_.at(static_cast<std::size_t>(row)); }
    long RowOf(database::Bookmark bookmark) const override {
        auto found = std::find(keys_.begin(), keys_.end(), bookmark);
        return found == keys_.end() ? -1 : found - keys_.begin();
    }
    const Row& ReadRow(database::Bookmark bookmark) const override {
        ++table_.rowsRead;
        return table_.rows.at(bookmark);
    }
    void CountVisited(long row) override { visited_ = std::max(visited_, row + 1); }

    void AddNew() override {
        pending_.assign(table_.fields.size(), Variant::Null());
        for (std::size_t field = 0; field < table_.fields.size(); ++field) {
            if (table_.fields[field].counter)
                pending_[field] = Variant(static_cast<std::int32_t>(table_.next + 1));
            if (table_.fields[field].type == FieldType::Boolean)
                pending_[field] = Variant(false);
        }
        mode_ = EditMode::AddNew;
    }
    void Edit() override {
        pending_ = Current();
        mode_ = EditMode::Edit;
    }
    void Update() override {
        if (mode_ == EditMode::None)
            throw RunTimeError(database::kErrUpdateWithoutEdit, "Fake", "Update without Edit");
        const std::int64_t key = mode_ == EditMode::Edit ? Key() : table_.next;
        for (std::size_t field = 0; field < pending_.size(); ++field) {
            if (table_.fields[field].required && pending_[field].IsNull())
                throw RunTimeError(database::kErrRequiredField, "Fake", "required");
            if (table_.fields[field].unique)
                for (const auto& [other, row] : table_.rows)
                    if (other != key &&
                        runtime::EqualText(runtime::TextOf(row[field]), runtime::TextOf(pending_[field])))
                        throw RunTimeError(database::kErrDuplicateValue, "Fake", "duplicate");
        }
        table_.rows[key] = pending_;
        if (mode_ == EditMode::AddNew) {
            ++table_.next;
            keys_.push_back(key);
        }
        lastModified_ = key;
        mode_ = EditMode::None;
    }
    void CancelUpdate() override { mode_ = EditMode::None; }
    void Delete() override {
        Current();
        table_.rows.erase(Key());
        keys_.erase(keys_.begin() + at_);
        deletedCurrent_ = true;
    }
    EditMode Editing() const override { return mode_; }

    // "Field=text"
    void FindFirst(std::string_view criteria) override {
        const std::size_t equals = criteria.find('=');
        const auto field = static_cast<std::size_t>(FindField(criteria.substr(0, equals)));
        for (long row = 0; row < Count(); ++row)
            if (runtime::TextOf(table_.rows.at(BookmarkAt(row))[field]) == criteria.substr(equals + 1)) {
                noMatch_ = false;
                Go(row);
                return;
            }
        noMatch_ = true;
    }
    void FindNext(std::string_view criteria) override { FindFirst(criteria); }
    bool NoMatch() const override { return noMatch_; }
    std::optional<database::Bookmark> Bookmark() const override {
        return BOF() || EOF_() || deletedCurrent_ ? std::nullopt : std::optional(Key());
    }
    void SetBookmark(database::Bookmark bookmark) override { Go(RowOf(bookmark)); }
    std::optional<database::Bookmark> LastModified() const override { return lastModified_; }
    std::unique_ptr<database::Recordset> Clone() const override {
        return std::make_unique<FakeRecordset>(table_, readOnly_);
    }
    void Requery() override {
        keys_.clear();
        for (const auto& [key, row] : table_.rows)
            keys_.push_back(key);
        visited_ = 0;
        at_ = keys_.empty() ? -1 : 0;
        CountVisited(at_);
    }
    void Close() override {}
    int FieldCount() const override { return static_cast<int>(fields_.size()); }
    database::Field& operator[](int position) override {
        return *fields_.at(static_cast<std::size_t>(position));
    }
    database::Field& operator[](std::string_view name) override {
        const int position = FindField(name);
        if (position < 0)
            throw RunTimeError(database::kErrItemNotFound, "Fake", "no such field");
        return (*this)[position];
    }
    int FindField(std::string_view name) const override {
        for (std::size_t field = 0; field < table_.fields.size(); ++field)
            if (runtime::EqualName(table_.fields[field].name, name))
                return static_cast<int>(field);
        return -1;
    }

    FakeTable& table_;
    bool readOnly_;
    EditMode mode_ = EditMode::None;
    Row pending_;
    const Row& Current() const {
        if (BOF() || EOF_() || deletedCurrent_)
            throw RunTimeError(database::kErrNoCurrentRecord, "Fake", "No current record");
        return table_.rows.at(Key());
    }

private:
    long Count() const { return static_cast<long>(keys_.size()); }
    std::int64_t Key() const { return keys_.at(static_cast<std::size_t>(at_)); }
    void Go(long row) {
        if (keys_.empty() && !deletedCurrent_)
            throw RunTimeError(database::kErrNoCurrentRecord, "Fake", "No current record");
        mode_ = EditMode::None;
        deletedCurrent_ = false;
        at_ = row;
        CountVisited(std::min(row, Count() - 1));
    }

    std::vector<std::unique_ptr<FakeFieldObject>> fields_;
    std::vector<std::int64_t> keys_;
    long at_ = -1, visited_ = 0;
    bool noMatch_ = false, deletedCurrent_ = false;
    std::optional<database::Bookmark> lastModified_;
};

const FakeField& Definition(const FakeRecordset& owner, int position) {
    return owner.table_.fields[static_cast<std::size_t>(position)];
}

const std::string& FakeFieldObject::Name() const {
    return Definition(owner_, position_).name;
}
FieldType FakeFieldObject::Type() const {
    return Definition(owner_, position_).type;
}
int FakeFieldObject::Size() const {
    return Definition(owner_, position_).size;
}
bool FakeFieldObject::Required() const {
    return Definition(owner_, position_).required;
}
bool FakeFieldObject::Counter() const {
    return Definition(owner_, position_).counter;
}
const std::string& FakeFieldObject::SourceTable() const {
    return owner_.table_.name;
}
Variant FakeFieldObject::Value() const {
    return (owner_.mode_ == EditMode::None ? owner_.Current() : owner_.pending_)
        .at(static_cast<std::size_t>(position_));
}
void FakeFieldObject::SetValue(const Variant& value) {
    if (owner_.mode_ == EditMode::None)
        throw RunTimeError(database::kErrUpdateWithoutEdit, "Fake", "no edit");
    if (Size() > 0 && runtime::CharCount(runtime::TextOf(value)) > static_cast<std::size_t>(Size()))
        throw RunTimeError(database::kErrFieldTooSmall, "Fake", "too long");
    owner_.pending_.at(static_cast<std::size_t>(position_)) = value;
}

class FakeDatabaseObject final : public database::Database {
public:
    FakeDatabaseObject(FakeEngine& engine, std::vector<database::TableDef> tables)
        : engine_(engine), readOnly_(engine.readOnly), tables_(std::move(tables)) {}
    const std::string& Name() const override { return name_; }
    bool ReadOnly() const override { return readOnly_; }
    std::unique_ptr<database::Recordset> OpenRecordset(std::string_view source,
                                                       database::RecordsetType) override {
        FakeTable* table = engine_.Find(source);
        if (!table)
            throw RunTimeError(database::kErrUnknownTable, "Fake", "no such table");
        return std::make_unique<FakeRecordset>(*table, readOnly_);
    }
    void Execute(std::string_view, int) override {}
    long RecordsAffected() const override { return 0; }
    const std::vector<database::TableDef>& TableDefs() override { return tables_; }
    const std::vector<database::RelationDef>& Relations() override { return relations_; }
    std::vector<std::shared_ptr<database::QueryDef>> QueryDefs() override { return {}; }
    std::shared_ptr<database::QueryDef> FindQueryDef(std::string_view) override { return nullptr; }
    std::shared_ptr<database::QueryDef> CreateQueryDef(std::string_view, std::string_view) override {
        return nullptr;
    }
    void DeleteQueryDef(std::string_view) override {}
    void Flush() override {}
    void Close() override {}

private:
    FakeEngine& engine_;
    bool readOnly_;
    std::vector<database::TableDef> tables_;
    std::vector<database::RelationDef> relations_;
    std::string name_ = "Fake.mdb";
};

} // namespace

std::string FakeTable::Text(std::int64_t row, std::size_t field) const {
    auto found = rows.find(row);
    if (found == rows.end())
        return "(gone)";
    return found->second[field].IsNull() ? "(null)" : runtime::TextOf(found->second[field]);
}

FakeTable& FakeEngine::Table(std::string name, std::vector<FakeField> fields) {
    return tables_.emplace_back(FakeTable{std::move(name), std::move(fields), {}, 0, 0});
}

FakeTable* FakeEngine::Find(std::string_view name) {
    for (FakeTable& table : tables_)
        if (runtime::EqualName(table.name, name))
            return &table;
    return nullptr;
}

std::shared_ptr<database::Database> FakeEngine::OpenDatabase(std::string_view path, bool) {
    if (path == "missing.mdb")
        throw RunTimeError(database::kErrFileNotFound, "Fake", "no such file");
    std::vector<database::TableDef> definitions;
    for (const FakeTable& table : tables_) {
        database::TableDef definition{table.name, {}, {}};
        for (const FakeField& field : table.fields) {
            database::FieldDef stored;
            stored.name = field.name;
            stored.allowZeroLength = field.zeroLength;
            definition.fields.push_back(stored);
        }
        definitions.push_back(definition);
    }
    return std::make_shared<FakeDatabaseObject>(*this, std::move(definitions));
}

} // namespace quillary::controls::testing
