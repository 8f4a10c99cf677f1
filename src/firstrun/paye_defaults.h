#pragma once

#include "platform/database/engine.h"

#include <cstdint>
#include <string>

// What the Setup Information dialog stores for the wage tax: the tax office's address, the record of
// "PayeInfo" and the secondary headings that it names.
namespace quillary::firstrun {

// Stores the tax office's name in its address, then checks the accounts. False when the name is empty, or
// after an error, which is reported under " UpdatePAYEInfo".
bool UpdatePAYEInfo(database::Database& db, const std::string& taxOffice);

// Fills what is Null in the one record of "PayeInfo" from the settings, making the record when there is
// none, and names the headings of the four accounts. False after an error, which is reported under
// " CheckPAYEAccounts".
bool CheckPAYEAccounts(database::Database& db);

// Makes or renames a secondary heading. A number without a main heading is passed over. Errors are reported
// under " CheckPayeAcctsseccode".
void CheckPayeAcctsSecCodes(database::Database& db, std::int32_t code, const std::string& name);

} // namespace quillary::firstrun
