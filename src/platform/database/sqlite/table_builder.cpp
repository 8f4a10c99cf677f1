#include "platform/database/sqlite/table_builder.h"

#include "platform/database/sqlite/context.h"
#include "platform/database/sqlite/ddl.h"
#include "platform/database/sqlite/defaults.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/storage.h"
#include "platform/database/sqlite/translator.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <charconv>

namespace quillary::database::sqlite {
namespace {

using jet_sql::ConstraintKind;
using runtime::EqualName;

constexpr int kLongestText = 255;

bool SameNames(const std::vector<std::string>& left, const std::vector<std::string>& right) {
    return left.size() == right.size() &&
           std::is_permutation(left.begin(), left.end(), right.begin(), EqualName);
}

bool Contains(const std::vector<std::string>& names, std::string_view name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& each) { return EqualName(each, name); });
}

std::string Joined(const std::vector<std::string>& names) {
    std::string result;
    for (const auto& name : names) {
        result += (result.empty() ? "" : ", ") + Quote(name);
    }
    return result;
}

// The criterion's text with the fields in the places of their values.
std::string WithFields(std::string_view sql, const Criterion& criterion, const TableDef& table) {
    std::string result;
    char quote = 0;
    for (std::size_t i = 0; i < sql.size(); ++i) {
        const char c = sql[i];
        if (quote != 0) {
            quote = c == quote ? '\0' : quote;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '?') {
            std::size_t number = 0;
            const char* const end = sql.data() + sql.size();
            const char* const behind = std::from_chars(sql.data() + i + 1, end, number).ptr;
            const auto field = static_cast<std::size_t>(criterion.fields.at(number - 1));
            result += Quote(table.fields[field].name);
            i = static_cast<std::size_t>(behind - sql.data()) - 1;
            continue;
        }
        result += c;
    }
    return result;
}

[[noreturn]] void RaisePartOfRelation() {
    Raise(3281, "This field, index or table cannot be changed or deleted. It is used in a relationship.");
}

} // namespace

TableBuilder::TableBuilder(const Catalogue& catalogue, std::string_view name) : catalogue_(catalogue) {
    CheckName(name);
    table_.def.name = name;
}

TableBuilder::TableBuilder(const Catalogue& catalogue, const TableInfo& table)
    : catalogue_(catalogue), table_(table) {
    for (std::size_t i = 0; i < table.def.fields.size(); ++i) {
        sources_.push_back(static_cast<int>(i));
    }
}

int TableBuilder::RequireField(std::string_view name) const {
    const int position = FindField(table_.def, name);
    if (position < 0) {
        Raise(3381,
              "There is no field named '" + std::string(name) + "' in table '" + table_.def.name + "'.");
    }
    return position;
}

std::vector<std::string> TableBuilder::ExactNames(const std::vector<std::string>& fields) const {
    std::vector<std::string> result;
    result.reserve(fields.size());
    for (const auto& name : fields) {
        result.push_back(table_.def.fields[static_cast<std::size_t>(RequireField(name))].name);
    }
    return result;
}

// ------------------------------------------------------------------------------------------- fields

FieldDef TableBuilder::MakeField(const jet_sql::ColumnDef& column, std::string& defaultSql) const {
    CheckName(column.name);
    FieldDef field;
    field.name = column.name;
    field.type = FieldTypeOf(column.type.type);
    field.size = column.type.size;
    field.counter = column.type.counter;
    field.required = column.notNull && field.type != FieldType::Boolean;
    if (field.type == FieldType::Text && field.size > kLongestText) {
        Raise(3382, "Size of field '" + column.name + "' is too long.");
    }
    if (field.type != FieldType::Text && field.type != FieldType::Binary) {
        FieldDef sized = field;
        sized.size = 0;
        SetDeclaredType(field, DeclaredType(sized));
    }
    // A required text refuses the empty one as well: meant.
    field.allowZeroLength =
        !(field.required && (field.type == FieldType::Text || field.type == FieldType::Memo));
    if (field.counter && column.type.step != 1) {
        Raise(3259, "Invalid field data type: a counter counts by 1.");
    }
    if (column.defaultValue) {
        defaultSql = DefaultText(*column.defaultValue, field);
        field.defaultValue = DescribedDefault(defaultSql, field.type);
    }
    return field;
}

