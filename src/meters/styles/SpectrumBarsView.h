#pragma once
// The menu bar's miniature spectrum (one thin bar per value, bottom-aligned in a 16-point frame)
// and the whole menu-bar label rendered as a template image: only its alpha counts, the status
// bar supplies the colour for light and dark appearance.
#include <QImage>
#include <QPainter>
#include <QString>
#include <optional>
#include <vector>

namespace corvanel::meters {

class SpectrumBarsView {
  public:
    static constexpr double barWidth = 1.5;
    static constexpr double barSpacing = 1.0;
    static constexpr double fullHeight = 14.0;
    static constexpr double stubHeight = 2.0;
    static constexpr double frameHeight = 16.0;
    static constexpr double transitionSeconds = 0.06;
    static constexpr double labelScale = 2.0;

    explicit SpectrumBarsView(std::vector<float> levels = {});

    // New levels slide linearly from what is shown over 0.06 s.
    void setLevels(std::vector<float> levels);
    bool step(double dt);
    void settle();

    double width() const;
    // Draws the row with the frame's top-left at `origin`.
    void paint(QPainter& painter, QPointF origin, const QColor& colour) const;

    // The label: `title` then, 5 points apart, the bars of `levels` reduced pairwise, or the
    // waveform symbol when `levels` is absent. Rendered at two pixels per point; an empty image
    // if nothing could be rendered.
    static QImage menuBarImage(const QString& title,
                               const std::optional<std::vector<float>>& levels);

  private:
    std::vector<float> from_;
    std::vector<float> to_;
    double progress_ = 1.0;
};

}  // namespace corvanel::meters
