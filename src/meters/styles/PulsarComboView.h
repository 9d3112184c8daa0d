#pragma once
// The "pulsar" panel style: a radial spectrum. Every band is a coloured spoke growing outward
// from a glowing core (band 0 straight up, the rest clockwise), with a white peak dot per band,
// three faint guide rings and four frequency labels around the rim; around the core a cyan
// half-ring on the left and a pink one on the right swell and brighten with the channel levels.
// The core and the half-rings move on springs.
#include <QPointF>
#include <vector>

#include "meters/kit/MeterRenderer.h"
#include "meters/kit/Spring.h"
#include "meters/kit/StaticLayer.h"

namespace corvanel::meters {

class PulsarComboView final : public MeterRenderer {
  public:
    struct Geometry {
        QPointF centre;
        double outer;       // R: the outermost guide ring
        double core;        // c: the core's radius
        double innerSpoke;  // r0: where the spokes start
        double span;        // s: how far a full-scale spoke reaches beyond r0
    };
    static Geometry geometryFor(const QSizeF& size);
    // The direction of band i of n, in degrees: band 0 points up, the rest follow clockwise.
    static double spokeAngle(std::size_t band, std::size_t count);

    void setValues(const MeterValues& values) override;
    bool step(double dt) override;
    void settle() override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
    void paintSpokes(QPainter& painter, const Geometry& g) const;
    void paintHalfRing(QPainter& painter, const Geometry& g, double level, double fromDegrees,
                       const QColor& colour) const;

    std::vector<float> levels_;
    std::vector<float> peaks_;
    Spring coreLevel_{0.25, 0.6};
    Spring leftLevel_{0.28, 0.55};
    Spring rightLevel_{0.28, 0.55};
    StaticLayer background_{6.0};
};

}  // namespace corvanel::meters
