#include "config/installation_settings.h"

#include "config/installation.h"
#include "config/suite_files.h"

namespace quillary::config {

namespace {

// "Accural" is the wording that Australian users see; it stays so.
constexpr CountryWords kWordsNewZealand{
    "English",        "GST", "GST", "PAYE", "Income Tax", "Invoice Basis", "Payments Basis",
    "Inland Revenue", 15,    12};
constexpr CountryWords kWordsAustralia{
    "English",        "GST", "ABN", "PAYG", "PAYG Instalment", "Accural Basis", "Cash Basis",
    "ATO Tax Office", 10,    3};
constexpr CountryWords kWordsBrazil{
    "Portuguese",      "ICMS", "CNPJ", "IRRF", "Imposto de Renda", "Regime de Competência", "Regime de Caixa",
    "Receita Federal", 15,     12};
constexpr CountryWords kWordsUruguay{"Spanish",        "IVA", "RUT", "IRPF", "IRAE", "Base Devengado",
                                     "Base Percibido", "DGI", 23,    12};

class IniWriter {
public:
    void Section(std::string_view name) {
        text_ += (text_.empty() ? "[" : "\n[") + std::string(name) + "]\n";
    }
    void Key(std::string_view key, std::string_view value) {
        text_ += std::string(key) + "=" + std::string(value) + "\n";
    }
    std::string Text() const { return text_; }

private:
    std::string text_;
};

} // namespace

const CountryWords& WordsOf(std::int32_t country) {
    switch (country) {
    case kAustralia:
        return kWordsAustralia;
    case kBrazil:
        return kWordsBrazil;
    case kUruguay:
        return kWordsUruguay;
    default:
        return kWordsNewZealand;
    }
}

std::string IniText(const InstallationOptions& options) {
    const auto& [common, data, program] = options.layout;
    IniWriter ini;
    ini.Section("QUILLARY");
    ini.Key("ProgramDirectory", program.string());
    ini.Key("DataRoot", data.string());
    ini.Key("DataFileName", (data / files::kFarmData).string());
    ini.Key("DiaryFileName", (data / files::kDiaryData).string());
    ini.Key("WageFileName", (data / files::kWageData).string());
    ini.Key("ModuleFileName", (common / files::kModuleData).string());
    if (options.level == InstallationLevel::Empty) {
        return ini.Text();
    }
    if (options.level == InstallationLevel::Minimal) {
        ini.Section("TAX");
        ini.Key("ValueAddedTax", "Y");
        return ini.Text();
    }
    ini.Key("InternetFileName", (data / files::kInternetData).string());
    ini.Key("ImportWizardFileName", (data / files::kImportData).string());
    ini.Key("ExportFileName", (common / files::kExportData).string());
    ini.Key("WizardFileName", (common / files::kWizardData).string());
    ini.Section("MAP");
    ini.Key("MapFileName", (data / "map" / files::kFarmMap).string());

    const CountryWords& words = WordsOf(options.country);
    ini.Section("WINDOWS");
    ini.Key("Country", std::to_string(options.country));
    ini.Key("Language", words.language);
    ini.Section("START");
    ini.Key("Firm", "Quillary");
    ini.Key("CatchPhrase", "The whole farm on one page");
    ini.Section("TAX");
    // The diary keeps no accounts, so it needs no tax page.
    ini.Key("ValueAddedTax", options.moduleNumber == kDiaryEdition ? "N" : "Y");
    ini.Key("CashBasis", "Y");
    ini.Key("TaxName", words.taxName);
    ini.Key("TaxNumberName", words.taxNumberName);
    ini.Key("GSTRate", std::to_string(words.rate));
    ini.Key("InvoiceBasis", words.invoiceBasis);
    ini.Key("PaymentBasis", words.paymentBasis);
    ini.Key("PayAsYouEarn", words.payAsYouEarn);
    ini.Key("PAYEAccount", "401002");
    ini.Key("WageAccount", "401001");
    ini.Key("PaymentAccount", "401005");
    ini.Key("AdjustAccount", "401008");
    ini.Key("PAYEFreq", "1");
    ini.Key("PAYEStart", "");
    ini.Key("PAYENonCash", "N");
    ini.Key("PAYEAddressID", "1");
    ini.Key("IncomeTaxName", words.incomeTaxName);
    ini.Key("IncomeTaxFreq", std::to_string(words.incomeTaxFrequency));
    ini.Key("ITaxStart", "");
    ini.Section("IMPORT");
    ini.Key("TaxOfficeName", words.taxOffice);
    ini.Section("OPTIONS");
    ini.Key("HideLocked", "Y");
    ini.Key("CodeOrder", "TRUE");
    ini.Section("SORT");
    ini.Key("UnsortedStock", "N");
    ini.Section("COLOURS");
    ini.Key("QYHeader", "56,142,60");
    ini.Section("HELPCONTEXTIDS");
    ini.Key("SetupHowDoI", "850");
    ini.Section("DEBUG");
    ini.Key("Debug", "N");
    ini.Key("Development", "N");
    return ini.Text();
}

} // namespace quillary::config
