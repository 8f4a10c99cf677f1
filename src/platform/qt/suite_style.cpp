#include "platform/qt/suite_style.h"

#include "platform/qt/icons.h"
#include "platform/qt/theme.h"

#include <QListView>
#include <QPainter>
#include <QRadioButton>
#include <QStyleOption>
#include <QTabBar>
#include <QWidget>

namespace quillary::qt {

namespace {

constexpr double kRadius = 4;
constexpr int kIndicator = 18;
constexpr int kChevron = 14;
constexpr int kScrollBar = 12;

double ShareOf(const QColor& colour) {
    return colour.lightnessF();
}

// A little towards the text: what the mouse is over, or presses.
QColor Touched(const QColor& colour, int percent) {
    return ShareOf(colour) < 0.5 ? colour.lighter(100 + percent * 2) : colour.darker(100 + percent);
}

void FillRounded(QPainter& painter, const QRect& rect, const QColor& ground, const QColor& frame,
                 double width = 1) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(frame, width));
    painter.setBrush(ground);
    const double inset = width / 2;
    painter.drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), kRadius, kRadius);
    painter.restore();
}

void DrawField(QPainter& painter, const QStyleOption& option, const QColor& ground) {
    const Theme& theme = CurrentTheme();
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool focused = enabled && (option.state & QStyle::State_HasFocus);
    const bool over = enabled && (option.state & QStyle::State_MouseOver);
    FillRounded(painter, option.rect, enabled ? ground : theme.shaded,
                focused ? theme.accent
                : over  ? theme.strong
                        : theme.line,
                focused ? 1.8 : 1);
}

void DrawButton(QPainter& painter, const QStyleOption& option, bool isDefault, bool flat) {
    const Theme& theme = CurrentTheme();
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool down = option.state & (QStyle::State_Sunken | QStyle::State_On);
    const bool over = enabled && (option.state & QStyle::State_MouseOver);
    const bool focused = enabled && (option.state & QStyle::State_HasFocus);
    QColor ground = isDefault && enabled ? theme.accent : option.palette.color(QPalette::Button);
    if (flat && !over && !down)
        ground = Qt::transparent;
    else if (enabled && (down || over))
        ground = Touched(ground, down ? 12 : 5);
    QColor frame = isDefault && enabled ? ground : theme.line;
    if (flat)
        frame = Qt::transparent;
    else if (over && !isDefault)
        frame = theme.strong;
    FillRounded(painter, option.rect, ground, frame);
    if (focused && !flat) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(isDefault ? theme.onAccent : theme.accent, 1.6));
        const double inset = isDefault ? 2.8 : 0.8;
        painter.drawRoundedRect(QRectF(option.rect).adjusted(inset, inset, -inset, -inset), kRadius - 1,
                                kRadius - 1);
        painter.restore();
    }
}

