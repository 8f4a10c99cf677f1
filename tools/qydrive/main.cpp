#include "player.h"

#include "widget_application.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>

// qydrive: plays scenario files against the program.
namespace {

using namespace quillary::tools;

constexpr int kAllPassed = 0, kSomeFailed = 1, kUnreadable = 2;

constexpr const char* kUsage = "usage: qydrive [--widgets] [--keep] [--trace] FILE...\n"
                               "  --widgets  play on the real widgets\n"
                               "  --keep     leave the temporary installation and print its folder\n"
                               "  --trace    print each event routine as it runs\n";

// nullopt for what cannot be read, a folder too.
std::optional<std::string> TextOf(const std::string& file) {
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored))
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream.is_open() || stream.bad())
        return std::nullopt;
    return text;
}

PlayResult PlayFile(const std::string& file, const std::string& text, const PlayOptions& options) {
    int line = 0;
    try {
        return Player(file, ParseScript(text, line), options).Play();
    } catch (const std::exception& fault) {
        return {false, file + ":" + std::to_string(line) + ": " + fault.what(), {}, {}};
    }
}

} // namespace

int main(int argc, char** argv) {
    PlayOptions options;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--widgets")
            options.widgets = true;
        else if (word == "--keep")
            options.keep = true;
        else if (word == "--trace")
            options.trace = true;
        else if (word == "--help" || word == "-h") {
            std::cout << kUsage;
            return kAllPassed;
        } else if (word.starts_with("-") && word.size() > 1) {
            std::cerr << "qydrive: unknown option '" << word << "'\n" << kUsage;
            return kUnreadable;
        } else
            files.push_back(word);
    }
    if (files.empty()) {
        std::cerr << "qydrive: no file given\n" << kUsage;
        return kUnreadable;
    }

    const WidgetApplication application(options.widgets, argc, argv);
    int passed = 0, failed = 0;
    bool unreadable = false;
    for (const std::string& file : files) {
        const auto text = TextOf(file);
        if (!text) {
            std::cout << file << ": cannot be read\n";
            unreadable = true;
            ++failed;
            continue;
        }
        if (options.trace)
            std::cout << file << "\n";
        const PlayResult result = PlayFile(file, *text, options);
        if (!result.skipped.empty()) {
            std::cout << file << ": skipped: " << result.skipped << "\n";
            continue;
        }
        if (!result.passed)
            std::cout << result.fault << "\n";
        if (!result.keptFolder.empty())
            std::cout << file << ": kept in " << result.keptFolder << "\n";
        (result.passed ? passed : failed) += 1;
    }
    std::cout << passed << " passed, " << failed << " failed" << std::endl;
    return unreadable ? kUnreadable : failed > 0 ? kSomeFailed : kAllPassed;
}
