#include "stock/delete_mob.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "common/restore_points.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/engine.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"

namespace quillary::stock {

using database::kFailOnError;
using runtime::RunTimeError;

namespace {

constexpr int kDialogWidth = 6750, kDialogHeight = 7200; // twips

std::shared_ptr<database::Database> OpenFarm() {
    return config::DbEngine().OpenDatabase(config::GetDataFileName());
}

bool IsEmpty(database::Database& db, const std::string& sql) {
    return db.OpenRecordset(sql)->EOF_();
}

// Meant: False only for a class that is present in all five places at once, and then nothing happens; one
// that is missing from any of them goes on. The name says the opposite.
bool FindUnusedPlace(std::int32_t classID, const std::string& className) {
    auto db = OpenFarm();
    for (const char* query : {"SELECT DISTINCTROW [Feed Demand].[Stock Name] "
                              "From [Feed Demand] "
                              "WHERE ((([Feed Demand].[Stock Name])='",
                              "SELECT DISTINCTROW [Feed Demand Profile].[Class Name] "
                              "From [Feed Demand Profile] "
                              "WHERE ((([Feed Demand Profile].[Class Name])='",
                              "SELECT DISTINCTROW [Feed Profile].[Class Name] "
                              "From [Feed Profile] "
                              "WHERE ((([Feed Profile].[Class Name])='",
                              "SELECT DISTINCTROW [Budget Details].Description "
                              "From [Budget Details] "
                              "WHERE ((([Budget Details].Description)='"})
        if (IsEmpty(*db, query + className + "'));"))
            return true;
    db->Close();
    db = config::DbEngine().OpenDatabase(config::GetDiaryFileName());
    // Meant: MobID is compared with the class here, and with the class's season row when it is mapped.
    return IsEmpty(*db, "SELECT DISTINCTROW AnimalMultipleList.MobID "
                        "From AnimalMultipleList "
                        "WHERE (((AnimalMultipleList.MobID)=" +
                            std::to_string(classID) + "));");
}

bool CheckMobUsed(std::int32_t classID, const std::string& className) {
    bool result = false;
    common::Trap("CheckMobUsed", [&] {
        try {
            result = FindUnusedPlace(classID, className);
        } catch (const RunTimeError& error) {
            if (error.Number() != database::kErrQueryText)
                throw;
            common::ShowMessage(common::Message(
                "Need to edit the Stock class name and remove the apostrphy first.", "Invalid Data"));
        }
    });
    return result;
}

bool MapToMob(std::int32_t classID, const std::string& className, common::Screen& owner,
              FarmOfCascade& farm) {
    bool result = false;
    common::Trap("MapToMob", [&] {
        FrmChooseMob form(owner, farm);
        form.DeleteMobName = className;
        form.DelMobID = classID;
        form.ShowModal();
        result = !form.CancelDelete;
    });
    return result;
}

bool MapDiaryMobs(FarmOfCascade& cascade, std::int32_t deletedID, std::int32_t chosenID) {
    bool result = false;
    try {
        auto diary = config::DbEngine().OpenDatabase(config::GetDiaryFileName());
        database::Database& farm = cascade.Open();
        // The crosstab's columns stand in the order of the class numbers, behind the season.
        const int deletedColumn = deletedID < chosenID ? 1 : 2;
        const int chosenColumn = deletedID < chosenID ? 2 : 1;
        auto seasons = farm.OpenRecordset(
            "TRANSFORM Sum([Stock Details].[Mob Details ID]) AS [SumOfMob Details ID] "
            "SELECT [Stock Details].Season "
            "From [Stock Details] "
            "Where ((([Stock Details].[Class ID]) = " +
                std::to_string(deletedID) + " Or ([Stock Details].[Class ID]) = " + std::to_string(chosenID) +
                ")) "
                "GROUP BY [Stock Details].Season "
                "ORDER BY [Stock Details].[Class ID] "
                "PIVOT [Stock Details].[Class ID];",
            database::RecordsetType::Snapshot);
        for (; !seasons->EOF_(); seasons->MoveNext()) {
            // A class without any season row has no column at all, which is an error (3265).
            const runtime::Variant chosen = (*seasons)[chosenColumn].Value();
            const runtime::Variant deleted = (*seasons)[deletedColumn].Value();
            // Meant: a season of only one of the two is passed over; its diary rows keep their number.
            if (chosen.IsNull() || deleted.IsNull())
                continue;
            diary->Execute("UPDATE DISTINCTROW AnimalMultipleList SET AnimalMultipleList.MobID =" +
                               std::to_string(runtime::CLng(chosen)) +
                               " "
                               "WHERE (((AnimalMultipleList.MobID)=" +
                               std::to_string(runtime::CLng(deleted)) + "));",
                           kFailOnError);
        }
        result = true;
        seasons->Close();
        diary->Flush();
        diary->Close();
    } catch (const RunTimeError& error) {
        common::ReportError({error.Number(), error.Source(), " Problems updating the diary mobs"},
                            "MapDiaryMobs");
    }
    return result;
}

} // namespace

database::Database& FarmOfCascade::Open() {
    if (!db_)
        db_ = OpenFarm();
    return *db_;
}

bool MapMobData(FarmOfCascade& farm, std::int32_t chosenID, std::int32_t deletedID,
                const std::string& chosenName, const std::string& deletedName) {
    try {
        database::Database& db = farm.Open();
        const auto rename = [&](const char* table, const char* field) {
            const std::string place = table + std::string(".") + field;
            db.Execute("UPDATE DISTINCTROW " + std::string(table) + " SET " + place + " = '" + chosenName +
                           "' "
                           "WHERE (((" +
                           place + ")='" + deletedName + "'));",
                       kFailOnError);
        };
        rename("[Feed Demand]", "[Stock Name]");
        rename("[Feed Demand Profile]", "[Class Name]");
        rename("[Feed Profile]", "[Class Name]");
        rename("[Budget Details]", "Description");
        return MapDiaryMobs(farm, deletedID, chosenID);
    } catch (const RunTimeError& error) {
        common::ReportError({error.Number(), error.Source(),
                             "Unable to complete mapping " + deletedName + " to " + chosenName},
                            "MapMobData");
        return false;
    }
}

void DeleteTheMob(FarmOfCascade& farm, const std::string& className) {
    common::Trap(
        "DeleteTheMob",
        [&] {
            database::Database& db = farm.Open();
            db.Execute("DELETE DISTINCTROW [Stock Details].*, [Stock Class Names].[Class Name] "
                       "FROM [Stock Details] INNER JOIN [Stock Class Names] ON [Stock Details].[Class ID] = "
                       "[Stock Class Names].[Class ID] "
                       "WHERE ((([Stock Class Names].[Class Name])='" +
                           className + "'));",
                       kFailOnError);
            db.Execute("DELETE DISTINCTROW [Stock Class Names].*, [Stock Class Names].[Class Name] "
                       "From [Stock Class Names] "
                       "WHERE ((([Stock Class Names].[Class Name])='" +
                           className + "'));",
                       kFailOnError);
            // Meant: these are never moved to the chosen class.
            db.Execute("DELETE DISTINCTROW [Stock Reconciliations].* "
                       "FROM [Stock Reconciliations] "
                       "WHERE ((([Stock Reconciliations].[Class Name])='" +
                           className + "'));",
                       kFailOnError);
            db.Flush();
            common::ShowMessage(common::Message(
                config::TranslateTokens("|0| has been deleted from Stock Lists.", std::vector{className}) +
                    "\r\rNeither stock reconciliation in the Budget nor the generated statements in the "
                    "Diary have been adjusted.",
                "Stock Deletion Confirmed"));
        },
        "SETUP.BAS");
}

void DeleteStockMob(std::int32_t classID, const std::string& className, common::Screen& owner) {
    common::Trap("DeleteStockMob", [&] {
        FarmOfCascade farm;
        if (CheckMobUsed(classID, className) && MapToMob(classID, className, owner, farm))
            DeleteTheMob(farm, className);
    });
}

// ---- The dialog

FrmChooseMob::FrmChooseMob(common::Screen& screen, FarmOfCascade& farm)
    : controls::Form("frm_chooseMob"), lbl_msg(*this, "lbl_msg"), lst_mobs(*this, "lst_mobs"),
      Label3(*this, "Label3"), lbl_choosen(*this, "lbl_choosen"), cmd_Okay(*this, "cmd_Okay"),
      cmd_cancel(*this, "cmd_cancel"), farm_(farm) {
    Layout = "delete_mob";
    Width = kDialogWidth;
    Height = kDialogHeight;
    Caption = "Deleting Stock";
    Label3.Caption = "Mob chosen";
    lbl_msg.UseMnemonic = false;
    lbl_choosen.UseMnemonic = false;
    lst_mobs.AccessibleName = "Mobs to use instead";
    cmd_Okay.Caption = "&OK";
    cmd_Okay.Default = true;
    cmd_cancel.Caption = "Cancel";
    cmd_cancel.Cancel = true;

    Load = [this, &screen] { common::Trap("frm_chooseMob.Form_Load", [&] { screen.Decorate(*this); }); };
    Activate = [this] { common::Trap("frm_chooseMob.Form_Activate", [&] { SetUpChooseMobForm(); }); };
    lst_mobs.Click = [this] { lst_mobs_Click(); };
    cmd_Okay.Click = [this] { cmd_okay_Click(); };
    cmd_cancel.Click = [this] { cmd_Cancel_Click(); };
}

void FrmChooseMob::SetUpChooseMobForm() {
    common::Trap("frm_chooseMob.SetUpChooseMobForm", [&] {
        auto db = OpenFarm();
        auto mobs = db->OpenRecordset(
            "SELECT DISTINCTROW [Stock Class Names].[Class Name], [Account Codes].[Account Level], "
            "[Stock Class Names].[Class ID] "
            "FROM [Account Codes] INNER JOIN ([Stock Class Names] INNER JOIN [Stock Types] ON "
            "[Stock Class Names].[Stock Type ID] = [Stock Types].[Type ID]) ON "
            "[Account Codes].[Account Code] = [Stock Types].[Account Code] "
            "WHERE [Stock Class Names].[Class Name] <> '" +
                DeleteMobName + "';",
            database::RecordsetType::Snapshot);
        classIDs_.clear();
        if (!mobs->EOF_()) {
            mobs->MoveLast();
            mobs->MoveFirst();
            classIDs_.reserve(static_cast<std::size_t>(mobs->RecordCount()));
        }
        lst_mobs.Clear();
        const database::Field& name = (*mobs)["Class Name"];
        const database::Field& level = (*mobs)["Account Level"];
        const database::Field& id = (*mobs)["Class ID"];
        for (; !mobs->EOF_(); mobs->MoveNext()) {
            lst_mobs.AddItem(runtime::TextOf(name.Value()) + ":" + runtime::TextOf(level.Value()));
            classIDs_.push_back(runtime::CLng(id.Value()));
        }
        mobs->Close();
        db->Close();
        const std::vector<std::string> tokens = {DeleteMobName};
        lbl_msg.Caption = config::TranslateTokens(
            "Choose a mob to use for '|0|' entries in the Feed, Diary and Budget", tokens);
        Caption = config::TranslateTokens("Deleting |0|", tokens);
    });
}

void FrmChooseMob::lst_mobs_Click() {
    common::Trap("frm_chooseMob.lst_mobs_Click", [&] { lbl_choosen.Caption = lst_mobs.Text.Get(); });
}

void FrmChooseMob::cmd_okay_Click() {
    common::Trap("frm_chooseMob.cmd_okay_Click", [&] {
        if (!CheckCancel())
            Hide();
    });
}

void FrmChooseMob::cmd_Cancel_Click() {
    common::Trap("frm_chooseMob.cmd_Cancel_Click", [&] {
        CancelDelete = true;
        Hide();
    });
}

bool FrmChooseMob::CheckCancel() {
    bool stays = false;
    const bool done = common::Trap("frm_chooseMob.CheckCancel", [&] {
        int response = common::kAnswerYes;
        const std::string chosen = lbl_choosen.Caption;
        if (chosen.empty()) {
            common::Message question(
                config::TranslateTokens("No mob has been choosen.  Do you want to lose |0| entries",
                                        std::vector{DeleteMobName}) +
                    "\r\n\r\nSelecting YES will delete ALL entries associated with this Mob/Animal",
                "Please Confirm");
            question.buttons = common::kButtonsYesNoCancel;
            response = common::ShowMessage(question);
        }
        if (response == common::kAnswerNo) {
            stays = true;
        } else if (response == common::kAnswerYes) {
            const bool maps = lst_mobs.ListIndex != -1 && !chosen.empty();
            std::vector<std::string> databases = {config::GetDataFileName()};
            if (maps)
                databases.push_back(config::GetDiaryFileName());
            common::MakeRestorePoint("Deleting " + DeleteMobName, databases);
            if (maps) {
                // Meant: a name that holds a ":" itself is cut there.
                const std::string chosenName = chosen.substr(0, chosen.find(':'));
                CancelDelete =
                    !MapMobData(farm_, classIDs_.at(static_cast<std::size_t>(lst_mobs.ListIndex.Get())),
                                DelMobID, chosenName, DeleteMobName);
            }
        } else {
            CancelDelete = true;
        }
    });
    if (!done)
        CancelDelete = true;
    return stays;
}

} // namespace quillary::stock
