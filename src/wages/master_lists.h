#pragma once

#include "wages/occupations.h"

namespace quillary::wages {

// The master tables behind the lists of the occupations (payments, allowances, the occupations themselves),
// each edited in the suite's table editor under columns that a definition file tells.
class MasterLists {
public:
    explicit MasterLists(Occupations& occupations);

private:
    // The table of the occupations; ends with their box filled anew.
    void ShowAwards();
    // The master table of a list; both lists show the edits afterwards.
    void EditMaster(int listNumber);

    Occupations& occupations_;
};

} // namespace quillary::wages