void DrawIndicator(QPainter& painter, const QStyleOption& option, bool round) {
    const Theme& theme = CurrentTheme();
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool on = option.state & QStyle::State_On;
    const bool half = option.state & QStyle::State_NoChange;
    const bool over = enabled && (option.state & QStyle::State_MouseOver);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(option.rect).adjusted(1, 1, -1, -1);
    const QColor mark = enabled ? theme.accent : theme.strong;
    painter.setPen(QPen(on || half ? mark : (over ? theme.strong : theme.strong), on && !round ? 1 : 1.3));
    painter.setBrush(on && !round ? QBrush(mark) : QBrush(enabled ? theme.card : theme.shaded));
    if (round)
        painter.drawEllipse(box);
    else
        painter.drawRoundedRect(box, kRadius - 0.5, kRadius - 0.5);
    if (on && round) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(mark);
        painter.drawEllipse(box.adjusted(4, 4, -4, -4));
    } else if (on) {
        painter.setPen(QPen(theme.onAccent, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const double w = box.width();
        const QPointF tick[] = {box.topLeft() + QPointF(w * 0.24, w * 0.52),
                                box.topLeft() + QPointF(w * 0.43, w * 0.71),
                                box.topLeft() + QPointF(w * 0.77, w * 0.31)};
        painter.drawPolyline(tick, 3);
    } else if (half) {
        painter.setPen(QPen(mark, 2.2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(box.left() + 4, box.center().y()),
                         QPointF(box.right() - 4, box.center().y()));
    }
    painter.restore();
}

void DrawTab(QPainter& painter, const QStyleOptionTab& tab, const QWidget* widget) {
    const Theme& theme = CurrentTheme();
    const bool current = tab.state & QStyle::State_Selected;
    const bool over = (tab.state & QStyle::State_MouseOver) && (tab.state & QStyle::State_Enabled);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (over && !current) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Touched(tab.palette.color(QPalette::Base), 4));
        painter.drawRoundedRect(QRectF(tab.rect).adjusted(2, 4, -2, -4), kRadius, kRadius);
    }
    if (current) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.accent);
        painter.drawRoundedRect(
            QRectF(tab.rect.left() + 6, tab.rect.bottom() - 2.5, tab.rect.width() - 12, 3), 1.5, 1.5);
        if (widget && widget->hasFocus()) {
            painter.setPen(QPen(theme.accent, 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(tab.rect).adjusted(3, 5, -3, -6), kRadius, kRadius);
        }
    }
    painter.restore();
}

void DrawHeaderSection(QPainter& painter, const QStyleOptionHeader& header) {
    const Theme& theme = CurrentTheme();
    QColor ground = theme.shaded;
    if ((header.state & QStyle::State_MouseOver) && header.orientation == Qt::Horizontal)
        ground = Touched(ground, 4);
    painter.fillRect(header.rect, ground);
    painter.setPen(theme.line);
    if (header.orientation == Qt::Horizontal) {
        painter.drawLine(header.rect.bottomLeft(), header.rect.bottomRight());
        painter.drawLine(header.rect.right(), header.rect.top() + 5, header.rect.right(),
                         header.rect.bottom() - 5);
    } else {
        painter.drawLine(header.rect.topRight(), header.rect.bottomRight());
    }
}

// A bar without arrows: the handle runs over the whole length.
QRect ScrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part) {
    const bool lying = bar.orientation == Qt::Horizontal;
    const int length = lying ? bar.rect.width() : bar.rect.height();
    const int range = bar.maximum - bar.minimum;
    int handle = length, start = 0;
    if (range > 0) {
        handle = static_cast<int>(static_cast<qint64>(bar.pageStep) * length / (range + bar.pageStep));
        handle = std::clamp(handle, std::min(kScrollBar * 2, length), length);
        start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - handle,
                                                bar.upsideDown);
    }
    const auto along = [&](int from, int extent) {
        return lying ? QRect(bar.rect.left() + from, bar.rect.top(), extent, bar.rect.height())
                     : QRect(bar.rect.left(), bar.rect.top() + from, bar.rect.width(), extent);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return along(start, handle);
    case QStyle::SC_ScrollBarSubPage:
        return along(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return along(start + handle, length - start - handle);
    default:
        return {};
    }
}

void DrawScrollBar(QPainter& painter, const QStyleOptionSlider& bar) {
    const Theme& theme = CurrentTheme();
    painter.fillRect(bar.rect, bar.palette.color(QPalette::Window));
    if (bar.maximum <= bar.minimum)
        return;
    const bool held = bar.state & QStyle::State_Sunken;
    const bool over = bar.state & QStyle::State_MouseOver;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(held || over ? theme.strong : theme.line);
    const QRectF handle =
        QRectF(ScrollBarPart(bar, QStyle::SC_ScrollBarSlider)).adjusted(2.5, 2.5, -2.5, -2.5);
    painter.drawRoundedRect(handle, kScrollBar / 4.0, kScrollBar / 4.0);
    painter.restore();
}

} // namespace

