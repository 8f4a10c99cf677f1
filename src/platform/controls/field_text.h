#pragma once

#include "platform/database/engine.h"
#include "platform/runtime/variant.h"

#include <string>

namespace quillary::controls {

// What a user typed (or a value list gave) as a value of the field's kind, read under the regional
// settings. A text of blanks alone is Null for everything but text. A Boolean takes True, False, Yes, No,
// On, Off and numbers, and is False where nothing was typed. An empty text stays empty for a text field
// when zeroLength is true, else it becomes Null. Raises 3421 for a text that the field's kind cannot hold;
// the width of a text is the engine's to check.
runtime::Variant FieldValue(const database::Field& field, const runtime::Variant& typed, bool zeroLength);

} // namespace quillary::controls
