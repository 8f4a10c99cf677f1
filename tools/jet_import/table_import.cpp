#include "jet_import/table_import.h"

#include "jet_import/expressions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cmath>

namespace quillary::jet_import {

using database::FieldDef;
using database::LoadIndex;
using runtime::EqualName;

namespace {

constexpr int kMostRepeats = 10;
constexpr int kLongestText = 255;
constexpr std::int64_t kProgressStep = 1000;
// The dates that the old engine has, 1 January 100 to 31 December 9999, in days.
constexpr double kFirstDay = -657434;
constexpr double kBeyondLastDay = 2958466;

// The first row that repeats a key ends the reading.
struct KeyBroken {};

std::string FreeName(std::string name, const std::function<bool(const std::string&)>& good) {
    constexpr std::size_t kLongestName = 60;
    for (char& c : name) {
        if (static_cast<unsigned char>(c) < 32 ||
            std::string_view(".!`[]").find(c) != std::string_view::npos) {
            c = '_';
        }
    }
    name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
    if (name.empty()) {
        name = "unnamed";
    }
    while (name.size() > kLongestName) {
        // Whole characters only.
        do {
            name.pop_back();
        } while (!name.empty() && (static_cast<unsigned char>(name.back()) & 0xC0) == 0x80);
    }
    const std::string stem = name;
    for (int i = 1; !good(name); ++i) {
        name = stem + "_" + std::to_string(i);
    }
    return name;
}

} // namespace

TableImport::TableImport(JetReader& source, database::BulkLoad& target, const Progress& progress,
                         ImportReport& report)
    : source_(source), target_(target), progress_(progress), report_(report) {}

void TableImport::Run(const JetTable& table, std::set<std::string>& taken) {
    Describe(table, taken);
    for (const Keys keys : {Keys::AsTheyAre, Keys::NoKey, Keys::NoKeyNoCounter}) {
        if (Load(table, keys)) {
            break;
        }
        target_.DropTable(def_.name);
    }
    report_.tables.push_back({def_.name, read_, written_});
    if (table.rows != read_) {
        const std::string text = "the file counts " + std::to_string(table.rows) + " rows, " +
                                 std::to_string(read_) + " are in it";
        (table.rows > read_ ? report_.losses : report_.notes).push_back("table " + def_.name + ": " + text);
    }
    GiveWay();
    SetDefaults(table);
    target_.SetLastCounter(def_.name, table.lastCounter);
    MakeIndexes();
    SetRules(table);
}

void TableImport::Describe(const JetTable& table, std::set<std::string>& taken) {
    def_.name = FreeName(table.name, [&](const std::string& name) {
        return database::IsLoadName(name) && !taken.contains(runtime::LCase(name));
    });
    taken.insert(runtime::LCase(def_.name));
    if (def_.name != table.name) {
        Note("it was called '" + table.name + "', which is no name here");
    }
    std::set<std::string> names;
    for (const JetField& field : table.fields) {
        FieldDef def = field.def;
        def.name = FreeName(def.name, [&](const std::string& name) {
            return database::IsLoadName(name) && names.insert(runtime::LCase(name)).second;
        });
        if (def.name != field.def.name) {
            Note("field " + def.name + " was called '" + field.def.name + "', which is no name here");
        }
        if (!field.carriedAs.empty()) {
            const bool whole = def.type == FieldType::Double;
            (whole ? report_.notes : report_.losses)
                .push_back("table " + def_.name + ": field " + def.name + " is " + field.carriedAs);
        }
        def_.fields.push_back(std::move(def));
    }
    std::set<std::string> indexNames;
    for (LoadIndex index : table.indexes) {
        for (std::string& name : index.def.fields) {
            for (std::size_t i = 0; i < table.fields.size(); ++i) {
                if (table.fields[i].def.name == name) {
                    name = def_.fields[i].name;
                    break;
                }
            }
        }
        index.def.name = FreeName(index.def.name, [&](const std::string& name) {
            return database::IsLoadName(name) && indexNames.insert(runtime::LCase(name)).second;
        });
        indexes_.push_back(std::move(index));
    }
}

// False when a key does not hold; the table is then to be dropped.
bool TableImport::Load(const JetTable& table, Keys keys) {
    database::TableDef def = def_;
    if (!indexes_.empty() && indexes_.front().def.primary && keys == Keys::AsTheyAre) {
        def.indexes = {indexes_.front().def};
    }
    if (keys == Keys::NoKeyNoCounter) {
        for (auto& field : def.fields) {
            field.counter = false;
        }
    }
    for (auto& field : def.fields) {
        const bool inKey = !def.indexes.empty() &&
                           std::any_of(def.indexes.front().fields.begin(), def.indexes.front().fields.end(),
                                       [&](const std::string& name) { return EqualName(name, field.name); });
        field.required = field.required || (inKey && !field.counter && field.type != FieldType::Boolean);
    }
    seen_.assign(def.fields.size(), {});
    read_ = written_ = 0;
    target_.AddTable(def);
    try {
        source_.ReadRows(table, [&](std::span<const LoadValue> row) {
            ++read_;
            Watch(row);
            if (!target_.AddRow(row)) {
                throw KeyBroken{};
            }
            ++written_;
            if (read_ % kProgressStep == 0 && read_ < table.rows) {
                progress_(def_.name, read_, table.rows);
            }
        });
    } catch (const KeyBroken&) {
        return false;
    }
    progress_(def_.name, read_, read_);
    if (keys == Keys::NoKeyNoCounter) {
        for (const auto& field : def_.fields) {
            if (field.counter) {
                Lose("field " + field.name + " no longer counts by itself, since it holds a number twice");
                TellRepeats("field " + field.name, {field.name});
            }
        }
    }
    def_.fields = def.fields;
    def_.indexes = def.indexes;
    return true;
}

void TableImport::Watch(std::span<const LoadValue> row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const LoadValue& value = row[i];
        switch (value.kind) {
        case LoadValue::Kind::Null:
            ++seen_[i].nulls;
            break;
        case LoadValue::Kind::Text:
            WatchText(value, i);
            break;
        case LoadValue::Kind::Real: {
            const bool date = def_.fields[i].type == FieldType::Date;
            const bool beyond = date && !(value.real > kFirstDay - 1 && value.real < kBeyondLastDay);
            seen_[i].strange += beyond || !std::isfinite(value.real) ? 1 : 0;
            break;
        }
        case LoadValue::Kind::Bytes: {
            const FieldDef& field = def_.fields[i];
            const bool wide = field.type == FieldType::Binary && field.size > 0 &&
                              value.text.size() > static_cast<std::size_t>(field.size);
            seen_[i].tooLong += wide ? 1 : 0;
            seen_[i].longest = std::max(seen_[i].longest, value.text.size());
            break;
        }
        case LoadValue::Kind::Whole:
            break;
        }
    }
}

