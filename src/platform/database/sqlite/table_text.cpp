#include "platform/database/sqlite/table_text.h"

#include "platform/database/sqlite/defaults.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/storage.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

using runtime::EqualName;

// Name of the constraint that makes a field the rowid when the field is a counter but not the table's key:
// SQLite numbers only its primary key.
constexpr std::string_view kCounterOnly = "counter";
// Before the name of a key that is not SQLite's primary key.
constexpr std::string_view kPrimaryMark = "primary ";

std::string NameList(const std::vector<std::string>& names) {
    std::string result = "(";
    for (const auto& name : names) {
        if (result.size() > 1) {
            result += ", ";
        }
        result += Quote(name);
    }
    return result + ")";
}

// ------------------------------------------------------------------------------------------- writing

std::string CheckText(std::string_view about, const std::string& field, const std::string& condition) {
    return " CONSTRAINT " + Quote(std::string(about) + " " + field) + " CHECK(" + condition + ")";
}

std::string KindCheck(const FieldDef& field, std::string_view kind) {
    return CheckText("kind", field.name,
                     "typeof(" + Quote(field.name) + ") IN ('" + std::string(kind) + "', 'null')");
}

std::string RangeCheck(const FieldDef& field, std::string_view low, std::string_view high) {
    return CheckText("range", field.name,
                     Quote(field.name) + " BETWEEN " + std::string(low) + " AND " + std::string(high));
}

std::string WidthCheck(const FieldDef& field) {
    return CheckText("width", field.name,
                     "length(" + Quote(field.name) + ") <= " + std::to_string(field.size));
}

// One spelling for each date: no time of 00:00:00, no day that does not exist.
std::string DateCheck(const FieldDef& field) {
    const std::string name = Quote(field.name);
    return CheckText("kind", field.name,
                     name + " IS date(" + name + ") AND (" + name + " IS NULL OR " + name +
                         " >= '0100') OR " + name + " IS datetime(" + name + ") AND " + name +
                         " >= '0100' AND substr(" + name + ", 12) <> '00:00:00'");
}

std::string TypeChecks(const FieldDef& field) {
    switch (field.type) {
    case FieldType::Boolean:
        return CheckText("kind", field.name, Quote(field.name) + " IN (-1, 0)");
    case FieldType::Byte:
        return KindCheck(field, "integer") + RangeCheck(field, "0", "255");
    case FieldType::Integer:
        return KindCheck(field, "integer") + RangeCheck(field, "-32768", "32767");
    case FieldType::Long:
        return KindCheck(field, "integer") + RangeCheck(field, "-2147483648", "2147483647");
    case FieldType::Currency:
        return KindCheck(field, "integer");
    case FieldType::Single:
        return KindCheck(field, "real") + RangeCheck(field, "-3.402824e38", "3.402824e38");
    case FieldType::Double:
        return KindCheck(field, "real");
    case FieldType::Date:
        return DateCheck(field);
    case FieldType::Text:
        return KindCheck(field, "text") + WidthCheck(field);
    case FieldType::Memo:
    case FieldType::Guid:
        return KindCheck(field, "text");
    case FieldType::Binary:
        return KindCheck(field, "blob") + WidthCheck(field);
    case FieldType::LongBinary:
        return KindCheck(field, "blob");
    }
    return {};
}

std::string ReferenceText(const ForeignKey& key) {
    std::string result = "REFERENCES " + Quote(key.parent);
    if (!key.parentFields.empty()) {
        result += NameList(key.parentFields);
    }
    if (key.cascadeDeletes) {
        result += " ON DELETE CASCADE";
    } else if (key.setNullOnDelete) {
        result += " ON DELETE SET NULL";
    }
    if (key.cascadeUpdates) {
        result += " ON UPDATE CASCADE";
    } else if (key.setNullOnUpdate) {
        result += " ON UPDATE SET NULL";
    }
    return result;
}

// ------------------------------------------------------------------------------------------- reading

