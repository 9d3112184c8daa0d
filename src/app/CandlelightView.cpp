#include "app/CandlelightView.h"

#include <QPainter>
#include <chrono>

#include "meters/candlelight/CandleRoom.h"
#include "meters/candlelight/CandlelightScene.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {

namespace {
// 2001-01-01 00:00:00 UTC in seconds since the Unix epoch.
constexpr double referenceDate = 978'307'200.0;
}  // namespace

double CandlelightView::secondsSince2001() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceEpoch).count() - referenceDate;
}

CandlelightView::CandlelightView(const std::shared_ptr<SwitcherEngine>& engine, QWidget* parent)
    : CandlelightView(engine ? engine->spectrum() : nullptr, &CandlelightView::secondsSince2001,
                      parent) {}

CandlelightView::CandlelightView(std::shared_ptr<SpectrumAnalyzer> analyzer, Clock clock,
                                 QWidget* parent)
    : QWidget(parent), analyzer_(std::move(analyzer)), clock_(std::move(clock)) {
    // The scene covers every pixel, under the title bar too.
    setAttribute(Qt::WA_OpaquePaintEvent);
    frameClock_.setTimerType(Qt::PreciseTimer);
    frameClock_.setInterval(frameInterval);
    connect(&frameClock_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    if (analyzer_) valuesConnection_ = analyzer_->valuesChanged.connect([this] { update(); });
}

CandlelightView::~CandlelightView() {
    leaveScreen();
}

void CandlelightView::paintEvent(QPaintEvent*) {
    const std::vector<float> levels = analyzer_ ? analyzer_->levels() : std::vector<float>();
    const meters::CandlelightScene scene(levels, clock_());
    const QImage& frame = framePainter_.paint(size(), devicePixelRatioF(), [&](QPainter& p) {
        p.fillRect(rect(), Qt::black);
        scene.paint(p, QSizeF(size()), meters::candleRoom(), layers_);
    });
    QPainter(this).drawImage(QPointF(), frame);
}

void CandlelightView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    frameClock_.start();
    if (counted_ || !analyzer_) return;
    counted_ = true;
    analyzer_->meterWindowAppeared();
}

void CandlelightView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    leaveScreen();
}

void CandlelightView::leaveScreen() {
    frameClock_.stop();
    if (!counted_) return;
    counted_ = false;
    analyzer_->meterWindowDisappeared();
}

}  // namespace corvanel
