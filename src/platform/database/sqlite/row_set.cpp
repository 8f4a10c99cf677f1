#include "platform/database/sqlite/row_set.h"

#include <algorithm>

namespace quillary::database::sqlite {

bool RowSet::IsDeleted(std::size_t row) const {
    return !deleted_.empty() && std::binary_search(deleted_.begin(), deleted_.end(), row);
}

void RowSet::MarkDeleted(std::size_t row) {
    const auto place = std::lower_bound(deleted_.begin(), deleted_.end(), row);
    if (place == deleted_.end() || *place != row) {
        deleted_.insert(place, row);
    }
}

std::size_t RowSet::DeletedBefore(std::size_t row) const {
    return static_cast<std::size_t>(std::lower_bound(deleted_.begin(), deleted_.end(), row) -
                                    deleted_.begin());
}

std::size_t RowSet::NextFrom(std::size_t row) const {
    for (auto at = std::lower_bound(deleted_.begin(), deleted_.end(), row);
         at != deleted_.end() && *at == row && row < count_; ++at) {
        ++row;
    }
    return row;
}

std::size_t RowSet::LastUpTo(std::size_t row) const {
    auto at = std::upper_bound(deleted_.begin(), deleted_.end(), row);
    while (at != deleted_.begin() && *(at - 1) == row) {
        if (row == 0) {
            return count_;
        }
        --row;
        --at;
    }
    return row;
}

std::size_t RowSet::Nth(std::size_t position) const {
    if (position >= Remaining()) {
        return count_;
    }
    // deleted_[i] - i undeleted rows stand before the deleted one: the number of those at or before position
    // is what has to be stepped over.
    std::size_t low = 0;
    std::size_t high = deleted_.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (deleted_[middle] - middle <= position) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return position + low;
}

} // namespace quillary::database::sqlite