struct Token {
    std::string text; // of a name or string without its quotes
    std::size_t begin = 0;
    std::size_t end = 0;
    bool quoted = false;
};

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '$' || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

Token QuotedToken(std::string_view sql, std::size_t begin) {
    const char close = sql[begin] == '[' ? ']' : sql[begin];
    Token token{{}, begin, begin + 1, true};
    while (token.end < sql.size()) {
        const char c = sql[token.end++];
        if (c == close) {
            if (close == ']' || token.end >= sql.size() || sql[token.end] != close) {
                break;
            }
            ++token.end;
        }
        token.text += c;
    }
    return token;
}

std::size_t BehindComment(std::string_view sql, std::size_t at) {
    const bool line = sql[at] == '-';
    const std::size_t end = sql.find(line ? "\n" : "*/", at + 2);
    return end == std::string_view::npos ? sql.size() : end + (line ? 1 : 2);
}

std::vector<Token> Tokens(std::string_view sql) {
    std::vector<Token> result;
    std::size_t at = 0;
    while (at < sql.size()) {
        const char c = sql[at];
        const std::string_view two = sql.substr(at, 2);
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f') {
            ++at;
        } else if (two == "--" || two == "/*") {
            at = BehindComment(sql, at);
        } else if (c == '"' || c == '\'' || c == '`' || c == '[') {
            result.push_back(QuotedToken(sql, at));
            at = result.back().end;
        } else {
            std::size_t end = at + 1;
            if (IsWordCharacter(c)) {
                while (end < sql.size() && IsWordCharacter(sql[end])) {
                    ++end;
                }
            }
            result.push_back({std::string(sql.substr(at, end - at)), at, end, false});
            at = end;
        }
    }
    return result;
}

class TableReader {
public:
    explicit TableReader(std::string_view sql) : sql_(sql), tokens_(Tokens(sql)) {}

    std::optional<TableInfo> Read() {
        if (!Take("CREATE")) {
            return std::nullopt;
        }
        if (!Take("TEMP")) {
            Take("TEMPORARY");
        }
        if (!Take("TABLE")) {
            return std::nullopt; // a virtual table
        }
        if (Take("IF")) {
            at_ += 2; // NOT EXISTS
        }
        table_.def.name = Text();
        ++at_;
        if (!Take("(")) {
            return std::nullopt;
        }
        while (at_ < tokens_.size() && !Is(")")) {
            if (IsTableConstraint()) {
                ReadConstraint(-1);
            } else {
                ReadField();
            }
            Take(",");
        }
        for (; at_ < tokens_.size(); ++at_) {
            if (Is("WITHOUT")) {
                return std::nullopt;
            }
        }
        FinishKeys();
        return std::move(table_);
    }

private:
    bool Is(std::string_view word, std::size_t ahead = 0) const {
        const std::size_t at = at_ + ahead;
        return at < tokens_.size() && !tokens_[at].quoted && EqualName(tokens_[at].text, word);
    }
    bool Take(std::string_view word) {
        if (!Is(word)) {
            return false;
        }
        ++at_;
        return true;
    }
    std::string Text() const { return at_ < tokens_.size() ? tokens_[at_].text : std::string(); }

    bool IsTableConstraint() const {
        return Is("CONSTRAINT") || Is("PRIMARY") || Is("UNIQUE") || Is("FOREIGN") || Is("CHECK");
    }
    bool IsFieldConstraint() const {
        return IsTableConstraint() || Is("NOT") || Is("NULL") || Is("DEFAULT") || Is("COLLATE") ||
               Is("REFERENCES") || Is("GENERATED") || Is("AS");
    }

