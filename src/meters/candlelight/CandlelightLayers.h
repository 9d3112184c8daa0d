#pragma once
// What the visualizer keeps between frames: the parts of a frame that depend only on the canvas
// size, the pixel scale and the room picture (the picture scaled to cover, the shape of the room
// glow, the vignette), and the buffer the additive light is gathered in. Keeping them makes a
// frame cost only what moves; the frame itself stays a function of its levels and time.
#include <QImage>

#include "meters/kit/StaticLayer.h"

namespace corvanel::meters {

struct CandlelightLayers {
    StaticLayer room;
    StaticLayer roomGlow;
    StaticLayer vignette;
    qint64 roomKey = 0;  // the picture the room layer was made from
    // All additive light of a frame at a quarter of the canvas resolution: glows are soft, so
    // this loses nothing visible and saves most of the cost of the many large gradient discs.
    QImage light;
};

}  // namespace corvanel::meters
