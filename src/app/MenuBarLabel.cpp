#include "app/MenuBarLabel.h"

#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {

MenuBarLabel::MenuBarLabel(std::shared_ptr<SwitcherEngine> engine, StatusItem& item,
                           std::shared_ptr<MainExecutor> executor, Seconds minimumInterval)
    : engine_(std::move(engine)),
      item_(item),
      throttle_(std::move(executor), minimumInterval, [this](const QImage& image) {
          item_.setLabelImage(image);
          if (onDelivered) onDelivered(title_);
      }) {
    engineChanged_ = engine_->changed.connect([this] { rebuild(); });
    valuesChanged_ = engine_->spectrum()->valuesChanged.connect([this] { rebuild(); });
    stateChanged_ = engine_->spectrum()->stateChanged.connect([this] { rebuild(); });
    rebuild();
}

void MenuBarLabel::rebuild() {
    const SpectrumAnalyzer& spectrum = *engine_->spectrum();
    title_ = QString::fromStdString(engine_->menuBarTitle());
    std::optional<std::vector<float>> levels;
    if (spectrum.menuBarEnabled()) levels = spectrum.levels();
    image_ = item_.labelImage(title_, levels);
    throttle_.offer(image_);
}

}  // namespace corvanel
