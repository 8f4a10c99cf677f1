#include "script.h"

namespace quillary::tools {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// The line behind its first n words, as it stands.
std::string_view Behind(std::string_view line, int words) {
    for (; words > 0; --words) {
        line = TrimBlanks(line);
        while (!line.empty() && !IsBlank(line.front()))
            line.remove_prefix(1);
    }
    return TrimBlanks(line);
}

// What a backslash and this character stand for; any other pair stands as it is, a path's too.
std::string Unescaped(char c) {
    switch (c) {
    case 'n':
        return "\n";
    case 'r':
        return "\r";
    case 't':
        return "\t";
    case '"':
    case '\\':
        return {c};
    default:
        return {'\\', c};
    }
}

} // namespace

std::vector<std::string> SplitWords(std::string_view line) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (i < line.size()) {
        if (IsBlank(line[i])) {
            ++i;
            continue;
        }
        std::string word;
        // A word may be put together of bare and quoted stretches: row(1)="a b".
        while (i < line.size() && !IsBlank(line[i])) {
            if (line[i] != '"') {
                word += line[i++];
                continue;
            }
            for (++i; i < line.size() && line[i] != '"'; ++i) {
                if (line[i] == '\\' && i + 1 < line.size())
                    word += Unescaped(line[++i]);
                else
                    word += line[i];
            }
            if (i >= line.size())
                throw ScenarioFault("a double quote without its end");
            ++i;
        }
        words.push_back(std::move(word));
    }
    return words;
}

std::vector<Command> ParseScript(std::string_view text, int& line) {
    std::vector<Command> commands;
    line = 0;
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    while (!text.empty()) {
        ++line;
        const std::size_t end = text.find('\n');
        std::string_view current = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (current.ends_with('\r'))
            current.remove_suffix(1);
        current = TrimBlanks(current);
        if (current.empty() || current.starts_with('#'))
            continue;
        Command command;
        command.line = line;
        const std::string_view name = current.substr(0, current.find_first_of(" \t"));
        if (name == "sql") {
            const std::string_view database = Behind(current, 1);
            command.words = {"sql", std::string(database.substr(0, database.find_first_of(" \t")))};
            command.rest = Behind(current, 2);
        } else if (name == "ini-raw") {
            command.words = {"ini-raw"};
            command.rest = Behind(current, 1);
        } else {
            command.words = SplitWords(current);
        }
        commands.push_back(std::move(command));
    }
    return commands;
}

} // namespace quillary::tools
