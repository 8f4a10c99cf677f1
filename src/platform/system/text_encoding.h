#pragma once

#include <string>
#include <string_view>

// Bytes of the suite's text files, and the UTF-8 that the program works with. Old files are in Windows
// Latin (code page 1252), or in pairs of bytes (UTF-16) with a mark; new ones in UTF-8 with or without one.
namespace quillary::system {

struct DecodedText {
    std::string text; // UTF-8, no mark
    bool marked = false;
    bool windowsLatin = false;
};

DecodedText DecodeText(std::string_view bytes);
// Back to bytes in the form of `like`; UTF-8 where that was UTF-16, or a character has no place in Windows
// Latin.
std::string EncodeText(std::string_view text, const DecodedText& like);

// Equal without case, as names of files, sections and keys are.
bool SameName(std::string_view left, std::string_view right);

} // namespace quillary::system
