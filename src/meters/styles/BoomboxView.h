#pragma once
// The "Boombox" style: a portable stereo's graphic equaliser of chunky rounded blocks on a dark
// purple panel. Bands are merged in pairs; each column stacks up to 16 lit blocks, green, yellow,
// orange and red from the bottom. Only lit blocks are drawn.
#include <vector>

#include "meters/kit/MeterRenderer.h"
#include "meters/kit/StaticLayer.h"

namespace corvanel::meters {

class BoomboxView final : public MeterRenderer {
  public:
    static constexpr int blockCount = 16;
    static constexpr double blockGap = 3.0;
    static constexpr double columnGap = 5.0;
    static constexpr double canvasInset = 12.0;

    void setValues(const MeterValues& values) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    std::vector<float> columns_;
    std::size_t layoutColumns_ = 0;
    StaticLayer panel_{8.0};
    StaticLayer blocks_;
};

}  // namespace corvanel::meters
