#include "jet_import/jet_definition.h"

#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <set>

namespace quillary::jet_import {
namespace {

constexpr unsigned char kTablePage = 2;
constexpr std::size_t kPageHeader = 8; // of a page that continues the definition
constexpr std::size_t kMostFields = 255;
constexpr std::size_t kMostIndexes = 1024;
constexpr std::size_t kKeyFields = 10;
constexpr std::uint32_t kNoField = 0xffff;

constexpr std::uint32_t kFixedFlag = 0x01;
constexpr std::uint32_t kCounterFlag = 0x04;
constexpr std::uint32_t kCalculatedFlag = 0xC0;
constexpr std::uint32_t kUniqueFlag = 0x01;
constexpr std::uint32_t kRequiredFlag = 0x08;
constexpr std::uint32_t kPrimaryKind = 1;
constexpr std::uint32_t kForeignKind = 2;

// Places within a field's entry.
struct FieldPlaces {
    std::size_t number, variable, order, scale, flags, moreFlags, offset, length;
};
constexpr FieldPlaces kField3{1, 3, 5, 10, 13, 0, 14, 16};
constexpr FieldPlaces kField4{5, 7, 9, 12, 15, 16, 21, 23};

std::string WholeDefinition(JetPages& pages, std::uint32_t page) {
    std::string all(pages.Page(page));
    if (all[0] != kTablePage) {
        RaiseDamaged("the file is damaged: page " + std::to_string(page) + " describes no table");
    }
    std::set<std::uint32_t> seen{page};
    for (std::uint32_t next = Number(all, 4, 4); next != 0;) {
        const Bytes more = pages.Page(next);
        if (more[0] != kTablePage || !seen.insert(next).second) {
            RaiseDamaged("the file is damaged: the description of a table does not end");
        }
        all += more.substr(kPageHeader);
        next = Number(more, 4, 4);
    }
    return all;
}

class Reader {
public:
    Reader(JetPages& pages, const JetText& text, std::uint32_t page)
        : jet3_(pages.IsJet3()), places_(pages.Places()), text_(text), all_(WholeDefinition(pages, page)) {
        definition_.page = page;
    }

    Definition Read() {
        definition_.rows = static_cast<std::int32_t>(Number(all_, places_.tableRowsAt, 4));
        definition_.lastCounter = static_cast<std::int32_t>(Number(all_, places_.counterAt, 4));
        definition_.hasVariable = Number(all_, places_.variableFieldsAt, 2) > 0;
        definition_.pages = Number(all_, places_.usedPagesAt, 4);
        const std::size_t fields = Number(all_, places_.fieldCountAt, 2);
        const std::size_t indexes = Number(all_, places_.indexCountAt, 4);
        const std::size_t realIndexes = Number(all_, places_.realIndexCountAt, 4);
        if (fields > kMostFields || indexes > kMostIndexes || realIndexes > kMostIndexes) {
            RaiseDamaged("the file is damaged: a table has too many fields or indexes");
        }
        at_ = places_.definitionsAt + realIndexes * places_.realIndexEntry;
        ReadFields(fields);
        try {
            ReadIndexes(indexes, realIndexes);
        } catch (const runtime::RunTimeError& error) {
            definition_.indexes.clear();
            definition_.faults.push_back("its indexes cannot be read: " + error.Description());
        }
        std::stable_sort(definition_.fields.begin(), definition_.fields.end(),
                         [](const StoredField& a, const StoredField& b) { return a.order < b.order; });
        return std::move(definition_);
    }

private:
    Bytes Take(std::size_t size) {
        const Bytes part = Part(all_, at_, size);
        at_ += size;
        return part;
    }

    std::string TakeName() {
        const std::size_t length = Number(Take(jet3_ ? 1 : 2), 0, jet3_ ? 1 : 2);
        return text_.Read(Take(length));
    }

    void ReadFields(std::size_t count) {
        const FieldPlaces& at = jet3_ ? kField3 : kField4;
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes entry = Take(places_.fieldEntry);
            const std::uint32_t flags = Number(entry, at.flags, 1);
            StoredField field;
            field.type = static_cast<JetType>(Number(entry, 0, 1));
            field.number = Number(entry, at.number, 2);
            field.variable = Number(entry, at.variable, 2);
            field.order = Number(entry, at.order, 2);
            field.offset = Number(entry, at.offset, 2);
            field.length = Number(entry, at.length, 2);
            field.scale = static_cast<int>(Number(entry, at.scale, 1));
            field.fixed = (flags & kFixedFlag) != 0;
            field.counter = (flags & kCounterFlag) != 0 && field.type == JetType::Long;
            field.calculated =
                !jet3_ && (Number(entry, at.moreFlags, 1) & kCalculatedFlag) == kCalculatedFlag;
            definition_.fields.push_back(std::move(field));
        }
        for (auto& field : definition_.fields) {
            field.name = TakeName();
        }
    }

    // The trees, each with its fields; then the names under which they are known. One tree may have several
    // names, a relation's among them.
    void ReadIndexes(std::size_t count, std::size_t realCount) {
        const std::size_t lead = jet3_ ? 0 : 4;
        std::vector<StoredIndex> real(realCount);
        for (auto& index : real) {
            const Bytes entry = Take(places_.indexEntry);
            for (std::size_t key = 0; key < kKeyFields; ++key) {
                const std::uint32_t field = Number(entry, lead + key * 3, 2);
                if (field != kNoField) {
                    index.keys.push_back({field, Number(entry, lead + key * 3 + 2, 1) != 1});
                }
            }
            // Two addresses, and in the later files four bytes more.
            const std::uint32_t flags = Number(entry, lead * 2 + kKeyFields * 3 + 8, 1);
            index.unique = (flags & kUniqueFlag) != 0;
            index.required = (flags & kRequiredFlag) != 0;
        }
        std::vector<bool> known;
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes entry = Take(places_.indexNameEntry);
            const std::size_t number = Number(entry, lead + 4, 4);
            const std::uint32_t kind = Number(entry, lead + 19, 1);
            known.push_back(number < real.size());
            StoredIndex index = known.back() ? real[number] : StoredIndex{};
            index.primary = kind == kPrimaryKind;
            index.foreign = kind == kForeignKind;
            definition_.indexes.push_back(std::move(index));
        }
        for (std::size_t i = 0; i < count; ++i) {
            StoredIndex& index = definition_.indexes[i];
            index.name = TakeName();
            if (!known[i]) {
                definition_.faults.push_back("index " + index.name + " has lost its tree");
                index.foreign = true; // left out like those of the relations
            }
        }
    }

    bool jet3_;
    const Layout& places_;
    const JetText& text_;
    std::string all_;
    std::size_t at_ = 0;
    Definition definition_;
};

} // namespace

const StoredField* Definition::Find(std::string_view name) const {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const StoredField& field) {
        return runtime::EqualName(field.name, name);
    });
    return found == fields.end() ? nullptr : &*found;
}

Definition ReadDefinition(JetPages& pages, const JetText& text, std::uint32_t page) {
    return Reader(pages, text, page).Read();
}

} // namespace quillary::jet_import
