#pragma once

#include "platform/database/engine.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

// Rows as they come from the file, held compactly: nine bytes a value, and the texts. A value becomes a
// Variant when it is asked for.
namespace quillary::database::sqlite {

enum class CellKind : std::uint8_t { Null, Whole, Real, Text, Blob };

struct Cell {
    union {
        std::int64_t whole = 0;
        double real;
        const char* text; // into the block that holds the row
    };
    std::uint32_t length = 0; // bytes of a text or blob
    CellKind kind = CellKind::Null;

    std::string_view Text() const { return {text, length}; }
};

// Whether both hold the same stored value, byte by byte.
bool SameCell(const Cell& left, const Cell& right);

// A row of a block; an empty one stands for a row that is not there.
class CellRow {
public:
    CellRow() = default;
    CellRow(const char* place, std::size_t columns) : place_(place), kinds_(place + columns * kValueSize) {}

    explicit operator bool() const { return place_ != nullptr; }
    Cell operator[](int column) const {
        Cell cell;
        cell.kind = static_cast<CellKind>(kinds_[column]);
        std::memcpy(&cell.whole, place_ + static_cast<std::size_t>(column) * kValueSize, kValueSize);
        if (cell.kind >= CellKind::Text) {
            // The length stands before the text.
            std::memcpy(&cell.length, cell.text, sizeof cell.length);
            cell.text += sizeof cell.length;
        }
        return cell;
    }

    static constexpr std::size_t kValueSize = 8;

private:
    const char* place_ = nullptr;
    const char* kinds_ = nullptr;
};

// Memory that is taken piece by piece and given back as a whole.
class Arena {
public:
    Arena() = default;
    Arena(Arena&&) = default;
    Arena& operator=(Arena&&) = default;

    // Aligned for a number; room for at most 4 GB.
    char* Take(std::size_t size) {
        size = (size + kAlignment - 1) / kAlignment * kAlignment;
        if (size > left_) {
            NextBlock(size);
        }
        char* const place = next_;
        next_ += size;
        left_ -= size;
        return place;
    }
    // Forgets what was taken and keeps the memory.
    void Clear();

private:
    static constexpr std::size_t kAlignment = 8;

    struct Free {
        void operator()(char* block) const;
    };
    struct Block {
        std::unique_ptr<char, Free> memory;
        std::size_t size;
    };

    void NextBlock(std::size_t size);

    std::vector<Block> blocks_;
    std::size_t used_ = 0; // blocks
    char* next_ = nullptr;
    std::size_t left_ = 0;
};

class CellBlock {
public:
    explicit CellBlock(int columns) : columns_(static_cast<std::size_t>(columns)) {}

    // Takes the columns of the statement's current row, from the given one on.
    void Append(sqlite3_stmt* statement, int firstColumn = 0);
    // A row of Nulls, for a row that has gone.
    void AppendNulls();
    // Forgets the rows, keeps the room.
    void Clear();

    std::size_t Rows() const { return rows_.size(); }
    CellRow Row(std::size_t row) const { return {rows_[row], columns_}; }

private:
    char* NextRow();
    const char* Keep(const void* text, std::uint32_t length);

    std::size_t columns_;
    std::vector<const char*> rows_;
    Arena arena_;
};

// The value of a field of this type. A stored value of another kind (another program's doing, or a
// computed one) is taken as what it is.
Variant ReadCell(const Cell& cell, FieldType type);

} // namespace quillary::database::sqlite