void TableBuilder::AddField(const jet_sql::ColumnDef& column) {
    if (FindField(table_.def, column.name) >= 0) {
        Raise(3380, "Field '" + column.name + "' already exists in table '" + table_.def.name + "'.");
    }
    std::string defaultSql;
    FieldDef field = MakeField(column, defaultSql);
    const bool second = field.counter && std::any_of(table_.def.fields.begin(), table_.def.fields.end(),
                                                     [](const FieldDef& each) { return each.counter; });
    if (second) {
        Raise(3259, "Invalid field data type: a table has one counter at most.");
    }
    table_.def.fields.push_back(std::move(field));
    table_.defaults.push_back(std::move(defaultSql));
    sources_.push_back(-1);
    ChooseRowId();
}

void TableBuilder::ReplaceField(const jet_sql::ColumnDef& column) {
    const auto position = static_cast<std::size_t>(RequireField(column.name));
    FieldDef& field = table_.def.fields[position];
    jet_sql::ColumnDef renamed = column;
    renamed.name = field.name; // the case in which it was made
    RequireNotReferenced({field.name});
    std::string defaultSql;
    FieldDef changed = MakeField(renamed, defaultSql);
    const IndexDef* key = table_.PrimaryKey();
    changed.required =
        changed.required || (key != nullptr && Contains(key->fields, field.name) && !changed.counter);
    field = std::move(changed);
    table_.defaults[position] = std::move(defaultSql);
    ChooseRowId();
}

void TableBuilder::RemoveField(std::string_view name) {
    const auto position = static_cast<std::size_t>(RequireField(name));
    const auto used = std::any_of(table_.def.indexes.begin(), table_.def.indexes.end(),
                                  [&](const IndexDef& index) { return Contains(index.fields, name); });
    RequireNotReferenced({std::string(name)});
    if (used || table_.def.fields.size() == 1) {
        Raise(3280, "Cannot delete a field that is part of an index or is needed by the system.");
    }
    table_.def.fields.erase(table_.def.fields.begin() + static_cast<std::ptrdiff_t>(position));
    table_.defaults.erase(table_.defaults.begin() + static_cast<std::ptrdiff_t>(position));
    sources_.erase(sources_.begin() + static_cast<std::ptrdiff_t>(position));
    ChooseRowId();
}

void TableBuilder::SetDefault(std::string_view name, const jet_sql::Expr* value) {
    const auto position = static_cast<std::size_t>(RequireField(name));
    FieldDef& field = table_.def.fields[position];
    table_.defaults[position] = value == nullptr ? std::string() : DefaultText(*value, field);
    field.defaultValue = DescribedDefault(table_.defaults[position], field.type);
    ChooseRowId();
}

void TableBuilder::Require(const std::vector<std::string>& fields) {
    for (const auto& name : fields) {
        FieldDef& field = table_.def.fields[static_cast<std::size_t>(RequireField(name))];
        field.required = field.type != FieldType::Boolean && !field.counter;
    }
}

// A counter is the rowid, since SQLite numbers nothing else; without one, a key of one Long is, unless it
// has a default value, which a rowid cannot have.
void TableBuilder::ChooseRowId() {
    table_.rowIdField = -1;
    for (std::size_t i = 0; i < table_.def.fields.size(); ++i) {
        if (table_.def.fields[i].counter) {
            table_.rowIdField = static_cast<int>(i);
            return;
        }
    }
    const IndexDef* key = table_.PrimaryKey();
    if (key != nullptr && key->fields.size() == 1) {
        const int only = FindField(table_.def, key->fields.front());
        if (only >= 0 && table_.def.fields[static_cast<std::size_t>(only)].type == FieldType::Long &&
            table_.defaults[static_cast<std::size_t>(only)].empty()) {
            table_.rowIdField = only;
        }
    }
}

// -------------------------------------------------------------------------------- keys and relations

void TableBuilder::AddConstraints(const std::vector<jet_sql::ColumnDef>& columns,
                                  const std::vector<jet_sql::Constraint>& constraints) {
    for (const ConstraintKind kind : {ConstraintKind::PrimaryKey, ConstraintKind::Unique,
                                      ConstraintKind::ForeignKey, ConstraintKind::Check}) {
        const auto addAll = [&](const std::vector<jet_sql::Constraint>& list) {
            for (const auto& constraint : list) {
                if (constraint.kind == kind) {
                    AddConstraint(constraint);
                }
            }
        };
        for (const auto& column : columns) {
            addAll(column.constraints);
        }
        addAll(constraints);
    }
}