    // The text within the brackets that open here.
    std::string Bracketed() {
        const std::size_t begin = at_ < tokens_.size() ? tokens_[at_].end : sql_.size();
        int depth = 0;
        for (; at_ < tokens_.size(); ++at_) {
            depth += Is("(") ? 1 : 0;
            depth -= Is(")") ? 1 : 0;
            if (depth == 0) {
                const std::size_t end = tokens_[at_++].begin;
                return end > begin ? std::string(sql_.substr(begin, end - begin)) : std::string();
            }
        }
        return {};
    }

    std::vector<std::string> Names() {
        std::vector<std::string> names;
        if (!Take("(")) {
            return names;
        }
        bool expected = true; // behind a name stand COLLATE and ASC
        for (; at_ < tokens_.size() && !Is(")"); ++at_) {
            if (Is(",")) {
                expected = true;
            } else if (expected) {
                names.push_back(Text());
                expected = false;
            }
        }
        ++at_;
        return names;
    }

    void ReadField() {
        FieldDef field;
        field.name = Text();
        ++at_;
        std::string type;
        while (at_ < tokens_.size() && !Is(",") && !Is(")") && !IsFieldConstraint()) {
            if (Is("(")) {
                type += "(" + Bracketed() + ")";
                continue;
            }
            type += (type.empty() ? "" : " ") + Text();
            ++at_;
        }
        SetDeclaredType(field, type);
        integer_.push_back(EqualName(type, "INTEGER"));
        table_.def.fields.push_back(std::move(field));
        table_.defaults.emplace_back();
        const int position = static_cast<int>(table_.def.fields.size()) - 1;
        while (at_ < tokens_.size() && !Is(",") && !Is(")")) {
            ReadConstraint(position);
        }
    }

    // A constraint of a field, or of the table (-1).
    void ReadConstraint(int position) {
        std::string name;
        if (Take("CONSTRAINT")) {
            name = Text();
            ++at_;
        }
        FieldDef* field = position < 0 ? nullptr : &table_.def.fields[static_cast<std::size_t>(position)];
        if (Take("NOT")) {
            ++at_;
            if (field != nullptr) {
                field->required = field->type != FieldType::Boolean;
            }
        } else if (Take("DEFAULT")) {
            ReadDefault(position);
        } else if (Take("CHECK")) {
            ReadCheck(name, field);
        } else if (Take("PRIMARY")) {
            ++at_;
            ReadKey(std::move(name), position, true);
        } else if (Take("UNIQUE")) {
            ReadKey(std::move(name), position, false);
        } else if (Take("FOREIGN")) {
            ++at_;
            ReadForeignKey(std::move(name), Names());
        } else if (Is("REFERENCES") && field != nullptr) {
            ReadForeignKey(std::move(name), {field->name});
        } else if (Is("(")) {
            Bracketed();
        } else {
            ++at_; // NULL, COLLATE name, ON CONFLICT ..., and what other programs write
        }
    }

    void ReadDefault(int position) {
        std::string text;
        if (Is("(")) {
            text = "(" + Bracketed() + ")";
        } else if (at_ < tokens_.size()) {
            const std::size_t begin = tokens_[at_].begin;
            if (Is("-") || Is("+")) {
                ++at_;
            }
            text = sql_.substr(begin, tokens_[std::min(at_, tokens_.size() - 1)].end - begin);
            ++at_;
        }
        if (position >= 0) {
            FieldDef& field = table_.def.fields[static_cast<std::size_t>(position)];
            field.defaultValue = DescribedDefault(text, field.type);
            table_.defaults[static_cast<std::size_t>(position)] = std::move(text);
        }
    }

    void ReadCheck(const std::string& name, FieldDef* field) {
        std::string condition = Bracketed();
        const std::string_view about = std::string_view(name).substr(0, name.find(' '));
        if (field != nullptr && about == "zero") {
            field->allowZeroLength = false;
        } else if (about == "check") {
            table_.rules.push_back({name.substr(about.size() + 1), std::move(condition)});
        } else if (field == nullptr || (about != "kind" && about != "range" && about != "width")) {
            table_.rules.push_back({name, std::move(condition)});
        }
    }

