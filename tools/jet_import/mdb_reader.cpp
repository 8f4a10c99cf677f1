#include "jet_import/jet_definition.h"
#include "jet_import/jet_pages.h"
#include "jet_import/jet_properties.h"
#include "jet_import/jet_reader.h"
#include "jet_import/jet_rows.h"
#include "jet_import/jet_text.h"

#include "platform/database/errors.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace quillary::jet_import {

using runtime::EqualName;
using runtime::RunTimeError;

namespace {

constexpr std::uint32_t kCatalogPage = 2;
constexpr std::uint32_t kPageMask = 0xffffff;
constexpr std::int64_t kTypeMask = 0x7f;
constexpr std::int64_t kTableType = 1;
constexpr std::int64_t kLinkedOther = 4;
constexpr std::int64_t kQueryType = 5;
constexpr std::int64_t kLinkedTable = 6;
constexpr std::uint32_t kSystemFlags = 0x80000002;
// MSysRelationships.grbit
constexpr std::int64_t kNotEnforced = 2;
constexpr std::int64_t kCascadeUpdates = 0x100;
constexpr std::int64_t kCascadeDeletes = 0x1000;

constexpr int kLongestText = 255;

struct Object {
    std::int64_t id = 0;
    std::int64_t type = 0;
    std::uint32_t flags = 0;
    std::string name;
    std::string properties;
    std::string source; // the file of a linked table
};

bool IsSystemName(std::string_view name) {
    return name.size() >= 4 && EqualName(name.substr(0, 4), "MSys");
}

// The rows of a system table by the names of their fields.
class SystemRow {
public:
    SystemRow(const Definition& table, std::span<const LoadValue> values) : table_(table), values_(values) {}

    std::int64_t Whole(std::string_view name) const {
        const LoadValue* value = Find(name);
        return value == nullptr ? 0 : value->whole;
    }
    bool Has(std::string_view name) const {
        const LoadValue* value = Find(name);
        return value != nullptr && value->kind != LoadValue::Kind::Null;
    }
    std::string Text(std::string_view name) const {
        const LoadValue* value = Find(name);
        return value == nullptr ? std::string() : std::string(value->text);
    }

private:
    const LoadValue* Find(std::string_view name) const {
        const StoredField* field = table_.Find(name);
        return field == nullptr ? nullptr : &values_[static_cast<std::size_t>(field - table_.fields.data())];
    }

    const Definition& table_;
    std::span<const LoadValue> values_;
};

// The type of the new store; carriedAs says so where the old one has no counterpart.
void SetType(const StoredField& stored, bool jet3, JetField& field) {
    database::FieldDef& def = field.def;
    def.size = static_cast<int>(stored.length);
    switch (stored.type) {
    case JetType::Boolean:
        def.type = FieldType::Boolean;
        def.size = 1;
        break;
    case JetType::Byte:
    case JetType::Integer:
    case JetType::Long:
    case JetType::Currency:
    case JetType::Single:
    case JetType::Double:
    case JetType::Date:
        def.type = static_cast<FieldType>(stored.type);
        break;
    case JetType::Binary:
        def.type = FieldType::Binary;
        break;
    case JetType::Text:
        def.size = static_cast<int>(jet3 ? stored.length : stored.length / 2);
        def.type = def.size > 0 && def.size <= kLongestText ? FieldType::Text : FieldType::Memo;
        break;
    case JetType::LongBinary:
        def.type = FieldType::LongBinary;
        def.size = 0;
        break;
    case JetType::Memo:
        def.type = FieldType::Memo;
        def.size = 0;
        break;
    case JetType::Guid:
        def.type = FieldType::Guid;
        def.size = 16;
        break;
    case JetType::Decimal:
        def.type = FieldType::Double;
        def.size = 8;
        field.carriedAs = "a decimal, carried as a double";
        break;
    case JetType::BigInteger:
        def.type = FieldType::Double;
        def.size = 8;
        field.carriedAs = "a large number, carried as a double";
        break;
    case JetType::Complex:
        def.type = FieldType::Long;
        def.size = 4;
        field.carriedAs = "attachments or a list of values, of which only the number is carried";
        break;
    default:
        def.type = FieldType::LongBinary;
        def.size = 0;
        field.carriedAs = "of a type of its own (" + std::to_string(static_cast<int>(stored.type)) +
                          "), carried as its bytes";
        break;
    }
    if (stored.calculated) {
        field.carriedAs = "calculated, carried without its values";
    }
}

class MdbReader final : public JetReader {
public:
    MdbReader(const std::string& path, int codePage)
        : pages_(path), text_(!pages_.IsJet3() ? 0
                              : codePage > 0   ? codePage
                                               : std::max(pages_.CodePage(), 1)) {
        if (codePage > 0 && !text_.IsKnown()) {
            throw RunTimeError(runtime::kErrInvalidProcedureCall, "",
                               "code page " + std::to_string(codePage) + " is not known");
        }
        given_ = codePage > 0;
        ReadObjects();
    }

