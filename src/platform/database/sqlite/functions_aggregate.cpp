#include "platform/database/sqlite/function_call.h"
#include "platform/runtime/locale.h"

#include <cmath>
#include <memory>
#include <new>
#include <sqlite3.h>
#include <string_view>
#include <vector>

// Functions over the rows of a group that SQLite does not have: First and Last, and the deviations.
namespace quillary::database::sqlite {
namespace {

std::string_view TextOf(sqlite3_value* value) {
    return {reinterpret_cast<const char*>(sqlite3_value_text(value)),
            static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// Terms of an order: Null, numbers, text.
int CompareTerms(sqlite3_value* left, sqlite3_value* right) {
    const auto rank = [](sqlite3_value* value) {
        switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            return 0;
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return 1;
        default:
            return 2;
        }
    };
    const int leftRank = rank(left);
    const int rightRank = rank(right);
    if (leftRank != rightRank) {
        return leftRank < rightRank ? -1 : 1;
    }
    if (leftRank == 0) {
        return 0;
    }
    if (leftRank == 2) {
        return runtime::CompareText(TextOf(left), TextOf(right));
    }
    if (sqlite3_value_type(left) == SQLITE_INTEGER && sqlite3_value_type(right) == SQLITE_INTEGER) {
        const auto a = sqlite3_value_int64(left);
        const auto b = sqlite3_value_int64(right);
        return (a > b) - (a < b);
    }
    const double a = sqlite3_value_double(left);
    const double b = sqlite3_value_double(right);
    return (a > b) - (a < b);
}

using Kept = std::unique_ptr<sqlite3_value, decltype(&sqlite3_value_free)>;

struct Chosen {
    std::vector<Kept> values; // the value, then its place in the order
};

// (value, order...): the value of the row that comes first, or last; without an order as the rows come.
template <bool last>
void ChooseStep(sqlite3_context* context, int count, sqlite3_value** values) {
    auto** slot = static_cast<Chosen**>(sqlite3_aggregate_context(context, sizeof(void*)));
    if (slot == nullptr) {
        return sqlite3_result_error_nomem(context);
    }
    if (*slot == nullptr) {
        *slot = new (std::nothrow) Chosen;
        if (*slot == nullptr) {
            return sqlite3_result_error_nomem(context);
        }
    } else {
        int order = count == 1 && last ? 1 : 0;
        for (int i = 1; i < count && order == 0; ++i) {
            order = CompareTerms(values[i], (*slot)->values[static_cast<std::size_t>(i)].get());
        }
        if (last ? order < 0 || (order == 0 && count > 1) : order >= 0) {
            return;
        }
    }
    (*slot)->values.clear();
    for (int i = 0; i < count; ++i) {
        (*slot)->values.emplace_back(sqlite3_value_dup(values[i]), &sqlite3_value_free);
        if ((*slot)->values.back() == nullptr) {
            (*slot)->values.clear();
            return sqlite3_result_error_nomem(context);
        }
    }
}

void ChooseEnd(sqlite3_context* context) {
    auto** slot = static_cast<Chosen**>(sqlite3_aggregate_context(context, 0));
    if (slot == nullptr || *slot == nullptr) {
        return sqlite3_result_null(context);
    }
    const std::unique_ptr<Chosen> chosen(*slot);
    if (!chosen->values.empty()) {
        sqlite3_result_value(context, chosen->values.front().get());
    }
}

// Running mean and sum of squared distances from it.
struct Spread {
    long long count;
    double mean;
    double squares;
};

void SpreadStep(sqlite3_context* context, int, sqlite3_value** values) {
    if (sqlite3_value_type(values[0]) == SQLITE_NULL) {
        return;
    }
    auto* spread = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
    if (spread == nullptr) {
        return sqlite3_result_error_nomem(context);
    }
    const double value = sqlite3_value_double(values[0]);
    const double distance = value - spread->mean;
    ++spread->count;
    spread->mean += distance / static_cast<double>(spread->count);
    spread->squares += distance * (value - spread->mean);
}

// Null where there are too few values: two for a sample, one for a population.
template <bool population, bool root>
void SpreadEnd(sqlite3_context* context) {
    const auto* spread = static_cast<Spread*>(sqlite3_aggregate_context(context, 0));
    if (spread == nullptr || spread->count < (population ? 1 : 2)) {
        return sqlite3_result_null(context);
    }
    const double variance = spread->squares / static_cast<double>(spread->count - (population ? 0 : 1));
    sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
}

using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
using End = void (*)(sqlite3_context*);

struct AggregateEntry {
    const char* name;
    int arguments;
    Step step;
    End end;
};

constexpr AggregateEntry kEntries[] = {
    {"qy_first", -1, ChooseStep<false>, ChooseEnd},      {"qy_last", -1, ChooseStep<true>, ChooseEnd},
    {"qy_stdev", 1, SpreadStep, SpreadEnd<false, true>}, {"qy_stdevp", 1, SpreadStep, SpreadEnd<true, true>},
    {"qy_var", 1, SpreadStep, SpreadEnd<false, false>},  {"qy_varp", 1, SpreadStep, SpreadEnd<true, false>},
};

} // namespace

void RegisterAggregates(sqlite3* connection) {
    for (const AggregateEntry& entry : kEntries) {
        sqlite3_create_function_v2(connection, entry.name, entry.arguments,
                                   SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, nullptr, entry.step,
                                   entry.end, nullptr);
    }
}

} // namespace quillary::database::sqlite
