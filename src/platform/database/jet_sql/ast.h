#pragma once

#include "platform/runtime/variant.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

// The syntax tree of a statement of the Jet dialect. It knows names and literals, but no table, no field
// and no engine: what a name means is settled by whoever walks the tree.
//
// Trees are values: copied deep, moved cheaply, compared by structure (places in the text do not count).
// Names are held without their brackets and as they were written; they are compared without case by the
// reader. Brackets of expressions are gone: the shape of the tree says what binds to what.
namespace quillary::database::jet_sql {

// Where a piece stands in the text that was parsed, in bytes: [begin, end).
struct Place {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    friend constexpr bool operator==(const Place&, const Place&) { return true; } // places do not count
};

// A tree is at most this many nodes high, so that it may be walked (and destroyed) by recursion.
inline constexpr int kMaxTreeHeight = 500;

// Levels of nodes under a node, itself included. For the parser's own check against kMaxTreeHeight.
struct Height {
    std::uint16_t levels = 1;
    friend constexpr bool operator==(const Height&, const Height&) { return true; }
};

// One node held by another: a value on the heap. Empty only where a comment says so and after a move.
template <class T>
class Box {
public:
    Box() noexcept = default;
    Box(T value) : held_(std::make_unique<T>(std::move(value))) {}
    Box(const Box& other) : held_(other.held_ ? std::make_unique<T>(*other.held_) : nullptr) {}
    Box(Box&&) noexcept = default;
    Box& operator=(const Box& other) {
        Box copy(other);
        held_ = std::move(copy.held_);
        return *this;
    }
    Box& operator=(Box&&) noexcept = default;
    ~Box() = default;

    explicit operator bool() const noexcept { return held_ != nullptr; }
    T& operator*() noexcept { return *held_; }
    const T& operator*() const noexcept { return *held_; }
    T* operator->() noexcept { return held_.get(); }
    const T* operator->() const noexcept { return held_.get(); }

    friend bool operator==(const Box& a, const Box& b) {
        return a.held_ && b.held_ ? *a.held_ == *b.held_ : !a.held_ == !b.held_;
    }

private:
    std::unique_ptr<T> held_;
};

struct Expr;
struct Query;
struct Statement;

// ---------------------------------------------------------------------------------------- expressions

// Null, Boolean (True, Yes, On; False, No, Off), Long for whole numbers of 32 bits, Double for the
// others, String, Date (#8/15/2007#, month first whatever the locale).
struct Literal {
    runtime::Variant value;
    friend bool operator==(const Literal&, const Literal&) = default;
};

// `b`, `a.b`, `a!b`, `[x].[a].[b]`: a field, an alias of the select list or, if it is neither, a
// parameter (`[Which season?]`).
struct NameRef {
    std::vector<std::string> parts; // 1 to 3, the field last
    bool bang = false;              // written with "!" (it means the same; for a parameter's name)
    const std::string& Field() const { return parts.back(); }
    // The table before the field; "" if there is none.
    const std::string& Table() const;
    friend bool operator==(const NameRef&, const NameRef&) = default;
};

enum class UnaryOp : std::uint8_t { Negate, Not };

// Precedence, tightest first: unary minus (before "^" in this dialect: -2^2 is 4), ^, * /, \, Mod, + -,
// &, comparisons with Like, In, Between and Is, Not, And, Or, Xor, Eqv, Imp. All go from the left.
enum class BinaryOp : std::uint8_t {
    Power,
    Multiply,
    Divide,
    IntDivide,
    Mod,
    Add,
    Subtract,
    Concat,
    Equal,
    NotEqual,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    And,
    Or,
    Xor,
    Eqv,
    Imp,
};

struct Unary {
    UnaryOp op{};
    Box<Expr> operand;
    friend bool operator==(const Unary&, const Unary&) = default;
};

struct Binary {
    BinaryOp op{};
    Box<Expr> left;
    Box<Expr> right;
    friend bool operator==(const Binary&, const Binary&) = default;
};

struct Like {
    Box<Expr> value;
    Box<Expr> pattern;
    bool negated = false;
    friend bool operator==(const Like&, const Like&) = default;
};

struct Between {
    Box<Expr> value;
    Box<Expr> low; // as written: the bounds may come in either order
    Box<Expr> high;
    bool negated = false;
    friend bool operator==(const Between&, const Between&) = default;
};

struct IsNull {
    Box<Expr> operand;
    bool negated = false;
    friend bool operator==(const IsNull&, const IsNull&) = default;
};

struct InList {
    Box<Expr> value;
    std::vector<Expr> list; // at least one
    bool negated = false;
    friend bool operator==(const InList&, const InList&) = default;
};

struct InQuery {
    Box<Expr> value;
    Box<Query> query;
    bool negated = false;
    friend bool operator==(const InQuery&, const InQuery&) = default;
};

struct Exists { // `Not Exists` is Unary Not over it
    Box<Query> query;
    friend bool operator==(const Exists&, const Exists&) = default;
};

// (SELECT ...) as one value.
struct Subquery {
    Box<Query> query;
    friend bool operator==(const Subquery&, const Subquery&) = default;
};

enum class Quantifier : std::uint8_t { Any, All }; // Some is Any

// value op ANY (SELECT ...)
struct Quantified {
    BinaryOp op{}; // Equal to GreaterOrEqual
    Quantifier quantifier{};
    Box<Expr> value;
    Box<Query> query;
    friend bool operator==(const Quantified&, const Quantified&) = default;
};

// Any function, aggregates too; the name as written ("Sum", "iif"). Count(*) has star set and no
// arguments. A `$` behind the name (Left$) is part of it.
struct Call {
    std::string name;
    std::vector<Expr> args;
    bool star = false;
    friend bool operator==(const Call&, const Call&) = default;
};

struct Expr {
    std::variant<Literal, NameRef, Unary, Binary, Like, Between, IsNull, InList, InQuery, Exists, Subquery,
                 Quantified, Call>
        node;
    Place place;
    Height height;

