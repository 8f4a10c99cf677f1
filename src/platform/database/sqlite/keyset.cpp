#include "platform/database/sqlite/keyset.h"

#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/statement_cache.h"

#include <algorithm>
#include <optional>
#include <sqlite3.h>
#include <unordered_set>

namespace quillary::database::sqlite {
namespace {

constexpr std::size_t kMostPages = 4;
constexpr std::size_t kPageRows = 512;
constexpr std::size_t kFirstPageRows = 16;
// A page is read as one stretch of addresses when at most so many rows lie there for each that is wanted.
constexpr std::uint64_t kSparse = 4;

int IndexOf(sqlite3_stmt* statement, std::size_t key) {
    return sqlite3_bind_parameter_index(statement, (":k" + std::to_string(key + 1)).c_str());
}

} // namespace

Keyset::Keyset(std::shared_ptr<Connection> connection, const OpenedQuery& query)
    : connection_(std::move(connection)), parameterUses_(query.selection.parameters),
      parameters_(query.parameters), columns_(static_cast<int>(query.selection.columns.size())),
      tables_(query.selection.tables.size()), pageSize_(kFirstPageRows) {
    WriteTexts(query);
    Run run(connection_->Kept(query.selection.keysSql));
    Bind(run);
    while (run.Step(Operation::Read)) {
        for (int table = 0; table < static_cast<int>(tables_); ++table) {
            sqlite3_value* key = sqlite3_column_value(run, table);
            keys_.push_back(sqlite3_value_type(key) == SQLITE_NULL ? kNoRow : sqlite3_value_int64(key));
        }
        ++count_;
    }
    original_ = count_;
    if (count_ > 0) {
        Fetch(0, connection_->Now()); // the first row is nearly always read
    }
}

void Keyset::WriteTexts(const OpenedQuery& query) {
    const Selection& selection = query.selection;
    std::string addresses;
    std::string tables;
    std::string conditions;
    std::string outer = " FROM (SELECT 1)";
    for (std::size_t i = 0; i < tables_; ++i) {
        const BaseTable& table = selection.tables[i];
        const TableInfo* info = query.catalogue->Find(table.table);
        const std::string alias = Quote(table.alias);
        const std::string address = info == nullptr ? alias + ".rowid" : RowId(info->def, alias);
        const std::string source = Quote(table.table) + " AS " + alias;
        const std::string condition = address + " = :k" + std::to_string(i + 1);
        addresses += (i == 0 ? "" : ", ") + address;
        tables += (i == 0 ? "" : ", ") + source;
        conditions += (i == 0 ? "" : " AND ") + condition;
        outer.append(" LEFT JOIN ").append(source).append(" ON ").append(condition);
    }
    const std::string select = "SELECT " + addresses + ", " + selection.columnsSql;
    rowSql_ = select + " FROM " + tables + " WHERE " + conditions;
    partSql_ = select + outer;
    if (tables_ == 1) {
        rangeSql_ =
            select + " FROM " + tables + " WHERE " + addresses + " BETWEEN :k1 AND :k2 ORDER BY " + addresses;
    }
}

void Keyset::Bind(sqlite3_stmt* statement) const {
    BindParameters(statement, parameterUses_, parameters_);
}

CellRow Keyset::Read(std::size_t row) {
    const std::uint64_t own = connection_->OwnWrites();
    if (!pages_.empty() && pages_.back()->Holds(row) && pages_.back()->stamp.own == own) {
        return pages_.back()->At(row);
    }
    const ReadScope scope(*connection_);
    const Connection::Stamp now = connection_->Now();
    const std::size_t before = pages_.size();
    const bool written = !pages_.empty() && pages_.back()->stamp.own != now.own;
    std::erase_if(pages_, [&](const auto& page) { return page->stamp != now; });
    if (pages_.size() != before) {
        ++epoch_;
    }
    if (Page* page = Find(row)) {
        return page->At(row);
    }
    // After a write few rows are read, since the next write may follow at once; a walk soon reads whole
    // pages.
    pageSize_ = written           ? 1
                : row == nextRow_ ? std::min(pageSize_ * 4, kPageRows)
                                  : std::max(pageSize_, kFirstPageRows);
    return Fetch(row, now).At(row);
}

Keyset::Page* Keyset::Find(std::size_t row) {
    const auto found =
        std::find_if(pages_.begin(), pages_.end(), [&](const auto& page) { return page->Holds(row); });
    if (found == pages_.end()) {
        return nullptr;
    }
    std::rotate(found, found + 1, pages_.end());
    return pages_.back().get();
}

const Keyset::Page& Keyset::Fetch(std::size_t row, const Connection::Stamp& now) {
    std::size_t first = row;
    // Walking backwards, the page ends with the row.
    if (!pages_.empty() && row + 1 == pages_.back()->first) {
        first = row + 1 - std::min(row + 1, std::max(pageSize_, kFirstPageRows));
    }
    std::unique_ptr<Page> page;
    if (pages_.size() >= kMostPages) {
        page = std::move(pages_.front());
        pages_.erase(pages_.begin());
        page->cells.Clear();
        page->gone.clear();
        page->first = first;
        ++epoch_;
    } else {
        page = std::make_unique<Page>(first, columns_);
    }
    const std::size_t end = first == row ? row + pageSize_ : row + 1;
    page->count = std::min(end, count_) - first;
    page->stamp = now;
    if (IsRange(*page)) {
        FillByRange(*page);
    } else {
        FillOneByOne(*page);
    }
    nextRow_ = first + page->count;
    pages_.push_back(std::move(page));
    return *pages_.back();
}

bool Keyset::IsRange(const Page& page) const {
    if (tables_ != 1 || page.count < 2) {
        return false;
    }
    const std::int64_t* keys = &keys_[page.first];
    if (keys[0] == kNoRow) {
        return false;
    }
    const std::uint64_t limit = kSparse * page.count;
    for (std::size_t i = 1; i < page.count; ++i) {
        // Keys may lie further apart than a signed number holds.
        const auto distance = static_cast<std::uint64_t>(keys[i]) - static_cast<std::uint64_t>(keys[0]);
        if (keys[i] <= keys[i - 1] || distance > limit) {
            return false;
        }
    }
    return true;
}

void Keyset::FillByRange(Page& page) {
    Run run(connection_->Kept(rangeSql_));
    Bind(run);
    const std::int64_t* keys = &keys_[page.first];
    sqlite3_bind_int64(run, IndexOf(run, 0), keys[0]);
    sqlite3_bind_int64(run, IndexOf(run, 1), keys[page.count - 1]);
    std::size_t at = 0;
    const auto miss = [&] {
        page.cells.AppendNulls();
        page.gone.push_back(true);
        ++at;
    };
    while (at < page.count && run.Step(Operation::Read)) {
        const std::int64_t key = sqlite3_column_int64(run, 0);
        while (at < page.count && keys[at] < key) {
            miss();
        }
        if (at < page.count && keys[at] == key) {
            page.cells.Append(run, 1);
            page.gone.push_back(false);
            ++at;
        }
    }
    while (at < page.count) {
        miss();
    }
}

struct Keyset::RowReader {
    RowReader(Keyset& rows, bool all)
        : run(rows.connection_->Kept(all ? rows.rowSql_ : rows.partSql_)), allKeys(all) {
        rows.Bind(run);
        for (std::size_t key = 0; key < rows.tables_; ++key) {
            places.push_back(IndexOf(run, key));
        }
    }

