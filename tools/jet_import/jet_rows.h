#pragma once

#include "jet_import/jet_definition.h"
#include "platform/database/bulk_load.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

// The rows of a table.
namespace quillary::jet_import {

class JetRows {
public:
    JetRows(JetPages& pages, const JetText& text, const Definition& table);

    // Every row in the order of the pages, the values in the order of the fields, valid until `take` is
    // done. A page or row that cannot be read raises 3343.
    void ReadAll(const std::function<void(std::span<const database::LoadValue>)>& take);

    // By field: numbers with more digits than a double surely keeps.
    const std::vector<std::int64_t>& Rounded() const { return rounded_; }

private:
    void ReadRow(Bytes row);
    // The bytes of a field; false where it is Null.
    struct Parts {
        Bytes row, mask;
        std::size_t fieldCount = 0, headSize = 0;
        std::vector<std::size_t> variable; // begins of the fields of no fixed length, and the end of the last
    };
    void TakeApart(Bytes row);
    void TakeApart3(Bytes row);
    bool Find(const StoredField& field, Bytes& bytes) const;
    void Decode(const StoredField& field, Bytes bytes, std::size_t position);

    JetPages& pages_;
    const JetText& text_;
    const Definition& table_;
    Parts parts_;
    std::string row_; // long values are on other pages, which take the place of the row's own
    std::vector<std::string> texts_;
    std::vector<database::LoadValue> values_;
    std::vector<std::int64_t> rounded_;
};

} // namespace quillary::jet_import
