#pragma once
// The visualizer window's content: the candle-lit room drawn by CandlelightScene from the
// analyzer's band levels, redrawn up to 30 times a second while it is on screen and whenever the
// analyzer publishes. While shown it counts as a visible meter window, so capture runs even if
// no other meter is open.
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

#include "meters/candlelight/CandlelightLayers.h"
#include "meters/kit/FramePainter.h"
#include "platform/Signal.h"

namespace corvanel {

class SpectrumAnalyzer;
class SwitcherEngine;

class CandlelightView final : public QWidget {
    Q_OBJECT

  public:
    // Seconds since 2001-01-01 00:00:00 UTC, the scene's time axis.
    using Clock = std::function<double()>;
    static constexpr int frameInterval = 33;  // milliseconds: at most 30 frames a second

    CandlelightView(const std::shared_ptr<SwitcherEngine>& engine, QWidget* parent = nullptr);
    CandlelightView(std::shared_ptr<SpectrumAnalyzer> analyzer, Clock clock,
                    QWidget* parent = nullptr);
    ~CandlelightView() override;

    static double secondsSince2001();
    bool isAnimating() const { return frameClock_.isActive(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void leaveScreen();

    std::shared_ptr<SpectrumAnalyzer> analyzer_;
    Clock clock_;
    Connection valuesConnection_;
    QTimer frameClock_;
    meters::CandlelightLayers layers_;
    meters::FramePainter framePainter_;
    bool counted_ = false;  // counted as a visible meter window with the analyzer
};

}  // namespace corvanel
