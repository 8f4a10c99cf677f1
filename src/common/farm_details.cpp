#include "common/farm_details.h"

#include "config/globals.h"
#include "config/settings.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"

#include <optional>

namespace quillary::common {

using runtime::Date;
using runtime::Variant;

namespace {

constexpr int kSeasonBase = 1900;      // seasons are stored as the year less 1900
constexpr int kDefaultSeason = 95;     // where none is stored
constexpr int kFirstYear = 1995;       // dates and seasons before it count as never set
constexpr int kFinancialYearMonth = 7; // 1 July

// One field of the one row: nullopt when there is no row.
std::optional<Variant> ReadField(database::Database& db, std::string_view field) {
    auto farmDetails = db.OpenRecordset("Farm Details");
    std::optional<Variant> value;
    if (!farmDetails->EOF_())
        value = (*farmDetails)[field].Value();
    farmDetails->Close();
    return value;
}

bool HasText(const std::optional<Variant>& value) {
    return value && !runtime::TextOf(*value).empty();
}

std::optional<Date> ReadDate(database::Database& db, std::string_view field) {
    const auto value = ReadField(db, field);
    if (!value || !runtime::IsDate(*value))
        return std::nullopt;
    return runtime::CDate(*value);
}

int YearOf(const std::optional<Date>& date) {
    return runtime::Split(date.value_or(Date{})).year;
}

Date FirstOfFinancialMonth(database::Database& db, int year) {
    const Date financialYear = runtime::CDate(GetFinancialYear(db));
    return runtime::DateSerial(year, runtime::Split(financialYear).month, 1);
}

} // namespace

std::int16_t GetCurrentSeason(database::Database& db) {
    const auto season = ReadField(db, "Current Season");
    if (!HasText(season) || runtime::CLng(*season) == 0)
        return kDefaultSeason;
    return runtime::CInt(*season);
}

std::int16_t GetSeasonYear(database::Database& db) {
    const auto season = ReadField(db, "Current Season");
    if (!season || season->IsNull())
        return 0;
    return runtime::CInt(runtime::CLng(*season) + kSeasonBase);
}

bool IsMetric(database::Database& db) {
    const auto units = ReadField(db, "Diary Units");
    return HasText(units) && runtime::TextOf(*units) == "M"; // the case counts: "m" is not metric
}

std::string GetFarmName(database::Database& db) {
    const auto name = ReadField(db, "Farm Name");
    if (!name)
        return {};
    if (HasText(name))
        return runtime::TextOf(*name);
    switch (config::gModuleID) {
    case config::kBusinessEdition:
        return "Your Business Name";
    case config::kClubEdition:
        return "Your Club Name";
    case config::kFarmEdition:
    case config::kDiaryEdition:
        return "Your Farm Name";
    default:
        return {};
    }
}

std::string GetVersion(database::Database& db) {
    return runtime::TextOf(ReadField(db, "Version").value_or(Variant::Null()));
}

std::int32_t GetEffectiveArea(database::Database& db) {
    if (!config::HasMapAndArea())
        return 0;
    const auto area = ReadField(db, "Effective Area");
    return HasText(area) ? runtime::CLng(*area) : 0;
}

std::string GetFinancialYear(database::Database& db) {
    if (const auto stored = ReadDate(db, "Financial Year"))
        return runtime::CStr(*stored);
    int year = GetSeasonYear(db);
    if (year == 0) {
        const auto today = runtime::Split(runtime::Today());
        year = today.month < kFinancialYearMonth ? today.year - 1 : today.year;
    }
    return runtime::CStr(runtime::MakeDate(year, kFinancialYearMonth, 1));
}

std::string GetBudgetYear(database::Database& db) {
    auto date = ReadDate(db, "Budget Year");
    if (YearOf(date) < kFirstYear)
        date = FirstOfFinancialMonth(db, GetCurrentSeason(db) + kSeasonBase);
    return runtime::CStr(*date);
}

Date GetGSTStartDate(database::Database& db) {
    auto date = ReadDate(db, "GST Start Date");
    if (YearOf(date) < kFirstYear) {
        date = FirstOfFinancialMonth(db, GetMapFirstSeason(db));
        auto farmDetails = db.OpenRecordset("Farm Details");
        farmDetails->Edit();
        (*farmDetails)["GST Start Date"] = *date;
        farmDetails->Update();
        farmDetails->Close();
    }
    return *date;
}

std::int16_t GetMapFirstSeason(database::Database& db) {
    int year = GetCurrentSeason(db) + kSeasonBase;
    auto layers = db.OpenRecordset("SELECT top 1 [Map Layers].Season "
                                   "FROM [Map Layers] "
                                   "WHERE ([Map Layers].Use='C') "
                                   "ORDER BY [Map Layers].Season;");
    if (!layers->EOF_())
        year = static_cast<int>(runtime::Val(runtime::TextOf((*layers)["Season"].Value()))) + kSeasonBase;
    layers->Close();
    return runtime::CInt(year < kFirstYear ? kFirstYear : year);
}

std::string GetPAYEStartText(database::Database& db) {
    return config::GetPAYEStartText([&] { return GetFinancialYear(db); });
}

} // namespace quillary::common
