#include "jet_import/jet_pages.h"

#include "platform/database/errors.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <glib.h> // before the library's header, which would put it into extern "C"
#include <mdbtools.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace quillary::jet_import {

using runtime::RunTimeError;

namespace {

constexpr Layout kJet3{2048, 8, 12, 16, 23, 25, 27, 31, 35, 43, 8, 18, 39, 20};
constexpr Layout kJet4{4096, 12, 16, 20, 43, 45, 47, 51, 55, 63, 12, 25, 52, 28};

constexpr unsigned char kRowsPage = 1;
constexpr unsigned char kMapPage = 5;
constexpr std::uint32_t kPlaceMask = 0x1fff;
constexpr std::uint32_t kGoneMark = 0x4000;
// A value that lies within the row, or whole on another page; else it is a chain of pieces.
constexpr std::uint32_t kInline = 0x80000000;
constexpr std::uint32_t kOnePiece = 0x40000000;
constexpr std::uint32_t kLengthMask = 0x3fffffff;
constexpr std::size_t kLongHeader = 12;

// The library writes its complaints where it likes; the user gets ours.
class Quiet {
public:
    Quiet() : kept_(dup(STDERR_FILENO)) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere >= 0) {
            dup2(nowhere, STDERR_FILENO);
            close(nowhere);
        }
    }
    ~Quiet() {
        if (kept_ >= 0) {
            dup2(kept_, STDERR_FILENO);
            close(kept_);
        }
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int kept_;
};

void CheckFile(const std::string& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) {
        throw RunTimeError(errno == ENOENT ? database::kErrFileNotFound : database::kErrCannotOpenFile, "",
                           errno == ENOENT ? "Could not find file '" + path + "'."
                                           : "Cannot open '" + path + "': " + std::strerror(errno) + ".");
    }
    if (!S_ISREG(found.st_mode)) {
        throw RunTimeError(database::kErrCannotOpenFile, "", "Cannot open '" + path + "': it is not a file.");
    }
    std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "rb"), fclose);
    if (!file) {
        throw RunTimeError(database::kErrCannotOpenFile, "",
                           "Cannot open '" + path + "': " + std::strerror(errno) + ".");
    }
    char header[24] = {};
    const std::size_t size = fread(header, 1, sizeof header, file.get());
    const Bytes text(header, size);
    if (text.size() < sizeof header ||
        (!text.substr(4).starts_with("Standard Jet DB") && !text.substr(4).starts_with("Standard ACE DB"))) {
        RaiseDamaged("it is no database of the old engine");
    }
}

} // namespace

void RaiseDamaged(const std::string& what) {
    throw RunTimeError(database::kErrNotADatabase, "", what);
}

std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t size) {
    const Bytes part = Part(bytes, at, size);
    std::uint32_t value = 0;
    for (std::size_t i = size; i > 0; --i) {
        value = value << 8 | static_cast<unsigned char>(part[i - 1]);
    }
    return value;
}

Bytes Part(Bytes bytes, std::size_t at, std::size_t size) {
    if (at > bytes.size() || size > bytes.size() - at) {
        RaiseDamaged("the file is damaged: something on a page points beyond its end");
    }
    return bytes.substr(at, size);
}

struct JetPages::Library {
    MdbHandle* handle = nullptr;
    ~Library() {
        if (handle != nullptr) {
            mdb_close(handle);
        }
    }
};

JetPages::JetPages(const std::string& path) : library_(std::make_unique<Library>()) {
    CheckFile(path);
    {
        const Quiet quiet;
        library_->handle = mdb_open(path.c_str(), MDB_NOFLAGS);
    }
    if (library_->handle == nullptr) {
        RaiseDamaged("the library cannot open it; it may be encrypted or of an unknown version");
    }
    jet3_ = library_->handle->f->jet_version == MDB_VER_JET3;
    layout_ = jet3_ ? kJet3 : kJet4;
    struct stat found {};
    if (stat(path.c_str(), &found) == 0) {
        count_ = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(static_cast<std::uint64_t>(found.st_size) / layout_.pageSize, 0xffffff));
    }
}

JetPages::~JetPages() = default;

