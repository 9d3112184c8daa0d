#pragma once
// One analogue meter of the Yamaha faceplate: a cream dial whose pivot lies below the meter, a
// printed scale with a red zone, a thin black needle swinging 25 degrees either side.
#include <QString>

#include "meters/ChannelMeter.h"
#include "meters/Needle.h"
#include "meters/Spring.h"
#include "meters/StaticLayer.h"

namespace corvanel::meters {

class YamahaVUMeterView final : public ChannelMeter {
  public:
    explicit YamahaVUMeterView(QString channel);

    void setLevel(float level) override;
    bool step(double dt) override;
    void settle() override;
    void paint(QPainter& painter, const QSizeF& size) override;

    // The needle's pivot and the dial radius for a meter of `size` (the scale is printed on a
    // canvas inset 3 points, with the same numbers in its own coordinates).
    struct Dial {
        QPointF pivot;
        double radius;
    };
    static Dial dialFor(const QSizeF& size);

  private:
    void paintDial(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    Spring needleLevel_{0.3, 0.48};
    Needle needle_;
    StaticLayer dial_;
    StaticLayer glass_;
};

}  // namespace corvanel::meters
