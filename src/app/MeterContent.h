#pragma once
// The panel's live meter: the renderer of the chosen style, fed with the analyzer's values each
// time it publishes them, and a frame clock that steps the renderer's springs at the display's
// rate while the widget is visible and something still moves.
#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "meters/kit/FramePainter.h"
#include "meters/kit/MeterRenderer.h"
#include "meters/kit/MeterValues.h"
#include "platform/Signal.h"

namespace corvanel {

class SpectrumAnalyzer;
class SwitcherEngine;

class MeterContent final : public QWidget {
    Q_OBJECT

  public:
    // Shows the values of the engine's analyzer in `style` (a raw value; unknown shows the
    // spectrum analyzer).
    MeterContent(const std::shared_ptr<SwitcherEngine>& engine, const QString& style,
                 QWidget* parent = nullptr);
    MeterContent(std::shared_ptr<SpectrumAnalyzer> analyzer, const QString& style,
                 QWidget* parent = nullptr);
    ~MeterContent() override;

    const QString& style() const { return style_; }
    void setStyle(const QString& style);

    // New published values: springs retarget and the frame clock runs until they rest.
    void showValues(const meters::MeterValues& values);
    bool isAnimating() const { return frameClock_.isActive(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void readAnalyzer();
    void startClock();
    void frame();

    std::shared_ptr<SpectrumAnalyzer> analyzer_;
    QString style_;
    std::unique_ptr<meters::MeterRenderer> renderer_;
    meters::FramePainter framePainter_;
    meters::MeterValues values_;
    Connection valuesConnection_;
    QTimer frameClock_;
    QElapsedTimer sinceLastFrame_;
};

}  // namespace corvanel