int JetPages::CodePage() const {
    return library_->handle->f->code_page;
}

Bytes JetPages::Page(std::uint32_t number) {
    MdbHandle* handle = library_->handle;
    if (number == 0 || number >= count_) {
        RaiseDamaged("the file is damaged or cut short: page " + std::to_string(number) + " of " +
                     std::to_string(count_) + " is asked for");
    }
    if (mdb_read_pg(handle, number) < static_cast<ssize_t>(layout_.pageSize)) {
        RaiseDamaged("page " + std::to_string(number) + " cannot be read");
    }
    return {reinterpret_cast<const char*>(handle->pg_buf), layout_.pageSize};
}

JetPages::Place JetPages::PlaceOf(Bytes page, std::size_t row) const {
    const std::size_t at = layout_.rowCountAt + 2 + row * 2;
    const std::uint32_t mark = Number(page, at, 2);
    Place place;
    place.begin = mark & kPlaceMask;
    place.end = row == 0 ? page.size() : Number(page, at - 2, 2) & kPlaceMask;
    place.gone = (mark & kGoneMark) != 0;
    if (place.begin > place.end || place.end > page.size()) {
        RaiseDamaged("the file is damaged: rows overlap on a page");
    }
    return place;
}

Bytes JetPages::Row(std::uint32_t address) {
    const Bytes page = Page(address >> 8);
    const std::size_t row = address & 0xff;
    if (page[0] != kRowsPage || row >= Number(page, layout_.rowCountAt, 2)) {
        RaiseDamaged("the file is damaged: a row that is pointed at is not there");
    }
    const Place place = PlaceOf(page, row);
    return page.substr(place.begin, place.end - place.begin);
}

std::vector<std::uint32_t> JetPages::PagesOf(std::uint32_t map) {
    const std::string bits(Row(map));
    std::vector<std::uint32_t> pages;
    const auto addMarked = [&](Bytes marks, std::uint32_t first) {
        for (std::size_t i = 0; i < marks.size() * 8; ++i) {
            const auto page = first + static_cast<std::uint32_t>(i);
            if ((static_cast<unsigned char>(marks[i / 8]) >> (i % 8) & 1) != 0 && page > 0 && page < count_) {
                pages.push_back(page);
            }
        }
    };
    if (Number(bits, 0, 1) == 0) {
        addMarked(Part(bits, 5, bits.size() - 5), Number(bits, 1, 4));
        return pages;
    }
    std::set<std::uint32_t> seen;
    const auto each = static_cast<std::uint32_t>((layout_.pageSize - 4) * 8);
    for (std::size_t i = 0; 1 + (i + 1) * 4 <= bits.size(); ++i) {
        const std::uint32_t number = Number(bits, 1 + i * 4, 4);
        if (number == 0 || !seen.insert(number).second) {
            continue;
        }
        const Bytes page = Page(number);
        if (page[0] != kMapPage) {
            RaiseDamaged("the file is damaged: a list of pages is not where it should be");
        }
        addMarked(page.substr(4), static_cast<std::uint32_t>(i) * each);
    }
    return pages;
}

std::string JetPages::LongValue(Bytes field) {
    const std::uint32_t mark = Number(field, 0, 4);
    const std::size_t length = mark & kLengthMask;
    if ((mark & kInline) != 0) {
        return std::string(Part(field, kLongHeader, length));
    }
    std::uint32_t address = Number(field, 4, 4);
    if (length > static_cast<std::uint64_t>(count_) * layout_.pageSize) {
        RaiseDamaged("the file is damaged: a long value is longer than the file");
    }
    if ((mark & kOnePiece) != 0) {
        return std::string(Part(Row(address), 0, length));
    }
    std::string value;
    value.reserve(length);
    while (address >> 8 != 0 && value.size() < length) {
        const Bytes row = Row(address);
        address = Number(row, 0, 4);
        if (row.size() == 4) {
            break; // a piece of nothing: the chain would not end
        }
        value += row.substr(4);
    }
    if (value.size() < length) {
        RaiseDamaged("the file is damaged: a long value ends early");
    }
    value.resize(length);
    return value;
}

} // namespace quillary::jet_import
