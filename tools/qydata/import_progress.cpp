#include "import_progress.h"

#include "platform/runtime/locale.h"

#include <algorithm>
#include <iostream>

#include <sys/ioctl.h>
#include <unistd.h>

namespace quillary::tools {
namespace {

constexpr std::size_t kBarWidth = 24;
constexpr std::size_t kUsualWidth = 80;
constexpr const char* kClearLine = "\r\x1b[K";

std::size_t TerminalWidth() {
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsualWidth;
}

} // namespace

ImportProgress::ImportProgress(std::string file)
    : file_(std::move(file)), terminal_(isatty(STDOUT_FILENO) != 0) {}

ImportProgress::~ImportProgress() {
    if (terminal_) {
        std::cout << kClearLine << std::flush;
    }
}

void ImportProgress::Show(const std::string& table, std::int64_t rows, std::int64_t total) {
    if (!terminal_) {
        if (rows == total) {
            std::cout << file_ << ": " << table << ": " << rows << " rows\n";
        }
        return;
    }
    const std::int64_t share = total == 0 ? 100 : rows * 100 / total;
    const std::size_t full = kBarWidth * static_cast<std::size_t>(share) / 100;
    const std::string bar = "[" + std::string(full, '#') + std::string(kBarWidth - full, '.') + "] " +
                            std::to_string(share) + "%  ";
    const std::string text = file_ + ": " + table;
    const std::size_t room = TerminalWidth() - std::min(TerminalWidth() - 1, bar.size() + 1);
    std::cout << kClearLine << bar << runtime::LeftChars(text, room) << std::flush;
}

} // namespace quillary::tools