    void ReadKey(std::string name, int position, bool primary) {
        IndexDef index;
        index.primary = primary;
        index.unique = true;
        if (position >= 0) {
            FieldDef& field = table_.def.fields[static_cast<std::size_t>(position)];
            index.fields = {field.name};
            const bool descending = Take("DESC");
            Take("ASC");
            if (primary && integer_[static_cast<std::size_t>(position)] && !descending) {
                table_.rowIdField = position;
            }
            if (Take("AUTOINCREMENT")) {
                field.counter = true;
            }
        } else {
            index.fields = Names();
            const int only = index.fields.size() == 1 ? FindField(table_.def, index.fields.front()) : -1;
            if (primary && only >= 0 && integer_[static_cast<std::size_t>(only)]) {
                table_.rowIdField = only;
            }
        }
        if (primary && name == kCounterOnly) {
            return;
        }
        if (name.starts_with(kPrimaryMark)) {
            index.primary = true;
            name.erase(0, kPrimaryMark.size());
        }
        index.name = !name.empty() ? std::move(name) : index.primary ? "PrimaryKey" : index.fields.front();
        table_.def.indexes.push_back(std::move(index));
    }

    void ReadForeignKey(std::string name, std::vector<std::string> fields) {
        ForeignKey key;
        key.name = std::move(name);
        key.fields = std::move(fields);
        Take("REFERENCES");
        key.parent = Text();
        ++at_;
        if (Is("(")) {
            key.parentFields = Names();
        }
        while (Take("ON")) {
            const bool deletes = Is("DELETE");
            ++at_;
            if (Take("CASCADE")) {
                (deletes ? key.cascadeDeletes : key.cascadeUpdates) = true;
            } else if (Is("SET") && Is("NULL", 1)) {
                (deletes ? key.setNullOnDelete : key.setNullOnUpdate) = true;
                at_ += 2;
            } else {
                ++at_;
            }
        }
        if (key.name.empty()) {
            key.name = key.parent + table_.def.name;
        }
        table_.foreignKeys.push_back(std::move(key));
    }

    void FinishKeys() {
        std::stable_sort(table_.def.indexes.begin(), table_.def.indexes.end(),
                         [](const IndexDef& a, const IndexDef& b) { return a.primary > b.primary; });
        // SQLite numbers a rowid by itself; a key that is no counter has to be told.
        if (table_.rowIdField >= 0) {
            FieldDef& field = table_.def.fields[static_cast<std::size_t>(table_.rowIdField)];
            field.required = !field.counter;
        }
    }

    std::string_view sql_;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    std::vector<bool> integer_; // by field: declared as INTEGER
    TableInfo table_;
};

} // namespace

const IndexDef* TableInfo::PrimaryKey() const {
    return !def.indexes.empty() && def.indexes.front().primary ? &def.indexes.front() : nullptr;
}

std::string TableInfo::Order(std::string_view prefix) const {
    const IndexDef* key = PrimaryKey();
    if (key == nullptr) {
        return std::string(prefix) + std::string(RowIdName(def));
    }
    std::string result;
    for (const auto& field : key->fields) {
        result += result.empty() ? "" : ", ";
        result += prefix;
        result += Quote(field);
    }
    return result;
}

std::string FieldText(const TableInfo& table, std::size_t position) {
    const FieldDef& field = table.def.fields[position];
    const IndexDef* key = table.PrimaryKey();
    std::string text = Quote(field.name) + " ";
    if (static_cast<int>(position) == table.rowIdField) {
        const bool isKey =
            key != nullptr && key->fields.size() == 1 && EqualName(key->fields.front(), field.name);
        text += "INTEGER CONSTRAINT " + Quote(isKey ? key->name : std::string(kCounterOnly)) + " PRIMARY KEY";
        text += field.counter ? " AUTOINCREMENT" : "";
        return text + RangeCheck(field, "-2147483648", "2147483647");
    }
    text += DeclaredType(field);
    if (field.type == FieldType::Text || field.type == FieldType::Memo) {
        text += " COLLATE JET";
    }
    if (field.required || field.type == FieldType::Boolean) {
        text += " NOT NULL";
    }
    if (const std::string& value = table.defaults[position]; !value.empty()) {
        text += " DEFAULT " + value;
    } else if (field.type == FieldType::Boolean) {
        text += " DEFAULT 0"; // a yes/no is never Null
    }
    text += TypeChecks(field);
    if (!field.allowZeroLength) {
        text += CheckText("zero", field.name, "length(" + Quote(field.name) + ") > 0");
    }
    return text;
}

