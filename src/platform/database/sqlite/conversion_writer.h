#pragma once

#include "platform/database/sqlite/context.h"

// One kind of value turned into another, in text for SQLite. A function is called only where the stored
// forms differ. Null stays Null throughout.
namespace quillary::database::sqlite {

// The error for kinds that do not compare: 3464, in the ON of a join 3615.
enum class Mismatch : int { Criteria = 3464, Join = 3615 };
[[noreturn]] void RaiseMismatch(Mismatch mismatch = Mismatch::Criteria);

// With COLLATE JET behind a text that does not bring it along.
std::string Collated(const Piece& piece);

// The text that & makes of a value: numbers with "." as decimal sign, a Boolean as -1 or 0, a date in the
// local short form. Operand leaves whole numbers to "||", which makes the same of them.
std::string AsOperandText(Context& context, Piece piece);
std::string AsText(Context& context, Piece piece);

// A number without scale: Currency in units, a date as days, a text read under the regional settings
// (3464 when it is none).
std::string AsNumber(Context& context, Piece piece);
// A whole number of 32 bits, halves to even (6 beyond).
std::string AsWhole(Context& context, Piece piece);
// The ISO text of a date; a text is read by the local short-date order (3464 when it is none).
std::string AsDate(Context& context, Piece piece);
// A number in ten-thousandths.
std::string AsCurrency(Context& context, Piece piece);

// A whole number or a decimal literal in ten-thousandths; a whole text where that is exact.
std::string ScaledLiteral(double value);
// The number of a numeric literal.
std::optional<double> LiteralNumber(const Piece& piece);

// The type that holds values of both (branches of IIf, parts of a union), and a value as that type.
FieldType Unify(const Piece& left, const Piece& right);
std::string AsType(Context& context, Piece piece, FieldType type);

// Brings two operands into forms that SQLite compares as the dialect does. Raises for kinds that do not
// compare (a text field or literal with a number).
void MakeComparable(Context& context, Piece& left, Piece& right, Mismatch mismatch = Mismatch::Criteria);

// The value as it is stored in a field: rounded, checked for range, Null in a Boolean as 0. A text that is
// no number or date of the field's kind raises 3421, a number beyond its range 6.
std::string AsStored(Context& context, Piece piece, const FieldDef& field);

// A key of one LONG field that is no counter is the row's address, which SQLite would number by itself
// where it is Null.
bool IsRowIdKey(const TableDef& table, const FieldDef& field);
std::string RequiredFieldText(const TableDef& table, const FieldDef& field);
// As AsStored, but Null for such a key raises 3314.
std::string AsAssigned(Context& context, Piece piece, const TableDef& table, const FieldDef& field);

} // namespace quillary::database::sqlite