SuiteStyle::SuiteStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int SuiteStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return kIndicator;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        return 8;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabOverlap:
    case PM_TabBarBaseOverlap:
        return 0;
    case PM_TabBarTabHSpace:
        return 30;
    case PM_TabBarTabVSpace:
        return 18;
    case PM_TabBarScrollButtonWidth:
        return 24;
    case PM_LayoutHorizontalSpacing:
        return 10;
    case PM_LayoutVerticalSpacing:
        return 9;
    case PM_LayoutLeftMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutBottomMargin:
        return 16;
    case PM_FocusFrameHMargin:
        return 5; // what lists leave beside their entries
    case PM_FocusFrameVMargin:
        return 0;
    case PM_HeaderMargin:
        return 6;
    case PM_ScrollBarExtent:
        return kScrollBar;
    case PM_ScrollBarSliderMin:
        return kScrollBar * 2;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int SuiteStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* data) const {
    switch (hint) {
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_Widget_Animate:
        return 0;
    case SH_ComboBox_Popup:
        return 0;
    case SH_UnderlineShortcut:
        return 1; // accelerators are always seen
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QSize SuiteStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    const int line = option ? option->fontMetrics.height() : 16;
    switch (type) {
    case CT_PushButton:
        result.setHeight(std::max(result.height(), line + 14));
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            result.setWidth(button->text == QLatin1String("...") ? size.width() + 24
                                                                 : std::max(size.width() + 36, line * 5));
        break;
    case CT_LineEdit:
    case CT_ComboBox:
        result.setHeight(std::max(result.height(), line + 12));
        break;
    case CT_ToolButton:
        result.setHeight(std::max(result.height(), line + 12));
        result.setWidth(std::max(result.width(), line + 12));
        break;
    case CT_ItemViewItem:
        if (qobject_cast<const QListView*>(widget))
            result.rheight() += 8;
        break;
    case CT_HeaderSection:
        result.setHeight(result.height() + 6);
        break;
    case CT_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
            item && item->menuItemType != QStyleOptionMenuItem::Separator)
            result.rheight() += 6;
        break;
    default:
        break;
    }
    return result;
}

QRect SuiteStyle::subElementRect(SubElement element, const QStyleOption* option,
                                 const QWidget* widget) const {
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    if (element != SE_LineEditContents)
        return rect;
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    return frame && frame->lineWidth > 0 ? rect.adjusted(6, 0, -6, 0) : rect;
}