    template <class T>
    const T* As() const noexcept {
        return std::get_if<T>(&node);
    }
    template <class T>
    T* As() noexcept {
        return std::get_if<T>(&node);
    }
    friend bool operator==(const Expr&, const Expr&) = default;
};

// --------------------------------------------------------------------------------------------- queries

// IN 'path' or IN '' [type;DATABASE=path]: another file than the open one. `connect` is "" for a file of
// the same kind.
struct ExternalFile {
    std::string path;
    std::string connect;
    friend bool operator==(const ExternalFile&, const ExternalFile&) = default;
};

// A table or saved query. `[path].[table]` fills `file`. alias is "" if there is none.
struct TableName {
    std::string name;
    std::string alias;
    std::string file;
    friend bool operator==(const TableName&, const TableName&) = default;
};

// (SELECT ...) AS alias, or [SELECT ...]. AS alias. alias may be "".
struct DerivedTable {
    Box<Query> query;
    std::string alias;
    friend bool operator==(const DerivedTable&, const DerivedTable&) = default;
};

enum class JoinKind : std::uint8_t { Inner, Left, Right };

struct TableSource;

struct Join {
    JoinKind kind{};
    Box<TableSource> left;
    Box<TableSource> right;
    Box<Expr> on;
    friend bool operator==(const Join&, const Join&) = default;
};

struct TableSource {
    std::variant<TableName, DerivedTable, Join> node;
    Place place;
    Height height;

