#pragma once

#include "platform/database/jet_sql/ast.h"

#include <string>

// Syntax trees back to text, in one spelling: keywords in capitals, names in brackets where they need
// them, brackets only where the tree asks for them. Parsing the text gives the same tree again.
namespace quillary::database::jet_sql {

std::string Print(const Statement& statement); // without ";" at the end
std::string Print(const Query& query);
std::string Print(const Expr& expr);
std::string Print(const TableSource& tables);

// A name as it stands in a statement: `Season`, `[Class ID]`, `[Order]`.
std::string PrintName(const std::string& name);

// A literal: 12, 0.5, 'O''Brien', #8/15/2007#, True, Null.
std::string PrintLiteral(const runtime::Variant& value);

} // namespace quillary::database::jet_sql