    std::vector<JetTable> Tables() override {
        std::vector<JetTable> result;
        for (const Object& object : objects_) {
            const bool isTable = object.type == kTableType && (object.flags & kSystemFlags) == 0;
            if (!isTable || IsSystemName(object.name) || object.name.starts_with("~")) {
                continue;
            }
            try {
                result.push_back(MakeTable(object));
            } catch (const RunTimeError& error) {
                throw RunTimeError(error.Number(), "", "table " + object.name + ": " + error.Description());
            }
        }
        return result;
    }

    std::vector<JetRelation> Relations() override {
        std::map<std::string, std::vector<std::pair<std::int64_t, std::pair<std::string, std::string>>>>
            fields;
        std::vector<JetRelation> result;
        ReadSystem("MSysRelationships", [&](const SystemRow& row) {
            const std::string name = row.Text("szRelationship");
            fields[name].push_back(
                {row.Whole("icolumn"), {row.Text("szReferencedColumn"), row.Text("szColumn")}});
            const bool known = std::any_of(result.begin(), result.end(),
                                           [&](const JetRelation& each) { return each.def.name == name; });
            const std::string parent = row.Text("szReferencedObject");
            if (known || IsSystemName(parent)) {
                return;
            }
            const std::int64_t marks = row.Whole("grbit");
            JetRelation relation;
            relation.def.name = name;
            relation.def.table = parent;
            relation.def.foreignTable = row.Text("szObject");
            relation.def.cascadeUpdates = (marks & kCascadeUpdates) != 0;
            relation.def.cascadeDeletes = (marks & kCascadeDeletes) != 0;
            relation.enforced = (marks & kNotEnforced) == 0;
            result.push_back(std::move(relation));
        });
        for (auto& relation : result) {
            auto& columns = fields[relation.def.name];
            std::sort(columns.begin(), columns.end());
            for (auto& [order, names] : columns) {
                relation.def.fields.push_back(names.first);
                relation.def.foreignFields.push_back(names.second);
            }
        }
        return result;
    }

    std::vector<JetQuery> Queries() override {
        std::vector<JetQuery> result;
        std::map<std::int64_t, std::size_t> places;
        for (const Object& object : objects_) {
            if (object.type == kQueryType && !object.name.starts_with("~")) {
                places[object.id] = result.size();
                result.push_back({object.name, {}});
            }
        }
        ReadSystem("MSysQueries", [&](const SystemRow& row) {
            const auto place = places.find(row.Whole("ObjectId"));
            if (place == places.end()) {
                return;
            }
            JetQueryRow part;
            part.attribute = static_cast<int>(row.Whole("Attribute"));
            part.flag = static_cast<int>(row.Whole("Flag"));
            part.hasFlag = row.Has("Flag");
            part.expression = row.Text("Expression");
            part.expression.resize(part.expression.find_last_not_of(std::string_view("\0 \t\r\n", 5)) + 1);
            part.name1 = row.Text("Name1");
            part.name2 = row.Text("Name2");
            part.order = row.Text("Order");
            part.extra = static_cast<int>(row.Whole("LvExtra"));
            result[place->second].rows.push_back(std::move(part));
        });
        return result;
    }

    std::vector<std::string> Losses() override {
        std::vector<std::string> result;
        for (const Object& object : objects_) {
            if (object.type == kLinkedTable || (object.type == kLinkedOther && !object.source.empty())) {
                result.push_back("table " + object.name + " lies in another file (" + object.source +
                                 "): import that file");
            }
        }
        result.insert(result.end(), faults_.begin(), faults_.end());
        result.insert(result.end(), rounded_.begin(), rounded_.end());
        return result;
    }

    std::vector<std::string> Notes() override {
        if (!pages_.IsJet3() || given_ || !text_.HasUsedCodePage()) {
            return {};
        }
        const std::string page = std::to_string(text_.IsKnown() ? pages_.CodePage() : 1252);
        return {"its text was read by code page " + page +
                ", as the file says; where letters look wrong, import it again with --code-page and the "
                "number of the true one"};
    }

    void ReadRows(const JetTable& table,
                  const std::function<void(std::span<const LoadValue>)>& take) override {
        const auto found = definitions_.find(table.name);
        if (found == definitions_.end()) {
            RaiseDamaged("table " + table.name + " is not in the file");
        }
        JetRows rows(pages_, text_, found->second);
        rows.ReadAll(take);
        for (std::size_t i = 0; i < rows.Rounded().size(); ++i) {
            if (rows.Rounded()[i] > 0) {
                rounded_.insert("table " + table.name + ": field " + found->second.fields[i].name + ": " +
                                std::to_string(rows.Rounded()[i]) +
                                " numbers have more digits than a double keeps");
            }
        }
    }

private:
    void ReadObjects() {
        const Definition catalog = ReadDefinition(pages_, text_, kCatalogPage);
        if (catalog.Find("Name") == nullptr || catalog.Find("Type") == nullptr ||
            catalog.Find("Id") == nullptr) {
            RaiseDamaged("the file is damaged: it has no list of tables");
        }
        JetRows(pages_, text_, catalog).ReadAll([&](std::span<const LoadValue> values) {
            const SystemRow row(catalog, values);
            Object object;
            object.id = row.Whole("Id");
            object.type = row.Whole("Type") & kTypeMask;
            object.flags = static_cast<std::uint32_t>(row.Whole("Flags"));
            object.name = row.Text("Name");
            object.properties = row.Text("LvProp");
            object.source = row.Text("Database").empty() ? row.Text("Connect") : row.Text("Database");
            objects_.push_back(std::move(object));
        });
    }

