#pragma once
// One analogue meter of the Yamaha faceplate: a cream dial whose pivot lies below the meter, a
// printed scale with a red zone, a thin black needle swinging 25 degrees either side.
#include <QString>

#include "meters/kit/Needle.h"
#include "meters/kit/StaticLayer.h"
#include "meters/styles/SpringNeedleMeter.h"

namespace corvanel::meters {

class YamahaVUMeterView final : public SpringNeedleMeter {
  public:
    explicit YamahaVUMeterView(QString channel);

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
    Needle needle_;
    StaticLayer dial_;
    StaticLayer glass_;
};

}  // namespace corvanel::meters
