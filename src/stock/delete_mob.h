#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/database/engine.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The cascade that deletes a stock class (mob) over the main and the diary database, and before that moves
// its entries to another class where the user wishes so. No transaction holds it together; a restore point
// is made before its first statement.
namespace quillary::stock {

// The main database of one cascade: opened when its first statement comes and kept to its end, so that the
// cascade is brought to the disk once and not at each of its routines.
class FarmOfCascade {
public:
    database::Database& Open(); // the errors of OpenDatabase

private:
    std::shared_ptr<database::Database> db_;
};

// The dialog that asks for the class to use instead. The caller sets DeleteMobName and DelMobID, shows it
// modally and reads CancelDelete; by then the entries have been moved, where a class was chosen.
class FrmChooseMob : public controls::Form {
public:
    FrmChooseMob(common::Screen& screen, FarmOfCascade& farm);

    controls::Label lbl_msg;
    controls::ListBox lst_mobs;
    controls::Label Label3;
    controls::Label lbl_choosen;
    controls::CommandButton cmd_Okay;
    controls::CommandButton cmd_cancel;

    std::string DeleteMobName;
    std::int32_t DelMobID = 0;
    bool CancelDelete = false;

private:
    void SetUpChooseMobForm();
    bool CheckCancel(); // True: the dialog stays open
    void lst_mobs_Click();
    void cmd_okay_Click();
    void cmd_Cancel_Click();

    std::vector<std::int32_t> classIDs_; // parallel to lst_mobs
    FarmOfCascade& farm_;
};

// The whole deletion. Errors are reported under the routines' own names.
void DeleteStockMob(std::int32_t classID, const std::string& className, common::Screen& owner);

// The parts of the cascade, for the bench.

// Moves the entries of one class to another, in the main database and the diary. True when all of it has
// run; what has run stands in any case.
bool MapMobData(FarmOfCascade& farm, std::int32_t chosenID, std::int32_t deletedID,
                const std::string& chosenName, const std::string& deletedName);
// Deletes the class, its season rows and its reconciliations, and tells so.
void DeleteTheMob(FarmOfCascade& farm, const std::string& className);

} // namespace quillary::stock
