#include "stock/season_numbers.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/farm_details.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "platform/runtime/conversions.h"
#include "stock/stock_page.h"

namespace quillary::stock {

namespace {

constexpr int kDialogWidth = 5700, kDialogHeight = 6600; // twips
constexpr int kSeasonBase = 1900;
constexpr int kSeasonWidth = 1500, kNumbersWidth = 1800; // twips

} // namespace

std::int16_t SeasonYear(double storedSeason) {
    return runtime::CInt(storedSeason + kSeasonBase);
}

void AddStockSeasonRows(std::int32_t classID, StockState& state) {
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    auto layers = db->OpenRecordset("SELECT top 1 [Map Layers].Season "
                                    "From [Map Layers] "
                                    "ORDER BY [Map Layers].Season DESC;",
                                    database::RecordsetType::Snapshot);
    if (layers->EOF_())
        return;
    // Meant: the season of a layer is text, and the last one in text order counts.
    const std::int16_t last = SeasonYear(runtime::Val(runtime::TextOf((*layers)["Season"].Value())));
    layers->Close();
    const std::int16_t first = SeasonYear(common::GetCurrentSeason(*db));

    auto details = db->OpenRecordset("SELECT DISTINCTROW [Stock Details].* "
                                     "From [Stock Details] "
                                     "Where((([Stock Details].[Class ID]) = " +
                                         std::to_string(classID) +
                                         ")) "
                                         "ORDER BY [Stock Details].Season;",
                                     database::RecordsetType::Dynaset);
    for (int season = first; season <= last; ++season) {
        details->FindFirst("Season =" + std::to_string(season));
        if (!details->NoMatch())
            continue;
        details->AddNew();
        (*details)["Class ID"] = classID;
        (*details)["Season"] = season;
        (*details)["Number In Mob"] = state.gNumberInMob;
        details->Update();
    }
    state.gNumberInMob = 0;
    details->Close();
    db->Close();
}

FrmStockNumbers::FrmStockNumbers(common::Screen& screen, const StockState& state)
    : controls::Form("frm_StockNumbers"), dat_StockDetails(*this, "dat_StockDetails"),
      shpBorder(*this, "shpBorder"), picFormPic(*this, "picFormPic"), lbl_Stockname(*this, "lbl_Stockname"),
      tgrd_StockDetails(*this, "tgrd_StockDetails"), cmd_Okay(*this, "cmd_Okay") {
    Layout = "season_numbers";
    Width = kDialogWidth;
    Height = kDialogHeight;
    Caption = "Number in Mob";
    lbl_Stockname.UseMnemonic = false;
    dat_StockDetails.RecordSource = "Stock Details";
    cmd_Okay.Caption = "&OK";
    cmd_Okay.Default = true;
    tgrd_StockDetails.AccessibleName = "Numbers by season";
    controls::Column& season = tgrd_StockDetails.AddColumn();
    season.DataField = "Season";
    season.Width = kSeasonWidth;
    season.Alignment = controls::Column::Align::Left;
    controls::Column& number = tgrd_StockDetails.AddColumn();
    number.DataField = "Number in mob";
    number.Width = kNumbersWidth;
    tgrd_StockDetails.SetDataSource(&dat_StockDetails);

    Load = [this, &screen, &state] { Form_Load(screen, state); };
    Unload = [this](bool& cancel) { Form_Unload(cancel); };
    cmd_Okay.Click = [this] { UnloadForm(); };
}

void FrmStockNumbers::Form_Load(common::Screen& screen, const StockState& state) {
    dat_StockDetails.DatabaseName = config::GetDataFileName();
    SetStockFormPicture(picFormPic, state);
    const std::string captions[] = {"Season", "Numbers"};
    common::SetGridCaptions(tgrd_StockDetails, captions);
    screen.Decorate(*this);
}

void FrmStockNumbers::Form_Unload(bool& cancel) {
    const bool saved = common::Trap("frm_StockNumbers.Form_Unload", [&] { dat_StockDetails.UpdateRecord(); });
    // What could not be stored stays on the screen; Escape drops it.
    if (!saved && tgrd_StockDetails.DataChanged)
        cancel = true;
}

void ShowStockNumbers(StockPage& page, database::Recordset& classes) {
    const std::int32_t classID = runtime::CLng(classes["Class ID"].Value());
    const std::string sql = "SELECT DISTINCTROW [Stock Details].Season, [Stock Details].[Number in mob] "
                            "From [Stock Details] "
                            "WHERE [Stock Details].[Class ID]=" +
                            std::to_string(classID) + ";";
    page.State().gStockTab = static_cast<std::int16_t>(page.tab_Stock.CurrTab.Get());
    FrmStockNumbers form(page.TheScreen(), page.State());
    form.LoadForm();
    form.lbl_Stockname.Caption = runtime::TextOf(classes["Class Name"].Value());
    form.dat_StockDetails.DatabaseName = config::GetDataFileName();
    form.dat_StockDetails.RecordSource = sql;
    form.dat_StockDetails.Refresh();
    form.ShowModal();
}

} // namespace quillary::stock