void TableBuilder::AddConstraint(const jet_sql::Constraint& constraint) {
    switch (constraint.kind) {
    case ConstraintKind::PrimaryKey:
        AddPrimaryKey(constraint.name, constraint.columns);
        break;
    case ConstraintKind::Unique: {
        const std::vector<std::string> fields = ExactNames(constraint.columns);
        AddIndexText(constraint.name.empty() ? FreeName(fields.front()) : constraint.name, Joined(fields),
                     true, fields);
        break;
    }
    case ConstraintKind::ForeignKey:
        AddForeignKey(constraint);
        break;
    case ConstraintKind::Check:
        AddRule(constraint);
        break;
    }
}

void TableBuilder::AddPrimaryKey(std::string name, const std::vector<std::string>& fields) {
    if (table_.PrimaryKey() != nullptr) {
        Raise(3283, "Primary key already exists.");
    }
    IndexDef key;
    key.name = name.empty() ? "PrimaryKey" : std::move(name);
    key.fields = ExactNames(fields);
    key.primary = true;
    key.unique = true;
    Require(key.fields);
    table_.def.indexes.insert(table_.def.indexes.begin(), std::move(key));
    ChooseRowId();
}

std::string TableBuilder::FreeName(std::string name) const {
    const std::string stem = name;
    for (int i = 1;; ++i) {
        const bool taken = std::any_of(table_.def.indexes.begin(), table_.def.indexes.end(),
                                       [&](const IndexDef& index) { return EqualName(index.name, name); });
        if (!taken) {
            return name;
        }
        name = stem + std::to_string(i);
    }
}

