#include "meters/styles/FuturisticComboView.h"

#include "meters/styles/HoloAnalyzerView.h"
#include "meters/styles/HoloVUMeterView.h"

namespace corvanel::meters {

FuturisticComboView::FuturisticComboView()
    : ComboView(std::make_unique<HoloVUMeterView>(QStringLiteral("L")),
                std::make_unique<HoloVUMeterView>(QStringLiteral("R")),
                std::make_unique<HoloAnalyzerView>(), HoloVUMeterView::aspectRatio) {}

}  // namespace corvanel::meters
