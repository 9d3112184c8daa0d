#pragma once
// One channel of the classic moving-needle VU meter: dark bezel, cream dial with a printed scale
// and red zone, a needle over a quarter circle on a spring, hub, legend and glass.
#include <QString>

#include "meters/kit/Needle.h"
#include "meters/kit/StaticLayer.h"
#include "meters/styles/SpringNeedleMeter.h"

namespace corvanel::meters {

class VUMeterView final : public SpringNeedleMeter {
  public:
    explicit VUMeterView(QString channel);

    void paint(QPainter& painter, const QSizeF& size) override;

    // The dial area's pivot and scale radius for a view of `size` (in the view's coordinates).
    struct Dial {
        QPointF pivot;
        double radius;
    };
    static Dial dialFor(const QSizeF& size);
    // Needle direction in degrees for a level (clamped; not a number counts as 0).
    static double needleDirection(double level);

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    Needle needle_;
    StaticLayer background_{8.0};
    StaticLayer glass_;
};

}  // namespace corvanel::meters
