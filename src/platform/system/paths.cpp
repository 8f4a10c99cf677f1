#include "platform/system/paths.h"

#include "platform/runtime/dates.h"
#include "platform/system/text_encoding.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <memory>

namespace quillary::system {

namespace {

bool HasNul(std::string_view path) {
    return path.find('\0') != std::string_view::npos;
}

bool IsThere(const std::string& native) {
    struct stat info {};
    return ::lstat(native.c_str(), &info) == 0;
}

// The entry of a folder with this name in another case; of several the first in byte order.
std::string FindEntry(const std::string& folder, std::string_view name) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.empty() ? "." : folder.c_str()),
                                                      [](DIR* dir) { return ::closedir(dir); });
    std::string found;
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        const std::string_view candidate = entry->d_name;
        if (SameName(candidate, name) && (found.empty() || candidate < found))
            found = candidate;
    }
    return found;
}

std::optional<struct stat> Stat(std::string_view path) {
    struct stat info {};
    if (path.empty() || HasNul(path) || ::stat(ToNative(path).c_str(), &info) != 0)
        return std::nullopt;
    return info;
}

} // namespace

std::string ToNative(std::string_view path) {
    std::string native(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    if (native.empty() || HasNul(native) || IsThere(native))
        return native;
    std::string found;
    bool lost = false;
    for (std::size_t at = 0; at < native.size();) {
        if (native[at] == '/') {
            found += native[at++];
            continue;
        }
        const std::size_t end = std::min(native.find('/', at), native.size());
        std::string part = native.substr(at, end - at);
        if (!lost && !IsThere(found + part)) {
            std::string entry = FindEntry(found, part);
            lost = entry.empty();
            if (!lost)
                part = std::move(entry);
        }
        found += part;
        at = end;
    }
    return found;
}

bool FileExists(std::string_view path) {
    const auto info = Stat(path);
    return info && !S_ISDIR(info->st_mode);
}

bool FolderExists(std::string_view path) {
    const auto info = Stat(path);
    return info && S_ISDIR(info->st_mode);
}

std::string Join(std::string_view folder, std::string_view name) {
    std::string joined(folder);
    if (joined.empty() || (joined.back() != '\\' && joined.back() != '/'))
        joined += '\\';
    return joined.append(name);
}

std::string_view FileNameOf(std::string_view path) {
    const std::size_t at = path.find_last_of("\\/");
    return at == std::string_view::npos ? path : path.substr(at + 1);
}

std::string_view FolderOf(std::string_view path) {
    const std::size_t at = path.find_last_of("\\/");
    return at == std::string_view::npos ? std::string_view() : path.substr(0, std::max<std::size_t>(at, 1));
}

std::optional<runtime::Date> FileDate(std::string_view path) {
    const auto info = Stat(path);
    std::tm local{};
    if (!info || !::localtime_r(&info->st_mtime, &local))
        return std::nullopt;
    return runtime::MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                             local.tm_min, local.tm_sec);
}

std::optional<std::string> ReadTextFile(std::string_view path) {
    if (path.empty() || HasNul(path))
        return std::nullopt;
    const auto bytes = ReadBytes(ToNative(path));
    return bytes ? std::optional(DecodeText(*bytes).text) : std::nullopt;
}

std::optional<std::string> ReadBytes(const std::string& native) {
    // Not blocking: a pipe under a file's name must not hold the program up.
    const int file = ::open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return std::nullopt;
    struct stat info {};
    std::optional<std::string> bytes;
    if (::fstat(file, &info) == 0 && S_ISREG(info.st_mode)) {
        bytes.emplace();
        char buffer[16384];
        ssize_t count = 0;
        while ((count = ::read(file, buffer, sizeof buffer)) > 0)
            bytes->append(buffer, static_cast<std::size_t>(count));
        if (count < 0)
            bytes.reset();
    }
    ::close(file);
    return bytes;
}

} // namespace quillary::system
