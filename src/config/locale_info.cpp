#include "config/locale_info.h"

#include "platform/system/services.h"

namespace quillary::config {

std::string GetLocaleValue(long kind) {
    return TrimAtNul(system::TheServices().regional->Value(kind));
}

std::string TrimAtNul(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string GetDateOrder() {
    return GetLocaleValue(system::regional::kDateOrder);
}

} // namespace quillary::config
