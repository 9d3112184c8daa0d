#include "meters/kit/RoundStroke.h"

#include <QImage>
#include <QPaintDevice>
#include <QPainterPath>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace corvanel::meters {

namespace {

// Whether a stroke covering `reach` (in the painter's coordinates) can be drawn here: a clip
// that holds all of it changes nothing.
bool canRasterise(const QPainter& painter, const QRectF& reach) {
    const QPaintDevice* device = painter.device();
    if (device == nullptr || device->devType() != QInternal::Image) return false;
    if (static_cast<const QImage*>(device)->format() != QImage::Format_ARGB32_Premultiplied)
        return false;
    const QTransform toDevice = painter.deviceTransform();
    if (toDevice.type() > QTransform::TxScale) return false;
    if (std::abs(std::abs(toDevice.m11()) - std::abs(toDevice.m22())) > 1e-9) return false;
    if (painter.opacity() != 1.0 ||
        painter.compositionMode() != QPainter::CompositionMode_SourceOver ||
        !painter.testRenderHint(QPainter::Antialiasing))
        return false;
    return !painter.hasClipping() || painter.clipPath().contains(reach);
}

// Premultiplied colours in 256 steps along the paint's axis, in device pixels.
class PaintRamp {
  public:
    PaintRamp() = default;
    PaintRamp(const StrokePaint& paint, const QTransform& toDevice) {
        if (const auto* colour = std::get_if<QColor>(&paint)) {
            ramp_.fill(qPremultiply(colour->rgba()));
            return;
        }
        const auto& gradient = std::get<QLinearGradient>(paint);
        const QPointF start = toDevice.map(gradient.start());
        const QPointF axis = toDevice.map(gradient.finalStop()) - start;
        const double lengthSquared = QPointF::dotProduct(axis, axis);
        originX_ = static_cast<float>(start.x());
        originY_ = static_cast<float>(start.y());
        if (lengthSquared > 0) {
            axisX_ = static_cast<float>(axis.x() / lengthSquared);
            axisY_ = static_cast<float>(axis.y() / lengthSquared);
        }
        fillRamp(gradient.stops());
    }

    // Where the device point (x, y) lies along the ramp, 0 to 1 between its ends.
    float parameter(float x, float y) const {
        return (x - originX_) * axisX_ + (y - originY_) * axisY_;
    }
    // How far one pixel to the right or down moves along the ramp.
    float stepAcross(bool alongX) const { return alongX ? axisX_ : axisY_; }

    QRgb at(float parameter) const {
        return ramp_[static_cast<std::size_t>(std::clamp(parameter, 0.0f, 1.0f) * 255.0f + 0.5f)];
    }

  private:
    // Stops interpolate between premultiplied colours, as Qt's own gradients do.
    void fillRamp(const QGradientStops& stops) {
        if (stops.isEmpty()) return;
        qsizetype next = 0;  // the first stop at or after the current step
        for (std::size_t i = 0; i < ramp_.size(); ++i) {
            const double t = static_cast<double>(i) / 255.0;
            while (next < stops.size() && stops[next].first < t)
                ++next;
            if (next == 0 || next == stops.size()) {
                ramp_[i] = qPremultiply(stops[std::min(next, stops.size() - 1)].second.rgba());
                continue;
            }
            const QGradientStop& before = stops[next - 1];
            const QGradientStop& after = stops[next];
            const double span = after.first - before.first;
            ramp_[i] = mix(qPremultiply(before.second.rgba()), qPremultiply(after.second.rgba()),
                           span > 0 ? (t - before.first) / span : 1.0);
        }
    }

    static QRgb mix(QRgb from, QRgb to, double u) {
        const auto channel = [u](int a, int b) { return static_cast<int>(a + (b - a) * u + 0.5); };
        return qRgba(channel(qRed(from), qRed(to)), channel(qGreen(from), qGreen(to)),
                     channel(qBlue(from), qBlue(to)), channel(qAlpha(from), qAlpha(to)));
    }

