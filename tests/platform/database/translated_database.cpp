#include "platform/database/translated_database.h"

#include "platform/database/jet_sql/parser.h"
#include "platform/database/sqlite/functions.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <sqlite3.h>
#include <stdexcept>

namespace quillary::database::sqlite {
namespace {

// What SQLite says, as the error that a function of ours meant; others keep SQLite's own text.
[[noreturn]] void Fail(sqlite3* connection) {
    const std::string text = sqlite3_errmsg(connection);
    if (const auto error = ErrorOfText(text)) {
        throw *error;
    }
    throw std::runtime_error(text);
}

std::string TextOf(sqlite3_stmt* statement, int column, FieldType type) {
    const auto stored = [&] {
        return std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
    };
    if (sqlite3_column_type(statement, column) == SQLITE_NULL) {
        return "<null>";
    }
    switch (type) {
    case FieldType::Currency:
        return runtime::NumberText(runtime::Currency{sqlite3_column_int64(statement, column)});
    case FieldType::Single:
    case FieldType::Double:
        return runtime::NumberText(sqlite3_column_double(statement, column));
    default:
        return stored();
    }
}

class Prepared {
public:
    Prepared(sqlite3* connection, const std::string& sql) : connection_(connection) {
        if (sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK) {
            throw std::runtime_error(std::string(sqlite3_errmsg(connection)) + " in: " + sql);
        }
    }
    ~Prepared() { sqlite3_finalize(statement_); }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;

    bool Step() {
        const int code = sqlite3_step(statement_);
        if (code != SQLITE_ROW && code != SQLITE_DONE) {
            Fail(connection_);
        }
        return code == SQLITE_ROW;
    }
    sqlite3_stmt* Get() const { return statement_; }

private:
    sqlite3* connection_;
    sqlite3_stmt* statement_ = nullptr;
};

std::string DeclaredType(const FieldDef& field) {
    switch (field.type) {
    case FieldType::Boolean:
        return "BIT NOT NULL DEFAULT 0";
    case FieldType::Byte:
        return "BYTE";
    case FieldType::Integer:
        return "SHORT";
    case FieldType::Long:
        return "LONG";
    case FieldType::Currency:
        return "CURRENCY";
    case FieldType::Single:
    case FieldType::Double:
        return "DOUBLE";
    case FieldType::Date:
        return "DATETIME";
    default:
        return "TEXT COLLATE JET";
    }
}

std::string NumberOf(const runtime::RunTimeError& error) {
    return "error " + std::to_string(error.Number());
}

} // namespace

FieldDef MakeField(std::string name, FieldType type, int size) {
    FieldDef field;
    field.name = std::move(name);
    field.type = type;
    field.size = type == FieldType::Text && size == 0 ? 50 : size;
    return field;
}

TranslatedDatabase::TranslatedDatabase() {
    sqlite3_open(":memory:", &connection_);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    RegisterFunctions(connection_);
}

TranslatedDatabase::~TranslatedDatabase() {
    sqlite3_close(connection_);
}

void TranslatedDatabase::Perform(const std::string& sql) {
    Prepared prepared(connection_, sql);
    while (prepared.Step()) {
    }
}

void TranslatedDatabase::AddTable(const std::string& name, std::vector<FieldDef> fields, bool keyed) {
    auto table = std::make_unique<TableDef>();
    table->name = name;
    std::string sql = "CREATE TABLE " + Quote(name) + " (";
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const bool key = keyed && i == 0;
        const bool counter = key && fields[i].type == FieldType::Long;
        sql += (i > 0 ? ", " : "") + Quote(fields[i].name) + " " +
               (counter ? "INTEGER" : DeclaredType(fields[i])) + (key ? " PRIMARY KEY" : "");
    }
    Perform(sql + ")");
    if (keyed) {
        table->indexes.push_back({"PrimaryKey", {fields.front().name}, true, true, false});
    }
    table->fields = std::move(fields);
    tables_[runtime::LCase(name)] = std::move(table);
}

const TableDef* TranslatedDatabase::FindTable(std::string_view name) const {
    const auto found = tables_.find(runtime::LCase(name));
    return found == tables_.end() ? nullptr : found->second.get();
}

const std::string* TranslatedDatabase::FindQuery(std::string_view name) const {
    for (const auto& [query, sql] : queries_) {
        if (runtime::EqualName(query, name)) {
            return &sql;
        }
    }
    return nullptr;
}

