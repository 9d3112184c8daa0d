#pragma once
// The label's stand-in when the live image is off: a small waveform of rounded vertical strokes,
// symmetric about its middle line, drawn at the height of the 13-point title.
#include <QColor>
#include <QPainter>
#include <QPointF>

namespace corvanel::meters::WaveformSymbol {

inline constexpr double width = 17.0;
inline constexpr double height = 14.0;

// Draws the symbol with its box's top-left at `origin`.
void paint(QPainter& painter, QPointF origin, const QColor& colour);

}  // namespace corvanel::meters::WaveformSymbol
