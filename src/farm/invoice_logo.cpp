#include "farm/invoice_logo.h"

#include "config/profile_store.h"
#include "config/suite_files.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <filesystem>
#include <system_error>

namespace quillary::farm {

namespace {

constexpr int kErrPathAccess = 75;

} // namespace

std::string InvoiceLogoPath() {
    return system::Join(config::GetDataRoot(), config::files::kInvoiceLogo);
}

void StoreInvoiceLogo(std::string_view path) {
    namespace fs = std::filesystem;
    const fs::path source = system::ToNative(path);
    const fs::path target = system::ToNative(InvoiceLogoPath());
    std::error_code error;
    if (fs::equivalent(source, target, error))
        return;
    // Beside the target first, so that a copy that breaks off leaves the present picture whole.
    fs::path fresh = target;
    fresh += ".new";
    fs::copy_file(source, fresh, fs::copy_options::overwrite_existing, error);
    if (!error)
        fs::rename(fresh, target, error);
    if (error) {
        std::error_code ignored;
        fs::remove(fresh, ignored);
        throw runtime::RunTimeError(kErrPathAccess, "QYSettings",
                                    "The picture could not be copied to " + target.string() + ": " +
                                        error.message() +
                                        ". Please check that the data folder can be written.");
    }
}

} // namespace quillary::farm