    template <class T>
    const T* As() const noexcept {
        return std::get_if<T>(&node);
    }
    friend bool operator==(const TableSource&, const TableSource&) = default;
};

// One column of a select or delete list: `*` and `t.*` have no expr.
struct SelectItem {
    std::optional<Expr> expr;
    std::string starOf; // the t of `t.*`; "" for `*`
    std::string alias;  // "" if there is none
    Place place;
    bool IsStar() const noexcept { return !expr; }
    friend bool operator==(const SelectItem&, const SelectItem&) = default;
};

// A whole number as expr is a position in the select list, from 1.
struct OrderItem {
    Expr expr;
    bool descending = false;
    friend bool operator==(const OrderItem&, const OrderItem&) = default;
};

// DISTINCTROW is not DISTINCT: it acts only where a joined table gives no column.
enum class Predicate : std::uint8_t { All, Distinct, DistinctRow };

struct Top {
    std::int32_t count = 0;
    bool percent = false;
    friend bool operator==(const Top&, const Top&) = default;
};

// SELECT ... INTO table [IN file].
struct IntoTable {
    std::string name;
    std::optional<ExternalFile> file;
    Place place;
    friend bool operator==(const IntoTable&, const IntoTable&) = default;
};

struct Select {
    Predicate predicate = Predicate::All;
    std::optional<Top> top;
    std::vector<SelectItem> items;
    std::optional<IntoTable> into;
    std::vector<TableSource> from;    // several: comma join; empty: SELECT without FROM, one row
    std::optional<ExternalFile> file; // of all tables in from
    std::optional<Expr> where;
    std::vector<Expr> groupBy;
    std::optional<Expr> having;
    std::vector<OrderItem> orderBy;
    bool ownerAccess = false;
    friend bool operator==(const Select&, const Select&) = default;
};

struct UnionPart {
    bool all = false; // UNION ALL stands before this part (false for the first one)
    Box<Query> query; // a Select, or a Union that stood in brackets
    friend bool operator==(const UnionPart&, const UnionPart&) = default;
};

// Parts go from the left. The ORDER BY behind the last part sorts the whole.
struct Union {
    std::vector<UnionPart> parts; // two or more
    std::vector<OrderItem> orderBy;
    friend bool operator==(const Union&, const Union&) = default;
};

// TRANSFORM value [AS alias] SELECT ... PIVOT pivot [IN (heading, ...)].
struct Crosstab {
    Box<Expr> value;
    std::string valueAlias;
    Select select;
    Box<Expr> pivot;
    std::vector<runtime::Variant> headings; // empty: the values that occur, ascending
    friend bool operator==(const Crosstab&, const Crosstab&) = default;
};

struct Query {
    std::variant<Select, Union, Crosstab> node;
    Place place;
    Height height;

