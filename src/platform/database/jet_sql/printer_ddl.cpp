#include "platform/database/jet_sql/printing.h"

#include <optional>

namespace quillary::database::jet_sql {
namespace {

std::string_view PlainTypeWord(FieldType type) {
    switch (type) {
    case FieldType::Bit:
        return "BIT";
    case FieldType::Byte:
        return "BYTE";
    case FieldType::Short:
        return "SHORT";
    case FieldType::Currency:
        return "CURRENCY";
    case FieldType::Single:
        return "SINGLE";
    case FieldType::Double:
        return "DOUBLE";
    case FieldType::DateTime:
        return "DATETIME";
    case FieldType::LongBinary:
        return "LONGBINARY";
    case FieldType::Memo:
        return "MEMO";
    case FieldType::Guid:
        return "GUID";
    default:
        return "VALUE";
    }
}

} // namespace

void Printer::PutParameters(const std::vector<Parameter>& parameters) {
    PutList(parameters, [this](const Parameter& parameter) {
        Name(parameter.name);
        out_ += ' ';
        PutType(parameter.type);
    });
}

void Printer::PutType(const ColumnType& type) {
    const auto numbers = [&](std::string_view word, std::int32_t first,
                             std::optional<std::int32_t> second = {}) {
        out_ += word;
        out_ += '(' + std::to_string(first);
        if (second)
            out_ += ", " + std::to_string(*second);
        out_ += ')';
    };
    switch (type.type) {
    case FieldType::Text:
        return numbers("TEXT", type.size);
    case FieldType::Binary:
        return numbers("BINARY", type.size);
    case FieldType::Decimal:
        return numbers("DECIMAL", type.precision, type.scale);
    case FieldType::Long:
        if (type.counter && (type.seed != 1 || type.step != 1))
            return numbers("COUNTER", type.seed, type.step);
        out_ += type.counter ? "COUNTER" : "LONG";
        return;
    default:
        out_ += PlainTypeWord(type.type);
    }
}

void Printer::PutColumn(const ColumnDef& column) {
    Name(column.name);
    out_ += ' ';
    PutType(column.type);
    if (column.notNull)
        out_ += " NOT NULL";
    if (column.defaultValue) {
        out_ += " DEFAULT ";
        Put(*column.defaultValue);
    }
    for (const Constraint& constraint : column.constraints) {
        out_ += ' ';
        PutConstraint(constraint, true);
    }
}

void Printer::PutConstraint(const Constraint& constraint, bool atColumn) {
    if (!constraint.name.empty()) {
        Add("CONSTRAINT ", constraint.name);
        out_ += ' ';
    }
    const auto columns = [&] {
        if (!atColumn) {
            out_ += ' ';
            PutNames(constraint.columns);
        }
    };
    switch (constraint.kind) {
    case ConstraintKind::PrimaryKey:
        out_ += "PRIMARY KEY";
        columns();
        return;
    case ConstraintKind::Unique:
        out_ += "UNIQUE";
        columns();
        return;
    case ConstraintKind::Check:
        out_ += "CHECK (";
        Put(*constraint.check);
        out_ += ')';
        return;
    case ConstraintKind::ForeignKey:
        break;
    }
    if (!atColumn) {
        out_ += constraint.noIndex ? "FOREIGN KEY NO INDEX" : "FOREIGN KEY";
        columns();
        out_ += ' ';
    }
    Add("REFERENCES ", constraint.refTable);
    if (!constraint.refColumns.empty()) {
        out_ += ' ';
        PutNames(constraint.refColumns);
    }
    PutAction(" ON DELETE", constraint.onDelete);
    PutAction(" ON UPDATE", constraint.onUpdate);
}

void Printer::PutAction(std::string_view event, ReferenceAction action) {
    if (action == ReferenceAction::Refuse)
        return;
    out_ += event;
    out_ += action == ReferenceAction::Cascade ? " CASCADE" : " SET NULL";
}

void Printer::PutNode(const CreateTable& create) {
    Add("CREATE TABLE ", create.name);
    out_ += " (";
    PutList(create.columns, [this](const ColumnDef& column) { PutColumn(column); });
    if (!create.columns.empty() && !create.constraints.empty())
        out_ += ", ";
    PutList(create.constraints, [this](const Constraint& constraint) { PutConstraint(constraint, false); });
    out_ += ')';
}

void Printer::PutNode(const AlterTable& alter) {
    Add("ALTER TABLE ", alter.table);
    std::visit(Overloaded{
                   [this](const AddColumns& add) {
                       out_ += " ADD COLUMN ";
                       PutList(add.columns, [this](const ColumnDef& column) { PutColumn(column); });
                   },
                   [this](const DropColumns& drop) {
                       out_ += " DROP COLUMN ";
                       PutList(drop.names, [this](const std::string& name) { Name(name); });
                   },
                   [this](const AlterColumn& change) {
                       out_ += " ALTER COLUMN ";
                       PutColumn(change.column);
                   },
                   [this](const AlterDefault& change) {
                       Add(" ALTER COLUMN ", change.column);
                       out_ += change.value ? " SET DEFAULT " : " DROP DEFAULT";
                       if (change.value)
                           Put(*change.value);
                   },
                   [this](const AddConstraint& add) {
                       out_ += " ADD ";
                       PutConstraint(add.constraint, false);
                   },
                   [this](const DropConstraint& drop) { Add(" DROP CONSTRAINT ", drop.name); },
               },
               alter.action);
}

void Printer::PutNode(const CreateIndex& index) {
    Add(index.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ", index.name);
    Add(" ON ", index.table);
    out_ += " (";
    PutList(index.columns, [this](const IndexColumn& column) {
        Name(column.name);
        if (column.descending)
            out_ += " DESC";
    });
    out_ += ')';
    if (!index.primary && !index.disallowNull && !index.ignoreNull)
        return;
    out_ += " WITH";
    if (index.primary)
        out_ += " PRIMARY";
    if (index.disallowNull)
        out_ += " DISALLOW NULL";
    if (index.ignoreNull)
        out_ += " IGNORE NULL";
}

void Printer::PutNode(const Drop& drop) {
    switch (drop.kind) {
    case DropKind::Table:
        return Add("DROP TABLE ", drop.name);
    case DropKind::View:
        return Add("DROP VIEW ", drop.name);
    case DropKind::Procedure:
        return Add("DROP PROCEDURE ", drop.name);
    case DropKind::Index:
        Add("DROP INDEX ", drop.name);
        return Add(" ON ", drop.table);
    }
}

void Printer::PutNode(const CreateQuery& create) {
    Add(create.view ? "CREATE VIEW " : "CREATE PROCEDURE ", create.name);
    if (!create.columns.empty()) {
        out_ += ' ';
        PutNames(create.columns);
    }
    out_ += " AS ";
    Put(*create.body);
}

} // namespace quillary::database::jet_sql