    std::array<QRgb, 256> ramp_{};
    float originX_ = 0, originY_ = 0;
    float axisX_ = 0, axisY_ = 0;  // the axis divided by its squared length
};

// Each of the four premultiplied channels of `pixel` times level / 255, two at a time.
std::uint32_t scaled(std::uint32_t pixel, std::uint32_t level) {
    std::uint32_t redBlue = (pixel & 0xff00ffu) * level;
    redBlue = ((redBlue + ((redBlue >> 8) & 0xff00ffu) + 0x800080u) >> 8) & 0xff00ffu;
    std::uint32_t alphaGreen = ((pixel >> 8) & 0xff00ffu) * level;
    alphaGreen = (alphaGreen + ((alphaGreen >> 8) & 0xff00ffu) + 0x800080u) & 0xff00ff00u;
    return redBlue | alphaGreen;
}

std::uint32_t over(std::uint32_t source, std::uint32_t target) {
    return source + scaled(target, 255u - (source >> 24));
}

// A segment in "run" coordinates: `along` runs with the line, `across` along the runs.
struct Segment {
    float across, along;            // start
    float deltaAcross, deltaAlong;  // to the end; deltaAlong >= 0
    float inverseLengthSquared;     // 0 for a dot
    float slope;                    // across per along; 0 for a segment across the runs
    float halfRun;                  // half the capsule's width along a run
    float squeeze;                  // distance from the line per unit of offset along a run
};

// Rasterises one polyline that runs one way along an axis, run by run.
class MonotoneStroke {
  public:
    MonotoneStroke(const QPolygonF& onDevice, bool runsAreRows, float radius)
        : runsAreRows_(runsAreRows), radius_(radius), reach_(radius + 0.5f) {
        // In run coordinates the line goes down: `along` is y for rows, x for columns.
        std::vector<QPointF> points(onDevice.begin(), onDevice.end());
        const auto along = [runsAreRows](const QPointF& p) { return runsAreRows ? p.y() : p.x(); };
        if (along(points.back()) < along(points.front()))
            std::reverse(points.begin(), points.end());
        for (std::size_t i = 1; i < points.size(); ++i) {
            const QPointF from = points[i - 1];
            const QPointF to = points[i];
            Segment s{};
            s.across = static_cast<float>(runsAreRows ? from.x() : from.y());
            s.along = static_cast<float>(along(from));
            s.deltaAcross = static_cast<float>(runsAreRows ? to.x() - from.x() : to.y() - from.y());
            s.deltaAlong = static_cast<float>(along(to) - along(from));
            const float lengthSquared = s.deltaAcross * s.deltaAcross + s.deltaAlong * s.deltaAlong;
            s.inverseLengthSquared = lengthSquared > 0 ? 1.0f / lengthSquared : 0.0f;
            s.slope = s.deltaAlong > 1e-6f ? s.deltaAcross / s.deltaAlong : 0.0f;
            s.squeeze = s.deltaAlong * std::sqrt(s.inverseLengthSquared);
            s.halfRun = s.deltaAlong > 1e-6f ? reach_ * std::sqrt(lengthSquared) / s.deltaAlong
                                             : std::numeric_limits<float>::infinity();
            segments_.push_back(s);
        }
    }

    // False when the line doubles back along the axis; it is then left to QPainter.
    bool runsOneWay() const {
        return std::all_of(segments_.begin(), segments_.end(),
                           [](const Segment& s) { return s.deltaAlong >= 0; });
    }

