#include "platform/qt/widgets.h"

#include "platform/qt/form_view.h"
#include "platform/qt/icons.h"
#include "platform/qt/theme.h"

#include <QCalendarWidget>
#include <QImageReader>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QStyle>
#include <QStyleOption>
#include <QTextCharFormat>
#include <QVBoxLayout>

#include <algorithm>

namespace quillary::qt {

namespace {

constexpr double kCardRadius = 8;
constexpr int kArrowSize = 12;
constexpr int kPictureMargin = 6;

QColor Mixed(const QColor& one, const QColor& other, double share) {
    const auto mix = [&](int a, int b) { return static_cast<int>(a * share + b * (1 - share)); };
    return {mix(one.red(), other.red()), mix(one.green(), other.green()), mix(one.blue(), other.blue())};
}

void PaintFocus(QPainter& painter, const QRectF& rect) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(CurrentTheme().accent, 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), 4, 4);
}

// The window of the calendar closes by Escape, a click beside it, or a date picked.
class CalendarPopup : public QFrame {
public:
    explicit CalendarPopup(QWidget* parent) : QFrame(parent, Qt::Popup) {
        setFrameShape(QFrame::StyledPanel);
        setAttribute(Qt::WA_DeleteOnClose);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape)
            close();
        else
            QFrame::keyPressEvent(event);
    }
};

} // namespace

// ---- DateButton

DateButton::DateButton(QWidget* parent) : QToolButton(parent) {
    setIcon(DrawnIcon(Drawing::Calendar, {}));
    setFocusPolicy(Qt::StrongFocus);
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    const int height = fontMetrics().height();
    setIconSize({height + 2, height + 2});
}

void DateButton::SetDate(QDate date) {
    date_ = date;
    if (calendar_ && date.isValid())
        calendar_->setSelectedDate(date);
}

QCalendarWidget* DateButton::Calendar() const {
    return calendar_;
}

void DateButton::Drop() {
    auto* popup = new CalendarPopup(this);
    auto* layout = new QVBoxLayout(popup);
    layout->setContentsMargins(1, 1, 1, 1);
    calendar_ = new QCalendarWidget(popup);
    calendar_->setGridVisible(false);
    calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar_->setAccessibleName(accessibleName());
    if (date_.isValid())
        calendar_->setSelectedDate(date_);
    const Theme& theme = CurrentTheme();
    QTextCharFormat weekend;
    weekend.setForeground(theme.faint);
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        calendar_->setWeekdayTextFormat(day, weekend);
    const auto setArrow = [&](const char* name, Drawing drawing) {
        if (auto* arrow = calendar_->findChild<QToolButton*>(QLatin1String(name)))
            arrow->setIcon(DrawnIcon(drawing, {}));
    };
    setArrow("qt_calendar_prevmonth", Drawing::ChevronLeft);
    setArrow("qt_calendar_nextmonth", Drawing::ChevronRight);
    layout->addWidget(calendar_);
    const auto picked = [this, popup](QDate date) {
        popup->close();
        if (picked_)
            picked_(date);
    };
    // A click picks at once; with the keys Enter does.
    connect(calendar_, &QCalendarWidget::clicked, popup, picked);
    connect(calendar_, &QCalendarWidget::activated, popup, picked);

    popup->adjustSize();
    QPoint place = mapToGlobal(QPoint(width() - popup->width(), height() + 2));
    if (const QScreen* onScreen = screen()) {
        const QRect space = onScreen->availableGeometry();
        if (place.y() + popup->height() > space.bottom())
            place.setY(mapToGlobal(QPoint(0, 0)).y() - popup->height() - 2);
        place.setX(
            std::clamp(place.x(), space.left(), std::max(space.left(), space.right() - popup->width())));
    }
    popup->move(place);
    popup->show();
    calendar_->setFocus();
}

void DateButton::paintEvent(QPaintEvent* event) {
    QToolButton::paintEvent(event);
    if (hasFocus()) {
        QPainter painter(this);
        PaintFocus(painter, rect());
    }
}

// ---- StepButtons

StepButtons::StepButtons(QWidget* parent)
    : QWidget(parent), up_(new QToolButton(this)), down_(new QToolButton(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(0);
    for (QToolButton* button : {up_, down_}) {
        button->setAutoRepeat(true);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        button->setIconSize({kArrowSize, kArrowSize});
        // As high as half of the text box beside it.
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
        button->setMinimumHeight(1);
        button->setFixedWidth(kArrowSize + 12);
        layout->addWidget(button);
        const int step = button == up_ ? 1 : -1;
        connect(button, &QToolButton::clicked, this, [this, step] {
            if (stepped_)
                stepped_(step);
        });
    }
    up_->setIcon(DrawnIcon(Drawing::ChevronUp, {}));
    down_->setIcon(DrawnIcon(Drawing::ChevronDown, {}));
    up_->setAccessibleName(tr("Up"));
    down_->setAccessibleName(tr("Down"));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
}

void StepButtons::SetEnds(bool canGoUp, bool canGoDown) {
    up_->setEnabled(canGoUp);
    down_->setEnabled(canGoDown);
}

void StepButtons::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (hasFocus()) {
        PaintFocus(painter, rect());
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(CurrentTheme().line);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
}

// ---- PictureFrame

PictureFrame::PictureFrame(QWidget* parent) : QFrame(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PictureFrame::SetPicture(const QString& path) {
    if (path.isEmpty()) {
        picture_ = QImage();
    } else {
        // By content: the invoice logo is a BMP by name alone.
        QImageReader reader(path);
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(true);
        if (const QImage read = reader.read(); !read.isNull())
            picture_ = read;
    }
    update();
}

void PictureFrame::SetStretch(bool stretch) {
    stretch_ = stretch;
    update();
}

QSize PictureFrame::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 12, line * 6};
}

void PictureFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const bool icon = property("icon").toBool();
    const Theme& theme = CurrentTheme();
    painter.setPen(picture_.isNull() ? QPen(theme.line, 1, Qt::DashLine) : QPen(theme.line));
    painter.setBrush(picture_.isNull() ? QBrush(Qt::NoBrush) : QBrush(Qt::white));
    if (!icon)
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    if (picture_.isNull()) {
        if (icon)
            return;
        painter.setPen(theme.faint);
        painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap, tr("No picture"));
        return;
    }
    const int margin = icon ? 0 : kPictureMargin;
    const QRect space = rect().adjusted(margin, margin, -margin, -margin);
    QSize size = picture_.size();
    if (stretch_ || size.width() > space.width() || size.height() > space.height())
        size.scale(space.size(), Qt::KeepAspectRatio);
    painter.drawImage(QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, size, space), picture_);
}

// ---- The screen's own grounds

TitleBand::TitleBand(QWidget* parent) : QFrame(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMinimumHeight(fontMetrics().height() * 2 + 8);
}

void TitleBand::SetTitle(const QString& title) {
    title_ = title;
    setAccessibleName(title);
    update();
}

void TitleBand::SetColour(const QColor& colour) {
    colour_ = colour;
    update();
}

void TitleBand::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Theme& theme = CurrentTheme();
    const QColor ground = colour_.isValid() ? colour_ : theme.accent;
    painter.fillRect(rect(), theme.dark ? Mixed(ground, theme.card, 0.62) : ground);
    const int line = fontMetrics().height();
    const int margin = line;
    Draw(painter, Drawing::Leaf, QRectF(margin * 0.8, (height() - line * 1.2) / 2.0, line * 1.2, line * 1.2),
         QColor(0xC5, 0xE1, 0xA5));
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(Qt::white);
    int end = width() - margin;
    for (const QWidget* buttons : findChildren<const QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        end = std::min(end, buttons->x());
    const QRect space(margin * 5 / 2, 0, end - margin * 5 / 2, height());
    painter.drawText(space, Qt::AlignVCenter | Qt::AlignLeft,
                     QFontMetrics(bold).elidedText(title_, Qt::ElideRight, space.width()));
}

HeaderBand::HeaderBand(QWidget* parent) : QFrame(parent) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
}

void HeaderBand::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const Theme& theme = CurrentTheme();
    const QColor ground = palette().color(QPalette::Base);
    const double w = width(), h = height();
    const double left = std::max(w * 0.45, w - 620);
    const auto hill = [&](double rise, double peak, double share) {
        QPainterPath path;
        path.moveTo(left + (w - left) * 0.1 * peak, h);
        path.cubicTo(left + (w - left) * (0.25 + 0.2 * peak), h, left + (w - left) * (0.3 + 0.3 * peak),
                     h * (1 - rise), left + (w - left) * (0.6 + 0.25 * peak), h * (1 - rise));
        path.cubicTo(left + (w - left) * (0.75 + 0.2 * peak), h * (1 - rise), left + (w - left) * 0.95,
                     h * (1 - rise * 0.85), w, h * (1 - rise * 0.7));
        path.lineTo(w, h);
        path.closeSubpath();
        painter.fillPath(path, Mixed(theme.accent, ground, share));
        return path;
    };
    const double strength = theme.dark ? 1.5 : 1.0;
    hill(0.86, 0.55, 0.10 * strength);
    hill(0.60, 1.0, 0.16 * strength);
    const QPainterPath field = hill(0.40, 0.0, 0.24 * strength);
    // Furrows run over the nearest hill towards its crest.
    painter.setClipPath(field);
    painter.setPen(QPen(Mixed(theme.accent, ground, 0.32 * strength), 1.5));
    const QPointF crest(left + (w - left) * 0.62, h * 0.50);
    constexpr int kFurrows = 16;
    for (int furrow = 0; furrow < kFurrows; ++furrow) {
        const double foot = left + (w - left) * (-0.25 + 1.75 * furrow / kFurrows);
        QPainterPath line;
        line.moveTo(foot, h + 2);
        line.quadTo(foot + (crest.x() - foot) * 0.45, h * 0.86, crest.x() + (foot - crest.x()) * 0.22,
                    crest.y());
        painter.drawPath(line);
    }
}

Card::Card(QWidget* parent) : QFrame(parent) {
    setBackgroundRole(QPalette::Base);
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(CurrentTheme().line);
    painter.setBrush(CurrentTheme().card);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCardRadius, kCardRadius);
}

void TabGround::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(CurrentTheme().line);
    painter.drawLine(rect().bottomLeft(), rect().bottomRight());
}

void Footer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(CurrentTheme().line);
    painter.drawLine(rect().topLeft(), rect().topRight());
}

TitleBarButton::TitleBarButton(QWidget* parent) : QToolButton(parent) {
    setAutoRaise(true);
    setFocusPolicy(Qt::NoFocus);
    setToolButtonStyle(Qt::ToolButtonTextOnly);
}

void TitleBarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse() || isDown()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 255, 255, isDown() ? 70 : 40));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
}

Hint::Hint(QWidget* parent) : QLabel(parent) {
    QPalette faint = palette();
    // On a card a label takes the colour of texts in fields.
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
        faint.setColor(role, CurrentTheme().faint);
    setPalette(faint);
}

Heading::Heading(QWidget* parent) : QLabel(parent) {
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * 1.1);
    larger.setWeight(QFont::DemiBold);
    setFont(larger);
}

Heading::Heading(const QString& text, QWidget* parent) : Heading(parent) {
    setText(text);
}

} // namespace quillary::qt
