#pragma once

#include "platform/database/sqlite/stored_value.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/variant.h"

#include <span>
#include <string_view>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

// How the dialect's functions get at their arguments. One file a subject registers its functions here.
namespace quillary::database::sqlite {

class FunctionCall {
public:
    FunctionCall(sqlite3_context* context, int count, sqlite3_value** values)
        : context_(context), count_(count), values_(values) {}

    int Count() const { return count_; }
    bool IsNull(int index) const;
    double Number(int index) const;
    long long Whole(int index) const;
    // The whole number there, or another when the argument is left out.
    long long Whole(int index, long long otherwise) const {
        return index < count_ ? Whole(index) : otherwise;
    }
    std::string_view Text(int index) const;
    runtime::Date DateAt(int index) const; // from its ISO text
    // The first day of the week there and the first week of the year behind it, where they are given.
    runtime::Weeks WeeksFrom(int index) const;
    // A value that stands there with its type behind it.
    Variant Value(int index) const;
    FieldType TypeAt(int index) const { return static_cast<FieldType>(Whole(index)); }
    sqlite3_context* Context() const { return context_; }
    sqlite3_value* Raw(int index) const { return values_[index]; }

    void Return(const Variant& value) const { ReturnStored(context_, value); }
    void ReturnNumber(double value) const;
    void ReturnWhole(long long value) const;
    void ReturnText(std::string_view text) const;
    void ReturnArgument(int index) const;

private:
    sqlite3_context* context_;
    int count_;
    sqlite3_value** values_;
};

struct FunctionEntry {
    const char* name;
    int arguments; // -1: any number
    void (*body)(const FunctionCall&);
    // Null for an argument gives Null, without a call.
    bool nullGivesNull = true;
    // Works out the same again within a statement.
    bool steady = true;
};

void RegisterEntries(sqlite3* connection, std::span<const FunctionEntry> entries);

void RegisterNumberFunctions(sqlite3* connection);
void RegisterTextFunctions(sqlite3* connection);
void RegisterDateFunctions(sqlite3* connection);
void RegisterConversionFunctions(sqlite3* connection);
void RegisterAggregates(sqlite3* connection);
void RegisterValueSets(sqlite3* connection);

} // namespace quillary::database::sqlite