void TableBuilder::AddIndexText(const std::string& name, const std::string& terms, bool unique,
                                std::vector<std::string> fields) {
    CheckName(name);
    if (!EqualName(FreeName(name), name)) {
        Raise(3375, "Table '" + table_.def.name + "' already has an index named '" + name + "'.");
    }
    newIndexes_.push_back(std::string(unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                          Quote(IndexName(table_.def.name, name)) + " ON " + Quote(table_.def.name) + " (" +
                          terms + ")");
    IndexDef index;
    index.name = name;
    index.fields = std::move(fields);
    index.unique = unique;
    table_.def.indexes.push_back(std::move(index));
}

void TableBuilder::AddIndex(const jet_sql::CreateIndex& index) {
    std::vector<std::string> names;
    for (const auto& column : index.columns) {
        names.push_back(column.name);
    }
    names = ExactNames(names);
    if (index.primary) {
        AddPrimaryKey(index.name, names);
        return;
    }
    std::vector<bool> descending;
    for (const auto& column : index.columns) {
        descending.push_back(column.descending);
    }
    AddIndexText(index.name, IndexTerms(names, descending), index.unique, names);
    if (index.disallowNull) {
        Require(names);
    }
}

void TableBuilder::AddForeignKey(const jet_sql::Constraint& constraint) {
    const bool toItself = EqualName(constraint.refTable, table_.def.name);
    const TableInfo* parent = toItself ? &table_ : catalogue_.Find(constraint.refTable);
    if (parent == nullptr) {
        Raise(3376, "Table '" + constraint.refTable + "' does not exist.");
    }
    ForeignKey key;
    key.fields = ExactNames(constraint.columns);
    key.parent = parent->def.name;
    key.parentFields = constraint.refColumns;
    if (key.parentFields.empty() && parent->PrimaryKey() != nullptr) {
        key.parentFields = parent->PrimaryKey()->fields;
    }
    const bool known =
        std::any_of(parent->def.indexes.begin(), parent->def.indexes.end(), [&](const IndexDef& index) {
            return index.unique && SameNames(index.fields, key.parentFields);
        });
    if (!known) {
        Raise(3409, "Invalid definition of a relationship: the fields of table '" + key.parent +
                        "' are no primary key or unique index.");
    }
    for (std::size_t i = 0; i < key.fields.size(); ++i) {
        const FieldDef& field = table_.def.fields[static_cast<std::size_t>(RequireField(key.fields[i]))];
        const int other = i < key.parentFields.size() ? FindField(parent->def, key.parentFields[i]) : -1;
        if (key.fields.size() != key.parentFields.size() || other < 0 ||
            parent->def.fields[static_cast<std::size_t>(other)].type != field.type) {
            Raise(3368, "Relationship must be on the same number of fields with the same data types.");
        }
        key.parentFields[i] = parent->def.fields[static_cast<std::size_t>(other)].name;
    }
    using jet_sql::ReferenceAction;
    key.cascadeDeletes = constraint.onDelete == ReferenceAction::Cascade;
    key.cascadeUpdates = constraint.onUpdate == ReferenceAction::Cascade;
    key.setNullOnDelete = constraint.onDelete == ReferenceAction::SetNull;
    key.setNullOnUpdate = constraint.onUpdate == ReferenceAction::SetNull;
    key.name = constraint.name.empty() ? FreeName(key.parent + table_.def.name) : constraint.name;
    const bool repeated = std::any_of(table_.foreignKeys.begin(), table_.foreignKeys.end(),
                                      [&](const ForeignKey& each) { return EqualName(each.name, key.name); });
    if (repeated) {
        Raise(3378, "There is already a relationship named '" + key.name + "'.");
    }
    if (!constraint.noIndex) {
        AddIndexText(key.name, Joined(key.fields), false, key.fields);
    }
    table_.foreignKeys.push_back(std::move(key));
}

// A rule is kept as SQL over the fields, so that it holds for every writer of the file.
void TableBuilder::AddRule(const jet_sql::Constraint& constraint) {
    std::vector<ResultColumn> columns;
    for (const auto& field : table_.def.fields) {
        columns.push_back({field.name, field.type, field.size, -1, -1});
    }
    const Criterion criterion = TranslateCriterion(*constraint.check, columns);
    constexpr std::string_view kHead = "SELECT ";
    if (!criterion.sql.starts_with(kHead)) {
        Raise(3293, "Syntax error in the rule of table '" + table_.def.name + "'.");
    }
    const std::string name =
        constraint.name.empty() ? "Rule" + std::to_string(table_.rules.size() + 1) : constraint.name;
    table_.rules.push_back(
        {name, WithFields(std::string_view(criterion.sql).substr(kHead.size()), criterion, table_.def)});
}

void TableBuilder::RequireNotReferenced(const std::vector<std::string>& fields) const {
    const auto hits = [&](const std::vector<std::string>& used) {
        return std::any_of(used.begin(), used.end(),
                           [&](const std::string& name) { return Contains(fields, name); });
    };
    for (const auto& key : table_.foreignKeys) {
        if (hits(key.fields)) {
            RaisePartOfRelation();
        }
    }
    for (const auto& child : catalogue_.ChildrenOf(table_.def.name)) {
        if (hits(child.key->parentFields)) {
            RaisePartOfRelation();
        }
    }
}

bool TableBuilder::RemoveConstraint(std::string_view name) {
    const auto key = std::find_if(table_.foreignKeys.begin(), table_.foreignKeys.end(),
                                  [&](const ForeignKey& each) { return EqualName(each.name, name); });
    if (key != table_.foreignKeys.end()) {
        table_.foreignKeys.erase(key);
        RemoveIndex(name);
        return true;
    }
    const auto rule = std::find_if(table_.rules.begin(), table_.rules.end(),
                                   [&](const TableInfo::Rule& each) { return EqualName(each.name, name); });
    if (rule != table_.rules.end()) {
        table_.rules.erase(rule);
        return true;
    }
    return RemoveIndex(name);
}

bool TableBuilder::RemoveIndex(std::string_view name) {
    const auto index = std::find_if(table_.def.indexes.begin(), table_.def.indexes.end(),
                                    [&](const IndexDef& each) { return EqualName(each.name, name); });
    if (index == table_.def.indexes.end()) {
        return false;
    }
    if (index->unique) {
        for (const auto& child : catalogue_.ChildrenOf(table_.def.name)) {
            if (SameNames(child.key->parentFields, index->fields)) {
                RaisePartOfRelation();
            }
        }
    }
    const auto isForeign = std::any_of(table_.foreignKeys.begin(), table_.foreignKeys.end(),
                                       [&](const ForeignKey& key) { return EqualName(key.name, name); });
    if (isForeign) {
        RaisePartOfRelation();
    }
    const std::string inFile = IndexName(table_.def.name, index->name);
    std::erase_if(table_.indexes, [&](const TableInfo::Index& each) {
        return EqualName(each.name, inFile) || EqualName(each.name, name);
    });
    table_.def.indexes.erase(index);
    ChooseRowId();
    return true;
}

} // namespace quillary::database::sqlite
