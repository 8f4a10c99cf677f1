#pragma once

#include <memory>
#include <string>
#include <string_view>

struct UConverter;

// Text of a file of the old engine as UTF-8.
namespace quillary::jet_import {

class JetText {
public:
    // codePage: of a file of the third generation, 0 for the later ones, which hold UTF-16. One that is not
    // known is read as 1252.
    explicit JetText(int codePage);
    ~JetText();

    // The text is added to the end of `out`. Half a surrogate pair and bytes that mean nothing in the code
    // page become U+FFFD.
    void Append(std::string_view bytes, std::string& out) const;
    std::string Read(std::string_view bytes) const {
        std::string text;
        Append(bytes, text);
        return text;
    }

    bool IsKnown() const { return known_; }
    // Whether there was text on which the code page has a bearing.
    bool HasUsedCodePage() const { return used_; }

private:
    struct Close {
        void operator()(UConverter* converter) const;
    };
    std::unique_ptr<UConverter, Close> converter_;
    bool known_ = true;
    mutable bool used_ = false;
};

} // namespace quillary::jet_import
