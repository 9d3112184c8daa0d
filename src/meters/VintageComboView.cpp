#include "meters/VintageComboView.h"

#include "meters/RetroVUMeterView.h"
#include "meters/VintageAnalyzerView.h"

namespace corvanel::meters {

VintageComboView::VintageComboView()
    : ComboView(std::make_unique<RetroVUMeterView>(QStringLiteral("L")),
                std::make_unique<RetroVUMeterView>(QStringLiteral("R")),
                std::make_unique<VintageAnalyzerView>(), std::nullopt) {}

}  // namespace corvanel::meters
