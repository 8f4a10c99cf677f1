#include "platform/database/errors.h"
#include "platform/database/sqlite/function_call.h"
#include "platform/database/sqlite/like_pattern.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/storage.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/format.h"

#include <memory>
#include <sqlite3.h>

// Values from one kind to another, and what compares or joins them.
namespace quillary::database::sqlite {
namespace {

using runtime::RunTimeError;

[[noreturn]] void RaiseCriteriaMismatch() {
    Raise(kErrTypeMismatchInCriterion, "Data type mismatch in criteria expression.");
}

// What & makes of a number or date.
void TextOfValue(const FunctionCall& call) {
    switch (call.TypeAt(1)) {
    case FieldType::Currency:
        call.ReturnText(runtime::NumberText(runtime::Currency{call.Whole(0)}));
        break;
    case FieldType::Single:
        call.ReturnText(runtime::NumberText(static_cast<float>(call.Number(0))));
        break;
    case FieldType::Double:
        call.ReturnText(runtime::NumberText(call.Number(0)));
        break;
    default:
        call.ReturnText(runtime::CStr(call.Value(0)));
        break;
    }
}

void NumberOfText(const FunctionCall& call) {
    const auto number = runtime::ParseNumber(call.Text(0));
    if (!number) {
        RaiseCriteriaMismatch();
    }
    call.ReturnNumber(*number);
}

void DateOfText(const FunctionCall& call) {
    const auto date = runtime::ParseDate(call.Text(0));
    if (!date) {
        RaiseCriteriaMismatch();
    }
    call.Return(*date);
}

void Days(const FunctionCall& call) {
    call.ReturnNumber(call.DateAt(0).days);
}

void DateOfDays(const FunctionCall& call) {
    call.Return(runtime::CDate(Variant(call.Number(0))));
}

void DatePlus(const FunctionCall& call) {
    call.Return(runtime::CDate(Variant(call.DateAt(0).days + call.Number(1))));
}

// (value, type, type of the field, name of the field)
void Store(const FunctionCall& call) {
    call.Return(ConvertForField(call.Value(0), call.TypeAt(2), 0, call.Text(3)));
}

// (value, type, type asked for): CInt, CDate and their like, which refuse Null.
void ConvertValue(const FunctionCall& call) {
    const Variant value = call.Value(0);
    switch (call.TypeAt(2)) {
    case FieldType::Boolean:
        return call.Return(runtime::CBool(value));
    case FieldType::Byte: {
        const std::int16_t number = runtime::CInt(value);
        if (number < 0 || number > 255) {
            throw RunTimeError(runtime::kErrOverflow);
        }
        return call.Return(number);
    }
    case FieldType::Integer:
        return call.Return(runtime::CInt(value));
    case FieldType::Long:
        return call.Return(runtime::CLng(value));
    case FieldType::Single:
        return call.Return(runtime::CSng(value));
    case FieldType::Double:
        return call.Return(runtime::CDbl(value));
    case FieldType::Currency:
        return call.Return(runtime::CCur(value));
    case FieldType::Date:
        return call.Return(runtime::CDate(value));
    default:
        return call.Return(runtime::CStr(value));
    }
}

void Val(const FunctionCall& call) {
    if (call.IsNull(0)) {
        throw RunTimeError(runtime::kErrInvalidUseOfNull);
    }
    call.ReturnNumber(runtime::Val(call.Text(0)));
}

// The number with a blank in the place of its sign.
void Str(const FunctionCall& call) {
    const Variant value = call.Value(0);
    if (value.IsNull()) {
        return call.Return(value);
    }
    const FieldType type = call.TypeAt(1);
    const std::string text = type == FieldType::Single ? runtime::NumberText(value.Get<float>())
                             : type == FieldType::Currency
                                 ? runtime::NumberText(value.Get<runtime::Currency>())
                                 : runtime::NumberText(runtime::CDbl(value));
    call.ReturnText(text.starts_with('-') ? text : " " + text);
}

void Format(const FunctionCall& call) {
    call.ReturnText(runtime::Format(call.Value(0), call.Count() > 2 ? call.Text(2) : std::string_view{},
                                    call.WeeksFrom(3)));
}

void IsNumeric(const FunctionCall& call) {
    call.Return(runtime::IsNumeric(call.Value(0)));
}

void IsDateValue(const FunctionCall& call) {
    call.Return(runtime::IsDate(call.Value(0)));
}

void Concatenate(const FunctionCall& call) {
    std::string result;
    bool any = false;
    for (int i = 0; i < call.Count(); ++i) {
        if (!call.IsNull(i)) {
            any = true;
            result += call.Text(i);
        }
    }
    if (!any) {
        return call.Return(Variant::Null());
    }
    call.ReturnText(result);
}

// A pattern that is a constant of the statement is read once.
void Like(const FunctionCall& call) {
    const auto* pattern = static_cast<const LikePattern*>(sqlite3_get_auxdata(call.Context(), 1));
    if (pattern != nullptr) {
        return call.ReturnWhole(pattern->Matches(call.Text(0)) ? 1 : 0);
    }
    auto made = std::make_unique<LikePattern>(call.Text(1));
    const bool matches = made->Matches(call.Text(0));
    sqlite3_set_auxdata(call.Context(), 1, made.release(),
                        [](void* kept) { delete static_cast<LikePattern*>(kept); });
    call.ReturnWhole(matches ? 1 : 0);
}

void RaiseError(const FunctionCall& call) {
    Raise(static_cast<int>(call.Whole(0)), std::string(call.Text(1)));
}

void Same(const FunctionCall& call) {
    call.ReturnArgument(0);
}

constexpr FunctionEntry kEntries[] = {
    {"qy_text", 2, TextOfValue},
    {"qy_number", 1, NumberOfText},
    {"qy_datetext", 1, DateOfText},
    {"qy_days", 1, Days},
    {"qy_date", 1, DateOfDays},
    {"qy_dateplus", 2, DatePlus},
    {"qy_store", 4, Store},
    {"qy_convert", 3, ConvertValue, false},
    {"qy_val", 1, Val, false},
    {"qy_str", 2, Str, false},
    {"qy_format", 2, Format, false},
    {"qy_format", 3, Format, false},
    {"qy_format", 4, Format, false},
    {"qy_format", 5, Format, false},
    {"qy_isnumeric", 2, IsNumeric, false},
    {"qy_isdate", 2, IsDateValue, false},
    {"qy_concat", -1, Concatenate, false},
    {"qy_like", 2, Like},
    {"qy_raise", 2, RaiseError, false, false},
    {"qy_same", 1, Same},
};

} // namespace

void RegisterConversionFunctions(sqlite3* connection) {
    RegisterEntries(connection, kEntries);
}

} // namespace quillary::database::sqlite
