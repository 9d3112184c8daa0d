#include "meters/styles/VintageComboView.h"

#include "meters/styles/RetroVUMeterView.h"
#include "meters/styles/VintageAnalyzerView.h"

namespace corvanel::meters {

VintageComboView::VintageComboView()
    : ComboView(std::make_unique<RetroVUMeterView>(QStringLiteral("L")),
                std::make_unique<RetroVUMeterView>(QStringLiteral("R")),
                std::make_unique<VintageAnalyzerView>(), std::nullopt) {}

}  // namespace corvanel::meters