std::string TranslatedDatabase::TableOrder(const TableDef& table, std::string_view alias) const {
    return table.indexes.empty() ? RowId(table, alias)
                                 : std::string(alias) + "." + Quote(table.indexes.front().fields.front());
}

HeadingQuery TranslatedDatabase::Headings() {
    return [this](const std::string& sql, FieldType type, const std::vector<ParameterUse>&) {
        std::vector<Variant> result;
        Prepared prepared(connection_, sql);
        while (prepared.Step()) {
            if (sqlite3_column_type(prepared.Get(), 0) == SQLITE_NULL) {
                result.push_back(Variant::Null());
                continue;
            }
            const std::string text = TextOf(prepared.Get(), 0, type);
            switch (type) {
            case FieldType::Boolean:
                result.emplace_back(text != "0");
                break;
            case FieldType::Long:
            case FieldType::Integer:
                result.emplace_back(runtime::CLng(Variant(text)));
                break;
            case FieldType::Double:
                result.emplace_back(sqlite3_column_double(prepared.Get(), 0));
                break;
            case FieldType::Single:
                result.emplace_back(static_cast<float>(sqlite3_column_double(prepared.Get(), 0)));
                break;
            case FieldType::Currency:
                result.emplace_back(runtime::Currency{sqlite3_column_int64(prepared.Get(), 0)});
                break;
            case FieldType::Date:
                result.emplace_back(*runtime::ParseIso(text));
                break;
            default:
                result.emplace_back(text);
                break;
            }
        }
        return result;
    };
}

std::vector<std::string> TranslatedDatabase::Run(const std::string& sql, const std::vector<FieldType>& types,
                                                 const std::vector<long>& values) {
    Prepared prepared(connection_, sql);
    for (std::size_t i = 0; i < values.size(); ++i) {
        sqlite3_bind_int64(prepared.Get(), static_cast<int>(i) + 1, values[i]);
    }
    std::vector<std::string> rows;
    while (prepared.Step()) {
        std::string row;
        for (int i = 0; i < sqlite3_column_count(prepared.Get()); ++i) {
            const auto index = static_cast<std::size_t>(i);
            row += (i > 0 ? "|" : "") +
                   TextOf(prepared.Get(), i, index < types.size() ? types[index] : FieldType::Text);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

Selection TranslatedDatabase::Translate(std::string_view sql) {
    return TranslateSelect(jet_sql::Parse(sql), *this, Headings());
}

Action TranslatedDatabase::TranslateToAction(std::string_view sql) {
    return TranslateAction(jet_sql::Parse(sql), *this, Headings());
}

std::vector<std::string> TranslatedDatabase::Rows(std::string_view sql) {
    try {
        const Selection selection = Translate(sql);
        if (!selection.parameters.empty()) {
            return {"error 3061"};
        }
        std::vector<FieldType> types;
        for (const ResultColumn& column : selection.columns) {
            types.push_back(column.type);
        }
        return Run(selection.valuesSql, types);
    } catch (const runtime::RunTimeError& error) {
        return {NumberOf(error)};
    }
}

std::string TranslatedDatabase::Query(std::string_view sql) {
    std::string result;
    for (const std::string& row : Rows(sql)) {
        result += (result.empty() ? "" : " / ") + row;
    }
    return result;
}

std::string TranslatedDatabase::Value(std::string_view expression) {
    return Query("SELECT " + std::string(expression));
}

std::string TranslatedDatabase::Execute(std::string_view sql) {
    try {
        const Action action = TranslateToAction(sql);
        if (!action.parameters.empty()) {
            return "error 3061";
        }
        if (action.kind == Action::Kind::SelectInto) {
            AddTable(action.created.name, action.created.fields, false);
        }
        long changed = 0;
        for (const auto& step : action.steps) {
            Perform(step.sql);
            changed += step.counts ? sqlite3_changes(connection_) : 0;
        }
        return std::to_string(changed);
    } catch (const runtime::RunTimeError& error) {
        return NumberOf(error);
    }
}

std::vector<std::string> TranslatedDatabase::ColumnNames(std::string_view sql) {
    std::vector<std::string> names;
    for (const ResultColumn& column : Translate(sql).columns) {
        names.push_back(column.name);
    }
    return names;
}

} // namespace quillary::database::sqlite
