#include "common/messages.h"

#include "config/globals.h"
#include "config/profile_store.h"
#include "platform/runtime/conversions.h"
#include "platform/system/services.h"

namespace quillary::common {

namespace {

int CustomaryIcon(const Message& message) {
    if (message.buttons == kButtonsYesNo || message.buttons == kButtonsYesNoCancel)
        return kIconQuestion;
    if (message.heading.starts_with("Invalid ") || message.heading.starts_with("Required "))
        return kIconCorrect;
    return kIconNotice;
}

} // namespace

Message::Message(std::string text, std::string largeLine)
    : prompt(std::move(text)), heading(std::move(largeLine)), caption(config::GetFirm()),
      subHeading(caption) {}

std::string EscapeAmpersands(const runtime::Variant& text) {
    std::string escaped;
    for (const char c : runtime::TextOf(text)) {
        escaped += c;
        if (c == '&')
            escaped += c;
    }
    return escaped;
}

int ShowMessage(const Message& message) {
    system::MessageRequest request;
    request.prompt = message.prompt;
    request.buttons = message.buttons;
    request.caption = message.caption;
    request.heading = message.heading;
    request.subHeading = EscapeAmpersands(message.subHeading);
    request.icon = message.icon != 0 ? message.icon : CustomaryIcon(message);
    request.shellFlag = config::gShellLaunch;
    return system::TheServices().messageBoxes->Show(request);
}

void ShowSystemMessage(std::string_view text, std::string_view caption) {
    system::MessageRequest request;
    request.prompt = text;
    request.caption = caption;
    request.icon = kIconNotice;
    request.plain = true;
    system::TheServices().messageBoxes->Show(request);
}

std::string ShowInputBox(std::string_view prompt, std::string_view title, std::string_view defaultText,
                         int maxLength, bool numeric) {
    system::InputRequest request;
    request.prompt = prompt;
    request.title = title;
    request.defaultText = defaultText;
    request.maxLength = maxLength;
    request.numeric = numeric;
    request.shellFlag = config::gShellLaunch;
    return system::TheServices().inputBoxes->Ask(request).value_or("");
}

} // namespace quillary::common
