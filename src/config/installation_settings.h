#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The ini file of a new installation, and the words of the countries in it.
namespace quillary::config {

struct InstallationOptions;

inline constexpr int kSampleSeason = 2026; // of the sample farm's rows

struct CountryWords {
    std::string_view language, taxName, taxNumberName, payAsYouEarn, incomeTaxName, invoiceBasis,
        paymentBasis, taxOffice;
    int rate;               // percent
    int incomeTaxFrequency; // months
};
// New Zealand's for a country without words of its own.
const CountryWords& WordsOf(std::int32_t country);

// The whole file. The level Empty names the folders and files alone, Minimal switches the tax on; the
// others hold every key that the program reads, so that nothing is missed in its log.
std::string IniText(const InstallationOptions& options);

} // namespace quillary::config
