#pragma once

#include "platform/database/jet_sql/ast.h"

#include <type_traits>
#include <variant>

// Walking over the expressions of a tree.
namespace quillary::database::jet_sql {

// Calls visit(child) for each expression right under this one, in the order of the text. The queries
// within it (subqueries, In, Exists) are not entered; visit has to look for them itself.
template <class Visit>
void ForEachChild(const Expr& expr, Visit&& visit) {
    std::visit(
        [&](const auto& node) {
            using Node = std::decay_t<decltype(node)>;
            if constexpr (std::is_same_v<Node, Unary> || std::is_same_v<Node, IsNull>) {
                visit(*node.operand);
            } else if constexpr (std::is_same_v<Node, Binary>) {
                visit(*node.left);
                visit(*node.right);
            } else if constexpr (std::is_same_v<Node, Like>) {
                visit(*node.value);
                visit(*node.pattern);
            } else if constexpr (std::is_same_v<Node, Between>) {
                visit(*node.value);
                visit(*node.low);
                visit(*node.high);
            } else if constexpr (std::is_same_v<Node, InList>) {
                visit(*node.value);
                for (const Expr& item : node.list)
                    visit(item);
            } else if constexpr (std::is_same_v<Node, InQuery> || std::is_same_v<Node, Quantified>) {
                visit(*node.value);
            } else if constexpr (std::is_same_v<Node, Call>) {
                for (const Expr& arg : node.args)
                    visit(arg);
            }
        },
        expr.node);
}

// visit(expr) for this expression and all under it, parents first; queries within it are not entered.
template <class Visit>
void ForEachExpr(const Expr& expr, Visit&& visit) {
    visit(expr);
    ForEachChild(expr, [&](const Expr& child) { ForEachExpr(child, visit); });
}

// The query within an expression's own node (not deeper); nullptr if there is none.
inline const Query* QueryOf(const Expr& expr) {
    return std::visit(
        [](const auto& node) -> const Query* {
            if constexpr (requires { node.query; })
                return &*node.query;
            else
                return nullptr;
        },
        expr.node);
}

} // namespace quillary::database::jet_sql
