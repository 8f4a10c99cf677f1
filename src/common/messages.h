#pragma once

#include <string>
#include <string_view>

#include "platform/runtime/variant.h"

// All prompts to the user go through here, so that they look alike in every module of the suite.
namespace quillary::common {

// Buttons and answers have the system's numbers.
inline constexpr int kButtonsOk = 0;
inline constexpr int kButtonsOkCancel = 1;
inline constexpr int kButtonsYesNoCancel = 3;
inline constexpr int kButtonsYesNo = 4;
inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerCancel = 2;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

inline constexpr int kIconCorrect = 3; // a request to correct an entry
inline constexpr int kIconNotice = 6;  // an error or a notice
inline constexpr int kIconQuestion = 9;

// A message box. What is not set takes the suite's custom: caption and sub-heading the firm's name, icon by
// buttons and heading (9 with Yes/No, 3 under "Invalid ..." and "Required ...", else 6).
struct Message {
    explicit Message(std::string text, std::string largeLine = {});
    std::string prompt;
    std::string heading;
    int buttons = kButtonsOk;
    std::string caption;    // the firm's name
    std::string subHeading; // the firm's name; may be set empty
    int icon = 0;           // 0: by custom
};

// Shows the box and gives the pressed button. The sub-heading's "&" are doubled, so that a firm's name such
// as "A & B" shows no underlined letter; heading and caption are taken as they are.
int ShowMessage(const Message& message);

// The plain box of the system, for the few places that use it.
void ShowSystemMessage(std::string_view text, std::string_view caption = "Setup");

// Every "&" doubled; Null gives the empty text.
std::string EscapeAmpersands(const runtime::Variant& text);

// One line of text from the user; empty for Cancel. maxLength 0: no limit.
std::string ShowInputBox(std::string_view prompt, std::string_view title, std::string_view defaultText = {},
                         int maxLength = 0, bool numeric = false);

} // namespace quillary::common
