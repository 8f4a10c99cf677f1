#include "platform/database/sqlite/like_pattern.h"

#include "platform/runtime/run_time_error.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <string>

namespace quillary::database::sqlite {
namespace {

bool IsPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Characters without case; an accent is part of its letter however it was typed.
void Fold(std::string_view text, std::vector<char32_t>& folded) {
    folded.clear();
    folded.reserve(text.size());
    if (IsPlain(text)) {
        for (const char c : text) {
            folded.push_back(static_cast<char32_t>(c >= 'A' && c <= 'Z' ? c + 32 : c));
        }
        return;
    }
    UErrorCode code = U_ZERO_ERROR;
    const icu::Normalizer2* composer = icu::Normalizer2::getNFCInstance(code);
    auto wide =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    if (U_SUCCESS(code)) {
        wide = composer->normalize(wide, code);
    }
    for (std::int32_t i = 0; i < wide.length(); i = wide.moveIndex32(i, 1)) {
        folded.push_back(static_cast<char32_t>(u_foldCase(wide.char32At(i), U_FOLD_CASE_DEFAULT)));
    }
}

[[noreturn]] void RaiseInvalidPattern() {
    throw runtime::RunTimeError(93, "Database", "Invalid pattern string");
}

} // namespace

bool HasWildcards(std::string_view pattern) {
    return pattern.find_first_of("*?#[") != std::string_view::npos;
}

LikePattern::LikePattern(std::string_view pattern) {
    std::vector<char32_t> folded;
    Fold(pattern, folded);
    for (std::size_t i = 0; i < folded.size();) {
        const char32_t c = folded[i++];
        switch (c) {
        case U'*':
            if (elements_.empty() || elements_.back().kind != Kind::Any) {
                elements_.push_back({Kind::Any, 0, {}});
            }
            break;
        case U'?':
            elements_.push_back({Kind::One, 0, {}});
            break;
        case U'#':
            elements_.push_back({Kind::Digit, 0, {}});
            break;
        case U'[':
            ReadList(folded, i);
            break;
        default:
            elements_.push_back({Kind::Character, c, {}});
            break;
        }
    }
}

// `at` is behind the opening bracket, and is left behind the closing one.
void LikePattern::ReadList(const std::vector<char32_t>& pattern, std::size_t& at) {
    const auto closing = std::find(pattern.begin() + static_cast<std::ptrdiff_t>(at), pattern.end(), U']');
    if (closing == pattern.end()) {
        RaiseInvalidPattern();
    }
    const auto end = static_cast<std::size_t>(closing - pattern.begin());
    if (at == end) { // "[]" stands for no character at all
        at = end + 1;
        return;
    }
    Element element{Kind::List, 0, {}};
    if (pattern[at] == U'!' && at + 1 < end) {
        element.kind = Kind::ListNot;
        ++at;
    }
    while (at < end) {
        const char32_t first = pattern[at++];
        char32_t last = first;
        if (at + 1 < end && pattern[at] == U'-') {
            last = pattern[at + 1];
            at += 2;
        }
        if (last < first) {
            RaiseInvalidPattern();
        }
        element.ranges.emplace_back(first, last);
    }
    at = end + 1;
    elements_.push_back(std::move(element));
}

bool LikePattern::MatchesOne(const Element& element, char32_t character) {
    switch (element.kind) {
    case Kind::Character:
        return element.character == character;
    case Kind::Digit:
        return character >= U'0' && character <= U'9';
    case Kind::List:
    case Kind::ListNot: {
        const bool listed =
            std::any_of(element.ranges.begin(), element.ranges.end(), [character](const auto& range) {
                return character >= range.first && character <= range.second;
            });
        return listed == (element.kind == Kind::List);
    }
    default:
        return true;
    }
}

// Where a * has taken too little, only the last one needs to take more.
bool LikePattern::Matches(std::string_view text) const {
    static thread_local std::vector<char32_t> folded;
    Fold(text, folded);
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t at = 0;
    std::size_t element = 0;
    std::size_t star = kNone;
    std::size_t taken = 0;
    while (at < folded.size()) {
        if (element < elements_.size() && elements_[element].kind == Kind::Any) {
            star = element++;
            taken = at;
        } else if (element < elements_.size() && MatchesOne(elements_[element], folded[at])) {
            ++element;
            ++at;
        } else if (star != kNone) {
            element = star + 1;
            at = ++taken;
        } else {
            return false;
        }
    }
    while (element < elements_.size() && elements_[element].kind == Kind::Any) {
        ++element;
    }
    return element == elements_.size();
}

} // namespace quillary::database::sqlite
