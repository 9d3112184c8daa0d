// The tall window: a snowy night outside (sky, stars, moon, hills, pines, a far lit cabin), the
// wooden frame whose mullions separate the eight panes, the sill, and heavy curtains either side.
#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>

#include "meters/candlelight/CandleRoomLayout.h"
#include "meters/candlelight/CandleRoomPainting.h"
#include "meters/kit/Colors.h"
#include "meters/kit/Noise.h"

namespace corvanel::meters::room {

namespace {

constexpr double horizonY = 0.415;

void paintSky(QPainter& painter, const RoomCanvas& c, const QRectF& view) {
    QLinearGradient sky(view.topLeft(), view.bottomLeft());
    sky.setColorAt(0.0, rgb(0.015, 0.025, 0.075));
    sky.setColorAt(0.55, rgb(0.04, 0.065, 0.15));
    sky.setColorAt(0.85, rgb(0.10, 0.12, 0.23));
    sky.setColorAt(1.0, rgb(0.16, 0.17, 0.27));
    painter.fillRect(view, sky);

    painter.setPen(Qt::NoPen);
    for (int star = 0; star < 46; ++star) {
        const double x = view.left() + view.width() * (noise(star, 501) + 1) / 2;
        const double y = view.top() + (c.len(horizonY) - view.top()) * 0.8 *
                                          std::pow((noise(star, 502) + 1) / 2, 1.4);
        const double radius = c.len(0.0006 + 0.0007 * (noise(star, 503) + 1) / 2);
        painter.setBrush(rgb(0.85, 0.9, 1.0, 0.35 + 0.3 * noise(star, 504)));
        painter.drawEllipse(QPointF(x, y), radius, radius);
    }

    // A waxing moon in the upper right pane, with its halo.
    const QPointF moon = c.at(0.5215, 0.125);
    const double radius = c.len(0.0115);
    QRadialGradient halo(moon, radius * 5);
    halo.setColorAt(0.0, rgb(0.75, 0.8, 0.95, 0.35));
    halo.setColorAt(0.3, rgb(0.45, 0.55, 0.8, 0.12));
    halo.setColorAt(1.0, rgb(0.3, 0.4, 0.7, 0.0));
    painter.setBrush(halo);
    painter.drawEllipse(moon, radius * 5, radius * 5);
    QPainterPath disc;
    disc.addEllipse(moon, radius, radius);
    QPainterPath shade;
    shade.addEllipse(moon + QPointF(-radius * 0.55, -radius * 0.15), radius, radius);
    QRadialGradient face(moon + QPointF(radius * 0.3, -radius * 0.2), radius * 1.2);
    face.setColorAt(0.0, rgb(1.0, 0.98, 0.9));
    face.setColorAt(1.0, rgb(0.82, 0.84, 0.86));
    painter.setBrush(face);
    painter.drawPath(disc.subtracted(shade));
}

QPainterPath ridge(const RoomCanvas& c, const QRectF& view, double baseY, double amplitude,
                   int seed) {
    QPainterPath path;
    path.moveTo(view.left(), view.bottom());
    constexpr int steps = 24;
    for (int i = 0; i <= steps; ++i) {
        const double x = view.left() + view.width() * i / steps;
        const double wave = std::sin(i * 0.45 + seed) * 0.5 + noise(seed, i) * 0.35;
        path.lineTo(x, c.len(baseY - amplitude * wave));
    }
    path.lineTo(view.right(), view.bottom());
    path.closeSubpath();
    return path;
}

void paintPine(QPainter& painter, QPointF foot, double height, const QColor& colour) {
    QPainterPath tree;
    const double width = height * 0.42;
    constexpr int tiers = 4;
    for (int tier = 0; tier < tiers; ++tier) {
        const double top = foot.y() - height * (0.35 + 0.65 * (tier + 1) / tiers);
        const double bottom = foot.y() - height * (0.12 + 0.62 * tier / tiers);
        const double half = width * (1.0 - 0.2 * tier) / 2;
        tree.moveTo(foot.x(), top);
        tree.lineTo(foot.x() + half, bottom);
        tree.lineTo(foot.x() - half, bottom);
        tree.closeSubpath();
    }
    tree.addRect(
        QRectF(foot.x() - width * 0.06, foot.y() - height * 0.14, width * 0.12, height * 0.14));
    painter.setBrush(colour);
    painter.drawPath(tree);
}

void paintLandscape(QPainter& painter, const RoomCanvas& c, const QRectF& view) {
    painter.setPen(Qt::NoPen);
    // Far hills, pale under the moon; the near snowfield brighter and bluer.
    QLinearGradient farSnow(c.at(0, horizonY - 0.02), c.at(0, 0.52));
    farSnow.setColorAt(0.0, rgb(0.30, 0.34, 0.47));
    farSnow.setColorAt(1.0, rgb(0.18, 0.21, 0.32));
    painter.setBrush(farSnow);
    painter.drawPath(ridge(c, view, horizonY, 0.012, 3));
    for (int i = 0; i < 9; ++i) {
        const double x = 0.458 + 0.078 * (noise(i, 601) + 1) / 2;
        const double h = 0.018 + 0.012 * (noise(i, 602) + 1) / 2;
        paintPine(painter, c.at(x, horizonY + 0.006), c.len(h), rgb(0.09, 0.11, 0.19));
    }

    // A far cabin with one warm window.
    const QPointF cabin = c.at(0.468, horizonY + 0.012);
    const double s = c.len(0.012);
    QPainterPath house;
    house.addRect(QRectF(cabin.x() - s, cabin.y() - s * 0.9, s * 2, s * 0.9));
    house.moveTo(cabin.x() - s * 1.25, cabin.y() - s * 0.85);
    house.lineTo(cabin.x(), cabin.y() - s * 1.8);
    house.lineTo(cabin.x() + s * 1.25, cabin.y() - s * 0.85);
    house.closeSubpath();
    painter.setBrush(rgb(0.06, 0.07, 0.12));
    painter.drawPath(house);
    painter.setBrush(rgb(0.75, 0.75, 0.82));
    QPainterPath roofSnow;
    roofSnow.moveTo(cabin.x() - s * 1.25, cabin.y() - s * 0.85);
    roofSnow.lineTo(cabin.x(), cabin.y() - s * 1.8);
    roofSnow.lineTo(cabin.x() + s * 1.25, cabin.y() - s * 0.85);
    roofSnow.lineTo(cabin.x(), cabin.y() - s * 1.55);
    roofSnow.closeSubpath();
    painter.drawPath(roofSnow);
    QRadialGradient lamp(cabin + QPointF(s * 0.3, -s * 0.45), s * 1.6);
    lamp.setColorAt(0.0, rgb(1.0, 0.75, 0.35, 0.6));
    lamp.setColorAt(1.0, rgb(1.0, 0.6, 0.2, 0.0));
    painter.setBrush(lamp);
    painter.drawEllipse(cabin + QPointF(s * 0.3, -s * 0.45), s * 1.6, s * 1.6);
    painter.setBrush(rgb(1.0, 0.78, 0.4));
    painter.drawRect(QRectF(cabin.x() + s * 0.1, cabin.y() - s * 0.65, s * 0.4, s * 0.35));

    QLinearGradient nearSnow(c.at(0, horizonY + 0.03), c.at(0, 0.51));
    nearSnow.setColorAt(0.0, rgb(0.52, 0.57, 0.70));
    nearSnow.setColorAt(1.0, rgb(0.36, 0.40, 0.54));
    painter.setBrush(nearSnow);
    painter.drawPath(ridge(c, view, horizonY + 0.045, 0.01, 7));
    for (int i = 0; i < 5; ++i) {
        const double x = 0.455 + 0.085 * (noise(i, 611) + 1) / 2;
        const double h = 0.05 + 0.04 * (noise(i, 612) + 1) / 2;
        paintPine(painter, c.at(x, horizonY + 0.07 + 0.02 * noise(i, 613)), c.len(h),
                  rgb(0.025, 0.035, 0.07));
    }
}

void paintGlass(QPainter& painter, const RoomCanvas& c) {
    for (const QRectF& unit : windowPanes()) {
        const QRectF pane = c.rect(unit.left(), unit.top(), unit.right(), unit.bottom());
        QLinearGradient sheen(pane.topLeft(), pane.bottomRight());
        sheen.setColorAt(0.0, rgb(1, 1, 1, 0.05));
        sheen.setColorAt(0.45, rgb(1, 1, 1, 0.0));
        sheen.setColorAt(0.6, rgb(1, 0.8, 0.6, 0.035));
        sheen.setColorAt(1.0, rgb(1, 1, 1, 0.0));
        painter.fillRect(pane, sheen);
        // Frost gathers in the lower corners of each pane.
        for (const QPointF corner : {pane.bottomLeft(), pane.bottomRight()}) {
            const double r = pane.width() * 0.45;
            QRadialGradient frost(corner, r);
            frost.setColorAt(0.0, rgb(0.9, 0.94, 1.0, 0.32));
            frost.setColorAt(1.0, rgb(0.9, 0.94, 1.0, 0.0));
            painter.save();
            painter.setClipRect(pane);
            painter.setBrush(frost);
            painter.drawEllipse(corner, r, r);
            painter.restore();
        }
    }
}

void paintFrame(QPainter& painter, const RoomCanvas& c) {
    const QRectF casing = c.rect(0.4395, 0.014, 0.5535, 0.516);
    const QRectF frame = c.rect(0.4475, 0.025, 0.5455, 0.5105);
    QPainterPath panes;
    for (const QRectF& unit : windowPanes())
        panes.addRect(c.rect(unit.left(), unit.top(), unit.right(), unit.bottom()));

    QPainterPath casingPath;
    casingPath.addRect(casing);
    QLinearGradient casingWood(casing.topLeft(), casing.topRight());
    casingWood.setColorAt(0.0, rgb(0.11, 0.06, 0.035));
    casingWood.setColorAt(0.5, rgb(0.17, 0.095, 0.055));
    casingWood.setColorAt(1.0, rgb(0.12, 0.065, 0.04));
    painter.setBrush(casingWood);
    painter.drawPath(casingPath.subtracted(panes));

    QPainterPath framePath;
    framePath.addRect(frame);
    QLinearGradient frameWood(frame.topLeft(), frame.bottomLeft());
    frameWood.setColorAt(0.0, rgb(0.16, 0.09, 0.05));
    frameWood.setColorAt(1.0, rgb(0.26, 0.15, 0.08));
    painter.setBrush(frameWood);
    painter.drawPath(framePath.subtracted(panes));

    // Each pane sits in a bevelled rebate: shadow along the top and left, candle light below.
    const double line = c.len(0.0016);
    for (const QRectF& unit : windowPanes()) {
        const QRectF pane = c.rect(unit.left(), unit.top(), unit.right(), unit.bottom());
        painter.setPen(QPen(rgb(0.02, 0.01, 0.0, 0.8), line));
        painter.drawLine(pane.topLeft(), pane.topRight());
        painter.drawLine(pane.topLeft(), pane.bottomLeft());
        painter.setPen(QPen(rgb(0.55, 0.33, 0.17, 0.6), line));
        painter.drawLine(pane.bottomLeft() + QPointF(0, line),
                         pane.bottomRight() + QPointF(0, line));
        painter.setPen(QPen(rgb(0.45, 0.27, 0.14, 0.35), line));
        painter.drawLine(pane.topRight() + QPointF(line, 0), pane.bottomRight() + QPointF(line, 0));
    }
    painter.setPen(QPen(rgb(0.0, 0.0, 0.0, 0.6), line));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(casing);
    painter.setPen(Qt::NoPen);

    // The sill, catching the light of the candles below it.
    const QRectF sill = c.rect(0.431, 0.5105, 0.5625, 0.5285);
    QLinearGradient sillWood(sill.topLeft(), sill.bottomLeft());
    sillWood.setColorAt(0.0, rgb(0.42, 0.25, 0.13));
    sillWood.setColorAt(0.3, rgb(0.28, 0.16, 0.085));
    sillWood.setColorAt(1.0, rgb(0.10, 0.05, 0.03));
    painter.setBrush(sillWood);
    painter.drawRect(sill);
    QRadialGradient sillShadow(c.at(0.497, 0.535), c.len(0.09));
    sillShadow.setColorAt(0.0, rgb(0, 0, 0, 0.45));
    sillShadow.setColorAt(1.0, rgb(0, 0, 0, 0));
    painter.setBrush(sillShadow);
    painter.drawRect(c.rect(0.431, 0.5285, 0.5625, 0.56));
}

void paintCurtain(QPainter& painter, const RoomCanvas& c, double left, double right,
                  bool innerOnRight, int seed) {
    const QRectF area = c.rect(left, 0.0, right, floorLine + 0.004);
    QLinearGradient folds(area.topLeft(), area.topRight());
    constexpr int foldCount = 7;
    constexpr int stops = 64;
    for (int i = 0; i <= stops; ++i) {
        const double t = static_cast<double>(i) / stops;
        const double fold = 0.5 + 0.5 * std::sin(t * foldCount * 2 * M_PI + seed);
        const double towardsWindow = innerOnRight ? t : 1 - t;
        const double light = (0.35 + 0.65 * std::pow(fold, 1.6)) * (0.45 + 0.55 * towardsWindow);
        folds.setColorAt(t, rgb(0.36 * light + 0.02, 0.05 * light + 0.008, 0.055 * light + 0.01));
    }
    QPainterPath drape;
    drape.moveTo(area.topLeft());
    drape.lineTo(area.topRight());
    constexpr int hemSteps = 28;
    for (int i = 0; i <= hemSteps; ++i) {
        const double t = 1.0 - static_cast<double>(i) / hemSteps;
        const double x = area.left() + area.width() * t;
        const double wave = std::sin(t * foldCount * 2 * M_PI + seed) * c.len(0.004);
        drape.lineTo(x, area.bottom() + wave);
    }
    drape.closeSubpath();
    painter.setBrush(folds);
    painter.drawPath(drape);

    // Velvet darkens towards the ceiling, away from the candles.
    QLinearGradient shade(area.topLeft(), area.bottomLeft());
    shade.setColorAt(0.0, rgb(0, 0, 0, 0.55));
    shade.setColorAt(0.5, rgb(0, 0, 0, 0.1));
    shade.setColorAt(1.0, rgb(0, 0, 0, 0.2));
    painter.setBrush(shade);
    painter.drawPath(drape);
}

void paintRod(QPainter& painter, const RoomCanvas& c) {
    const QRectF rod = c.rect(0.372, 0.0075, 0.621, 0.0135);
    QLinearGradient brass(rod.topLeft(), rod.bottomLeft());
    brass.setColorAt(0.0, rgb(0.75, 0.55, 0.25));
    brass.setColorAt(0.5, rgb(0.42, 0.28, 0.1));
    brass.setColorAt(1.0, rgb(0.18, 0.11, 0.04));
    painter.setBrush(brass);
    painter.drawRoundedRect(rod, rod.height() / 2, rod.height() / 2);
    for (const double x : {0.372, 0.621}) {
        const QPointF knob = c.at(x, 0.0105);
        QRadialGradient finial(knob + QPointF(-c.len(0.003), -c.len(0.003)), c.len(0.012));
        finial.setColorAt(0.0, rgb(0.95, 0.75, 0.4));
        finial.setColorAt(1.0, rgb(0.25, 0.15, 0.05));
        painter.setBrush(finial);
        painter.drawEllipse(knob, c.len(0.009), c.len(0.009));
    }
}

}  // namespace

void paintWindow(QPainter& painter, const RoomCanvas& c) {
    painter.save();
    painter.setPen(Qt::NoPen);
    const QRectF view = c.rect(0.447, 0.024, 0.546, 0.511);
    painter.save();
    painter.setClipRect(view);
    paintSky(painter, c, view);
    paintLandscape(painter, c, view);
    painter.restore();
    paintGlass(painter, c);
    paintFrame(painter, c);
    paintCurtain(painter, c, 0.386, 0.452, true, 1);
    paintCurtain(painter, c, 0.541, 0.607, false, 4);
    paintRod(painter, c);
    painter.restore();
}

}  // namespace corvanel::meters::room
