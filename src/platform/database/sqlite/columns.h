#pragma once

#include "platform/database/sqlite/catalogue.h"
#include "platform/database/sqlite/translation.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// The fields of a recordset: what is known of each, and the way from a name to its position.
namespace quillary::database::sqlite {

struct ColumnInfo {
    std::string name;
    FieldType type = FieldType::Text;
    int size = 0;
    int table = -1; // index of its base table in the selection; -1: computed
    int field = -1; // index into that table's fields
    bool required = false;
    bool counter = false;
    std::string sourceTable;
    std::string sourceField;
    std::string defaultSql; // what stands behind DEFAULT in the table; "" none
};

class Columns {
public:
    Columns(const Selection& selection, const Catalogue& catalogue);

    int Count() const { return static_cast<int>(columns_.size()); }
    const ColumnInfo& operator[](int position) const { return columns_[static_cast<std::size_t>(position)]; }
    // -1 when there is none; of two fields of one name the first.
    int Find(std::string_view name) const;
    // Whether the field at this position is called so, letter by letter.
    bool IsNamed(int position, std::string_view name) const {
        if (position >= Count()) {
            return false;
        }
        const std::string& known = columns_[static_cast<std::size_t>(position)].name;
        return known.size() == name.size() && std::memcmp(known.data(), name.data(), name.size()) == 0;
    }

private:
    std::size_t Slot(std::string_view name) const;

    std::vector<ColumnInfo> columns_;
    std::vector<std::int16_t> slots_; // a hash table of positions; its size is a power of two
};

} // namespace quillary::database::sqlite
