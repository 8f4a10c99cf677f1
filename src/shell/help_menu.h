#pragma once

#include "platform/controls/form.h"
#include "platform/controls/menu.h"

#include <cstdint>
#include <string>
#include <string_view>

// The help menu, filled from the module catalogue, and the calls of the help viewer.
namespace quillary::shell {

// Fills mnu_help from the catalogue's entries of the group "Help" and takes the default help file and the
// program path from it. Errors are reported under "LoadMenus", and the next step goes on.
void LoadMenus(controls::MenuItemArray& mnu_help, controls::MenuItem& mnu_helpmain, bool firstLoad);

// The help file and type of the menu entry with this caption. fileName is empty when there is none.
void FindHelpEntry(std::string_view caption, std::string& fileName, std::int32_t& helpType);

// Opens the help of a menu entry. Errors are raised again with the label of the action in front.
void HelpMenu(std::string_view caption, controls::Form& form);

// Button 3 pops the help menu up below the title bar's buttons; other buttons do nothing.
void ShowHelpMenuPopup(int button, controls::Form& form);

// F1: the application's help file at the form's page.
void ShowFormHelp(controls::Form& form);

} // namespace quillary::shell
