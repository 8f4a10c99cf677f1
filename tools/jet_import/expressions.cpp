#include "jet_import/expressions.h"

#include "platform/runtime/locale.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace quillary::jet_import {

using runtime::EqualName;

namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

bool BeginsWithWord(std::string_view text, std::string_view word) {
    const bool there = text.size() > word.size() && EqualName(text.substr(0, word.size()), word);
    return there && (text[word.size()] == ' ' || text[word.size()] == '(');
}

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsHalf(std::string_view part) {
    static constexpr std::string_view kWords[] = {"Between", "In", "Like", "Is", "Not"};
    return part.starts_with("<") || part.starts_with(">") || part.starts_with("=") ||
           std::any_of(std::begin(kWords), std::end(kWords),
                       [&](std::string_view word) { return BeginsWithWord(part, word); });
}

// The conditions of a rule and the words between them, in turn; brackets and the And of Between do not
// part.
std::vector<std::string> PartsOf(const std::string& rule) {
    std::vector<std::string> parts(1);
    int depth = 0;
    bool between = false;
    for (std::size_t at = 0; at < rule.size();) {
        const char c = rule[at];
        const char close = c == '[' ? ']' : c == '#' || c == '"' || c == '\'' ? c : '\0';
        std::size_t end = at + 1;
        if (close != 0) {
            end = std::min(rule.find(close, at + 1), rule.size() - 1) + 1;
        } else if (IsWordCharacter(c)) {
            while (end < rule.size() && IsWordCharacter(rule[end])) {
                ++end;
            }
        }
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        const std::string word = rule.substr(at, end - at);
        const bool joins = depth == 0 && (EqualName(word, "And") || EqualName(word, "Or"));
        if (joins && between && EqualName(word, "And")) {
            between = false;
            parts.back() += word;
        } else if (joins) {
            parts.push_back(" " + word + " ");
            parts.emplace_back();
            end = std::min(rule.find_first_not_of(" \t\r\n", end), rule.size());
        } else {
            between = between || EqualName(word, "Between");
            parts.back() += word;
        }
        at = end;
    }
    return parts;
}

bool IsMoment(std::string_view text) {
    return EqualName(text, "Now()") || EqualName(text, "Date()") || EqualName(text, "Time()");
}

} // namespace

std::string DefaultExpression(const std::string& text, database::FieldType type) {
    std::string result = Trimmed(text);
    if (result.starts_with("=")) {
        result = Trimmed(result.substr(1));
    }
    const bool isText = type == database::FieldType::Text || type == database::FieldType::Memo;
    if (result.empty() || EqualName(result, "Null") || EqualName(result, "GenUniqueID()")) {
        return {};
    }
    const bool quoted = result.front() == '"' || result.front() == '\'';
    if (!isText || quoted || IsMoment(result)) {
        return result;
    }
    std::string literal = "'";
    for (const char c : result) {
        literal += c == '\'' ? "''" : std::string(1, c);
    }
    return literal + "'";
}

// A rule may leave out the field before each of the parts that And and Or join.
std::string FieldRule(const std::string& rule, const std::string& field) {
    std::string result;
    for (const std::string& part : PartsOf(Trimmed(rule))) {
        if (IsHalf(part)) {
            result.append("[").append(field).append("] ");
        }
        result += part;
    }
    return result;
}

} // namespace quillary::jet_import
