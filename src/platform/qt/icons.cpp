#include "platform/qt/icons.h"

#include "platform/qt/theme.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <cmath>

namespace quillary::qt {

namespace {

// All paths are drawn on a field of 24 by 24.
constexpr double kField = 24;

QPen Stroke(const QColor& colour, double width = 2) {
    return QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void DrawDisc(QPainter& painter, const QColor& colour) {
    painter.setPen(Qt::NoPen);
    QColor ground = colour;
    ground.setAlphaF(0.16f);
    painter.setBrush(ground);
    painter.drawEllipse(QPointF(12, 12), 11, 11);
    painter.setBrush(Qt::NoBrush);
}

QPainterPath PencilPath() {
    QPainterPath path;
    path.moveTo(6.5, 17.5);
    path.lineTo(7.3, 14.2);
    path.lineTo(14.9, 6.6);
    path.lineTo(17.4, 9.1);
    path.lineTo(9.8, 16.7);
    path.closeSubpath();
    path.moveTo(12.9, 8.6);
    path.lineTo(15.4, 11.1);
    return path;
}

void DrawCalendar(QPainter& painter, const QColor& colour) {
    painter.setPen(Stroke(colour, 1.7));
    painter.drawRoundedRect(QRectF(4, 5.5, 16, 14.5), 2.2, 2.2);
    painter.drawLine(QPointF(4, 10), QPointF(20, 10));
    painter.drawLine(QPointF(8.5, 3.5), QPointF(8.5, 7));
    painter.drawLine(QPointF(15.5, 3.5), QPointF(15.5, 7));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 3; ++column)
            painter.drawEllipse(QPointF(8 + column * 4, 13.2 + row * 3.6), 1.05, 1.05);
}

void DrawChevron(QPainter& painter, const QColor& colour, int turns) {
    painter.setPen(Stroke(colour));
    painter.translate(12, 12);
    painter.rotate(90.0 * turns);
    const QPointF points[] = {{-5, -2.5}, {0, 2.5}, {5, -2.5}};
    painter.drawPolyline(points, 3);
}

void DrawHouse(QPainter& painter, const QColor& colour) {
    painter.setPen(Stroke(colour, 1.8));
    const QPointF roof[] = {{3.5, 12}, {12, 4.5}, {20.5, 12}};
    painter.drawPolyline(roof, 3);
    const QPointF walls[] = {{6, 10.5}, {6, 19.5}, {18, 19.5}, {18, 10.5}};
    painter.drawPolyline(walls, 4);
    painter.drawLine(QPointF(12, 19.5), QPointF(12, 14.5));
}

void DrawBox(QPainter& painter, const QColor& colour, bool ticked) {
    const QRectF box(4, 4, 16, 16);
    if (!ticked) {
        painter.setPen(Stroke(colour, 1.6));
        painter.drawRoundedRect(box, 3.5, 3.5);
        return;
    }
    const Theme& theme = CurrentTheme();
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accent);
    painter.drawRoundedRect(box.adjusted(-0.8, -0.8, 0.8, 0.8), 4, 4);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Stroke(theme.onAccent, 2.3));
    const QPointF tick[] = {{7.8, 12.2}, {10.8, 15.2}, {16.4, 9}};
    painter.drawPolyline(tick, 3);
}

void DrawStar(QPainter& painter, const QColor& colour) {
    painter.setPen(Stroke(colour, 2.2));
    painter.translate(12, 12);
    for (int ray = 0; ray < 3; ++ray) {
        painter.drawLine(QPointF(0, -6), QPointF(0, 6));
        painter.rotate(60);
    }
}

