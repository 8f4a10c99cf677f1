#pragma once

#include "jet_import/jet_text.h"

#include <map>
#include <string>
#include <string_view>

// The properties of a table and its fields, which the file keeps in one long value a table.
namespace quillary::jet_import {

// Values as text by name; a yes/no is "1" or "0".
using Properties = std::map<std::string, std::string, std::less<>>;

// By field; "" for the table itself. What cannot be read is left out.
std::map<std::string, Properties, std::less<>> ReadProperties(std::string_view value, const JetText& text);

} // namespace quillary::jet_import
