#include "meters/FuturisticComboView.h"

#include "meters/HoloAnalyzerView.h"
#include "meters/HoloVUMeterView.h"

namespace corvanel::meters {

FuturisticComboView::FuturisticComboView()
    : ComboView(std::make_unique<HoloVUMeterView>(QStringLiteral("L")),
                std::make_unique<HoloVUMeterView>(QStringLiteral("R")),
                std::make_unique<HoloAnalyzerView>(), HoloVUMeterView::aspectRatio) {}

}  // namespace corvanel::meters
