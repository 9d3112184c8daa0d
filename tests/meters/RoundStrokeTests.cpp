// Round-capped, round-joined strokes drawn by distance, checked against QPainter's own stroke.
#include <gtest/gtest.h>

#include <QLinearGradient>
#include <QPainterPath>
#include <cmath>
#include <cstdlib>

#include "Probe.h"
#include "meters/kit/RoundStroke.h"

namespace corvanel::meters {
namespace {

// Distance-based coverage runs slightly thin right inside a sharp join, where the two bands
// cover a pixel from two sides; elsewhere it agrees with Qt's area coverage to a few levels.
struct Difference {
    int strong = 0;  // pixels whose alpha differs by more than a quarter
    double mean = 0;
};

Difference alphaDifference(const QImage& a, const QImage& b) {
    Difference d;
    long total = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const int delta = std::abs(a.pixelColor(x, y).alpha() - b.pixelColor(x, y).alpha());
            if (delta > 64) ++d.strong;
            total += delta;
        }
    }
    d.mean = static_cast<double>(total) / (a.width() * a.height());
    return d;
}

QImage byQt(const QSizeF& size, const QPolygonF& line, double width, const QBrush& brush,
            double scale = 1.0) {
    return probe::render(
        size,
        [&](QPainter& p) {
            p.setPen(QPen(brush, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.drawPolyline(line);
        },
        scale);
}

QImage byDistance(const QSizeF& size, const QPolygonF& line, double width, const StrokePaint& paint,
                  double scale = 1.0) {
    return probe::render(
        size, [&](QPainter& p) { drawRoundStroke(p, line, width, paint); }, scale);
}

QPolygonF wanderingDown(double x, double length) {
    QPolygonF line{QPointF(x, 4)};
    for (int j = 1; j <= 5; ++j)
        line << QPointF(x + 4 * std::sin(j * 1.9), 4 + length * j / 5);
    return line;
}

TEST(RoundStroke, CoversWhatQtsRoundPenCoversAlongEitherAxis) {
    const QColor colour(150, 200, 255);
    for (const double width : {0.7, 1.6, 3.0, 9.0}) {
        const QPolygonF down = wanderingDown(30.3, 80);
        const Difference d1 = alphaDifference(byQt({60, 100}, down, width, colour),
                                              byDistance({60, 100}, down, width, colour));
        EXPECT_LE(d1.strong, 8) << width;  // two pixels at most inside each of the four joins
        EXPECT_LT(d1.mean, 1.5) << width;
        QPolygonF across;
        for (const QPointF& p : down)
            across << QPointF(p.y(), p.x());
        const Difference d = alphaDifference(byQt({100, 60}, across, width, colour),
                                             byDistance({100, 60}, across, width, colour));
        EXPECT_LE(d.strong, 8) << width;
        EXPECT_LT(d.mean, 1.5) << width;
    }
}

TEST(RoundStroke, MatchesQtOnAHighDensityDisplay) {
    const QPolygonF down = wanderingDown(20.4, 50);
    const Difference d = alphaDifference(byQt({40, 60}, down, 2.2, QColor(Qt::white), 2.0),
                                         byDistance({40, 60}, down, 2.2, QColor(Qt::white), 2.0));
    EXPECT_LE(d.strong, 8);
    EXPECT_LT(d.mean, 1.5);
}

TEST(RoundStroke, TranslucentJoinsAreCoveredOnce) {
    // A sharp turn: where the two segments overlap, a pen that blended twice would be darker.
    const QPolygonF vee{QPointF(10, 10), QPointF(30, 60), QPointF(50, 10)};
    const QImage image = byDistance({60, 70}, vee, 6, QColor(255, 0, 0, 120));
    const int join = probe::at(image, {30, 58}).alpha();
    const int middle = probe::at(image, {20, 35}).alpha();
    EXPECT_NEAR(join, middle, 2);
    EXPECT_NEAR(middle, 120, 2);
}

TEST(RoundStroke, PaintsAGradientWhereQtWouldPutIt) {
    QLinearGradient gradient(QPointF(0, 4), QPointF(0, 84));
    gradient.setColorAt(0.0, QColor(255, 0, 0));
    gradient.setColorAt(1.0, QColor(0, 0, 255));
    const QPolygonF down = wanderingDown(30, 80);
    const QImage ours = byDistance({60, 100}, down, 4, gradient);
    const QImage qt = byQt({60, 100}, down, 4, gradient);
    for (const double y : {8.0, 44.0, 80.0}) {
        const QPointF onLine(down[static_cast<int>(std::lround((y - 4) / 16))].x(), y);
        EXPECT_TRUE(probe::near(probe::at(ours, onLine), probe::at(qt, onLine), 8)) << y;
    }
    EXPECT_GT(probe::at(ours, {30, 6}).red(), 200);
}

TEST(RoundStroke, LeavesLinesItCannotRunAndClippedPaintersToQt) {
    // A zigzag that turns back along both axes, and a clipped painter.
    const QPolygonF zigzag{QPointF(10, 10), QPointF(50, 30), QPointF(10, 50), QPointF(50, 20)};
    EXPECT_EQ(byDistance({60, 60}, zigzag, 3, QColor(Qt::green)),
              byQt({60, 60}, zigzag, 3, QColor(Qt::green)));
    const auto clipped = [](const std::function<void(QPainter&)>& draw) {
        return probe::render({60, 100}, [&](QPainter& p) {
            p.setClipRect(QRectF(0, 0, 60, 50));
            draw(p);
        });
    };
    const QPolygonF down = wanderingDown(30, 80);
    const QImage ours = clipped([&](QPainter& p) { drawRoundStroke(p, down, 3, QColor(Qt::red)); });
    EXPECT_EQ(ours, clipped([&](QPainter& p) {
                  p.setPen(QPen(Qt::red, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
                  p.drawPolyline(down);
              }));
    EXPECT_EQ(probe::at(ours, {30, 70}).alpha(), 0);
}

TEST(RoundStroke, AClipThatHoldsTheWholeLineChangesNothing) {
    const QPolygonF down = wanderingDown(30, 80);
    const QImage clipped = probe::render({60, 100}, [&](QPainter& p) {
        QPainterPath rounded;
        rounded.addRoundedRect(QRectF(2, 0, 56, 100), 8, 8);
        p.setClipPath(rounded);
        drawRoundStroke(p, down, 3, QColor(Qt::red));
    });
    EXPECT_EQ(clipped, byDistance({60, 100}, down, 3, QColor(Qt::red)));
}

}  // namespace
}  // namespace corvanel::meters
