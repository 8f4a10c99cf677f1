#pragma once

#include "platform/database/engine.h"
#include "platform/runtime/variant.h"

#include <cstdint>
#include <string>

// Typed readers of "Farm Details", the one-row table of the farm's identity and year settings, with the
// defaults that belong to its fields. Each opens the table on the open database that it is given, reads and
// closes. A missing table or field raises to the caller (3078, 3265).
namespace quillary::common {

// The season's year less 1900 as stored; 95 when the field is empty or 0, or there is no row.
std::int16_t GetCurrentSeason(database::Database& db);
// The season's year with four digits; 0 when there is no row or the field is Null.
std::int16_t GetSeasonYear(database::Database& db);

bool IsMetric(database::Database& db); // "Diary Units" is exactly "M"
// The farm's name; where it is empty the edition's own wording, where there is no row the empty text.
std::string GetFarmName(database::Database& db);
std::string GetVersion(database::Database& db);
// Whole hectares or acres, in the editions with a map (14, 18); 0 in the others and when empty.
std::int32_t GetEffectiveArea(database::Database& db);

// First day of the financial year as text of the regional settings: the stored date, else 1 July of the
// year in which the current season began, else of the present financial year.
std::string GetFinancialYear(database::Database& db);
// First day of the budget year as text: the stored date unless it lies before 1995, else the first of the
// financial year's month in the current season's year.
std::string GetBudgetYear(database::Database& db);
// Start of the tax periods. A missing date, or one before 1995, is replaced in the table by the first of the
// financial year's month in the map's first season: the one reader that writes.
runtime::Date GetGSTStartDate(database::Database& db);
// First season of the crop layers of the map, else the current season; never before 1995.
std::int16_t GetMapFirstSeason(database::Database& db);

// The start of the PAYE periods as text: the setting when it is a date, else the financial year's start.
std::string GetPAYEStartText(database::Database& db);

} // namespace quillary::common
