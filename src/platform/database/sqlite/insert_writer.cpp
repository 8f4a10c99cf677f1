#include "platform/database/errors.h"
#include "platform/database/sqlite/action_writer.h"
#include "platform/database/sqlite/select_writer.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

constexpr int kDefaultTextSize = 255;

[[noreturn]] void RaiseWrongCount() {
    Raise(3346, "Number of query values and destination fields are not the same.");
}

class InsertWriter {
public:
    InsertWriter(Context& context, const jet_sql::Insert& insert) : context_(context), insert_(insert) {}
    Action Write();

private:
    void FindTarget();
    void FindView();
    int FieldNamed(const std::string& name) const;
    void SetFields(const std::vector<std::string>& names);
    void CheckLeftOut() const;
    std::string Stored(Piece piece, std::size_t position);
    std::string ValuesText();
    std::string QueryRows();
    std::string Wrapped(const QueryText& query);

    Context& context_;
    const jet_sql::Insert& insert_;
    FoundTable target_;
    std::vector<ViewField> view_; // the fields and their names where the target is a saved query
    std::vector<const FieldDef*> fields_;
};

Action InsertWriter::Write() {
    FindTarget();
    if (!insert_.columns.empty()) {
        SetFields(insert_.columns);
    }
    const std::string rows = insert_.query ? QueryRows() : ValuesText();
    CheckLeftOut();
    std::vector<std::string> names;
    for (const FieldDef* field : fields_) {
        names.push_back(Quote(field->name));
    }
    Action action;
    action.kind = Action::Kind::Insert;
    action.target = target_.table->name;
    action.targets.push_back(action.target);
    Action::Step step;
    step.sql = "INSERT INTO " + target_.text + " (" + Listed(names) + ") " + rows;
    step.table = 0;
    action.steps.push_back(std::move(step));
    action.parameters = std::move(context_.parameters);
    action.reusable = context_.reusable;
    return action;
}

void InsertWriter::FindTarget() {
    const auto& table = insert_.table;
    const bool listed = table.file.empty() && insert_.file.has_value();
    target_ = listed ? FindTable(context_, table.name, insert_.file->path, insert_.file->connect)
                     : FindTable(context_, table.name, table.file, {});
    if (target_.table == nullptr) {
        FindView();
    }
}

// A saved query that shows fields of one table stands for the table.
void InsertWriter::FindView() {
    jet_sql::TableSource source{insert_.table, {}, {}};
    Scope scope;
    WriteFrom(context_, scope, {std::move(source)}, insert_.file, false);
    const Source& query = scope.sources.front();
    if (query.table == nullptr) {
        RaiseNotUpdateable();
    }
    target_ = {query.table, query.schema, query.text};
    view_ = query.view;
}

int InsertWriter::FieldNamed(const std::string& name) const {
    if (view_.empty()) {
        return FindField(*target_.table, name);
    }
    const auto found = std::find_if(view_.begin(), view_.end(), [&](const ViewField& field) {
        return runtime::EqualName(field.name, name);
    });
    return found == view_.end() ? -1 : found->field;
}

void InsertWriter::SetFields(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const int index = FieldNamed(name);
        if (index < 0) {
            Raise(3127, "The INSERT INTO statement contains the following unknown field name: '" + name +
                            "'. Make sure you have typed the name correctly, and try the operation again.");
        }
        const FieldDef* field = &target_.table->fields[static_cast<std::size_t>(index)];
        if (std::find(fields_.begin(), fields_.end(), field) != fields_.end()) {
            Raise(3063, "Duplicate output destination '" + field->name + "'.");
        }
        fields_.push_back(field);
    }
}

void InsertWriter::CheckLeftOut() const {
    for (const FieldDef& field : target_.table->fields) {
        if (field.defaultValue.IsEmpty() && IsRowIdKey(*target_.table, field) &&
            std::find(fields_.begin(), fields_.end(), &field) == fields_.end()) {
            Raise(kErrRequiredField, RequiredFieldText(*target_.table, field));
        }
    }
}

std::string InsertWriter::Stored(Piece piece, std::size_t position) {
    return AsAssigned(context_, std::move(piece), *target_.table, *fields_[position]);
}