    void paint(QImage& image, const PaintRamp& ramp) const {
        const int runs = runsAreRows_ ? image.height() : image.width();
        const int runLength = runsAreRows_ ? image.width() : image.height();
        // Pixels along a run are `step` bytes apart, runs `runStride` bytes.
        const std::ptrdiff_t line = image.bytesPerLine();
        const std::ptrdiff_t runStride = runsAreRows_ ? line : 4;
        const std::ptrdiff_t step = runsAreRows_ ? 4 : line;
        std::uint8_t* bits = image.bits();
        const float reachSquared = reach_ * reach_;
        // Pixels this near the centre line are fully covered.
        const float innerSquared = radius_ >= 0.5f ? (radius_ - 0.5f) * (radius_ - 0.5f) : -1.0f;
        const float rampStep = ramp.stepAcross(runsAreRows_);
        const float top = segments_.front().along;
        const float bottom = segments_.back().along + segments_.back().deltaAlong;
        const int firstRun = std::max(0, static_cast<int>(std::floor(top - reach_)));
        const int lastRun = std::min(runs - 1, static_cast<int>(std::ceil(bottom + reach_)));
        std::size_t firstSegment = 0;
        for (int run = firstRun; run <= lastRun; ++run) {
            const float centre = static_cast<float>(run) + 0.5f;
            while (firstSegment + 1 < segments_.size() &&
                   segments_[firstSegment].along + segments_[firstSegment].deltaAlong + reach_ <
                       centre)
                ++firstSegment;
            std::size_t endSegment = firstSegment;
            float lo = std::numeric_limits<float>::infinity();
            float hi = -lo;
            while (endSegment < segments_.size() &&
                   segments_[endSegment].along - reach_ <= centre) {
                if (const auto span = runSpan(segments_[endSegment], centre)) {
                    lo = std::min(lo, span->first);
                    hi = std::max(hi, span->second);
                }
                ++endSegment;
            }
            if (!(lo <= hi)) continue;
            // The pixels whose centres lie in [lo, hi]; truncation floors what is clamped to 0
            // or more, and is far cheaper than a call to floor or ceil.
            const float end = static_cast<float>(runLength - 1);
            const float left = std::clamp(lo - 0.5f, 0.0f, end + 1);
            int first = static_cast<int>(left);
            if (static_cast<float>(first) < left) ++first;
            const float right = hi - 0.5f;
            const int last = right < 0 ? -1 : static_cast<int>(std::min(right, end));
            if (first > last) continue;
            std::uint8_t* pixel = bits + run * runStride + first * step;
            const float firstCentre = static_cast<float>(first) + 0.5f;
            float rampAt = runsAreRows_ ? ramp.parameter(firstCentre, centre)
                                        : ramp.parameter(centre, firstCentre);
            // Where the whole run lies beside one segment, away from its ends, a pixel's distance
            // is its offset from the crossing times the segment's squeeze: no projection and no
            // square root, for most runs of a long line.
            const Segment& near = segments_[firstSegment];
            const bool beside = endSegment - firstSegment == 1 && near.deltaAlong > 1e-6f &&
                                alongSegment(near, firstCentre, centre) &&
                                alongSegment(near, static_cast<float>(last) + 0.5f, centre);
            const float crossing = near.across + (centre - near.along) * near.slope;
            for (int i = first; i <= last; ++i, pixel += step, rampAt += rampStep) {
                const float position = static_cast<float>(i) + 0.5f;
                std::uint32_t level = 0;
                if (beside) {
                    level = levelAt(std::abs(position - crossing) * near.squeeze);
                } else {
                    float nearest = reachSquared;
                    for (std::size_t s = firstSegment; s < endSegment; ++s)
                        nearest =
                            std::min(nearest, distanceSquared(segments_[s], position, centre));
                    if (nearest >= reachSquared) continue;
                    level = nearest <= innerSquared ? 255u : levelAt(std::sqrt(nearest));
                }
                if (level == 0) continue;
                auto* target = reinterpret_cast<QRgb*>(pixel);
                const QRgb source = level == 255 ? ramp.at(rampAt) : scaled(ramp.at(rampAt), level);
                // Layers are mostly clear, and a full-coverage opaque pixel hides what it covers.
                *target = *target == 0 || source >= 0xff000000u ? source : over(source, *target);
            }
        }
    }

