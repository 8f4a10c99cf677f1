#include "stock/stock_state.h"

#include "common/pictures.h"
#include "config/profile_store.h"
#include "config/suite_files.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

namespace quillary::stock {

void ShowStockIcon(controls::PictureBox& picture, const StockState& state, int tab) {
    if (tab < 0 || static_cast<std::size_t>(tab) >= state.gStockIcons.size())
        throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
    const std::string folder = system::Join(config::GetProgramDirectory(), config::files::kResourceFolder);
    const std::string path = system::Join(folder, state.gStockIcons[static_cast<std::size_t>(tab)]);
    if (common::IsPicture(path))
        picture.Picture = path;
}

void SetStockFormPicture(controls::PictureBox& picture, const StockState& state) {
    ShowStockIcon(picture, state, state.gStockTab);
}

} // namespace quillary::stock
