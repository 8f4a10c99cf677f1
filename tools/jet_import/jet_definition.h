#pragma once

#include "jet_import/jet_pages.h"
#include "jet_import/jet_text.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// What a table's own pages tell of it.
namespace quillary::jet_import {

// The file's numbers of types.
enum class JetType : int {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    LongBinary = 11,
    Memo = 12,
    Guid = 15,
    Decimal = 16,
    Complex = 18, // attachments and lists: a number that points into a hidden table
    BigInteger = 19,
    LongDate = 20,
};

struct StoredField {
    std::string name;
    JetType type = JetType::Text;
    std::size_t length = 0; // bytes
    bool fixed = false;
    bool counter = false;
    bool calculated = false;
    int scale = 0;
    std::size_t number = 0;   // in the rows' mask of Nulls; numbers of deleted fields are left out
    std::size_t order = 0;    // among the fields as the user sees them
    std::size_t variable = 0; // among those of no fixed length
    std::size_t offset = 0;   // of those of fixed length
};

struct StoredIndex {
    std::string name;
    struct Key {
        std::size_t field = 0; // StoredField::number
        bool descending = false;
    };
    std::vector<Key> keys;
    bool unique = false, required = false, primary = false;
    bool foreign = false; // belongs to a relation
};

struct Definition {
    std::vector<StoredField> fields;
    std::vector<StoredIndex> indexes;
    bool hasVariable = false;
    std::uint32_t pages = 0; // address of the list of its pages of rows
    std::uint32_t page = 0;
    std::int64_t rows = 0;
    std::int64_t lastCounter = 0;
    std::vector<std::string> faults; // indexes that cannot be read

    const StoredField* Find(std::string_view name) const;
};

// 3343 where the page is none of a table.
Definition ReadDefinition(JetPages& pages, const JetText& text, std::uint32_t page);

} // namespace quillary::jet_import
