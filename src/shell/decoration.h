#pragma once

#include "platform/controls/form.h"

#include <string>
#include <string_view>

// The suite's look of a form: pictures, the colour of the firm's name, the place on the screen.
namespace quillary::shell {

// Pictures of the program folder for the form and the controls that it has; a missing control or picture is
// passed over. Sets gTitleColour.
void LoadCustomSkin(controls::Form& form);

// Reads the colour setting of this name, "r,g,b", into gHeadingColour; a missing number is 0.
void GetHeadingColour(std::string_view name);

// The n-th field (from 1) of a text in which each separator character ends a field. Empty separators: blank,
// carriage return, line feed and tab. "" beyond the last field.
std::string GetField(std::string_view text, std::string_view separators, int n);

// In the middle of the screen; and off it to the right and below, so that the suite's main window keeps its
// side bar and header in sight.
void CentreForm(controls::Form& form);
void OffsetForm(controls::Form& form);
// The one or the other, by who started the program. A form that leaves its size to its layout is placed by
// the view, the same distance off.
void PlaceForm(controls::Form& form);

} // namespace quillary::shell
