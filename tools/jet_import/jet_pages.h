#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The pages of a file of the old engine. The library opens the file and decodes the pages; what stands on
// them is taken apart here, since the library trusts every number of the file, and a damaged one leads it
// astray.
namespace quillary::jet_import {

using Bytes = std::string_view;

[[noreturn]] void RaiseDamaged(const std::string& what);

// A number of the file, little-endian. Beyond the end of the bytes: RaiseDamaged.
std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t size);
Bytes Part(Bytes bytes, std::size_t at, std::size_t size);

// Where things stand on the pages of the two generations of files.
struct Layout {
    std::size_t pageSize;
    std::size_t rowCountAt;  // on a page of rows; the rows' places follow
    std::size_t tableRowsAt; // on a table's page: number of rows, the counter, ...
    std::size_t counterAt;
    std::size_t variableFieldsAt;
    std::size_t fieldCountAt;
    std::size_t indexCountAt;
    std::size_t realIndexCountAt;
    std::size_t usedPagesAt;
    std::size_t definitionsAt;
    std::size_t realIndexEntry; // length of what each index has before the fields
    std::size_t fieldEntry;
    std::size_t indexEntry;
    std::size_t indexNameEntry;
};

class JetPages {
public:
    // 3024, 3051, 3343.
    explicit JetPages(const std::string& path);
    ~JetPages();
    JetPages(const JetPages&) = delete;
    JetPages& operator=(const JetPages&) = delete;

    bool IsJet3() const { return jet3_; }
    const Layout& Places() const { return layout_; }
    std::uint32_t Count() const { return count_; }
    int CodePage() const;

    // Valid until the next call.
    Bytes Page(std::uint32_t number);

    // The bytes of a row by its address: page in the upper three bytes, row in the lowest.
    Bytes Row(std::uint32_t address);
    // Place of a row on a page of rows.
    struct Place {
        std::size_t begin = 0, end = 0;
        bool gone = false; // deleted, or moved elsewhere
    };
    Place PlaceOf(Bytes page, std::size_t row) const;

    // The pages of rows that a table has; map: the address of its list of pages.
    std::vector<std::uint32_t> PagesOf(std::uint32_t map);

    // A value that lies outside its row; field: the twelve bytes that stand in the row, with what follows.
    std::string LongValue(Bytes field);

private:
    struct Library;
    std::unique_ptr<Library> library_;
    bool jet3_ = false;
    Layout layout_{};
    std::uint32_t count_ = 0;
};

} // namespace quillary::jet_import
