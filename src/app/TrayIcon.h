#pragma once
// The status item as a tray draws it: a square slot about 22 points wide, far too small for the
// whole label. It shows what a user wants at a glance, the device rate in digits ("96", "44.1")
// fitted to the square, over a few tiny live bars while the live image is on; the full title
// goes to the tooltip, and beside the icon where the tray shows text labels. The digits take the
// desktop's foreground colour with a thin halo of its background colour, so they read on light and
// dark panels alike.
#include <QColor>
#include <QImage>
#include <QString>
#include <optional>
#include <vector>

namespace corvanel {

inline constexpr int trayIconPoints = 22;

struct TrayIconColours {
    QColor ink;
    QColor halo;

    bool operator==(const TrayIconColours&) const = default;
};

// The rate's digits of a menu-bar title ("44.1 kHz · 24-bit" gives "44.1"); the title itself
// when it names no rate ("–" without a device).
QString trayRateText(const QString& title);

// The icon, `trayIconPoints` square at `pixelRatio` pixels per point.
QImage trayIconImage(const QString& title, const std::optional<std::vector<float>>& levels,
                     const TrayIconColours& colours, qreal pixelRatio);

// An icon drawn at a higher pixel ratio at one pixel per point, averaged down from the sharper
// drawing.
QImage trayIconAtOnePixelPerPoint(const QImage& icon);

}  // namespace corvanel
