#pragma once

#include "platform/database/engine.h"
#include "platform/runtime/run_time_error.h"

#include <optional>
#include <string>

// An expression as text for SQLite, with all that is known of its value.
namespace quillary::database::sqlite {

struct Piece {
    // A literal, a name, a call, or something in brackets: safe as the operand of anything. Its value is
    // in the stored form of `type`.
    std::string sql;
    FieldType type = FieldType::Text;
    int size = 0; // of a text field; 0: no limit known
    bool nullable = true;
    bool untyped = false;  // Null, or a parameter of which nothing has told the type yet
    bool collated = false; // a text that brings the collation JET along by itself
    bool column = false;   // a field as it stands
    bool wide = false;     // computed, so that it may lie beyond the range of its whole type
    char chain = 0;        // '+' or '*': "(a + b)" of this rank, that may go on without its brackets
    int parameter = -1;    // index into Context::parameters
    int source = -1;       // of a field of the innermost scope: which source, which field of its table,
    int field = -1;        // and at which place the source shows it
    int place = -1;
    std::optional<runtime::Variant> literal; // in the run time's form

    bool IsNullLiteral() const { return literal && literal->IsNull(); }
};

constexpr bool IsWhole(FieldType type) {
    return type == FieldType::Boolean || type == FieldType::Byte || type == FieldType::Integer ||
           type == FieldType::Long;
}
constexpr bool IsFloat(FieldType type) {
    return type == FieldType::Single || type == FieldType::Double;
}
constexpr bool IsNumber(FieldType type) {
    return IsWhole(type) || IsFloat(type) || type == FieldType::Currency;
}
constexpr bool IsText(FieldType type) {
    return type == FieldType::Text || type == FieldType::Memo;
}
constexpr bool IsDate(FieldType type) {
    return type == FieldType::Date;
}

// The errors of the dialect; the text is the old engine's where it had one.
[[noreturn]] void Raise(int number, std::string description);
[[noreturn]] void RaiseUnknownTable(std::string_view name); // 3078
[[noreturn]] void RaiseAmbiguous(std::string_view name);    // 3079
[[noreturn]] void RaiseTooFewParameters(std::size_t count); // 3061
[[noreturn]] void RaiseNotUpdateable();                     // 3073
[[noreturn]] void RaiseTooComplex();                        // 3360

} // namespace quillary::database::sqlite
