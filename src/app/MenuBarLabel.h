#pragma once
// The status item's label: the engine's menu-bar title with the live bars (or the waveform
// symbol while the live image is off), rebuilt whenever the title, the live-image choice or the
// levels change, and handed to the status item through a throttle; the title as text goes to the
// item whenever it changes, not with every image.
#include <QImage>
#include <memory>
#include <optional>

#include "app/LabelThrottle.h"
#include "app/StatusItem.h"
#include "platform/Signal.h"

namespace corvanel {

class SwitcherEngine;

class MenuBarLabel {
  public:
    MenuBarLabel(std::shared_ptr<SwitcherEngine> engine, StatusItem& item,
                 std::shared_ptr<MainExecutor> executor, Seconds minimumInterval);
    ~MenuBarLabel();
    MenuBarLabel(const MenuBarLabel&) = delete;
    MenuBarLabel& operator=(const MenuBarLabel&) = delete;

    // The label as it stands now (what the item shows once the throttle lets it through).
    const QImage& image() const { return image_; }
    std::uint64_t deliveredCount() const { return throttle_.deliveredCount(); }

  private:
    void rebuild();

    std::shared_ptr<SwitcherEngine> engine_;
    StatusItem& item_;
    LabelThrottle throttle_;
    QImage image_;
    std::optional<QString> title_;
    Connection engineChanged_;
    Connection valuesChanged_;
    Connection stateChanged_;
};

}  // namespace corvanel
