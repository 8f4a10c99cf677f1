#pragma once

#include "platform/runtime/variant.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// One reader a setting. Each reads its key of the suite's ini file at each call and supplies the default;
// none fails. Folders and firm: profile_store.h. Country and language: tokens.h.
namespace quillary::config {

// Files; not checked for being there.
std::string GetDiaryFileName();
std::string GetWageFileName();
std::string GetInternetFileName();
std::string GetImportWizardFileName();
std::string GetExportFileName();
std::string GetModuleFileName();
std::string GetWizardFileName();
std::string GetMapFileName();
std::string GetHelpDirectory();

// Names and wording.
std::string GetCatchPhrase();
std::string GetTaxName();
std::string GetTaxNumberName();
std::string GetPayAsYouEarn();
std::string GetIncomeTaxName();
std::string GetInvoiceBasis();
std::string GetPaymentBasis();
std::string GetTaxofficename();

// Switches.
bool GetValueAddedTax();
bool GetCashBasis();
bool GetPAYENonCash();
bool GetHideLocked();
bool GetCodeOrder();
bool GetUnsortedStock(); // True for "sorted", despite its name
bool GetDebug();         // sets gDebugChecked
bool GetDevelopment();

// Numbers and dates of the tax settings.
std::string GetGSTRate(); // text of a number, per country
std::int32_t GetPAYEAccount();
std::int32_t GetPaymentAccount();
std::int32_t GetWageAccount();
std::int32_t GetAdjustAccount();
std::int32_t GetPAYEAddressID();
std::int32_t GetPAYEFreq();       // months
std::int32_t GetIncomeTaxFreq();  // months
runtime::Date GetPAYEStartDate(); // day 0 when there is none
runtime::Date GetITaxStartDate(); // day 0 when there is none
// financialYear: the farm's, which a room above reads; called only when the key holds no date.
std::string GetPAYEStartText(const std::function<std::string()>& financialYear);

// Sections whose keys the callers choose.
std::string GetColour(std::string_view name);      // "r,g,b"
std::string GetHelpContext(std::string_view name); // a number as text

} // namespace quillary::config
