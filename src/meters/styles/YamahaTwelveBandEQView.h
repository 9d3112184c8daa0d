#pragma once
// The Yamaha faceplate's 12-band display: the analyzer's bands folded into twelve fixed
// octave-like columns of 18 segments each, with the unlit ladder faintly visible.
#include <array>
#include <vector>

#include "meters/kit/StaticLayer.h"

class QPainter;
class QSizeF;

namespace corvanel::meters {

class YamahaTwelveBandEQView {
  public:
    static constexpr int columnCount = 12;
    static constexpr int segmentCount = 18;

    void setLevels(std::vector<float> levels) { levels_ = std::move(levels); }
    // Each column is the loudest of the analyzer band nearest its centre (on a log scale) and
    // that band's two neighbours.
    std::array<float, columnCount> bandLevels() const;

    void paint(QPainter& painter, const QSizeF& size);

  private:
    std::vector<float> levels_;
    StaticLayer background_;
    StaticLayer lit_;
    StaticLayer caption_;
};

}  // namespace corvanel::meters