std::string TableText(const TableInfo& table, std::string_view name) {
    std::string text = "CREATE TABLE " + Quote(name) + " (";
    for (std::size_t i = 0; i < table.def.fields.size(); ++i) {
        text += (i == 0 ? "\n  " : ",\n  ") + FieldText(table, i);
    }
    const IndexDef* key = table.PrimaryKey();
    const bool keyIsRowId =
        key != nullptr && table.rowIdField >= 0 && key->fields.size() == 1 &&
        EqualName(key->fields.front(), table.def.fields[static_cast<std::size_t>(table.rowIdField)].name);
    if (key != nullptr && !keyIsRowId) {
        const bool second = table.rowIdField >= 0; // SQLite's primary key is the counter
        text += ",\n  CONSTRAINT " + Quote(second ? std::string(kPrimaryMark) + key->name : key->name) +
                (second ? " UNIQUE " : " PRIMARY KEY ") + NameList(key->fields);
    }
    for (const auto& foreign : table.foreignKeys) {
        text += ",\n  CONSTRAINT " + Quote(foreign.name) + " FOREIGN KEY " + NameList(foreign.fields) + " " +
                ReferenceText(foreign);
    }
    for (const auto& rule : table.rules) {
        text += ",\n  CONSTRAINT " + Quote("check " + rule.name) + " CHECK(" + rule.sql + ")";
    }
    return text + "\n)";
}

std::string IndexName(std::string_view table, std::string_view index) {
    return std::string(table) + "." + std::string(index);
}

std::string IndexTerms(const std::vector<std::string>& fields, const std::vector<bool>& descending) {
    const auto falls = [&](std::size_t i) { return i < descending.size() && descending[i]; };
    std::string terms;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        terms += (i == 0 ? "" : ", ") + Quote(fields[i]) + (falls(i) != falls(0) ? " DESC" : "");
    }
    return terms;
}

std::optional<TableInfo> ReadTableText(std::string_view sql) {
    return TableReader(sql).Read();
}

std::optional<IndexDef> ReadIndexText(std::string_view sql, std::string_view table) {
    const std::vector<Token> tokens = Tokens(sql);
    IndexDef index;
    std::size_t at = 0;
    for (; at < tokens.size() && (tokens[at].quoted || tokens[at].text != "("); ++at) {
        index.unique = index.unique || (!tokens[at].quoted && EqualName(tokens[at].text, "UNIQUE"));
        if (!tokens[at].quoted && EqualName(tokens[at].text, "ON") && at > 0) {
            index.name = tokens[at - 1].text;
        }
    }
    const std::string prefix = std::string(table) + ".";
    if (index.name.size() > prefix.size() &&
        EqualName(std::string_view(index.name).substr(0, prefix.size()), prefix)) {
        index.name.erase(0, prefix.size());
    }
    bool expected = true;
    for (++at; at < tokens.size(); ++at) {
        const Token& token = tokens[at];
        if (!token.quoted && token.text == "(") {
            return std::nullopt;
        }
        if (!token.quoted && token.text == ")") {
            break;
        }
        if (!token.quoted && token.text == ",") {
            expected = true;
        } else if (expected) {
            index.fields.push_back(token.text);
            expected = false;
        }
    }
    return index;
}

} // namespace quillary::database::sqlite
