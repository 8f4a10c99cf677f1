#pragma once

#include "platform/database/jet_sql/parsing.h"
#include "platform/database/jet_sql/printer.h"

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// The printer itself, for the files of this folder only; the entry points stand in printer.h.
namespace quillary::database::jet_sql {

// One function object out of several, for std::visit.
template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

class Printer {
public:
    std::string Take() { return std::move(out_); }
    void Put(const Expr& expr, Level least = Level::Imp);
    void Put(const Statement& statement);
    void Put(const Query& query) { PutNode(query); }
    void Put(const TableSource& source) {
        std::visit([this](const auto& node) { PutNode(node); }, source.node);
    }

private:
    void Name(const std::string& name) { out_ += PrintName(name); }
    void Add(std::string_view word, const std::string& name);

    template <class List, class PutOne>
    void PutList(const List& list, PutOne putOne) {
        bool first = true;
        for (const auto& item : list) {
            if (!first)
                out_ += ", ";
            first = false;
            putOne(item);
        }
    }
    void PutExprs(const std::vector<Expr>& list) {
        PutList(list, [this](const Expr& expr) { Put(expr); });
    }
    void PutNames(const std::vector<std::string>& names);
    void PutInBrackets(const Query& query);

    // Expressions.
    void PutNode(const Literal& literal);
    void PutNode(const NameRef& name);
    void PutNode(const Unary& unary);
    void PutNode(const Binary& binary);
    void PutNode(const Like& like);
    void PutNode(const Between& between);
    void PutNode(const IsNull& isNull);
    void PutNode(const InList& in);
    void PutNode(const InQuery& in);
    void PutNode(const Exists& exists);
    void PutNode(const Subquery& subquery);
    void PutNode(const Quantified& quantified);
    void PutNode(const Call& call);

    // Queries.
    void PutNode(const Query& query);
    void PutNode(const Select& select);
    void PutSelectBody(const Select& select);
    void PutOwnerAccess(const Select& select);
    void PutItems(const std::vector<SelectItem>& items);
    void PutOrder(const std::vector<OrderItem>& order);
    void PutWhere(const std::optional<Expr>& where);
    void PutFile(const std::optional<ExternalFile>& file);
    void PutTables(const std::vector<TableSource>& tables);
    void PutNode(const TableName& table);
    void PutNode(const DerivedTable& derived);
    void PutNode(const Join& join);
    void PutNode(const Union& whole);
    void PutNode(const Crosstab& crosstab);

    // Action statements.
    void PutNode(const Update& update);
    void PutNode(const Delete& remove);
    void PutNode(const Insert& insert);
    void PutNode(const Execute& execute);

    // Definitions (printer_ddl.cpp).
    void PutParameters(const std::vector<Parameter>& parameters);
    void PutType(const ColumnType& type);
    void PutColumn(const ColumnDef& column);
    void PutConstraint(const Constraint& constraint, bool atColumn);
    void PutAction(std::string_view event, ReferenceAction action);
    void PutNode(const CreateTable& create);
    void PutNode(const AlterTable& alter);
    void PutNode(const CreateIndex& index);
    void PutNode(const Drop& drop);
    void PutNode(const CreateQuery& create);

    std::string out_;
};

} // namespace quillary::database::jet_sql
