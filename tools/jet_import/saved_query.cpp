#include "jet_import/saved_query.h"

#include "platform/runtime/locale.h"

#include <algorithm>
#include <set>
#include <vector>

namespace quillary::jet_import {

using runtime::EqualName;

namespace {

enum Attribute : int {
    kKind = 1,
    kParameter = 2,
    kOptions = 3,
    kOtherDatabase = 4,
    kTable = 5,
    kColumn = 6,
    kJoin = 7,
    kWhere = 8,
    kGroupBy = 9,
    kHaving = 10,
    kOrderBy = 11,
};

enum QueryKind : int {
    kSelect = 1,
    kMakeTable = 2,
    kAppend = 3,
    kUpdate = 4,
    kDelete = 5,
    kCrosstab = 6,
    kDefinition = 7,
    kPassThrough = 8,
    kUnion = 9,
};

// Options.
constexpr int kAllColumns = 1;
constexpr int kDistinct = 2; // in a union: not ALL
constexpr int kOwnerAccess = 4;
constexpr int kDistinctRow = 8;
constexpr int kTop = 0x10;
constexpr int kPercent = 0x20;
constexpr int kValues = 0x8000; // of an appended column
// A crosstab's columns.
constexpr int kPivotValue = 0;
constexpr int kPivotHeading = 1;

constexpr const char* kReserved[] = {"ALL",  "AND",   "AS",     "BY",    "DATE",  "DELETE", "FROM",   "GROUP",
                                     "IN",   "INNER", "INTO",   "JOIN",  "LEFT",  "LEVEL",  "NAME",   "NOT",
                                     "NULL", "ON",    "OR",     "ORDER", "RIGHT", "SELECT", "SET",    "TABLE",
                                     "TOP",  "UNION", "UPDATE", "USE",   "USER",  "VALUE",  "VALUES", "WHERE",
                                     "YEAR", "MONTH", "DAY",    "TIME",  "INDEX", "KEY",    "PERCENT"};

std::string Bracketed(const std::string& name) {
    const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    }) && !(name.front() >= '0' && name.front() <= '9');
    const bool reserved = std::any_of(std::begin(kReserved), std::end(kReserved),
                                      [&](const char* word) { return EqualName(word, name); });
    return (plain && !reserved) || name.starts_with("[") ? name : "[" + name + "]";
}

// A statement within another one.
std::string Bare(std::string text) {
    const std::size_t end = text.find_last_not_of(" \t\r\n;");
    text.resize(end == std::string::npos ? 0 : end + 1);
    return text;
}

std::string ParameterType(const JetQueryRow& row) {
    static constexpr const char* kNames[] = {
        "Value",    "Bit",    "Byte", "Short",      "Long",     "Currency", "IEEESingle", "IEEEDouble",
        "DateTime", "Binary", "Text", "LongBinary", "LongText", "",         "",           "Guid"};
    const auto type = static_cast<std::size_t>(std::clamp(row.flag, 0, 15));
    const std::string name = kNames[type][0] == '\0' ? "Value" : kNames[type];
    return name == "Text" && row.extra > 0 ? name + "(" + std::to_string(row.extra) + ")" : name;
}

// Several tables joined so far, or one.
struct Joined {
    std::set<std::string> names;
    std::string text;
    bool isJoin = false;
};

class Query {
public:
    explicit Query(const JetQuery& query) : rows_(query.rows) {
        std::stable_sort(rows_.begin(), rows_.end(), [](const JetQueryRow& a, const JetQueryRow& b) {
            return a.attribute != b.attribute ? a.attribute < b.attribute : a.order < b.order;
        });
    }

    std::string Text() const {
        const JetQueryRow* kind = First(kKind);
        const int number = kind == nullptr || kind->flag == 0 ? kSelect : kind->flag;
        if (number == kDefinition || number == kPassThrough) {
            return kind->expression;
        }
        const std::string body = Body(number, kind);
        return body.empty() ? body : Parameters() + body + ";";
    }

private:
    const JetQueryRow* First(int attribute) const {
        const auto found = std::find_if(rows_.begin(), rows_.end(),
                                        [&](const JetQueryRow& row) { return row.attribute == attribute; });
        return found == rows_.end() ? nullptr : &*found;
    }

    int Options() const {
        const JetQueryRow* row = First(kOptions);
        return row == nullptr ? 0 : row->flag;
    }

    template <class Make>
    std::string List(int attribute, const std::string& between, Make make) const {
        std::string result;
        for (const auto& row : rows_) {
            const std::string text = row.attribute == attribute ? make(row) : std::string();
            if (!text.empty()) {
                result += (result.empty() ? "" : between) + text;
            }
        }
        return result;
    }

