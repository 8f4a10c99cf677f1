#include "config/settings.h"

#include "config/configuration_fixture.h"
#include "config/locale_info.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"

#include <functional>

namespace quillary::config {

using Settings = test::ConfigurationTest;

namespace {

// The readers of every type, as text.
template <class T>
std::function<std::string()> Text(T (*reader)()) {
    return [reader]() -> std::string {
        if constexpr (std::is_same_v<T, std::string>)
            return reader();
        else if constexpr (std::is_same_v<T, bool>)
            return reader() ? "True" : "False";
        else if constexpr (std::is_same_v<T, runtime::Date>)
            return runtime::NumberText(reader().days);
        else
            return std::to_string(reader());
    };
}

struct Case {
    std::function<std::string()> reader;
    const char* ini;
    std::string result;
};

} // namespace

TEST_F(Settings, OfFiles) {
    const std::string data = folders_->documents + "\\data";
    const std::string common = folders_->documents + "\\Quillary\\Common";
    const struct {
        std::string (*reader)();
        const char *section, *key;
        std::string fallback;
    } cases[] = {
        {GetDiaryFileName, "QUILLARY", "DiaryFileName", data + "\\Diary.mdb"},
        {GetWageFileName, "QUILLARY", "WageFileName", data + "\\Wage32.mdb"},
        {GetInternetFileName, "QUILLARY", "InternetFileName", data + "\\Internet.mdb"},
        {GetImportWizardFileName, "QUILLARY", "ImportWizardFileName", data + "\\Import.mdb"},
        {GetExportFileName, "QUILLARY", "ExportFileName", common + "\\Export.mdb"},
        {GetModuleFileName, "QUILLARY", "ModuleFileName", common + "\\Modules.mdb"},
        {GetWizardFileName, "QUILLARY", "WizardFileName", common + "\\Wizards.mdb"},
        {GetMapFileName, "MAP", "MapFileName", data + "\\map\\farmmap.gds"},
    };
    for (const auto& c : cases) {
        const std::string section = "[" + std::string(c.section) + "]\n";
        WriteIni("");
        EXPECT_EQ(c.reader(), c.fallback);
        WriteIni(section + c.key + "=\n");
        EXPECT_EQ(c.reader(), c.fallback);
        WriteIni(section + c.key + "=/native/file.mdb\n");
        EXPECT_EQ(c.reader(), "/native/file.mdb");
    }
    EXPECT_EQ(GetHelpDirectory(), folders_->program + "\\Help");
}

TEST_F(Settings, OfEveryOtherKind) {
    const std::string day = runtime::NumberText(runtime::MakeDate(2008, 4, 1).days);
    const Case cases[] = {
        // Words, some by country.
        {Text(GetCatchPhrase), "", ""},
        {Text(GetCatchPhrase), "[START]\nCatchPhrase=Grow", "Grow"},
        {Text(GetTaxName), "", "GST"},
        {Text(GetTaxName), "[TAX]\nTaxName=IVA", "IVA"},
        {Text(GetTaxNumberName), "", "GST"},
        {Text(GetTaxNumberName), "[TAX]\nTaxName=IVA", "IVA"},
        {Text(GetTaxNumberName), "[TAX]\nTaxName=IVA\nTaxNumberName=ABN", "ABN"},
        {Text(GetPayAsYouEarn), "", "PAYE"},
        {Text(GetPayAsYouEarn), "[TAX]\nPayAsYouEarn=PAYG", "PAYG"},
        {Text(GetIncomeTaxName), "", "Income Tax"},
        {Text(GetIncomeTaxName), "[WINDOWS]\nCountry=61", "PAYG Instalment"},
        {Text(GetIncomeTaxName), "[WINDOWS]\nCountry=61\n[TAX]\nIncomeTaxName=X", "X"},
        {Text(GetInvoiceBasis), "", "Invoice Basis"},
        {Text(GetInvoiceBasis), "[WINDOWS]\nCountry=61", "Accural Basis"},
        {Text(GetPaymentBasis), "", "Payments Basis"},
        {Text(GetPaymentBasis), "[WINDOWS]\nCountry=61", "Cash Basis"},
        {Text(GetPaymentBasis), "[WINDOWS]\nCountry=598", "Payments Basis"},
        {Text(GetTaxofficename), "", "Inland Revenue"},
        {Text(GetTaxofficename), "[WINDOWS]\nCountry=61", "ATO Tax Office"},
        {Text(GetTaxofficename), "[WINDOWS]\nCountry=598\n[IMPORT]\nTaxOfficeName=", "Tax Office"},
        {Text(GetTaxofficename), "[IMPORT]\nTaxOfficeName=DGI\n[WINDOWS]\nCountry=598", "DGI"},
        // Switches.
        {Text(GetValueAddedTax), "", "False"},
        {Text(GetValueAddedTax), "[TAX]\nValueAddedTax=  yes", "True"},
        {Text(GetValueAddedTax), "[TAX]\nValueAddedTax=\"  Y\"", "True"},
        {Text(GetValueAddedTax), "[TAX]\nValueAddedTax=1", "False"},
        {Text(GetCashBasis), "", "True"},
        {Text(GetCashBasis), "[TAX]\nCashBasis=n", "True"},
        {Text(GetCashBasis), "[TAX]\nCashBasis=N", "False"},
        {Text(GetPAYENonCash), "", "False"},
        {Text(GetPAYENonCash), "[TAX]\nPAYENonCash=y", "True"},
        {Text(GetPAYENonCash), "[TAX]\nPAYENonCash=yes", "False"},
        {Text(GetHideLocked), "", "True"},
        {Text(GetHideLocked), "[OPTIONS]\nHideLocked=n", "False"},
        {Text(GetHideLocked), "[Options]\nHideLocked=N", "False"},
        {Text(GetHideLocked), "[OPTIONS]\nHideLocked=No", "True"},
        {Text(GetCodeOrder), "", "True"},
        {Text(GetCodeOrder), "[OPTIONS]\nCodeOrder=false", "False"},
        {Text(GetCodeOrder), "[OPTIONS]\nCodeOrder=N", "True"},
        {Text(GetUnsortedStock), "", "True"},
        {Text(GetUnsortedStock), "[SORT]\nUnsortedStock=y", "False"},
        {Text(GetUnsortedStock), "[SORT]\nUnsortedStock=N", "True"},
        {Text(GetDebug), "", "False"},
        {Text(GetDebug), "[DEBUG]\nDebug=yonder", "True"},
        {Text(GetDebug), "[DEBUG]\nDebug=\" Y\"", "False"},
        {Text(GetDevelopment), "", "False"},
        {Text(GetDevelopment), "[DEBUG]\nDevelopment=y", "True"},
        {Text(GetDevelopment), "[DEBUG]\nDevelopment=Yes", "False"},
        // The rate is the country's, whatever the file says.
        {Text(GetGSTRate), "", "15"},
        {Text(GetGSTRate), "[WINDOWS]\nCountry=61\n[TAX]\nGSTRate=12.5", "10"},
        {Text(GetGSTRate), "[WINDOWS]\nCountry=61\n[TAX]\nGSTRate=abc", "10"},
        {Text(GetGSTRate), "[WINDOWS]\nCountry=598", "23"},
        {Text(GetGSTRate), "[WINDOWS]\nCountry=55", "15"},
        // Numbers.
        {Text(GetPAYEAccount), "", "401002"},
        {Text(GetPAYEAccount), "[TAX]\nPAYEAccount=5", "5"},
        {Text(GetPAYEAccount), "[TAX]\nPAYEAccount=1,234", "1234"},
        {Text(GetPAYEAccount), "[TAX]\nPAYEAccount=5a", "401002"},
        {Text(GetPAYEAccount), "[TAX]\nPAYEAccount=99999999999", "401002"},
        {Text(GetPaymentAccount), "", "401005"},
        {Text(GetPaymentAccount), "[TAX]\nPaymentAccount=0", "0"},
        {Text(GetWageAccount), "", "401001"},
        {Text(GetWageAccount), "[TAX]\nWageAccount=2.5", "2"}, // halves to even
        {Text(GetAdjustAccount), "", "401008"},
        {Text(GetAdjustAccount), "[TAX]\nAdjustAccount=-1", "-1"},
        {Text(GetPAYEAddressID), "", "0"},
        {Text(GetPAYEAddressID), "[TAX]\nPAYEAddressID=7", "7"},
        {Text(GetPAYEFreq), "", "1"},
        {Text(GetPAYEFreq), "[TAX]\nPAYEFreq=2", "2"},
        {Text(GetIncomeTaxFreq), "", "12"},
        {Text(GetIncomeTaxFreq), "[WINDOWS]\nCountry=61", "3"},
        {Text(GetIncomeTaxFreq), "[WINDOWS]\nCountry=61\n[TAX]\nIncomeTaxFreq=6", "6"},
        // Dates, in the order of the region; day 0 for none.
        {Text(GetPAYEStartDate), "", "0"},
        {Text(GetPAYEStartDate), "[TAX]\nPAYEStart=1/4/2008", day},
        {Text(GetPAYEStartDate), "[TAX]\nPAYEStart=soon", "0"},
        {Text(GetITaxStartDate), "[TAX]\nITaxStart=1 April 2008", day},
        {Text(GetITaxStartDate), "[TAX]\nITaxStart=31/2/2008 25:00", "0"},
        // Country and language.
        {Text(GetCountryCode), "", "64"},
        {Text(GetCountryCode), "[WINDOWS]\nCountry=33", "33"},
        {Text(GetCountryCode), "[WINDOWS]\nCountry=x", "64"},
        {Text(GetCountryName), "[WINDOWS]\nCountry=33", "New Zealand"},
        {Text(GetCountryName), "[WINDOWS]\nCountry=55", "Brazil"},
        {Text(GetCountryName), "[WINDOWS]\nCountry=61", "Australia"},
        {Text(GetCountryName), "[WINDOWS]\nCountry=598", "Uruguay"},
        {Text(GetLanguage), "", "English"},
        {Text(GetLanguage), "[WINDOWS]\nLanguage=Latin", "Latin"},
        {[] { return GetColour("QYHeader"); }, "[COLOURS]\nQYHeader=10,20,30", "10,20,30"},
        {[] { return GetHelpContext("SetupHowDoI"); }, "[HELPCONTEXTIDS]\nSetupHowDoI=850", "850"},
        {[] { return GetHelpContext("SetupHowDoI"); }, "", ""},
        {[] { return GetPAYEStartText([] { return "1/07/2007"; }); }, "", "1/07/2007"},
        {[] { return GetPAYEStartText([] { return "1/07/2007"; }); }, "[TAX]\nPAYEStart=never", "1/07/2007"},
        {[] { return GetPAYEStartText([] { return "1/07/2007"; }); }, "[TAX]\nPAYEStart=1-Apr-08",
         "1-Apr-08"},
    };
    for (const Case& c : cases) {
        WriteIni(c.ini);
        EXPECT_EQ(c.reader(), c.result) << "line " << &c - cases << ": " << c.ini;
    }
}

TEST_F(Settings, OfTheDebuggerAreRemembered) {
    EXPECT_FALSE(gDebugChecked);
    GetDebug();
    EXPECT_TRUE(gDebugChecked);
}

TEST_F(Settings, OfTheSystemChooseCountryAndLanguageLast) {
    const struct {
        const char *locale, *winIni;
        std::int32_t country;
        const char* language;
    } cases[] = {
        {"pt_BR", nullptr, 55, "Portuguese"},
        {"es_UY", nullptr, 598, "Spanish"},
        {"de_DE", nullptr, 64, "German"}, // 49 is no country of the suite
        {"en_AU", nullptr, 61, "English"},
        {"pt_BR", "[intl]\niCountry=33\nsLanguage=FRA\n", 64, "English"},
        {"pt_BR", "[Intl]\niCountry=61\nsLanguage=esn\n", 61, "Spanish"},
        {"pt_BR", "[other]\n", 64, "English"},
    };
    for (const auto& c : cases) {
        runtime::SetLocale(c.locale);
        if (c.winIni)
            root_.Write("config/WIN.INI", c.winIni);
        EXPECT_EQ(GetCountryCode(), c.country) << c.locale;
        EXPECT_EQ(GetLanguage(), c.language) << c.locale;
    }
    WriteIni("[WINDOWS]\nCountry=64\nLanguage=English\n");
    EXPECT_EQ(GetCountryCode(), 64);
    EXPECT_EQ(GetLanguage(), "English");
}

TEST_F(Settings, OfTheRegion) {
    EXPECT_EQ(GetDateOrder(), "1");
    runtime::SetLocale("en_US");
    EXPECT_EQ(GetDateOrder(), "0");
    EXPECT_EQ(GetLocaleValue(0x7FFFFFF), "");
    EXPECT_EQ(TrimAtNul(std::string_view("ab\0c", 4)), "ab");
    EXPECT_EQ(TrimAtNul(std::string_view("\0c", 2)), "");
}

} // namespace quillary::config