    void ReadSystem(std::string_view name, const std::function<void(const SystemRow&)>& take) {
        for (const Object& object : objects_) {
            if (object.type == kTableType && EqualName(object.name, name)) {
                const Definition table =
                    ReadDefinition(pages_, text_, static_cast<std::uint32_t>(object.id) & kPageMask);
                JetRows(pages_, text_, table).ReadAll([&](std::span<const LoadValue> values) {
                    take(SystemRow(table, values));
                });
                return;
            }
        }
    }

    JetTable MakeTable(const Object& object) {
        Definition definition =
            ReadDefinition(pages_, text_, static_cast<std::uint32_t>(object.id) & kPageMask);
        const auto properties = ReadProperties(object.properties, text_);
        JetTable table;
        table.name = object.name;
        table.rows = definition.rows;
        table.lastCounter = definition.lastCounter;
        if (const auto own = properties.find(""); own != properties.end()) {
            table.validationRule = Text(own->second, "ValidationRule");
        }
        if (const auto own = properties.find(object.name); own != properties.end()) {
            table.validationRule = Text(own->second, "ValidationRule");
        }
        for (const StoredField& stored : definition.fields) {
            JetField field;
            field.def.name = stored.name;
            field.def.counter = stored.counter;
            SetType(stored, pages_.IsJet3(), field);
            if (const auto own = properties.find(stored.name); own != properties.end()) {
                SetProperties(own->second, field);
            }
            table.fields.push_back(std::move(field));
        }
        for (const std::string& fault : definition.faults) {
            faults_.push_back("table " + object.name + ": " + fault);
        }
        for (const StoredIndex& index : definition.indexes) {
            AddIndex(definition, index, table);
        }
        definitions_.insert_or_assign(table.name, std::move(definition));
        return table;
    }

    static std::string Text(const Properties& properties, std::string_view name) {
        const auto found = properties.find(name);
        return found == properties.end() ? std::string() : found->second;
    }

    static void SetProperties(const Properties& properties, JetField& field) {
        database::FieldDef& def = field.def;
        const bool isText = def.type == FieldType::Text || def.type == FieldType::Memo;
        def.required = Text(properties, "Required") == "1" && def.type != FieldType::Boolean && !def.counter;
        // Without the property a required text refuses the empty one.
        const std::string zero = Text(properties, "AllowZeroLength");
        def.allowZeroLength = !isText || (zero.empty() ? !def.required : zero == "1");
        field.defaultText = Text(properties, "DefaultValue");
        field.validationRule = Text(properties, "ValidationRule");
    }

    void AddIndex(const Definition& definition, const StoredIndex& stored, JetTable& table) {
        if (stored.foreign) {
            return; // the relation brings its own
        }
        database::LoadIndex index;
        index.def.name = stored.name;
        index.def.primary = stored.primary;
        index.def.unique = stored.unique || stored.primary;
        for (const auto& key : stored.keys) {
            const auto field =
                std::find_if(definition.fields.begin(), definition.fields.end(),
                             [&](const StoredField& each) { return each.number == key.field; });
            if (field == definition.fields.end()) {
                faults_.push_back("table " + table.name + ": index " + stored.name +
                                  " is over a field that is not there");
                return;
            }
            index.def.fields.push_back(field->name);
            index.descending.push_back(key.descending);
            if (stored.required) {
                auto& def = table.fields[static_cast<std::size_t>(field - definition.fields.begin())].def;
                def.required = def.type != FieldType::Boolean && !def.counter;
            }
        }
        if (index.def.fields.empty()) {
            faults_.push_back("table " + table.name + ": index " + stored.name + " has no fields");
            return;
        }
        const bool second = stored.primary && !table.indexes.empty() && table.indexes.front().def.primary;
        index.def.primary = stored.primary && !second;
        table.indexes.insert(index.def.primary ? table.indexes.begin() : table.indexes.end(),
                             std::move(index));
    }

    JetPages pages_;
    JetText text_;
    bool given_ = false; // the code page
    std::vector<Object> objects_;
    std::map<std::string, Definition> definitions_;
    std::vector<std::string> faults_;
    std::set<std::string> rounded_; // a table may be read more than once
};

} // namespace

std::unique_ptr<JetReader> OpenJetFile(const std::string& path, int codePage) {
    return std::make_unique<MdbReader>(path, codePage);
}

} // namespace quillary::jet_import
