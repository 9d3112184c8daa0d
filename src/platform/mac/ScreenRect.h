#pragma once
// Screen rectangles between AppKit and Qt: AppKit measures from the bottom-left corner of the
// primary screen with y upwards, Qt from its top-left corner with y downwards.

namespace corvanel {

// A rectangle in screen points.
struct ScreenRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const ScreenRect&, const ScreenRect&) = default;
};

constexpr ScreenRect topLeftOrigin(const ScreenRect& bottomLeftRect, double primaryScreenHeight) {
    return {bottomLeftRect.x, primaryScreenHeight - bottomLeftRect.y - bottomLeftRect.height,
            bottomLeftRect.width, bottomLeftRect.height};
}

}  // namespace corvanel
