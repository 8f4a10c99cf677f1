#include "platform/database/sqlite/columns.h"

#include "platform/runtime/locale.h"

#include <cstring>

namespace quillary::database::sqlite {

Columns::Columns(const Selection& selection, const Catalogue& catalogue) {
    columns_.reserve(selection.columns.size());
    for (const auto& column : selection.columns) {
        ColumnInfo info;
        info.name = column.name;
        info.type = column.type;
        info.size = column.size;
        info.table = column.table;
        info.field = column.field;
        const bool based = column.table >= 0 && column.table < static_cast<int>(selection.tables.size());
        const TableInfo* table =
            based ? catalogue.Find(selection.tables[static_cast<std::size_t>(column.table)].table) : nullptr;
        const auto field = static_cast<std::size_t>(column.field);
        if (table != nullptr && column.field >= 0 && field < table->def.fields.size()) {
            const FieldDef& def = table->def.fields[field];
            info.required = def.required;
            info.counter = def.counter;
            info.sourceTable = table->def.name;
            info.sourceField = def.name;
            info.defaultSql = table->defaults[field];
        } else {
            info.table = -1;
        }
        columns_.push_back(std::move(info));
    }
    std::size_t size = 8;
    while (size < columns_.size() * 4) {
        size *= 2;
    }
    slots_.assign(size, -1);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        std::size_t slot = Slot(columns_[i].name);
        while (slots_[slot] >= 0) {
            slot = (slot + 1) & (slots_.size() - 1);
        }
        slots_[slot] = static_cast<std::int16_t>(i);
    }
}

// Fields are read by name in every loop of the program, so this looks at four characters only.
std::size_t Columns::Slot(std::string_view name) const {
    std::size_t hash = name.size() * 31;
    if (!name.empty()) {
        const auto fold = [](char c) {
            return static_cast<std::size_t>(static_cast<unsigned char>(c) | 0x20);
        };
        hash += fold(name.front()) * 7 + fold(name[name.size() / 2]) * 131 +
                fold(name[name.size() * 3 / 4]) * 17 + fold(name.back()) * 1031;
    }
    return (hash ^ hash >> 7) & (slots_.size() - 1);
}

int Columns::Find(std::string_view name) const {
    for (std::size_t slot = Slot(name);; slot = (slot + 1) & (slots_.size() - 1)) {
        const std::int16_t position = slots_[slot];
        if (position < 0) {
            return -1;
        }
        const std::string& known = columns_[static_cast<std::size_t>(position)].name;
        if (known.size() == name.size() &&
            (std::memcmp(known.data(), name.data(), name.size()) == 0 || runtime::EqualName(known, name))) {
            return position;
        }
    }
}

} // namespace quillary::database::sqlite
