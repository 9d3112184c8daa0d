#pragma once
// One channel of the Vintage console: a back-lit amber VU meter with a black face, a printed
// scale whose red zone starts at 0 VU (position 0.72), a percentage scale inside it, a long
// black needle swinging 42 degrees either side of upright on a spring, and a hub with its plate.
#include <QPointF>
#include <QString>

#include "meters/kit/Needle.h"
#include "meters/kit/StaticLayer.h"
#include "meters/styles/SpringNeedleMeter.h"

namespace corvanel::meters {

class RetroVUMeterView final : public SpringNeedleMeter {
  public:
    explicit RetroVUMeterView(QString channel);

    void paint(QPainter& painter, const QSizeF& size) override;

    struct Dial {
        QPointF pivot;  // in the view's coordinates
        double radius;  // the scale radius R
    };
    static Dial dialFor(const QSizeF& size);
    // The direction of scale position p, in degrees: 42 degrees either side of straight up.
    static double direction(double position) { return 84 * position - 132; }

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
    void paintFront(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    Needle needle_;
    StaticLayer background_{8.0};
    StaticLayer front_;
};

}  // namespace corvanel::meters
