#include "platform/database/sqlite/functions.h"

#include "platform/database/sqlite/function_call.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <charconv>
#include <exception>
#include <sqlite3.h>

namespace quillary::database::sqlite {
namespace {

constexpr std::string_view kMark = "qy:";

int CompareJet(void*, int leftSize, const void* left, int rightSize, const void* right) {
    return runtime::CompareText({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                                {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

void Run(sqlite3_context* context, int count, sqlite3_value** values) {
    const auto& entry = *static_cast<const FunctionEntry*>(sqlite3_user_data(context));
    const FunctionCall call(context, count, values);
    if (entry.nullGivesNull) {
        for (int i = 0; i < count; ++i) {
            if (call.IsNull(i)) {
                sqlite3_result_null(context);
                return;
            }
        }
    }
    try {
        entry.body(call);
    } catch (const runtime::RunTimeError& error) {
        FailWith(context, error);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

} // namespace

bool FunctionCall::IsNull(int index) const {
    return sqlite3_value_type(values_[index]) == SQLITE_NULL;
}

double FunctionCall::Number(int index) const {
    return sqlite3_value_double(values_[index]);
}

long long FunctionCall::Whole(int index) const {
    return sqlite3_value_int64(values_[index]);
}

std::string_view FunctionCall::Text(int index) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(values_[index]));
    return text == nullptr
               ? std::string_view{}
               : std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(values_[index])));
}

runtime::Date FunctionCall::DateAt(int index) const {
    return runtime::ParseIso(Text(index)).value_or(runtime::Date{});
}

runtime::Weeks FunctionCall::WeeksFrom(int index) const {
    // What no int holds is no day and no week either.
    const auto told = [&](int at) {
        const long long value = Whole(at, 1);
        return value < 0 || value > 7 ? -1 : static_cast<int>(value);
    };
    return {told(index), told(index + 1)};
}

Variant FunctionCall::Value(int index) const {
    return FromStored(values_[index], TypeAt(index + 1));
}

void FunctionCall::ReturnNumber(double value) const {
    sqlite3_result_double(context_, value);
}

void FunctionCall::ReturnWhole(long long value) const {
    sqlite3_result_int64(context_, value);
}

void FunctionCall::ReturnText(std::string_view text) const {
    sqlite3_result_text64(context_, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void FunctionCall::ReturnArgument(int index) const {
    sqlite3_result_value(context_, values_[index]);
}

void RegisterEntries(sqlite3* connection, std::span<const FunctionEntry> entries) {
    for (const FunctionEntry& entry : entries) {
        const int flags = SQLITE_UTF8 | (entry.steady ? SQLITE_DETERMINISTIC : 0);
        sqlite3_create_function_v2(connection, entry.name, entry.arguments, flags,
                                   const_cast<FunctionEntry*>(&entry), Run, nullptr, nullptr, nullptr);
    }
}

void RegisterFunctions(sqlite3* connection) {
    // The collation makes texts of different lengths equal, and SQLite's Bloom filters tell texts apart by
    // their lengths (3.38 to 3.40): a join over a text without an index would lose rows.
    constexpr unsigned kBloomFilters = 0x00080000;
    sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, connection, kBloomFilters);
    sqlite3_create_collation_v2(connection, "JET", SQLITE_UTF8, nullptr, CompareJet, nullptr);
    RegisterConversionFunctions(connection);
    RegisterNumberFunctions(connection);
    RegisterTextFunctions(connection);
    RegisterDateFunctions(connection);
    RegisterAggregates(connection);
    RegisterValueSets(connection);
}

void FailWith(sqlite3_context* context, const runtime::RunTimeError& error) {
    std::string text(kMark);
    text += std::to_string(error.Number());
    text += ':';
    text += error.Description();
    sqlite3_result_error(context, text.data(), static_cast<int>(text.size()));
}

std::optional<runtime::RunTimeError> ErrorOfText(std::string_view message) {
    if (!message.starts_with(kMark)) {
        return std::nullopt;
    }
    message.remove_prefix(kMark.size());
    int number = 0;
    const auto [end, code] = std::from_chars(message.data(), message.data() + message.size(), number);
    if (code != std::errc{} || end == message.data() + message.size() || *end != ':') {
        return std::nullopt;
    }
    return runtime::RunTimeError(
        number, "Database",
        std::string(end + 1, static_cast<std::size_t>(message.data() + message.size() - end - 1)));
}

} // namespace quillary::database::sqlite