    std::string Parameters() const {
        const std::string list = List(kParameter, ", ", [](const JetQueryRow& row) {
            return Bracketed(row.name1) + " " + ParameterType(row);
        });
        return list.empty() ? list : "PARAMETERS " + list + ";\n";
    }

    std::string Body(int kind, const JetQueryRow* first) const {
        const std::string target = first == nullptr ? std::string() : Bracketed(first->name1) + Elsewhere();
        switch (kind) {
        case kSelect:
            return Select("", Columns()) + Tail();
        case kMakeTable:
            return Select("", Columns() + "\nINTO " + target) + Tail();
        case kAppend:
            return Append(target);
        case kUpdate:
            return "UPDATE " + Tables() + "\nSET " +
                   List(kColumn, ", ",
                        [](const JetQueryRow& row) {
                            return Bracketed2(row.name2) + " = " + row.expression;
                        }) +
                   Where();
        case kDelete:
            return "DELETE " + Distinct() + Columns() + "\nFROM " + Tables() + Where();
        case kCrosstab:
            return Crosstab();
        case kUnion:
            return Union();
        default:
            return {};
        }
    }

    // A target field may have its table before it.
    static std::string Bracketed2(const std::string& name) {
        return name.find("].[") != std::string::npos || name.starts_with("[") ? name : WithTable(name);
    }
    static std::string WithTable(const std::string& name) {
        const std::size_t dot = name.find('.');
        return dot == std::string::npos
                   ? Bracketed(name)
                   : Bracketed(name.substr(0, dot)) + "." + Bracketed(name.substr(dot + 1));
    }

    std::string Elsewhere() const {
        const JetQueryRow* other = First(kOtherDatabase);
        if (other == nullptr || (other->name1.empty() && other->expression.empty())) {
            return {};
        }
        std::string path;
        for (const char c : other->name1) {
            path += c == '\'' ? "''" : std::string(1, c);
        }
        return " IN '" + path + "'" + (other->expression.empty() ? "" : " [" + other->expression + "]");
    }

    std::string Distinct() const {
        const int options = Options();
        std::string result;
        if ((options & kDistinct) != 0) {
            result += "DISTINCT ";
        }
        if ((options & kDistinctRow) != 0) {
            result += "DISTINCTROW ";
        }
        if ((options & kTop) != 0) {
            result += "TOP " + First(kOptions)->name1 + ((options & kPercent) != 0 ? " PERCENT " : " ");
        }
        return result;
    }

    static std::string Column(const JetQueryRow& row) {
        return row.name1.empty() ? row.expression : row.expression + " AS " + Bracketed(row.name1);
    }

    std::string Columns() const {
        std::string list = List(kColumn, ", ", Column);
        if ((Options() & kAllColumns) == 0) {
            return list;
        }
        return list.empty() ? "*" : list + ", *";
    }

    std::string Select(const std::string& before, const std::string& columns) const {
        const std::string tables = Tables();
        return before + "SELECT " + Distinct() + columns + (tables.empty() ? "" : "\nFROM " + tables);
    }

    std::string Where() const {
        const JetQueryRow* where = First(kWhere);
        return where == nullptr || where->expression.empty() ? "" : "\nWHERE " + where->expression;
    }

    std::string Groups() const {
        const std::string groups =
            List(kGroupBy, ", ", [](const JetQueryRow& row) { return row.expression; });
        return groups.empty() ? groups : "\nGROUP BY " + groups;
    }

    std::string Order() const {
        const std::string order = List(kOrderBy, ", ", [](const JetQueryRow& row) {
            return row.expression + (EqualName(row.name1, "D") ? " DESC" : "");
        });
        return order.empty() ? order : "\nORDER BY " + order;
    }

    std::string Tail() const {
        const JetQueryRow* having = First(kHaving);
        const std::string chosen =
            having == nullptr || having->expression.empty() ? "" : "\nHAVING " + having->expression;
        return Where() + Groups() + chosen + Order() +
               ((Options() & kOwnerAccess) != 0 ? "\nWITH OWNERACCESS OPTION" : "");
    }

    std::string Append(const std::string& target) const {
        const std::string fields = List(kColumn, ", ", [](const JetQueryRow& row) {
            return row.name2.empty() ? std::string() : Bracketed2(row.name2);
        });
        const std::string head = "INSERT INTO " + target + (fields.empty() ? "" : " (" + fields + ")") + "\n";
        const JetQueryRow* first = First(kColumn);
        if (first != nullptr && (first->flag & kValues) != 0) {
            return head + "VALUES (" +
                   List(kColumn, ", ", [](const JetQueryRow& row) { return row.expression; }) + ")";
        }
        return Select(head, Columns()) + Tail();
    }