void TableImport::WatchText(const LoadValue& value, std::size_t field) {
    Seen& seen = seen_[field];
    if (value.text.empty()) {
        ++seen.empties;
        return;
    }
    const auto size = static_cast<std::size_t>(def_.fields[field].size);
    if (def_.fields[field].type != FieldType::Text || value.text.size() <= size) {
        return; // few bytes are few characters
    }
    const std::size_t length = runtime::CharCount(value.text);
    seen.tooLong += length > size ? 1 : 0;
    seen.longest = std::max(seen.longest, length);
}

// Rules of fields that rows break.
void TableImport::GiveWay() {
    for (std::size_t i = 0; i < def_.fields.size(); ++i) {
        FieldDef& field = def_.fields[i];
        const Seen& seen = seen_[i];
        bool changed = false;
        if (field.required && seen.nulls > 0) {
            field.required = false;
            changed = true;
            Note("field " + field.name + " is not required any more: " + std::to_string(seen.nulls) +
                 " rows hold no value");
        }
        if (!field.allowZeroLength && seen.empties > 0) {
            field.allowZeroLength = true;
            changed = true;
            Note("field " + field.name + " takes empty text: " + std::to_string(seen.empties) +
                 " rows hold it");
        }
        if (seen.tooLong > 0) {
            const bool text = field.type == FieldType::Text;
            if (text && seen.longest > static_cast<std::size_t>(kLongestText)) {
                field.type = FieldType::Memo;
                field.size = 0;
            } else {
                field.size = static_cast<int>(seen.longest);
            }
            changed = true;
            Note("field " + field.name + " is wider than it was: " + std::to_string(seen.tooLong) +
                 " rows hold up to " + std::to_string(seen.longest) + (text ? " characters" : " bytes"));
        }
        if (seen.strange > 0) {
            Lose("field " + field.name + ": " + std::to_string(seen.strange) +
                 " rows hold no valid date or number");
        }
        if (changed) {
            target_.ChangeField(def_.name, field);
        }
    }
}

void TableImport::SetDefaults(const JetTable& table) {
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        const std::string& given = table.fields[i].defaultText;
        const FieldDef& field = def_.fields[i];
        const std::string text = DefaultExpression(given, field.type);
        if (!text.empty() && !field.counter && !target_.SetDefault(def_.name, field.name, text)) {
            Lose("field " + field.name + " has lost its default value " + given);
        }
    }
}

void TableImport::SetRules(const JetTable& table) {
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        const std::string& rule = table.fields[i].validationRule;
        const std::string& name = def_.fields[i].name;
        if (!rule.empty() && !target_.AddRule(def_.name, name, FieldRule(rule, name))) {
            std::string text = "field ";
            Lose(text.append(name).append(" has lost its rule ").append(rule));
        }
    }
    if (!table.validationRule.empty() && !target_.AddRule(def_.name, def_.name, table.validationRule)) {
        Lose("it has lost its rule " + table.validationRule);
    }
}

void TableImport::MakeIndexes() {
    for (LoadIndex& index : indexes_) {
        const bool isKey = !def_.indexes.empty() && def_.indexes.front().name == index.def.name;
        if (isKey) {
            ++report_.indexes;
            continue;
        }
        const bool wasKey = index.def.primary;
        index.def.primary = false;
        if (!target_.AddIndex(def_.name, index)) {
            TellRepeats("index " + index.def.name, index.def.fields);
            Lose("index " + index.def.name + " lets the same values stand in several rows");
            index.def.unique = false;
            target_.AddIndex(def_.name, index);
        } else if (wasKey) {
            Lose("its key " + index.def.name + " is a plain index, since rows hold no value there");
        }
        ++report_.indexes;
    }
}

void TableImport::TellRepeats(const std::string& what, const std::vector<std::string>& fields) {
    for (const auto& fault : target_.Repeats(def_.name, fields, kMostRepeats)) {
        Note(what + ": " + std::to_string(fault.rows) + " rows hold " + fault.what);
    }
}

} // namespace quillary::jet_import