    Run run;
    bool allKeys;
    std::vector<int> places;
};

bool Keyset::HasAllKeys(std::size_t row) const {
    const auto* const first = &keys_[row * tables_];
    return std::find(first, first + tables_, kNoRow) == first + tables_;
}

bool Keyset::ReadOne(RowReader& reader, std::size_t row, CellBlock& cells) {
    sqlite3_reset(reader.run);
    for (std::size_t key = 0; key < tables_; ++key) {
        const std::int64_t address = keys_[row * tables_ + key];
        if (address == kNoRow) {
            sqlite3_bind_null(reader.run, reader.places[key]);
        } else {
            sqlite3_bind_int64(reader.run, reader.places[key], address);
        }
    }
    if (!reader.run.Step(Operation::Read)) {
        return false;
    }
    if (!reader.allKeys) {
        for (int table = 0; table < static_cast<int>(tables_); ++table) {
            if (Key(row, table) != kNoRow && sqlite3_column_type(reader.run, table) == SQLITE_NULL) {
                return false;
            }
        }
    }
    cells.Append(reader.run, static_cast<int>(tables_));
    return true;
}

bool Keyset::ReadNow(std::size_t row, CellBlock& cells) {
    RowReader reader(*this, HasAllKeys(row));
    return ReadOne(reader, row, cells);
}

void Keyset::FillOneByOne(Page& page) {
    std::optional<RowReader> all;
    std::optional<RowReader> part;
    for (std::size_t row = page.first; row < page.first + page.count; ++row) {
        const bool allKeys = HasAllKeys(row);
        std::optional<RowReader>& reader = allKeys ? all : part;
        if (!reader) {
            reader.emplace(*this, allKeys);
        }
        const bool found = ReadOne(*reader, row, page.cells);
        page.gone.push_back(!found);
        if (!found) {
            page.cells.AppendNulls();
        }
    }
}

std::size_t Keyset::Add(const std::vector<std::int64_t>& keys) {
    keys_.insert(keys_.end(), keys.begin(), keys.end());
    return count_++;
}

void Keyset::Replace(int table, std::int64_t from, std::int64_t to) {
    for (std::size_t i = static_cast<std::size_t>(table); i < keys_.size(); i += tables_) {
        if (keys_[i] == from) {
            keys_[i] = to;
        }
    }
}

bool Keyset::IsOnce(int table) const {
    std::unordered_set<std::int64_t> seen;
    for (std::size_t row = 0; row < count_; ++row) {
        if (!IsDeleted(row) && Key(row, table) != kNoRow && !seen.insert(Key(row, table)).second) {
            return false;
        }
    }
    return true;
}

} // namespace quillary::database::sqlite
