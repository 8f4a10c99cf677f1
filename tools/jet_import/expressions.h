#pragma once

#include "platform/database/engine.h"

#include <string>

// The texts that the old engine keeps with its fields, as the dialect reads them.
namespace quillary::jet_import {

// The expression of a field's default: "=No" is No, a bare word in a text field is a text. "" for none.
std::string DefaultExpression(const std::string& text, database::FieldType type);

// The rule of a field, which may leave the field's name out: ">=0".
std::string FieldRule(const std::string& rule, const std::string& field);

} // namespace quillary::jet_import