  private:
    // Where the run at `centre` crosses the capsule around `s`, widened to be sure.
    std::optional<std::pair<float, float>> runSpan(const Segment& s, float centre) const {
        if (centre > s.along + s.deltaAlong + reach_) return std::nullopt;
        const float clamped = std::clamp(centre, s.along, s.along + s.deltaAlong);
        const float crossing =
            s.deltaAlong > 1e-6f ? s.across + (clamped - s.along) * s.slope : s.across;
        const float left = std::min(s.across, s.across + s.deltaAcross) - reach_;
        const float right = std::max(s.across, s.across + s.deltaAcross) + reach_;
        return std::pair{std::max(left, crossing - s.halfRun),
                         std::min(right, crossing + s.halfRun)};
    }

    // Whether the point (across, along) lies beside segment `s` rather than past one of its ends.
    static bool alongSegment(const Segment& s, float across, float along) {
        const float t = ((across - s.across) * s.deltaAcross + (along - s.along) * s.deltaAlong) *
                        s.inverseLengthSquared;
        return t >= 0.0f && t <= 1.0f;
    }

    static float distanceSquared(const Segment& s, float across, float along) {
        const float a = across - s.across, b = along - s.along;
        const float t =
            std::clamp((a * s.deltaAcross + b * s.deltaAlong) * s.inverseLengthSquared, 0.0f, 1.0f);
        const float ea = a - t * s.deltaAcross, eb = b - t * s.deltaAlong;
        return ea * ea + eb * eb;
    }

    // The share of a pixel that a band `radius_` either side of the centre line covers at
    // `distance`, in 1/255.
    std::uint32_t levelAt(float distance) const {
        const float covered =
            std::min(radius_, distance + 0.5f) - std::max(-radius_, distance - 0.5f);
        return static_cast<std::uint32_t>(std::clamp(covered, 0.0f, 1.0f) * 255.0f + 0.5f);
    }

    bool runsAreRows_;
    float radius_;
    float reach_;
    std::vector<Segment> segments_;
};

// The ramp for `paint`, kept per thread: a frame strokes many lines with the same paint.
const PaintRamp& rampFor(const StrokePaint& paint, const QTransform& toDevice) {
    struct Cached {
        StrokePaint paint;
        QTransform toDevice;
        PaintRamp ramp;
    };
    thread_local std::optional<Cached> cached;
    if (!cached || cached->paint != paint || cached->toDevice != toDevice)
        cached = Cached{paint, toDevice, PaintRamp(paint, toDevice)};
    return cached->ramp;
}

QBrush brushFor(const StrokePaint& paint) {
    if (const auto* colour = std::get_if<QColor>(&paint)) return QBrush(*colour);
    return QBrush(std::get<QLinearGradient>(paint));
}

}  // namespace

void drawRoundStroke(QPainter& painter, const QPolygonF& points, double width,
                     const StrokePaint& paint) {
    if (points.size() < 2 || !(width > 0)) return;
    const double margin = width / 2 + 1;
    if (canRasterise(painter, points.boundingRect().adjusted(-margin, -margin, margin, margin))) {
        const QTransform toDevice = painter.deviceTransform();
        const QPolygonF onDevice = toDevice.map(points);
        const QRectF extent = onDevice.boundingRect();
        const auto radius = static_cast<float>(width * std::abs(toDevice.m11()) / 2);
        for (const bool runsAreRows :
             {extent.height() >= extent.width(), extent.height() < extent.width()}) {
            const MonotoneStroke stroke(onDevice, runsAreRows, radius);
            if (!stroke.runsOneWay()) continue;
            stroke.paint(*static_cast<QImage*>(painter.device()), rampFor(paint, toDevice));
            return;
        }
    }
    painter.save();
    painter.setPen(QPen(brushFor(paint), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(points);
    painter.restore();
}

}  // namespace corvanel::meters
