#pragma once
// The few system symbols the shell shows ("waveform", "arrow.right", "chevron.down",
// "macwindow.on.rectangle"), drawn as strokes so they tint with any colour and stay sharp at
// any pixel ratio.
#include <QColor>
#include <QIcon>
#include <QPixmap>

namespace corvanel {

enum class Symbol { waveform, arrowRight, chevronDown, windowOnRectangle };

// The symbol in a square of `pointSize` points, at the given device pixel ratio.
QPixmap symbolPixmap(Symbol symbol, const QColor& color, qreal pointSize, qreal pixelRatio = 2.0);
QIcon symbolIcon(Symbol symbol, const QColor& color, qreal pointSize);

}  // namespace corvanel