    std::string Crosstab() const {
        const auto those = [](int flag) {
            return [flag](const JetQueryRow& row) { return row.flag == flag ? Column(row) : std::string(); };
        };
        const std::string rows = List(kColumn, ", ", [](const JetQueryRow& row) {
            return row.flag != kPivotValue && row.flag != kPivotHeading ? Column(row) : std::string();
        });
        // The heading is one of the groups, and is told by PIVOT.
        const JetQueryRow* heading = nullptr;
        for (const auto& row : rows_) {
            if (row.attribute == kColumn && row.flag == kPivotHeading) {
                heading = &row;
            }
        }
        const std::string groups = List(kGroupBy, ", ", [&](const JetQueryRow& row) {
            return heading != nullptr && heading->expression == row.expression ? std::string()
                                                                               : row.expression;
        });
        return Select("TRANSFORM " + List(kColumn, ", ", those(kPivotValue)) + "\n", rows) + Where() +
               (groups.empty() ? "" : "\nGROUP BY " + groups) + Order() + "\nPIVOT " +
               (heading == nullptr ? "" : heading->expression);
    }

    std::string Union() const {
        const char* between = (Options() & kDistinct) != 0 ? "\nUNION " : "\nUNION ALL ";
        std::vector<const JetQueryRow*> parts;
        for (const auto& row : rows_) {
            if (row.attribute == kTable && !row.expression.empty()) {
                parts.push_back(&row);
            }
        }
        std::stable_sort(parts.begin(), parts.end(), [](const JetQueryRow* a, const JetQueryRow* b) {
            return a->name2 < b->name2; // the parts are numbered there
        });
        std::string result;
        for (const JetQueryRow* part : parts) {
            result += (result.empty() ? "" : between) + Bare(part->expression);
        }
        return result.empty() ? result : result + Order();
    }

    std::string Tables() const {
        std::vector<Joined> tables;
        for (const auto& row : rows_) {
            if (row.attribute != kTable) {
                continue;
            }
            Joined table;
            const std::string name = row.name2.empty() ? row.name1 : row.name2;
            table.names.insert(runtime::LCase(name));
            table.text = row.expression.empty() ? Bracketed(row.name1) : "(" + Bare(row.expression) + ")";
            if (!row.name2.empty()) {
                table.text += " AS " + Bracketed(row.name2);
            }
            tables.push_back(std::move(table));
        }
        Join(tables);
        std::string result;
        for (const auto& table : tables) {
            result += (result.empty() ? "" : ", ") + table.text;
        }
        return result + (First(kKind) == nullptr || First(kKind)->flag == kSelect ? Elsewhere() : "");
    }

    // Each pair of tables once, with all its conditions; what is joined already goes into brackets.
    void Join(std::vector<Joined>& tables) const {
        std::set<const JetQueryRow*> done;
        for (const auto& row : rows_) {
            if (row.attribute != kJoin || done.contains(&row)) {
                continue;
            }
            std::vector<std::string> conditions;
            for (const auto& other : rows_) {
                if (other.attribute == kJoin && EqualName(other.name1, row.name1) &&
                    EqualName(other.name2, row.name2)) {
                    conditions.push_back(other.expression);
                    done.insert(&other);
                }
            }
            std::string on;
            for (const auto& condition : conditions) {
                on += on.empty() ? "" : " AND ";
                on += conditions.size() > 1 ? "(" + condition + ")" : condition;
            }
            const auto holds = [](const std::string& name) {
                return [folded = runtime::LCase(name)](const Joined& table) {
                    return table.names.contains(folded);
                };
            };
            const auto left = std::find_if(tables.begin(), tables.end(), holds(row.name1));
            const auto right = std::find_if(tables.begin(), tables.end(), holds(row.name2));
            if (left == tables.end() || right == tables.end()) {
                continue;
            }
            if (left == right) {
                left->text += " AND " + (conditions.size() > 1 ? on : "(" + on + ")");
                continue;
            }
            static constexpr const char* kWords[] = {" INNER JOIN ", " LEFT JOIN ", " RIGHT JOIN "};
            const auto text = [](const Joined& table) {
                return table.isJoin ? "(" + table.text + ")" : table.text;
            };
            Joined both;
            both.names = left->names;
            both.names.insert(right->names.begin(), right->names.end());
            both.text = text(*left) + kWords[std::clamp(row.flag, 1, 3) - 1] + text(*right) + " ON " + on;
            both.isJoin = true;
            const auto at = std::min(left, right);
            const auto gone = std::max(left, right);
            *at = std::move(both);
            tables.erase(gone);
        }
    }

    std::vector<JetQueryRow> rows_;
};

} // namespace

std::string SqlOf(const JetQuery& query) {
    return query.rows.empty() ? std::string() : Query(query).Text();
}

} // namespace quillary::jet_import
