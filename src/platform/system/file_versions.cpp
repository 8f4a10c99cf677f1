#include "platform/runtime/locale.h"
#include "platform/system/machine.h"
#include "platform/system/paths.h"
#include "platform/system/program_version.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace quillary::system {

namespace {

constexpr std::uint32_t kTypeProgram = 1;

std::array<int, 4> ReadParts(std::string_view text) {
    std::array<int, 4> parts{};
    for (int& part : parts) {
        const std::size_t dot = std::min(text.find('.'), text.size());
        part = std::clamp(std::atoi(std::string(text.substr(0, dot)).c_str()), 0, 65535);
        text.remove_prefix(std::min(dot + 1, text.size()));
    }
    return parts;
}

class FileVersionsOfMachine : public FileVersions {
public:
    std::optional<FileVersion> Read(std::string_view path) override {
        if (path.empty())
            return std::nullopt;
        const std::string native = ToNative(path);
        std::error_code error;
        if (std::filesystem::equivalent(native, "/proc/self/exe", error)) {
            FileVersion own;
            own.file = own.product = kProgramVersion;
            own.type = kTypeProgram;
            return own;
        }
        const auto text = ReadTextFile(native + ".version");
        return text ? ReadSideFile(*text) : std::nullopt;
    }

private:
    static std::optional<FileVersion> ReadSideFile(std::string_view text) {
        FileVersion version;
        bool found = false;
        while (!text.empty()) {
            const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
            const std::string_view line = text.substr(0, end);
            text.remove_prefix(std::min(end + 1, text.size()));
            const std::size_t equals = line.find('=');
            if (equals == std::string_view::npos)
                continue;
            const std::string_view name = runtime::Trim(line.substr(0, equals));
            const std::string_view value = runtime::Trim(line.substr(equals + 1));
            if (runtime::EqualName(name, "FileVersion")) {
                version.file = ReadParts(value);
                found = true;
            } else if (runtime::EqualName(name, "ProductVersion")) {
                version.product = ReadParts(value);
            } else if (runtime::EqualName(name, "Flags")) {
                version.flags = Number(value);
            } else if (runtime::EqualName(name, "OS")) {
                version.os = Number(value);
            } else if (runtime::EqualName(name, "Type")) {
                version.type = Number(value);
            } else if (runtime::EqualName(name, "Subtype")) {
                version.subtype = Number(value);
            }
        }
        return found ? std::optional(version) : std::nullopt;
    }

    static std::uint32_t Number(std::string_view text) {
        return static_cast<std::uint32_t>(std::strtoul(std::string(text).c_str(), nullptr, 0)); // 0x for hex
    }
};

} // namespace

std::shared_ptr<FileVersions> MachineFileVersions() {
    return std::make_shared<FileVersionsOfMachine>();
}

} // namespace quillary::system
