#include "platform/database/sqlite/file_check.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/error_map.h"
#include "platform/database/sqlite/piece.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sqlite3.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace quillary::database::sqlite {
namespace {

constexpr std::string_view kMagic("SQLite format 3\0", 16);
constexpr std::size_t kHeaderSize = 100;
constexpr std::string_view kOldEngines[] = {"Standard Jet DB", "Standard ACE DB"};
constexpr std::size_t kOldEngineAt = 4;

std::uint32_t BigEndian(const unsigned char* bytes, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

struct Reader {
    sqlite3_file* file = nullptr;

    explicit Reader(sqlite3* handle) {
        sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    }
    std::int64_t Size() const {
        sqlite3_int64 size = 0;
        const bool known = file != nullptr && file->pMethods != nullptr &&
                           file->pMethods->xFileSize(file, &size) == SQLITE_OK;
        return known ? size : 0;
    }
    bool Read(void* buffer, int count, std::int64_t offset) const {
        return file != nullptr && file->pMethods != nullptr &&
               file->pMethods->xRead(file, buffer, count, offset) == SQLITE_OK;
    }
};

// The page size, 0 when the header is none.
std::uint32_t PageSize(const unsigned char* header) {
    std::uint32_t size = BigEndian(header + 16, 2);
    size = size == 1 ? 65536 : size;
    const bool good = size >= 512 && (size & (size - 1)) == 0 && header[18] >= 1 && header[18] <= 2 &&
                      header[19] >= 1 && header[19] <= 2 && header[21] == 64 && header[22] == 32 &&
                      header[23] == 32;
    return good ? size : 0;
}

bool IsTreeKind(unsigned char kind) {
    return kind == 2 || kind == 5 || kind == 10 || kind == 13;
}

struct Closer {
    sqlite3* handle = nullptr;
    sqlite3_stmt* statement = nullptr;
    ~Closer() {
        sqlite3_finalize(statement);
        sqlite3_close(handle);
    }
};

} // namespace

void RaiseNotADatabase(const std::string& path) {
    Raise(kErrNotADatabase, "The file '" + path + "' is damaged or is not a database.");
}

FileState LookAtFile(const std::string& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) {
        if (errno == ENOENT || errno == ENOTDIR || path.empty()) {
            Raise(kErrFileNotFound, "Could not find file '" + path + "'.");
        }
        Raise(kErrCannotOpenFile,
              "The database engine cannot open the file '" + path + "': " + std::strerror(errno) + ".");
    }
    if (!S_ISREG(found.st_mode)) {
        Raise(kErrCannotOpenFile, "The database engine cannot open '" + path + "': it is not a file.");
    }
    return {found.st_dev, found.st_ino, found.st_size,
            found.st_mtim.tv_sec * 1'000'000'000 + found.st_mtim.tv_nsec, found.st_mode};
}

void CheckReadable(const std::string& path, const FileState& state) {
    constexpr unsigned kAnyRead = S_IRUSR | S_IRGRP | S_IROTH;
    if ((state.mode & kAnyRead) == 0 || access(path.c_str(), R_OK) != 0) {
        Raise(kErrCannotOpenFile,
              "The database engine cannot open the file '" + path + "'. You need permission to read it.");
    }
}

bool IsWritable(const std::string& path, const FileState& state) {
    constexpr unsigned kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    if ((state.mode & kAnyWrite) == 0 || access(path.c_str(), W_OK) != 0) {
        return false;
    }
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    return access(folder.c_str(), W_OK) == 0;
}

bool HasLog(const std::string& path) {
    for (const char* ending : {"-wal", "-journal"}) {
        struct stat found {};
        if (stat((path + ending).c_str(), &found) == 0 && found.st_size > 0) {
            return true;
        }
    }
    return false;
}

void CheckHeader(sqlite3* handle, const std::string& path) {
    const Reader reader(handle);
    std::array<unsigned char, kHeaderSize> header{};
    const std::int64_t size = reader.Size();
    const int readable = static_cast<int>(std::min<std::int64_t>(size, kHeaderSize));
    if (readable > 0 && !reader.Read(header.data(), readable, 0)) {
        Raise(kErrCannotOpenFile, "The database engine cannot read the file '" + path + "'.");
    }
    const std::string_view text(reinterpret_cast<const char*>(header.data()), header.size());
    for (const std::string_view name : kOldEngines) {
        if (text.substr(kOldEngineAt).starts_with(name)) {
            std::string words = "The file '";
            words.append(path).append("' is a database of the suite's old engine. Bring it across with: ");
            words.append("qydata import '").append(path).append("' --into FOLDER");
            Raise(kErrNotADatabase, words);
        }
    }
    const std::uint32_t pageSize = PageSize(header.data());
    if (!text.starts_with(kMagic) || pageSize == 0 || size < pageSize) {
        RaiseNotADatabase(path);
    }
    const std::uint32_t pages = BigEndian(&header[28], 4);
    const bool pagesValid = pages > 0 && BigEndian(&header[24], 4) == BigEndian(&header[92], 4);
    if (pagesValid && size < static_cast<std::int64_t>(pages) * pageSize && !HasLog(path)) {
        RaiseNotADatabase(path);
    }
}

void CheckTrees(const std::string& path) {
    if (HasLog(path)) {
        return;
    }
    Closer open;
    const std::string uri = FileUri(path, "immutable=1");
    if (sqlite3_open_v2(uri.c_str(), &open.handle,
                        SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK) {
        RaiseSqliteError(sqlite3_errcode(open.handle), {}, path, Operation::Open);
    }
    int result = sqlite3_prepare_v2(open.handle, "SELECT rootpage FROM sqlite_master WHERE rootpage > 0", -1,
                                    &open.statement, nullptr);
    const Reader reader(open.handle);
    std::array<unsigned char, kHeaderSize> header{};
    reader.Read(header.data(), kHeaderSize, 0);
    const std::int64_t pageSize = PageSize(header.data());
    while (result == SQLITE_OK && (result = sqlite3_step(open.statement)) == SQLITE_ROW) {
        unsigned char kind = 0;
        const std::int64_t page = sqlite3_column_int64(open.statement, 0);
        const bool good = reader.Read(&kind, 1, (page - 1) * pageSize) && IsTreeKind(kind);
        result = good ? SQLITE_OK : SQLITE_CORRUPT;
    }
    if (result != SQLITE_DONE) {
        RaiseNotADatabase(path);
    }
}

std::string FileUri(const std::string& path, const std::string& query) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : path) {
        if (c == '%' || c == '?' || c == '#') {
            uri += '%';
            uri += kDigits[static_cast<unsigned char>(c) >> 4];
            uri += kDigits[static_cast<unsigned char>(c) & 15];
        } else {
            uri += c;
        }
    }
    return uri + "?" + query;
}

} // namespace quillary::database::sqlite