std::string InsertWriter::ValuesText() {
    if (insert_.columns.empty()) {
        for (const FieldDef& field : target_.table->fields) {
            if (view_.empty()) {
                fields_.push_back(&field);
            }
        }
        for (const ViewField& field : view_) {
            fields_.push_back(&target_.table->fields[static_cast<std::size_t>(field.field)]);
        }
    }
    if (fields_.size() != insert_.values.size()) {
        RaiseWrongCount();
    }
    Scope scope;
    std::vector<std::string> values;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        values.push_back(Stored(ExpressionWriter(context_, scope).Value(insert_.values[i]), i));
    }
    return "VALUES (" + Listed(values) + ")";
}

// Without a column list the columns go by their names.
std::string InsertWriter::QueryRows() {
    const auto take = [this](std::vector<std::string> names) {
        if (insert_.columns.empty()) {
            SetFields(names);
        }
        if (fields_.size() != names.size()) {
            RaiseWrongCount();
        }
    };
    const auto* select = insert_.query->As<jet_sql::Select>();
    if (select == nullptr || select->predicate == jet_sql::Predicate::Distinct || select->top) {
        const QueryText query = WriteQuery(context_, *insert_.query, nullptr, QueryUse::Derived);
        std::vector<std::string> names;
        for (const DerivedColumn& column : query.columns) {
            names.push_back(column.name);
        }
        take(std::move(names));
        return Wrapped(query);
    }
    SelectWriter writer(context_, *select, nullptr);
    writer.Bind(true);
    std::vector<std::string> names;
    for (const OutputItem& item : writer.Items()) {
        names.push_back(item.name);
    }
    take(std::move(names));
    std::vector<std::string> values;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        values.push_back(Stored(writer.Items()[i].piece, i));
    }
    return writer.TextOf(values, false, true);
}

// A query whose rows would be others if its values were converted within it.
std::string InsertWriter::Wrapped(const QueryText& query) {
    const std::string alias = context_.NewAlias();
    std::vector<std::string> values;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        Piece piece = Computed(alias + ".c" + std::to_string(i), query.columns[i].type);
        piece.untyped = query.columns[i].untyped;
        values.push_back(Stored(std::move(piece), i));
    }
    return "SELECT " + Listed(values) + " FROM (" + query.sql + ") AS " + alias;
}

FieldDef NewField(const OutputItem& item) {
    FieldDef field;
    field.name = item.name;
    field.type = item.piece.untyped ? FieldType::Text : item.piece.type;
    field.size = item.piece.size;
    if (field.type == FieldType::Text &&
        (field.size <= 0 || field.size > kDefaultTextSize || !item.piece.column)) {
        field.size = kDefaultTextSize;
    }
    return field;
}

} // namespace

Action WriteInsert(Context& context, const jet_sql::Insert& insert) {
    return InsertWriter(context, insert).Write();
}

Action WriteSelectInto(Context& context, const jet_sql::Select& select) {
    SelectWriter writer(context, select, nullptr);
    writer.Bind(true);
    Action action;
    action.kind = Action::Kind::SelectInto;
    action.target = select.into->name;
    action.targets.push_back(action.target);
    std::string text = Quote(action.target);
    const SchemaView* schema = &context.Schema();
    if (select.into->file) {
        std::string schemaName;
        action.elsewhere = true;
        action.createdIn = select.into->file->path;
        action.createdInConnect = select.into->file->connect;
        context.reusable = false;
        schema = context.Schema().External(action.createdIn, action.createdInConnect, schemaName);
        if (schema == nullptr) {
            Raise(kErrFileNotFound, "Could not find file '" + action.createdIn + "'.");
        }
        text = Quote(schemaName) + "." + text;
    }
    if (schema->FindTable(action.target) != nullptr) {
        Raise(3010, "Table '" + action.target + "' already exists.");
    }
    action.created.name = action.target;
    std::vector<std::string> names;
    std::vector<std::string> values;
    for (const OutputItem& item : writer.Items()) {
        FieldDef field = NewField(item);
        if (field.name.find('.') != std::string::npos || FindField(action.created, field.name) >= 0) {
            Raise(3063, "Duplicate output destination '" + field.name + "'.");
        }
        names.push_back(Quote(field.name));
        values.push_back(AsStored(context, item.piece, field));
        action.created.fields.push_back(std::move(field));
    }
    Action::Step step;
    step.sql = "INSERT INTO " + text + " (" + Listed(names) + ") " + writer.TextOf(values, false, true);
    step.table = 0;
    action.steps.push_back(std::move(step));
    action.parameters = std::move(context.parameters);
    action.reusable = context.reusable;
    return action;
}

} // namespace quillary::database::sqlite