QRect SuiteStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const {
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return option->rect.adjusted(9, 2, -kChevron - 14, -2);
    if (control == CC_ScrollBar)
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option))
            return ScrollBarPart(*bar, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

void SuiteStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    const Theme& theme = CurrentTheme();
    switch (element) {
    case PE_PanelLineEdit: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame && frame->lineWidth == 0) {
            painter->fillRect(option->rect, option->palette.color(QPalette::Base));
            return;
        }
        const bool readOnly = option->state & State_ReadOnly;
        DrawField(*painter, *option, readOnly ? theme.shaded : option->palette.color(QPalette::Base));
        return;
    }
    case PE_FrameLineEdit:
        return;
    case PE_PanelButtonCommand: {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const bool flat = button && (button->features & QStyleOptionButton::Flat);
        const bool isDefault = button && (button->features & QStyleOptionButton::DefaultButton);
        DrawButton(*painter, *option, isDefault, flat);
        return;
    }
    case PE_PanelButtonTool:
        DrawButton(*painter, *option, false, option->state & State_AutoRaise);
        return;
    case PE_IndicatorCheckBox:
        DrawIndicator(*painter, *option, false);
        return;
    case PE_IndicatorRadioButton:
        DrawIndicator(*painter, *option, true);
        return;
    case PE_FrameFocusRect:
        if (qobject_cast<const QTabBar*>(widget) || qobject_cast<const QListView*>(widget))
            return; // marked by the tab or the entry itself
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(theme.accent, 1.4));
        painter->setBrush(Qt::NoBrush);
        if (const auto* radio = qobject_cast<const QRadioButton*>(widget); radio && radio->text().isEmpty()) {
            // Its text stands in a label beside it: the ring lies on its own.
            painter->setPen(QPen(theme.accent, 2.4));
            painter->drawEllipse(QRectF(option->rect));
        } else
            painter->drawRoundedRect(QRectF(option->rect).adjusted(0.7, 0.7, -0.7, -0.7), 3, 3);
        painter->restore();
        return;
    case PE_Frame:
        painter->save();
        painter->setPen(option->state & State_HasFocus ? theme.accent : theme.line);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    case PE_FrameMenu:
        painter->setPen(theme.line);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        return;
    case PE_FrameTabBarBase:
        painter->fillRect(QRect(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                          theme.line);
        return;
    case PE_IndicatorArrowDown:
    case PE_IndicatorArrowUp:
    case PE_IndicatorArrowLeft:
    case PE_IndicatorArrowRight: {
        const Drawing drawing = element == PE_IndicatorArrowDown   ? Drawing::ChevronDown
                                : element == PE_IndicatorArrowUp   ? Drawing::ChevronUp
                                : element == PE_IndicatorArrowLeft ? Drawing::ChevronLeft
                                                                   : Drawing::ChevronRight;
        const int size = std::min({option->rect.width(), option->rect.height(), kChevron});
        Draw(*painter, drawing, alignedRect(option->direction, Qt::AlignCenter, {size, size}, option->rect),
             option->palette.color(QPalette::ButtonText));
        return;
    }
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void SuiteStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const Theme& theme = CurrentTheme();
    switch (element) {
    case CE_TabBarTabShape:
        if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option)) {
            DrawTab(*painter, *tab, widget);
            return;
        }
        break;
    case CE_TabBarTabLabel:
        if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option)) {
            const bool current = tab->state & State_Selected;
            QPalette palette = tab->palette;
            palette.setColor(QPalette::WindowText,
                             current ? theme.accent : palette.color(QPalette::WindowText));
            drawItemText(painter, tab->rect, Qt::AlignCenter | Qt::TextShowMnemonic, palette,
                         tab->state & State_Enabled, tab->text, QPalette::WindowText);
            return;
        }
        break;
    case CE_PushButtonLabel:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
            button && (button->features & QStyleOptionButton::DefaultButton) &&
            (button->state & State_Enabled)) {
            QStyleOptionButton label = *button;
            label.palette.setColor(QPalette::ButtonText, theme.onAccent);
            QProxyStyle::drawControl(element, &label, painter, widget);
            return;
        }
        break;
    case CE_HeaderSection:
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
            DrawHeaderSection(*painter, *header);
            return;
        }
        break;
    case CE_HeaderLabel:
        // Captions of several lines.
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
            header && header->orientation == Qt::Horizontal &&
            header->rect.height() >= 2 * header->fontMetrics.height()) {
            const int side = static_cast<int>(header->textAlignment & Qt::AlignHorizontal_Mask);
            drawItemText(painter, header->rect, side | Qt::AlignVCenter | Qt::TextWordWrap, header->palette,
                         header->state & State_Enabled, header->text, QPalette::ButtonText);
            return;
        }
        break;
    case CE_HeaderEmptyArea:
        painter->fillRect(option->rect, theme.shaded);
        painter->setPen(theme.line);
        painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
        return;
    case CE_ComboBoxLabel:
        if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
            const QRect text = proxy()->subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
            proxy()->drawItemText(
                painter, text, Qt::AlignLeft | Qt::AlignVCenter, combo->palette, combo->state & State_Enabled,
                combo->fontMetrics.elidedText(combo->currentText, Qt::ElideRight, text.width()),
                QPalette::ButtonText);
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void SuiteStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    if (control == CC_ComboBox) {
        DrawField(*painter, *option, option->palette.color(QPalette::Base));
        const QRect place(option->rect.right() - kChevron - 8, option->rect.center().y() - kChevron / 2 + 1,
                          kChevron, kChevron);
        Draw(*painter, Drawing::ChevronDown, place,
             option->palette.color(option->state & State_Enabled ? QPalette::Active : QPalette::Disabled,
                                   QPalette::ButtonText));
        return;
    }
    if (control == CC_ScrollBar)
        if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
            DrawScrollBar(*painter, *bar);
            return;
        }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

} // namespace quillary::qt
