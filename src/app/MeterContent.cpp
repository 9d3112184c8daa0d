#include "app/MeterContent.h"

#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "app/MeterRendererFactory.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {

namespace {
// A long stall (a dragged window, a sleeping machine) is not replayed as one giant step.
constexpr double longestStep = 0.1;
constexpr double fallbackRefreshRate = 60.0;
}  // namespace

MeterContent::MeterContent(const std::shared_ptr<SwitcherEngine>& engine, const QString& style,
                           QWidget* parent)
    : MeterContent(engine ? engine->spectrum() : nullptr, style, parent) {}

MeterContent::MeterContent(std::shared_ptr<SpectrumAnalyzer> analyzer, const QString& style,
                           QWidget* parent)
    : QWidget(parent),
      analyzer_(std::move(analyzer)),
      style_(style),
      renderer_(makeMeterRenderer(style.toStdString())) {
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    frameClock_.setTimerType(Qt::PreciseTimer);
    connect(&frameClock_, &QTimer::timeout, this, &MeterContent::frame);
    if (analyzer_) {
        valuesConnection_ = analyzer_->valuesChanged.connect([this] { readAnalyzer(); });
        readAnalyzer();
    }
    renderer_->settle();
}

MeterContent::~MeterContent() = default;

void MeterContent::setStyle(const QString& style) {
    if (style == style_) return;
    style_ = style;
    renderer_ = makeMeterRenderer(style.toStdString());
    renderer_->setValues(values_);
    renderer_->settle();
    update();
}

void MeterContent::readAnalyzer() {
    showValues(
        {analyzer_->levels(), analyzer_->peaks(), analyzer_->leftLevel(), analyzer_->rightLevel()});
}

void MeterContent::showValues(const meters::MeterValues& values) {
    values_ = values;
    renderer_->setValues(values_);
    startClock();
    update();
}

void MeterContent::startClock() {
    if (!isVisible() || frameClock_.isActive()) return;
    const QScreen* display = screen();
    const double rate =
        display && display->refreshRate() > 1.0 ? display->refreshRate() : fallbackRefreshRate;
    frameClock_.start(static_cast<int>(std::lround(1000.0 / rate)));
    sinceLastFrame_.start();
}

void MeterContent::frame() {
    const double dt =
        std::min(static_cast<double>(sinceLastFrame_.restart()) / 1000.0, longestStep);
    if (!renderer_->step(dt)) frameClock_.stop();
    update();
}

void MeterContent::paintEvent(QPaintEvent*) {
    const QImage& frame = framePainter_.paint(
        size(), devicePixelRatioF(), [this](QPainter& p) { renderer_->paint(p, QSizeF(size())); });
    QPainter(this).drawImage(QPointF(), frame);
}

void MeterContent::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    startClock();
}

void MeterContent::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    // Hidden meters do not animate; they show the values at rest when they come back.
    frameClock_.stop();
    renderer_->settle();
}

}  // namespace corvanel
