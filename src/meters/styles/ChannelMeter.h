#pragma once
// One channel's meter (needle or LED bar): shown in pairs, left and right channel.
#include <QPainter>
#include <QSizeF>

namespace corvanel::meters {

class ChannelMeter {
  public:
    virtual ~ChannelMeter() = default;
    virtual void setLevel(float level) = 0;
    // Advances the needle's spring; true while it still moves.
    virtual bool step(double dt) {
        (void)dt;
        return false;
    }
    virtual void settle() {}
    virtual void paint(QPainter& painter, const QSizeF& size) = 0;

  protected:
    ChannelMeter() = default;
    ChannelMeter(const ChannelMeter&) = default;
    ChannelMeter& operator=(const ChannelMeter&) = default;
};

}  // namespace corvanel::meters
