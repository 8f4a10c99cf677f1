#include "platform/qt/text.h"

#include "platform/controls/control.h"
#include "platform/qt/theme.h"
#include "platform/runtime/locale.h"

#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace quillary::qt {

namespace {

// Of large or coloured text against its ground; the eye asks for more on a dark one.
constexpr double kReadableContrast = 3.0, kReadableOnDark = 5.0;

double Luminance(const QColor& colour) {
    const auto linear = [](double share) {
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    const double a = Luminance(one), b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

QString LinesToQt(std::string_view text) {
    QString lines = ToQt(text);
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    lines.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return lines;
}

std::string LinesFromQt(QString text) {
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return FromQt(text);
}

void GiveRoom(QLineEdit& field, int characters, const QString& text) {
    field.setMaxLength(std::max(2 * characters, static_cast<int>(text.size())));
}

void CutTo(QLineEdit& field, int characters, std::string_view former) {
    const std::size_t most = std::max(static_cast<std::size_t>(characters), runtime::CharCount(former));
    const QSignalBlocker quiet(field);
    while (runtime::CharCount(FromQt(field.text())) > most)
        field.backspace(); // the cursor stands behind what was inserted
}

QColor ColourOf(int colour) {
    if (colour == controls::kMenuColour)
        return CurrentTheme().shaded;
    if (colour < 0)
        return {};
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

QColor TextColourOf(int colour, const QColor& background, const QColor& themeText) {
    QColor asked = ColourOf(colour);
    if (!asked.isValid() || colour == 0)
        return themeText;
    const bool darkGround = Luminance(background) < 0.2;
    const double readable = darkGround ? kReadableOnDark : kReadableContrast;
    for (int step = 0; step < 12 && Contrast(asked, background) < readable; ++step) {
        float hue = 0, saturation = 0, lightness = 0;
        asked.getHslF(&hue, &saturation, &lightness);
        lightness = std::clamp(lightness + (darkGround ? 0.06f : -0.06f), 0.0f, 1.0f);
        asked = QColor::fromHslF(std::max(hue, 0.0f), saturation, lightness);
    }
    return asked;
}

} // namespace quillary::qt
