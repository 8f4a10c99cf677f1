#include "platform/database/sqlite/function_call.h"
#include "platform/runtime/locale.h"

#include <charconv>
#include <cstdint>
#include <new>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <unordered_set>

// qy_values(x): the different values of a column as a JSON array, texts without case: the headings of a
// crosstab in one pass over the rows, several times as fast as SELECT DISTINCT.
namespace quillary::database::sqlite {
namespace {

// Far more than a crosstab may have.
constexpr std::size_t kMostValues = 1000;

class ValueSet {
public:
    void Add(sqlite3_value* value) {
        if (count_ >= kMostValues) {
            return;
        }
        switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            if (!null_) {
                null_ = true;
                Append("null");
            }
            break;
        case SQLITE_INTEGER:
            AddWhole(sqlite3_value_int64(value));
            break;
        case SQLITE_FLOAT:
            AddReal(sqlite3_value_double(value));
            break;
        default:
            AddText({reinterpret_cast<const char*>(sqlite3_value_text(value)),
                     static_cast<std::size_t>(sqlite3_value_bytes(value))});
            break;
        }
    }

    std::string Json() const { return "[" + json_ + "]"; }

private:
    void Append(std::string_view text) {
        ++count_;
        json_ += json_.empty() ? "" : ",";
        json_ += text;
    }

    void AddWhole(std::int64_t value) {
        if (wholes_.insert(value).second) {
            Append(std::to_string(value));
        }
    }

    void AddReal(double value) {
        if (reals_.insert(value).second) {
            char buffer[40];
            const std::string text(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
            Append(text.find_first_of(".e") == std::string::npos ? text + ".0" : text);
        }
    }

    void AddText(std::string_view text) {
        // What has been seen byte by byte needs no folding.
        if (seen_.contains(text)) {
            return;
        }
        seen_.emplace(text);
        if (!folded_.insert(runtime::FoldText(text)).second) {
            return;
        }
        std::string quoted = "\"";
        for (const char c : text) {
            if (static_cast<unsigned char>(c) < 0x20) {
                static constexpr char kDigits[] = "0123456789abcdef";
                quoted += "\\u00";
                quoted += kDigits[(c >> 4) & 15];
                quoted += kDigits[c & 15];
            } else {
                quoted += c == '"' || c == '\\' ? "\\" : "";
                quoted += c;
            }
        }
        Append(quoted + '"');
    }

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };

    std::string json_;
    std::size_t count_ = 0;
    bool null_ = false;
    std::unordered_set<std::int64_t> wholes_;
    std::unordered_set<double> reals_;
    std::unordered_set<std::string, Hash, std::equal_to<>> seen_;
    std::unordered_set<std::string> folded_;
};

void Step(sqlite3_context* context, int, sqlite3_value** values) {
    auto** slot = static_cast<ValueSet**>(sqlite3_aggregate_context(context, sizeof(void*)));
    if (slot != nullptr && *slot == nullptr) {
        *slot = new (std::nothrow) ValueSet;
    }
    if (slot == nullptr || *slot == nullptr) {
        return sqlite3_result_error_nomem(context);
    }
    (*slot)->Add(values[0]);
}

void End(sqlite3_context* context) {
    auto** slot = static_cast<ValueSet**>(sqlite3_aggregate_context(context, 0));
    std::string json = "[]";
    if (slot != nullptr && *slot != nullptr) {
        json = (*slot)->Json();
        delete *slot;
    }
    sqlite3_result_text64(context, json.data(), json.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

} // namespace

void RegisterValueSets(sqlite3* connection) {
    sqlite3_create_function_v2(connection, "qy_values", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                               nullptr, Step, End, nullptr);
}

} // namespace quillary::database::sqlite
