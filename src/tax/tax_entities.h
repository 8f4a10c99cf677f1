#pragma once

// The tax entities of the farm: the rows of "Partners", of which one is the default.
namespace quillary::tax {

// Opens the table editor on the entities, and tidies them up when it has closed. The errors of writing the
// editor's column file: nothing is opened then.
void EditTaxEntities();

// Deletes entities without a name and leaves the mark of the first default that has a number; that number
// becomes the farm's own. Errors are reported under "UpdatePartnerTable".
void UpdatePartnerTable();

} // namespace quillary::tax
