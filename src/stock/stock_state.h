#pragma once

#include "platform/controls/picture_box.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace quillary::stock {

inline constexpr std::size_t kStockTabs = 5;

// What the stock page and its dialogs pass each other. It lives as long as the screen does; nobody else
// reads it.
struct StockState {
    std::array<std::string, kStockTabs> gStockIcons; // [Stock Types].Icon by tab
    std::int16_t gStockTab = 0;                      // the tab in use, for the dialogs' picture
    std::string gStockName;                          // "": nothing is to be added
    std::int32_t gNumberInMob = 0;                   // back to 0 once the season rows are written
    bool gIndividual = false;                        // a single tagged animal
    std::string gSex;                                // "F" or "M"
};

// Shows the icon of a tab. A picture that is missing or cannot be read leaves the former one. 9 for a tab
// that has no icon of its own.
void ShowStockIcon(controls::PictureBox& picture, const StockState& state, int tab);

// The same for a dialog, with the tab in use.
void SetStockFormPicture(controls::PictureBox& picture, const StockState& state);

} // namespace quillary::stock
