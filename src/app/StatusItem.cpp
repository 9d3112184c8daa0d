#include "app/StatusItem.h"

#include "meters/styles/SpectrumBarsView.h"

namespace corvanel {

QImage StatusItem::labelImage(const QString& title,
                              const std::optional<std::vector<float>>& levels) const {
    return meters::SpectrumBarsView::menuBarImage(title, levels);
}

}  // namespace corvanel
