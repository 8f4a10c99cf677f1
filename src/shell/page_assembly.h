#pragma once

#include "platform/database/engine.h"

namespace quillary::shell {

class FrmSetup;

// Reads the rows of Setup for the edition into gFrames and fixes what depends on the edition and the tax
// settings. Errors are reported under "gSetupSetup"; the screen then opens with what stands.
void gSetupSetup(FrmSetup& form);

// The Farm page's unit of area, by the farm's row.
void ShowFarmUnit(FrmSetup& form, database::Database& db);

// Builds the captions of tab_Setup from gFrames. Raises 9 when gFrames is empty.
void SetTabCaptions(FrmSetup& form);

// Brings the page at newTab of gFrames forward, set up and with the focus, and hides that of oldTab. Errors
// are reported under "ChangeZOrder".
void ChangeZOrder(int newTab, FrmSetup& form, int oldTab);

// Puts the focus on the first control of a page.
void SetPageFocus(int frame, FrmSetup& form);

// Ctrl and the accelerator letter of a page brings it forward, as a click on its tab does; Ctrl+T opens
// nothing. Errors are reported under "SelectTabByKey".
void SelectTabByKey(int keyCode, int shift, FrmSetup& form);

} // namespace quillary::shell
