#pragma once
// One channel of the cassette-deck needle meter: an amber back-lit face with a wide, shallow scale
// whose pivot lies below the visible face, a thin black needle swinging 24 degrees either side.
#include <QString>

#include "meters/kit/Needle.h"
#include "meters/kit/StaticLayer.h"
#include "meters/styles/SpringNeedleMeter.h"

namespace corvanel::meters {

class TapeDeckMeterView final : public SpringNeedleMeter {
  public:
    explicit TapeDeckMeterView(QString channel);

    void paint(QPainter& painter, const QSizeF& size) override;

    struct Dial {
        QPointF pivot;  // in the view's coordinates
        double radius;
    };
    static Dial dialFor(const QSizeF& size);
    static double needleDirection(double level);

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    Needle needle_;
    StaticLayer background_{8.0};
    StaticLayer glass_;
};

}  // namespace corvanel::meters
