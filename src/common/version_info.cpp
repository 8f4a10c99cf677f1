#include "common/version_info.h"

#include "common/messages.h"
#include "platform/system/services.h"

namespace quillary::common {

namespace {

struct Word {
    std::uint32_t number;
    std::string_view text;
};
constexpr Word kFlags[] = {{1, "Debug "},   {2, "PreRel "}, {4, "Patched "},
                           {8, "Private "}, {16, "Info "},  {32, "Special "}};
constexpr Word kSystems[] = {{0x10001, "DOS-Win16"},
                             {0x10004, "DOS-Win32"},
                             {0x20002, "OS/2-16 PM-16"},
                             {0x30003, "OS/2-16 PM-32"},
                             {0x40004, "NT-Win32"}};
constexpr std::uint32_t kDriver = 3;
constexpr Word kTypes[] = {{1, "App"}, {2, "DLL"}, {kDriver, "Driver"}, {4, "Font"}, {5, "VxD"}, {7, "Lib"}};
constexpr Word kDrivers[] = {{1, "Printer drv"}, {2, "Keyboard drv"}, {3, "Language drv"}, {4, "Display drv"},
                             {5, "Mouse drv"},   {6, "Network drv"},  {7, "System drv"},   {8, "Installable"},
                             {9, "Sound drv"},   {10, "Comm drv"}};

template <std::size_t size>
std::string WordFor(const Word (&words)[size], std::uint32_t number, std::string_view fallback) {
    for (const Word& word : words) {
        if (word.number == number)
            return std::string(word.text);
    }
    return std::string(fallback);
}

std::string Parts(const std::array<int, 4>& parts, std::size_t count = 4) {
    std::string text = std::to_string(parts[0]);
    for (std::size_t i = 1; i < count; ++i)
        text += "." + std::to_string(parts[i]);
    return text;
}

} // namespace

std::string GetFileVersionInfo(std::string_view path) {
    for (std::string* text :
         {&gFileVersionShort, &gFileVersion, &gProductVersion, &gFileFlags, &gFileOS, &gFileType})
        text->clear();
    const auto version = system::TheServices().fileVersions->Read(path);
    if (!version) {
        ShowMessage(Message("No Version Info available!", "Information"));
        return {};
    }
    gFileVersionShort = Parts(version->file, 2);
    gFileVersion = Parts(version->file);
    gProductVersion = Parts(version->product);
    for (const Word& flag : kFlags) {
        if (version->flags & flag.number)
            gFileFlags += flag.text;
    }
    gFileOS = WordFor(kSystems, version->os, "Unknown");
    gFileType = WordFor(kTypes, version->type, "Unknown");
    if (version->type == kDriver) {
        const std::string driver = WordFor(kDrivers, version->subtype, "");
        gFileType += driver.empty() ? "" : " " + driver;
    }
    return gFileVersion;
}

} // namespace quillary::common
