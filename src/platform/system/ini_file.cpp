#include "platform/system/ini_file.h"

#include "platform/runtime/locale.h"
#include "platform/system/paths.h"
#include "platform/system/services.h"
#include "platform/system/text_encoding.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>

namespace quillary::system {

namespace {

constexpr std::string_view kBlanks = " \t\v\f";

std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view StripQuotes(std::string_view value) {
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

// A line of the file; `text` without its line end, `end` the place behind the line end.
struct Line {
    std::string_view text;
    std::size_t start = 0;
    std::size_t end = 0;
};

std::optional<Line> LineAt(std::string_view whole, std::size_t start) {
    if (start >= whole.size())
        return std::nullopt;
    const std::size_t stop = std::min(whole.find_first_of("\r\n", start), whole.size());
    std::size_t end = std::min(stop + 1, whole.size());
    if (stop + 1 < whole.size() && whole[stop] == '\r' && whole[stop + 1] == '\n')
        ++end;
    return Line{whole.substr(start, stop - start), start, end};
}

std::optional<std::string_view> SectionName(std::string_view line) {
    line = TrimBlanks(line);
    const std::size_t close = line.rfind(']');
    if (line.empty() || line.front() != '[' || close == std::string_view::npos)
        return std::nullopt;
    return line.substr(1, close - 1);
}

// Where a key stands, or where it would be put.
struct Place {
    bool sectionFound = false;
    std::size_t insertAt = 0;   // behind the last line of the section that is not blank
    std::optional<Line> line;   // the key's line
    std::string_view valueText; // behind its "=", as it stands
};

Place Find(std::string_view whole, std::string_view section, std::string_view key) {
    Place place;
    std::size_t at = 0;
    while (const auto line = LineAt(whole, at)) {
        at = line->end;
        if (const auto name = SectionName(line->text)) {
            if (place.sectionFound)
                break; // the first section of a name is the one that counts
            place.sectionFound = SameName(*name, section);
            place.insertAt = line->end;
            continue;
        }
        const std::string_view text = TrimBlanks(line->text);
        if (!place.sectionFound || text.empty())
            continue;
        place.insertAt = line->end;
        const std::size_t equals = line->text.find('=');
        if (text.front() == ';' || equals == std::string_view::npos ||
            !SameName(TrimBlanks(line->text.substr(0, equals)), TrimBlanks(key)))
            continue;
        place.line = line;
        place.valueText = line->text.substr(equals + 1);
        break;
    }
    return place;
}

bool IsBare(std::string_view file) {
    return file.find_first_of("\\/") == std::string_view::npos;
}

std::string Resolve(std::string_view file) {
    return ToNative(IsBare(file) ? Join(TheServices().folders->ConfigHome(), file) : std::string(file));
}

struct SystemKey {
    std::string_view key;
    long kind;
};
constexpr SystemKey kSystemKeys[] = {
    {"iCountry", regional::kCountryCode}, {"sLanguage", regional::kLanguageAbbreviation},
    {"sCountry", regional::kCountry},     {"sDecimal", regional::kDecimal},
    {"sThousand", regional::kThousand},   {"sList", regional::kListSeparator},
    {"sCurrency", regional::kCurrency},   {"sDate", regional::kDateSeparator},
    {"sTime", regional::kTimeSeparator},  {"sShortDate", regional::kShortDate},
    {"sLongDate", regional::kLongDate},   {"iDate", regional::kDateOrder},
};

std::string SystemValue(std::string_view section, std::string_view key) {
    if (runtime::EqualName(section, "intl")) {
        for (const SystemKey& entry : kSystemKeys) {
            if (runtime::EqualName(entry.key, key))
                return TheServices().regional->Value(entry.kind);
        }
    }
    return {};
}

std::string LineEndOf(std::string_view whole) {
    const std::size_t at = whole.find_first_of("\r\n");
    if (at == std::string_view::npos)
        return "\r\n";
    return whole.substr(at, 2) == "\r\n" ? "\r\n" : std::string(1, whole[at]);
}

std::string Edited(const std::string& whole, std::string_view section, std::string_view key,
                   std::string_view value) {
    const Place place = Find(whole, section, key);
    std::string text = whole;
    if (place.line) {
        text.replace(static_cast<std::size_t>(place.valueText.data() - whole.data()), place.valueText.size(),
                     value);
        return text;
    }
    const std::string lineEnd = LineEndOf(whole);
    const std::size_t at = place.sectionFound ? place.insertAt : whole.size();
    std::string added;
    if (at > 0 && whole[at - 1] != '\n' && whole[at - 1] != '\r')
        added += lineEnd;
    if (!place.sectionFound)
        added.append("[").append(section).append("]").append(lineEnd);
    added.append(key).append("=").append(value).append(lineEnd);
    return text.insert(at, added);
}

std::string FollowLinks(std::string native) {
    std::error_code error;
    for (int step = 0; step < 40 && std::filesystem::is_symlink(native, error); ++step) {
        const auto target = std::filesystem::read_symlink(native, error);
        native = (std::filesystem::path(native).parent_path() / target).string();
    }
    return native;
}

// The folder of the file, held against other writers of these files. They wait for each other, but never
// for long.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder)
        : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        for (int attempt = 0; folder_ >= 0 && attempt < 100; ++attempt) {
            if (::flock(folder_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock() {
        if (folder_ >= 0)
            ::close(folder_);
    }
    bool IsOpen() const { return folder_ >= 0; }
    // Whether the folder has a write bit at all: the super-user would pass any other test.
    bool Writable() const {
        struct stat info {};
        return ::fstat(folder_, &info) == 0 && (info.st_mode & 0222) != 0;
    }
    void Sync() const { ::fsync(folder_); }

private:
    int folder_;
};

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return ::fsync(file) == 0;
}

// old: the file as it stands, whose mode and owner the new one takes.
bool ReplaceFile(const std::string& native, std::string_view bytes, const struct stat* old) {
    const std::string temporary = native + "." + std::to_string(::getpid()) + ".tmp";
    ::unlink(temporary.c_str()); // left by a crash of a process with our number
    const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    bool written = WriteAll(file, bytes);
    if (old) {
        // The owner can be kept by the super-user only, and only he needs it.
        if (::fchown(file, old->st_uid, old->st_gid) != 0)
            errno = 0;
        written = ::fchmod(file, old->st_mode & 07777) == 0 && written;
    }
    written = ::close(file) == 0 && written;
    if (!written || ::rename(temporary.c_str(), native.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}

} // namespace

std::string ReadProfileString(std::string_view section, std::string_view key, std::string_view defaultValue,
                              std::string_view file) {
    if (file.empty() || file.find('\0') != std::string_view::npos)
        return std::string(defaultValue);
    const auto bytes = ReadBytes(Resolve(file));
    if (!bytes) {
        std::string value = runtime::EqualName(file, "WIN.INI") ? SystemValue(section, key) : std::string();
        return value.empty() ? std::string(defaultValue) : value;
    }
    const DecodedText decoded = DecodeText(*bytes);
    const Place place = Find(decoded.text, section, key);
    const std::string_view value =
        place.line ? StripQuotes(TrimBlanks(place.valueText)) : std::string_view(defaultValue);
    return std::string(runtime::LeftChars(value, kProfileValueSize));
}

bool WriteProfileString(std::string_view section, std::string_view key, std::string_view value,
                        std::string_view file) {
    using namespace std::string_view_literals;
    for (const std::string_view text : {section, key, value, file}) {
        if (text.find_first_of("\r\n\0"sv) != std::string_view::npos)
            return false; // it would break the file's lines
    }
    if (file.empty())
        return false;
    std::error_code error;
    if (IsBare(file))
        std::filesystem::create_directories(ToNative(TheServices().folders->ConfigHome()), error);
    const std::string native = FollowLinks(Resolve(file));
    const auto folder = std::filesystem::path(native).parent_path();
    const FolderLock lock(folder.empty() ? "." : folder.string());
    if (!lock.IsOpen())
        return false;
    struct stat old {};
    const bool exists = ::stat(native.c_str(), &old) == 0;
    std::string whole;
    DecodedText decoded;
    if (exists) {
        const auto bytes = ReadBytes(native);
        if (!bytes || (old.st_mode & 0222) == 0 || ::access(native.c_str(), W_OK) != 0)
            return false;
        decoded = DecodeText(*bytes);
    }
    const std::string edited = Edited(decoded.text, section, key, value);
    if (exists && edited == decoded.text)
        return true;
    if (!lock.Writable() || !ReplaceFile(native, EncodeText(edited, decoded), exists ? &old : nullptr))
        return false;
    lock.Sync();
    return true;
}

} // namespace quillary::system
