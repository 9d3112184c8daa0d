// What the meters print: every scale label, red zone, corner mark and caption is looked for
// where the meters' numbers put it (radius and angle about the pivot, fractions of the face),
// in its font, its text and its colour. Positions are worked out here from those numbers, never
// taken from the views' own geometry helpers.
#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Probe.h"
#include "meters/kit/Colors.h"
#include "meters/kit/DialGeometry.h"
#include "meters/kit/SystemFonts.h"
#include "meters/styles/HoloVUMeterView.h"
#include "meters/styles/LEDSpectrumView.h"
#include "meters/styles/MagmaAnalyzerView.h"
#include "meters/styles/MagmaVUMeterView.h"
#include "meters/styles/PulsarComboView.h"
#include "meters/styles/RetroVUMeterView.h"
#include "meters/styles/TapeDeckMeterView.h"
#include "meters/styles/VUMeterView.h"
#include "meters/styles/YamahaClassicComboView.h"
#include "meters/styles/YamahaTwelveBandEQView.h"
#include "meters/styles/YamahaVUMeterView.h"
#include "spectrum/SpectrumScale.h"

namespace corvanel::meters {
namespace {

using probe::fitText;

template <typename Meter>
QImage drawAtRest(Meter& meter, float level, QSizeF size) {
    meter.setLevel(level);
    meter.settle();
    return probe::render(
        size, [&](QPainter& p) { meter.paint(p, size); }, 2.0);
}

QImage drawValues(MeterRenderer& view, const MeterValues& values, QSizeF size) {
    view.setValues(values);
    view.settle();
    return probe::render(
        size, [&](QPainter& p) { view.paint(p, size); }, 2.0);
}

struct Label {
    double position;
    const char* text;
    bool red = false;
};

void expectLabels(const QImage& image, const std::vector<Label>& labels, const QFont& font,
                  QPointF pivot, double radius, double degreesAt0, double degreesPerLevel) {
    for (const Label& label : labels) {
        const QPointF at = polarPoint(pivot, radius, degreesAt0 + degreesPerLevel * label.position);
        const auto fit = fitText(image, QString::fromUtf8(label.text), {font, {}}, at,
                                 label.red ? probe::isRedInk : probe::isDark);
        EXPECT_TRUE(fit.matches()) << label.text << " at " << label.position << ": found "
                                   << fit.found << ", stray " << fit.stray;
    }
}

bool redAt(const QImage& image, QPointF point) {
    return probe::isRedInk(probe::at(image, point));
}

TEST(VUMeterView, PrintsItsLabelsAt72PercentAndTheRedZoneAt96PercentOfTheRadius) {
    // 300 x 220: the dial area is 282 x 202 at (9, 9); R = 0.47 x 282; pivot 4 above its bottom.
    VUMeterView meter(QStringLiteral("L"));
    const QImage image = drawAtRest(meter, 0.42f, {300, 220});
    const QPointF pivot(150, 207);
    const double R = 0.47 * 282;
    expectLabels(image, {{0, "-20"}, {0.3, "-10"}, {0.55, "-5"}, {0.78, "0"}, {1, "+3"}},
                 systemFont(8, FontWeight::medium), pivot, 0.72 * R, -135, 90);
    // Between the ticks of 0.78, 0.90 and 1.00: red on the zone's radius, face inside it.
    for (const double degrees : {-59.4, -49.5}) {
        EXPECT_TRUE(redAt(image, polarPoint(pivot, 0.96 * R, degrees))) << degrees;
        EXPECT_FALSE(redAt(image, polarPoint(pivot, 0.9 * R, degrees))) << degrees;
        EXPECT_FALSE(redAt(image, polarPoint(pivot, 0.86 * R, degrees))) << degrees;
    }
}

TEST(TapeDeckMeterView, PrintsItsScaleRedBandAndCornerMarksWhereTheFaceSays) {
    // 300 x 140: the meter area is 284 x 124 at (8, 8); R = 1.28 h, pivot 0.55 h below it.
    TapeDeckMeterView meter(QStringLiteral("L"));
    const QImage image = drawAtRest(meter, 0.15f, {300, 140});
    const QPointF pivot(150, 8 + 1.55 * 124);
    const double R = 1.28 * 124;
    expectLabels(
        image,
        {{0, "20"}, {0.28, "10"}, {0.49, "5"}, {0.78, "0"}, {0.93, "2", true}, {1, "3", true}},
        systemFont(9, FontWeight::semibold), pivot, 0.9 * R, -114, 48);
    for (const double degrees : {-74.6, -71.0}) {
        EXPECT_TRUE(redAt(image, polarPoint(pivot, 0.8 * R, degrees))) << degrees;
        EXPECT_FALSE(redAt(image, polarPoint(pivot, 0.72 * R, degrees))) << degrees;
        EXPECT_FALSE(redAt(image, polarPoint(pivot, 0.86 * R, degrees))) << degrees;
    }
    const QFont marks = systemFont(14, FontWeight::bold);
    const auto minus = fitText(image, QString(QChar(0x2212)), {marks, {}},
                               {8 + 0.08 * 284, 8 + 0.16 * 124}, probe::isDark);
    EXPECT_TRUE(minus.matches()) << minus.found << " " << minus.stray;
    const auto plus = fitText(image, QStringLiteral("+"), {marks, {}},
                              {8 + 0.92 * 284, 8 + 0.16 * 124}, probe::isRedInk);
    EXPECT_TRUE(plus.matches()) << plus.found << " " << plus.stray;
}

TEST(RetroVUMeterView, PrintsItsMainScaleAt120PercentOfTheRadiusAndItsLegendAboveTheHub) {
    // 223 x 219 (a meter of the console at its default size): the area is 207 x 203 at (8, 8);
    // pivot (0.5 w, 0.97 h), R = 0.62 h; "VU" 0.42 R above the pivot. A wide meter keeps the
    // same dial about its centre line, its hub no wider than the square one's.
    for (const double width : {223.0, 773.0}) {
        RetroVUMeterView meter(QStringLiteral("L"));
        const QImage image = drawAtRest(meter, 0.0f, {width, 219});
        const QPointF pivot(width / 2, 8 + 0.97 * 203);
        const double R = 0.62 * 203;
        expectLabels(image, {{0, "20"}, {0.17, "10"}, {0.41, "5"}, {0.72, "0"}, {0.96, "5", true}},
                     systemFont(9, FontWeight::semibold), pivot, 1.2 * R, -132, 84);
        const auto legend = fitText(image, QStringLiteral("VU"),
                                    {systemFont(16, FontWeight::bold, FontDesign::serif), {}},
                                    pivot - QPointF(0, 0.42 * R), probe::isDark);
        EXPECT_TRUE(legend.matches()) << width << ": " << legend.found << " " << legend.stray;
    }
}

TEST(YamahaVUMeterView, PrintsItsScaleAndRedZoneOnTheCanvasThreePointsIn) {
    // 200 x 120: pivot (0.5 w, 1.34 h) and r = 1.1 h in the scale canvas, inset 3.
    YamahaVUMeterView meter(QStringLiteral("LEFT"));
    const QImage image = drawAtRest(meter, 0.4f, {200, 120});
    const QPointF pivot = QPointF(3, 3) + QPointF(100, 1.34 * 120);
    const double r = 1.1 * 120;
    expectLabels(image,
                 {{0, "\u221220"},
                  {0.28, "\u221210"},
                  {0.51, "\u22125"},
                  {0.76, "0"},
                  {0.88, "+1", true},
                  {1, "+3", true}},
                 systemFont(7, FontWeight::medium, FontDesign::rounded), pivot, 0.88 * r, -115, 50);
    for (const double degrees : {-74.0, -68.0}) {
        EXPECT_TRUE(redAt(image, polarPoint(pivot, 0.74 * r, degrees))) << degrees;
        EXPECT_FALSE(redAt(image, polarPoint(pivot, 0.68 * r, degrees))) << degrees;
    }
    const auto legend = fitText(image, QStringLiteral("VU"),
                                {systemFont(10, FontWeight::semibold, FontDesign::rounded), {}},
                                QPointF(3, 3) + QPointF(100, 0.68 * 120), probe::isDark);
    EXPECT_TRUE(legend.matches()) << legend.found << " " << legend.stray;
}

TEST(YamahaTwelveBandEQView, CaptionIsPrintedOverTheLitColumns) {
    // Every column full. The caption stands in the top-right corner, 6 points in; the canvas is
    // 404 wide from x = 10, so columns 10 and 11 run from 10 + 10 P to 10 + 11 P + C with
    // C = (404 - 55) / 12 and P = C + 5, and their top segments start at the canvas's top.
    YamahaTwelveBandEQView display;
    display.setLevels(std::vector<float>(40, 1.0f));
    const QSizeF size(424, 190);
    const QImage image = probe::render(
        size, [&](QPainter& p) { display.paint(p, size); }, 2.0, Qt::black);
    const TextStyle caption{systemFont(6, FontWeight::medium, FontDesign::monospaced, 0.8), {}};
    const QString text = QStringLiteral("12 BAND SPECTRUM");
    const auto whole = fitText(image, text, caption, {424 - 6, 6}, probe::isGreyInk,
                               HorizontalAnchor::right, VerticalAnchor::top);
    EXPECT_TRUE(whole.matches()) << whole.found << " " << whole.stray;
    const double C = (404 - 55) / 12.0;
    const QRectF topSegments(10 + 10 * (C + 5), 10.5, C + 5 + C, 3);
    const auto overLit = fitText(image, text, caption, {424 - 6, 6}, probe::isGreyInk,
                                 HorizontalAnchor::right, VerticalAnchor::top, topSegments);
    EXPECT_GT(overLit.found, 0.6) << overLit.found;
}

TEST(YamahaClassicComboView, LegendClearsTheMetersWhateverTheFontsAscent) {
    // The meters' top border is 22 points down; the legend's capitals must end above it, with
    // the fonts used here and with the Mac's (SF Mono: ascent 0.952, descent 0.241 and cap
    // height 0.705 of the size).
    const auto mac = [](double size) {
        return YamahaClassicComboView::LineMetrics{0.952 * size, 0.241 * size, 0.705 * size};
    };
    const auto here = [](int size, FontWeight weight, double spacing) {
        const QFontMetricsF m(systemFont(size, weight, FontDesign::monospaced, spacing));
        return YamahaClassicComboView::LineMetrics{m.ascent(), m.descent(), m.capHeight()};
    };
    const std::pair<YamahaClassicComboView::LineMetrics, YamahaClassicComboView::LineMetrics>
        fonts[] = {{mac(7), mac(6)},
                   {here(7, FontWeight::medium, 1.2), here(6, FontWeight::regular, 0.7)}};
    for (const auto& [first, second] : fonts) {
        const auto [top, bottom] = YamahaClassicComboView::legendBaselines(first, second);
        EXPECT_NEAR(top - first.capHeight, 7, 1e-9);  // capitals hung 7 points from the top
        EXPECT_LT(bottom, 22 - 1.5);
        // The second line's capitals start below the first line's descent.
        EXPECT_GT(bottom - second.capHeight, top + first.descent);
    }
    // And in the picture: no legend grey on the meters' top border.
    YamahaClassicComboView combo;
    combo.setValues({std::vector<float>(40, 0.0f), {}, 0.0f, 0.0f});
    const QSizeF size(460, 450);
    const QImage image = probe::render(
        size, [&](QPainter& p) { combo.paint(p, size); }, 2.0);
    for (double x = 24; x < 130; x += 0.5)
        EXPECT_LT(probe::brightness(probe::at(image, {x, 22.25})), 90) << "at x = " << x;
}

TEST(HoloVUMeterView, RedZoneRunsFromZeroVUToTheEndInAnUltraLightLetter) {
    // 310 x 200: the inset area is 284 x 174, so the circle has radius 87 about (155, 100).
    // Fractions of the circle count clockwise from 150 degrees; 0.52 is at 337.2 degrees.
    HoloVUMeterView gauge(QStringLiteral("L"));
    const QImage image = drawAtRest(gauge, 0.0f, {310, 200});
    const QPointF centre(155, 100);
    const auto pinkish = [&](double degrees) {
        const QColor c = probe::at(image, polarPoint(centre, 87, degrees));
        return c.red() > c.green() + 10;
    };
    for (const double degrees : {340.0, 360.0, 385.0})
        EXPECT_TRUE(pinkish(degrees)) << degrees;
    for (const double degrees : {300.0, 330.0})
        EXPECT_FALSE(pinkish(degrees)) << degrees;

    // The channel letter's ink: closer to the ultra-light (100) cut than to the next (200).
    const auto inkOf = [](const QImage& picture, QRectF box, const QColor& ground) {
        double ink = 0;
        for (double y = box.top(); y < box.bottom(); y += 0.5)
            for (double x = box.left(); x < box.right(); x += 0.5)
                ink += std::max(0, probe::at(picture, {x, y}).green() - ground.green());
        return ink;
    };
    const QRectF letterBox(centre.x() - 14, centre.y() - 24, 28, 30);
    const QColor ground = probe::at(image, letterBox.topLeft());
    const double drawn = inkOf(image, letterBox, ground);
    const auto letterIn = [&](QFont::Weight weight) {
        QFont font = systemFont(24, FontWeight::regular);
        font.setWeight(weight);
        const QImage alone = probe::render(
            {310, 200},
            [&](QPainter& p) {
                drawText(p, QStringLiteral("L"), {font, systemCyan()}, centre - QPointF(0, 10));
            },
            2.0, ground);
        return inkOf(alone, letterBox, ground);
    };
    EXPECT_LT(std::abs(drawn - letterIn(QFont::Thin)),
              std::abs(drawn - letterIn(QFont::ExtraLight)));
}

TEST(PulsarComboView, RimLabelsStandElevenPointsOutsideTheRim) {
    // 460 x 450: the rim's radius is 450 / 2 - 18 = 207 about the centre.
    PulsarComboView pulsar;
    const QImage image = drawValues(pulsar, {}, {460, 450});
    const double out = 207 + 11;
    const QFont font = systemFont(7, FontWeight::medium, FontDesign::monospaced);
    const std::pair<QPointF, const char*> labels[] = {
        {{0, -out}, "20"}, {{out, 0}, "110"}, {{0, out}, "620"}, {{-out, 0}, "3.4K"}};
    for (const auto& [offset, text] : labels) {
        const auto fit = fitText(image, QString::fromLatin1(text), {font, {}},
                                 QPointF(230, 225) + offset, probe::isGreyInk);
        EXPECT_TRUE(fit.matches()) << text << ": " << fit.found << " " << fit.stray;
    }
}

// Taller than the proportions want (a panel stretched up, a full-screen window): the end labels
// stay whole on the face and the needle's tip never reaches the face's sides.
TEST(NeedleDials, KeepTheirEndLabelsWholeAndTheNeedleOnTheFaceWhenStretched) {
    struct Case {
        const char* style;
        std::function<std::unique_ptr<SpringNeedleMeter>()> make;
        std::vector<double> heights;
        double width;
        double faceInset;
        std::vector<std::pair<const char*, bool>> ends;  // text, red
        QFont font;
    };
    const Case dials[] = {
        {"tape deck",
         [] { return std::make_unique<TapeDeckMeterView>(QStringLiteral("L")); },
         {400, 900},
         223,
         6,
         {{"20", false}, {"3", true}},
         systemFont(9, FontWeight::semibold)},
        {"retro",
         [] { return std::make_unique<RetroVUMeterView>(QStringLiteral("L")); },
         {232, 700},
         223,
         4,
         {{"20", false}, {"5", true}},
         systemFont(9, FontWeight::semibold)},
        {"yamaha",
         [] { return std::make_unique<YamahaVUMeterView>(QStringLiteral("LEFT")); },
         {450},
         207,
         3,
         {{"\u221220", false}, {"+3", true}},
         systemFont(7, FontWeight::medium, FontDesign::rounded)},
    };
    for (const Case& c : dials) {
        for (const double height : c.heights) {
            const QSizeF size(c.width, height);
            const QRectF face = QRectF(QPointF(), size)
                                    .adjusted(c.faceInset, c.faceInset, -c.faceInset, -c.faceInset);
            for (const float level : {0.0f, 1.0f}) {
                const auto meter = c.make();
                const QImage image = drawAtRest(*meter, level, size);
                for (const auto& [text, red] : c.ends)
                    EXPECT_TRUE(probe::findsWholeText(image, QString::fromUtf8(text), {c.font, {}},
                                                      face, red ? probe::isRedInk : probe::isDark))
                        << c.style << " " << size.height() << ": " << text;
                if (std::string(c.style) == "retro") continue;  // its face is black at the sides
                for (double y = face.top() + 6; y < face.bottom() - 24; y += 0.5)
                    for (const double x : {face.left() + 0.75, face.right() - 0.75})
                        ASSERT_FALSE(probe::isDark(probe::at(image, {x, y})))
                            << c.style << " " << size.height() << ": needle at " << x << ", " << y;
            }
        }
    }
}

TEST(PulsarComboView, RimLabelsStayWholeWhenTheWidthLimitsTheRim) {
    PulsarComboView pulsar;
    const QFont font = systemFont(7, FontWeight::medium, FontDesign::monospaced);
    for (const QSizeF size : {QSizeF(460, 450), QSizeF(460, 800), QSizeF(400, 400)}) {
        const QImage image = drawValues(pulsar, {}, size);
        // The side labels, anywhere along the plate's middle band but wholly on it.
        const QRectF band(1, size.height() / 2 - 12, size.width() - 2, 24);
        for (const char* text : {"3.4K", "110"})
            EXPECT_TRUE(probe::findsWholeText(image, QString::fromLatin1(text), {font, {}}, band,
                                              probe::isGreyInk))
                << text << " at " << size.width() << " x " << size.height();
    }
}

TEST(LEDSpectrumView, FrequencyLabelsAreCentredUnderTheirColumns5AndAHalfPointsUp) {
    // 460 x 190: the canvas is 438 x 168 at (11, 11); 40 columns of (438 - 20 - 78) / 40.
    LEDSpectrumView view;
    const QImage image = drawValues(
        view, {std::vector<float>(40, 0.0f), std::vector<float>(40, 0.0f), 0, 0}, {460, 190});
    const double column = (438 - 20 - 78) / 40.0;
    const QFont font = systemFont(7, FontWeight::medium, FontDesign::monospaced);
    int checked = 0;
    for (const FrequencyLabel& label : SpectrumScale::frequencyLabels()) {
        const QPointF at(11 + 20 + label.index * (column + 2) + column / 2, 11 + 168 - 5.5);
        const auto fit =
            fitText(image, QString::fromStdString(label.text), {font, {}}, at, probe::isGreyInk);
        EXPECT_TRUE(fit.matches()) << label.text << ": " << fit.found << " " << fit.stray;
        ++checked;
    }
    EXPECT_GE(checked, 5);
}

TEST(MagmaAnalyzerView, DecibelGridLabelsStandWhereTheBoostedLevelsReach) {
    // 460 x 260: the canvas is 438 x 238 at (11, 11); P = 238 - 13. With the 1.3 gain the
    // lines lie at 0.133 P (-20), 0.567 P (-40) and P (-60, clamped to P - 4 for its label).
    MagmaAnalyzerView view;
    const QImage image = drawValues(
        view, {std::vector<float>(40, 0.0f), std::vector<float>(40, 0.0f), 0, 0}, {460, 260});
    const double P = 238 - 13;
    const QFont font = systemFont(7, FontWeight::medium, FontDesign::monospaced);
    const std::pair<double, const char*> labels[] = {
        {1 - 1.3 * 40 / 60, "-20"}, {1 - 1.3 * 20 / 60, "-40"}, {(P - 4) / P, "-60"}};
    for (const auto& [fraction, text] : labels) {
        const auto fit =
            fitText(image, QString::fromLatin1(text), {font, {}}, {11 + 17, 11 + fraction * P},
                    probe::isGreyInk, HorizontalAnchor::right);
        EXPECT_TRUE(fit.matches()) << text << ": " << fit.found << " " << fit.stray;
    }
}

TEST(MagmaVUMeterView, ScaleLabelsStandAt84PercentOfTheWidth) {
    // 300 x 200 keeps the 1.5 aspect: the canvas is 288 x 188 at (6, 6); the scale runs from
    // 0.88 h (0) up to 0.12 h (100).
    MagmaVUMeterView meter(QStringLiteral("L"));
    const QImage image = drawAtRest(meter, 0.0f, {300, 200});
    const QFont font = systemFont(7, FontWeight::medium, FontDesign::monospaced);
    const auto isAsh = [](const QColor& c) {
        return probe::brightness(c) > 70 && std::abs(c.red() - c.blue()) < 60;
    };
    for (const auto& [value, text] : {std::pair{0.0, "0"}, {0.25, "25"}, {0.5, "50"}}) {
        const QPointF at(6 + 0.84 * 288, 6 + (0.88 - 0.76 * value) * 188);
        const auto fit = fitText(image, QString::fromLatin1(text), {font, {}}, at, isAsh);
        EXPECT_TRUE(fit.matches()) << text << ": " << fit.found << " " << fit.stray;
    }
}

}  // namespace
}  // namespace corvanel::meters
