// The room's shell: a warm plaster wall and a polished plank floor seen in perspective, computed
// pixel by pixel so that the texture holds up when the picture is scaled up.
#include <algorithm>
#include <cmath>

#include "meters/candlelight/CandleRoomPainting.h"
#include "meters/candlelight/SmoothNoise.h"
#include "meters/kit/Noise.h"

namespace corvanel::meters::room {

namespace {

struct Rgb {
    double r, g, b;
};

Rgb mix(Rgb a, Rgb b, double t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

Rgb scaled(Rgb c, double k) {
    return {c.r * k, c.g * k, c.b * k};
}

QRgb pack(Rgb c) {
    const auto channel = [](double v) {
        return static_cast<int>(std::clamp(v, 0.0, 1.0) * 255.0 + 0.5);
    };
    return qRgb(channel(c.r), channel(c.g), channel(c.b));
}

Rgb wallAt(double y, double px, double py) {
    const Rgb top{0.070, 0.040, 0.032};
    const Rgb low{0.165, 0.095, 0.058};
    Rgb colour = mix(top, low, std::pow(y / floorLine, 0.8));
    const double plaster = fractalNoise(px / 70.0, py / 70.0, 4, 11);
    const double streaks = smoothNoise(px / 18.0, py / 260.0, 17);
    const double grain = noise(static_cast<std::int64_t>(px), static_cast<std::int64_t>(py));
    colour = scaled(colour, 1.0 + 0.16 * plaster + 0.05 * streaks + 0.035 * grain);
    return colour;
}

Rgb floorAt(double x, double y, double aspect, double pixel) {
    // Eye level sits at the height of the window's middle; the boards run away from the viewer.
    constexpr double horizon = 0.30;
    constexpr double boardWidth = 0.11;
    const double below = y - horizon;
    const double depth = 0.3 / below;
    const double across = (x - 0.5) * aspect * 0.3 / below;

    const double boardPosition = across / boardWidth;
    const double board = std::floor(boardPosition);
    const double inBoard = boardPosition - board;
    const auto boardKey = static_cast<std::int64_t>(board);
    const double seam = depth * 0.8 + (noise(boardKey, 3) + 1.0) * 0.5;
    const double inLength = seam - std::floor(seam);
    const auto plankKey = boardKey * 131 + static_cast<std::int64_t>(std::floor(seam));

    const double grain = fractalNoise(across * 140.0, depth * 3.0 + board * 7.0, 3, 23);
    const double figure = smoothNoise(across * 35.0, depth * 1.2, 29);
    const double tint = 0.82 + 0.18 * noise(plankKey, 4);
    Rgb colour{0.30, 0.145, 0.065};
    colour = scaled(colour, tint * (0.78 + 0.16 * grain + 0.1 * figure));

    // Dark joints between boards and at board ends, softened by the joint's width on screen.
    const double boardsPerPixel = pixel * aspect * 0.3 / below / boardWidth;
    const double jointWidth = std::clamp(1.3 * boardsPerPixel, 0.004, 0.2);
    const double edge = std::min(inBoard, 1.0 - inBoard);
    const double endEdge = std::min(inLength, 1.0 - inLength) * 12.0;
    const double joint = std::min(edge, endEdge);
    colour = scaled(colour, 0.35 + 0.65 * std::clamp(joint / jointWidth, 0.0, 1.0));

    // The boards near the wall lie in the shadow of the furniture and the skirting.
    const double nearWall = std::clamp((y - floorLine) / 0.08, 0.0, 1.0);
    colour = scaled(colour, 0.55 + 0.45 * nearWall);

    // Polish: a cool sheen of the window's light runs down the floor beneath it.
    const double underWindow = std::exp(-std::pow((x - 0.496) / 0.045, 2.0));
    const double fade = std::exp(-(y - floorLine) / 0.22);
    const double sheen = underWindow * fade * (0.55 + 0.45 * grain);
    colour.r += 0.05 * sheen;
    colour.g += 0.075 * sheen;
    colour.b += 0.13 * sheen;
    return colour;
}

}  // namespace

void paintShell(QImage& image) {
    const double width = image.width();
    const double height = image.height();
    const double aspect = width / height;
    // The noise is laid out in pixels of a 1000-point-high picture, so texture scale does not
    // depend on the resolution the room is painted at.
    const double toReference = 1000.0 / height;
    for (int row = 0; row < image.height(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        const double y = (row + 0.5) / height;
        const double py = row * toReference;
        for (int column = 0; column < image.width(); ++column) {
            const double x = (column + 0.5) / width;
            const double px = column * toReference;
            line[column] =
                pack(y < floorLine ? wallAt(y, px, py) : floorAt(x, y, aspect, 1.0 / width));
        }
    }
}

}  // namespace corvanel::meters::room