    template <class T>
    const T* As() const noexcept {
        return std::get_if<T>(&node);
    }
    friend bool operator==(const Query&, const Query&) = default;
};

// ----------------------------------------------------------------------------------- action statements

struct Assignment {
    NameRef target;
    Expr value;
    Place place; // of the target
    friend bool operator==(const Assignment&, const Assignment&) = default;
};

// The tables that change are those of the SET targets, not the one named first.
struct Update {
    bool distinctRow = false;
    std::vector<TableSource> tables;
    std::optional<ExternalFile> file;
    std::vector<Assignment> set;
    std::optional<Expr> where;
    friend bool operator==(const Update&, const Update&) = default;
};

struct Delete {
    bool distinctRow = false;
    std::vector<SelectItem> items; // empty: DELETE FROM
    std::vector<TableSource> from;
    std::optional<ExternalFile> file;
    std::optional<Expr> where;
    friend bool operator==(const Delete&, const Delete&) = default;
};

struct Insert {
    TableName table;
    Place tablePlace;
    std::vector<std::string> columns; // empty: no list
    std::optional<ExternalFile> file; // of the target table
    std::vector<Expr> values;         // VALUES (...); empty if there is a query
    Box<Query> query;                 // INSERT ... SELECT; empty if there are values
    friend bool operator==(const Insert&, const Insert&) = default;
};

// EXECUTE name arg, ...: runs a saved query.
struct Execute {
    std::string name;
    std::vector<Expr> args;
    friend bool operator==(const Execute&, const Execute&) = default;
};

// -------------------------------------------------------------------------------------------------- DDL

// Numbers as Field.Type has them.
enum class FieldType : std::uint8_t {
    Value = 0, // a parameter of any kind
    Bit = 1,
    Byte = 2,
    Short = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    DateTime = 8,
    Binary = 9,
    Text = 10,
    LongBinary = 11,
    Memo = 12,
    Guid = 15,
    Decimal = 20,
};

struct ColumnType {
    FieldType type{};
    std::int32_t size = 0;       // characters of Text (255 if not told), bytes of Binary (255); 0 elsewhere
    bool counter = false;        // COUNTER, AUTOINCREMENT, IDENTITY: a Long that numbers itself
    std::int32_t seed = 1;       // of a counter
    std::int32_t step = 1;       // of a counter
    std::int32_t precision = 18; // of Decimal
    std::int32_t scale = 0;      // of Decimal
    friend bool operator==(const ColumnType&, const ColumnType&) = default;
};

enum class ConstraintKind : std::uint8_t { PrimaryKey, Unique, ForeignKey, Check };
enum class ReferenceAction : std::uint8_t { Refuse, Cascade, SetNull };

struct Constraint {
    std::string name; // "" if there is none
    ConstraintKind kind{};
    std::vector<std::string> columns;    // of a constraint on one column: that column
    std::string refTable;                // ForeignKey
    std::vector<std::string> refColumns; // ForeignKey; empty: the primary key of refTable
    ReferenceAction onDelete = ReferenceAction::Refuse;
    ReferenceAction onUpdate = ReferenceAction::Refuse;
    bool noIndex = false;      // FOREIGN KEY NO INDEX
    std::optional<Expr> check; // Check
    Place place;
    friend bool operator==(const Constraint&, const Constraint&) = default;
};

struct ColumnDef {
    std::string name;
    ColumnType type;
    bool notNull = false;
    std::optional<Expr> defaultValue;
    std::vector<Constraint> constraints; // those written at the column
    Place place;
    friend bool operator==(const ColumnDef&, const ColumnDef&) = default;
};

struct CreateTable {
    std::string name;
    std::vector<ColumnDef> columns;
    std::vector<Constraint> constraints; // those of the table as a whole
    Place namePlace;
    friend bool operator==(const CreateTable&, const CreateTable&) = default;
};

struct AddColumns {
    std::vector<ColumnDef> columns;
    friend bool operator==(const AddColumns&, const AddColumns&) = default;
};
struct DropColumns {
    std::vector<std::string> names;
    friend bool operator==(const DropColumns&, const DropColumns&) = default;
};
// ALTER COLUMN name type ...: the column gets this definition.
struct AlterColumn {
    ColumnDef column;
    friend bool operator==(const AlterColumn&, const AlterColumn&) = default;
};
// ALTER COLUMN name SET DEFAULT value, or DROP DEFAULT (no value).
struct AlterDefault {
    std::string column;
    std::optional<Expr> value;
    friend bool operator==(const AlterDefault&, const AlterDefault&) = default;
};
struct AddConstraint {
    Constraint constraint;
    friend bool operator==(const AddConstraint&, const AddConstraint&) = default;
};
struct DropConstraint {
    std::string name;
    friend bool operator==(const DropConstraint&, const DropConstraint&) = default;
};

struct AlterTable {
    std::string table;
    std::variant<AddColumns, DropColumns, AlterColumn, AlterDefault, AddConstraint, DropConstraint> action;
    Place tablePlace;
    friend bool operator==(const AlterTable&, const AlterTable&) = default;
};

struct IndexColumn {
    std::string name;
    bool descending = false;
    friend bool operator==(const IndexColumn&, const IndexColumn&) = default;
};

struct CreateIndex {
    std::string name;
    std::string table;
    std::vector<IndexColumn> columns;
    bool unique = false;
    bool primary = false;      // WITH PRIMARY
    bool disallowNull = false; // WITH DISALLOW NULL
    bool ignoreNull = false;   // WITH IGNORE NULL: rows with Null stay out of the index
    friend bool operator==(const CreateIndex&, const CreateIndex&) = default;
};

enum class DropKind : std::uint8_t { Table, Index, View, Procedure };

struct Drop {
    DropKind kind{};
    std::string name;
    std::string table; // Index only
    friend bool operator==(const Drop&, const Drop&) = default;
};

struct Parameter {
    std::string name;
    ColumnType type;
    friend bool operator==(const Parameter&, const Parameter&) = default;
};

// CREATE VIEW / CREATE PROCEDURE name AS ...: makes a saved query.
struct CreateQuery {
    bool view = false;
    std::string name;
    std::vector<std::string> columns; // of a view; empty: as the query names them
    Box<Statement> body;              // with the procedure's parameters
    Place bodyPlace;                  // the text behind AS, as the saved query's SQL
    friend bool operator==(const CreateQuery&, const CreateQuery&) = default;
};

// -------------------------------------------------------------------------------------------- statement

struct Statement {
    std::vector<Parameter> parameters; // PARAMETERS ...; or those of PROCEDURE
    std::string procedureName;         // PROCEDURE name ...; "" elsewhere
    std::variant<Query, Update, Delete, Insert, Execute, CreateTable, AlterTable, CreateIndex, Drop,
                 CreateQuery>
        node;

    template <class T>
    const T* As() const noexcept {
        return std::get_if<T>(&node);
    }
    friend bool operator==(const Statement&, const Statement&) = default;
};

inline const std::string& NameRef::Table() const {
    static const std::string none;
    return parts.size() < 2 ? none : parts[parts.size() - 2];
}

} // namespace quillary::database::jet_sql
