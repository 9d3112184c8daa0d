#include "meters/styles/InfernoComboView.h"

#include "meters/styles/MagmaAnalyzerView.h"
#include "meters/styles/MagmaVUMeterView.h"

namespace corvanel::meters {

InfernoComboView::InfernoComboView()
    : ComboView(std::make_unique<MagmaVUMeterView>(QStringLiteral("L")),
                std::make_unique<MagmaVUMeterView>(QStringLiteral("R")),
                std::make_unique<MagmaAnalyzerView>(), MagmaVUMeterView::aspectRatio) {}

}  // namespace corvanel::meters
