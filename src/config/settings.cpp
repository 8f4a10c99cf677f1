#include "config/settings.h"

#include "config/globals.h"
#include "config/profile_store.h"
#include "config/suite_files.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::config {

namespace {

std::string TextSetting(std::string_view section, std::string_view key, std::string_view defaultValue) {
    std::string value = GetSuiteValue(section, key);
    return value.empty() ? std::string(defaultValue) : value;
}

// The country is asked for only when the key is empty, as are the folders below: each question may leave a
// line in the log.
std::string WordOfCountry(std::string_view key, std::string_view australian, std::string_view usual) {
    std::string value = GetSuiteValue("TAX", key);
    return value.empty() ? std::string(GetCountryCode() == kAustralia ? australian : usual) : value;
}

// Files of one farm lie under the data root, those of the whole installation in the common folder.
std::string FileSetting(std::string_view section, std::string_view key, std::string (*folder)(),
                        std::string_view name) {
    std::string value = GetSuiteValue(section, key);
    return value.empty() ? folder() + "\\" + std::string(name) : value;
}

std::int32_t LongSetting(std::string_view key, std::int32_t defaultValue) {
    return ValueAsLong(GetSuiteValue("TAX", key)).value_or(defaultValue);
}

runtime::Date DateSetting(std::string_view key) {
    const std::string value = GetSuiteValue("TAX", key);
    try {
        if (runtime::IsDate(value))
            return runtime::CDate(value);
    } catch (const runtime::RunTimeError&) {
        // No date after all.
    }
    return {};
}

bool IsUpper(const std::string& value, std::string_view word) {
    return runtime::UCase(value) == word;
}

bool BeginsWithY(std::string_view value) {
    return value.starts_with('Y') || value.starts_with('y');
}

} // namespace

std::string GetDiaryFileName() {
    return FileSetting("QUILLARY", "DiaryFileName", GetDataRoot, files::kDiaryData);
}
std::string GetWageFileName() {
    return FileSetting("QUILLARY", "WageFileName", GetDataRoot, files::kWageData);
}
std::string GetInternetFileName() {
    return FileSetting("QUILLARY", "InternetFileName", GetDataRoot, files::kInternetData);
}
std::string GetImportWizardFileName() {
    return FileSetting("QUILLARY", "ImportWizardFileName", GetDataRoot, files::kImportData);
}
std::string GetExportFileName() {
    return FileSetting("QUILLARY", "ExportFileName", GetCommonDirectory, files::kExportData);
}
std::string GetModuleFileName() {
    return FileSetting("QUILLARY", "ModuleFileName", GetCommonDirectory, files::kModuleData);
}
std::string GetWizardFileName() {
    return FileSetting("QUILLARY", "WizardFileName", GetCommonDirectory, files::kWizardData);
}
std::string GetMapFileName() {
    return FileSetting("MAP", "MapFileName", GetDataRoot, "map\\farmmap.gds");
}
std::string GetHelpDirectory() {
    return GetProgramDirectory() + "\\" + std::string(files::kHelpFolder);
}

std::string GetCatchPhrase() {
    return GetSuiteValue("START", "CatchPhrase");
}
std::string GetTaxName() {
    return TextSetting("TAX", "TaxName", "GST");
}
std::string GetTaxNumberName() {
    std::string value = GetSuiteValue("TAX", "TaxNumberName");
    return value.empty() ? GetTaxName() : value;
}
std::string GetPayAsYouEarn() {
    return TextSetting("TAX", "PayAsYouEarn", "PAYE");
}

// What the words and figures of each country are, where the ini file does not say.
std::string GetIncomeTaxName() {
    return WordOfCountry("IncomeTaxName", "PAYG Instalment", "Income Tax");
}
std::string GetInvoiceBasis() {
    // Meant: Australian users know this spelling from their reports.
    return WordOfCountry("InvoiceBasis", "Accural Basis", "Invoice Basis");
}
std::string GetPaymentBasis() {
    return WordOfCountry("PaymentBasis", "Cash Basis", "Payments Basis");
}
std::string GetTaxofficename() {
    std::string value = GetSuiteValue("IMPORT", "TaxOfficeName");
    if (!value.empty())
        return value;
    const std::int32_t country = GetCountryCode();
    return country == kAustralia ? "ATO Tax Office" : country == kUruguay ? "Tax Office" : "Inland Revenue";
}
std::string GetGSTRate() {
    // Meant: the key is read, so that the log does not miss it, and never used.
    GetSuiteValue("TAX", "GSTRate");
    const std::int32_t country = GetCountryCode();
    const float rate = country == kAustralia ? 10.0F : country == kUruguay ? 23.0F : 15.0F;
    return runtime::CStr(rate);
}
std::int32_t GetIncomeTaxFreq() {
    const auto months = ValueAsLong(GetSuiteValue("TAX", "IncomeTaxFreq"));
    return months ? *months : GetCountryCode() == kAustralia ? 3 : 12;
}

bool GetValueAddedTax() {
    return BeginsWithY(runtime::LTrim(GetSuiteValue("TAX", "ValueAddedTax")));
}
bool GetCashBasis() {
    return GetSuiteValue("TAX", "CashBasis") != "N";
} // meant: "n" is True
bool GetPAYENonCash() {
    return IsUpper(GetSuiteValue("TAX", "PAYENonCash"), "Y");
}
bool GetHideLocked() {
    return !IsUpper(GetSuiteValue("OPTIONS", "HideLocked"), "N");
}
bool GetCodeOrder() {
    return !IsUpper(GetSuiteValue("OPTIONS", "CodeOrder"), "FALSE");
}
bool GetUnsortedStock() {
    return !IsUpper(GetSuiteValue("SORT", "UnsortedStock"), "Y");
} // meant: inverse
bool GetDebug() {
    gDebugChecked = true;
    return BeginsWithY(GetSuiteValue("DEBUG", "Debug"));
}
bool GetDevelopment() {
    return IsUpper(GetSuiteValue("DEBUG", "Development"), "Y");
}

std::int32_t GetPAYEAccount() {
    return LongSetting("PAYEAccount", 401002);
}
std::int32_t GetPaymentAccount() {
    return LongSetting("PaymentAccount", 401005);
}
std::int32_t GetWageAccount() {
    return LongSetting("WageAccount", 401001);
}
std::int32_t GetAdjustAccount() {
    return LongSetting("AdjustAccount", 401008);
}
std::int32_t GetPAYEAddressID() {
    return LongSetting("PAYEAddressID", 0);
}
std::int32_t GetPAYEFreq() {
    return LongSetting("PAYEFreq", 1);
}
runtime::Date GetPAYEStartDate() {
    return DateSetting("PAYEStart");
}
runtime::Date GetITaxStartDate() {
    return DateSetting("ITaxStart");
}
std::string GetPAYEStartText(const std::function<std::string()>& financialYear) {
    std::string value = GetSuiteValue("TAX", "PAYEStart");
    return runtime::IsDate(value) ? value : financialYear();
}

std::string GetColour(std::string_view name) {
    return GetSuiteValue("COLOURS", name);
}
std::string GetHelpContext(std::string_view name) {
    return GetSuiteValue("HELPCONTEXTIDS", name);
}

} // namespace quillary::config
