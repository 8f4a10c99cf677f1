#pragma once

#include <string>
#include <string_view>

// The picture that the suite prints on invoices: one file in the data root, whatever its kind.
namespace quillary::farm {

std::string InvoiceLogoPath();

// Copies the picture over the present one; on failure the present one stays. Raises 75 when it cannot be
// read or written.
void StoreInvoiceLogo(std::string_view path);

} // namespace quillary::farm
