#pragma once

#include "platform/controls/grid.h"
#include "platform/controls/qyx_array.h"

#include <cstdint>
#include <memory>
#include <string>

// The two lists of an occupation: what is selected for it, in its order, and the master list of all else.
namespace quillary::wages {

// The lists, by the tabs that show them.
inline constexpr int kPayRates = 0, kTaxableAllowances = 1, kNonTaxableAllowances = 2;

// Both lists live in arrays behind their grids, each cell a text, column 0 the item's id. Adding writes the
// selected list to the database at once; what is moved and removed stays in memory until SaveSelections. The
// routines report their errors under their own names and raise none.
class SelectionLists {
public:
    using Array = std::shared_ptr<controls::QYxArray>;

    SelectionLists(controls::Grid& tgrd_selected, controls::Grid& tgrd_master)
        : tgrd_selected_(tgrd_selected), tgrd_master_(tgrd_master) {}

    // Shows the lists of an occupation as they are stored: columns, queries, rows.
    void UpdateSelections(int listNumber, std::int32_t occupationID);
    // The lists in use as they are stored now.
    void RefreshSelected();
    void RefreshMaster();

    // Writes the selected list as the occupation's rows of the list's link table, numbered from 0 without
    // gaps. False: it could not be written whole, which was reported; the list in memory is as it was.
    bool SaveSelections(int listNumber, std::int32_t occupationID);
    // No move and no removal waits to be saved, and there is a database to read other rows from: where a
    // save has failed (the database can only be read) the screen may go on all the same.
    bool NothingToLose() const;
    // Deletes the occupation's rows of the link table. False: they are still there.
    static bool DeleteAll(int listNumber, std::int32_t occupationID);

    // Adds rows of the master list behind the last selected one, and saves.
    void AddToSelected(std::int32_t occupationID, int listNumber, controls::Grid& grid, long firstRow,
                       long rowCount);
    void AddAllToSelected(int listNumber, std::int32_t occupationID);
    // False: the stored rows could not be deleted, and nothing changes.
    bool RemoveAllSelected(int listNumber, std::int32_t occupationID);
    // The current row of the grid.
    void RemoveFromSelected(controls::Grid& grid);
    void MoveSelectedRow(bool up);

    void ReleaseSelectionArrays();

private:
    bool WriteSelected(int listNumber, std::int32_t occupationID); // there is a selected list
    void RefreshData(int columns, const std::string& sql, bool isSelected);
    void SetColumns(int listNumber);

    controls::Grid& tgrd_selected_;
    controls::Grid& tgrd_master_;
    Array Selected_, Master_; // absent until first filled
    bool unsaved_ = false;    // the selected list holds what is not stored
    std::string gSelectedSQL_, gMasterSQL_;
    int selectedColumns_ = 0; // number of the last column of the selected query; the master's is one less
};

} // namespace quillary::wages