void DrawLeaf(QPainter& painter, const QColor& colour) {
    QPainterPath leaf;
    leaf.moveTo(4.5, 19.5);
    leaf.cubicTo(3, 9, 9, 3.5, 20.5, 3.5);
    leaf.cubicTo(20.5, 15, 15, 21, 4.5, 19.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPath(leaf);
    painter.setBrush(Qt::NoBrush);
    QColor vein = CurrentTheme().card;
    vein.setAlphaF(0.9f);
    painter.setPen(Stroke(vein, 1.4));
    painter.drawLine(QPointF(4.8, 19.2), QPointF(16.5, 7.5));
    painter.drawLine(QPointF(9.4, 14.6), QPointF(9.2, 10));
    painter.drawLine(QPointF(9.4, 14.6), QPointF(14.2, 14.6));
}

// Draws at whatever size and resolution is asked for.
class DrawingEngine : public QIconEngine {
public:
    DrawingEngine(Drawing drawing, const QColor& colour) : drawing_(drawing), colour_(colour) {}
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        QColor colour = colour_.isValid() ? colour_ : QGuiApplication::palette().color(QPalette::ButtonText);
        if (mode == QIcon::Disabled)
            colour.setAlphaF(0.4f);
        Draw(*painter, drawing_, rect, colour);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return result;
    }
    QIconEngine* clone() const override { return new DrawingEngine(*this); }

private:
    Drawing drawing_;
    QColor colour_;
};

} // namespace

void Draw(QPainter& painter, Drawing drawing, const QRectF& place, const QColor& colour) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const double size = std::min(place.width(), place.height());
    painter.translate(place.center() - QPointF(size / 2, size / 2));
    painter.scale(size / kField, size / kField);
    switch (drawing) {
    case Drawing::Correct:
        DrawDisc(painter, colour);
        painter.setPen(Stroke(colour, 1.7));
        painter.drawPath(PencilPath());
        break;
    case Drawing::Notice:
        DrawDisc(painter, colour);
        painter.setPen(Stroke(colour, 2.4));
        painter.drawLine(QPointF(12, 6.4), QPointF(12, 13));
        painter.drawPoint(QPointF(12, 17));
        break;
    case Drawing::Question: {
        DrawDisc(painter, colour);
        painter.setPen(Stroke(colour, 2.2));
        QPainterPath hook;
        hook.moveTo(8.9, 9.2);
        hook.cubicTo(9, 5.4, 15.2, 5.4, 15.2, 9.2);
        hook.cubicTo(15.2, 11.6, 12, 11.4, 12, 14);
        painter.drawPath(hook);
        painter.drawPoint(QPointF(12, 17.4));
        break;
    }
    case Drawing::Calendar:
        DrawCalendar(painter, colour);
        break;
    case Drawing::ChevronDown:
        DrawChevron(painter, colour, 0);
        break;
    case Drawing::ChevronLeft:
        DrawChevron(painter, colour, 1);
        break;
    case Drawing::ChevronUp:
        DrawChevron(painter, colour, 2);
        break;
    case Drawing::ChevronRight:
        DrawChevron(painter, colour, 3);
        break;
    case Drawing::House:
        DrawHouse(painter, colour);
        break;
    case Drawing::Ticked:
        DrawBox(painter, colour, true);
        break;
    case Drawing::Unticked:
        DrawBox(painter, colour, false);
        break;
    case Drawing::Pencil:
        painter.setPen(Stroke(colour, 1.8));
        painter.drawPath(PencilPath());
        break;
    case Drawing::Star:
        DrawStar(painter, colour);
        break;
    case Drawing::Leaf:
        DrawLeaf(painter, colour);
        break;
    }
    painter.restore();
}

QPixmap DrawnPixmap(Drawing drawing, int size, const QColor& colour, qreal pixelRatio) {
    const int pixels = static_cast<int>(std::lround(size * pixelRatio));
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    Draw(painter, drawing, QRectF(0, 0, pixels, pixels), colour);
    painter.end();
    pixmap.setDevicePixelRatio(pixelRatio);
    return pixmap;
}

QIcon DrawnIcon(Drawing drawing, const QColor& colour) {
    return QIcon(new DrawingEngine(drawing, colour));
}

QIcon ProgramIcon() {
    QIcon icon;
    for (const int size : {16, 32, 64})
        icon.addPixmap(DrawnPixmap(Drawing::Leaf, size, QColor(0x33, 0x66, 0x01), 1));
    return icon;
}

} // namespace quillary::qt
