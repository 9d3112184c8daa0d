#include "app/MenuBarLabel.h"

#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {

MenuBarLabel::MenuBarLabel(std::shared_ptr<SwitcherEngine> engine, StatusItem& item,
                           std::shared_ptr<MainExecutor> executor, Seconds minimumInterval)
    : engine_(std::move(engine)),
      item_(item),
      throttle_(std::move(executor), minimumInterval,
                [this](const QImage& image) { item_.setLabelImage(image); }) {
    engineChanged_ = engine_->changed.connect([this] { rebuild(); });
    valuesChanged_ = engine_->spectrum()->valuesChanged.connect([this] { rebuild(); });
    stateChanged_ = engine_->spectrum()->stateChanged.connect([this] { rebuild(); });
    item_.onAppearanceChanged = [this] { rebuild(); };
    rebuild();
}

MenuBarLabel::~MenuBarLabel() {
    item_.onAppearanceChanged = nullptr;
}

void MenuBarLabel::rebuild() {
    const SpectrumAnalyzer& spectrum = *engine_->spectrum();
    const QString title = QString::fromStdString(engine_->menuBarTitle());
    if (title != title_) {
        title_ = title;
        item_.setTitle(title);
    }
    std::optional<std::vector<float>> levels;
    if (spectrum.menuBarEnabled()) levels = spectrum.levels();
    image_ = item_.labelImage(title, levels);
    throttle_.offer(image_);
}

}  // namespace corvanel
