#pragma once
// The "Yamaha Classic" style: the front of a hi-fi component, two needle meters side by side
// above a 12-band display on a dark bevelled faceplate with a small printed legend.
#include <array>

#include "meters/kit/MeterRenderer.h"
#include "meters/kit/StaticLayer.h"
#include "meters/styles/ChannelPairView.h"
#include "meters/styles/YamahaTwelveBandEQView.h"

namespace corvanel::meters {

class YamahaClassicComboView final : public MeterRenderer {
  public:
    YamahaClassicComboView();

    void setValues(const MeterValues& values) override;
    bool step(double dt) override;
    void settle() override;
    void paint(QPainter& painter, const QSizeF& size) override;

    // Where the faceplate puts its parts, in its own coordinates.
    struct Layout {
        QRectF meters;
        QRectF rule;
        QRectF spectrum;
    };
    static Layout layoutFor(const QSizeF& size);

    // What the legend's placement needs of a font, in points.
    struct LineMetrics {
        double ascent;
        double descent;
        double capHeight;
    };
    // Baselines of the legend's two lines, from the metrics of the fonts they are set in.
    static std::array<double, 2> legendBaselines(const LineMetrics& first,
                                                 const LineMetrics& second);

  private:
    ChannelPairView meters_;
    YamahaTwelveBandEQView spectrum_;
    StaticLayer plate_{8.0};
    StaticLayer legend_;
};

}  // namespace corvanel::meters
