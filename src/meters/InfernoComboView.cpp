#include "meters/InfernoComboView.h"

#include "meters/MagmaAnalyzerView.h"
#include "meters/MagmaVUMeterView.h"

namespace corvanel::meters {

InfernoComboView::InfernoComboView()
    : ComboView(std::make_unique<MagmaVUMeterView>(QStringLiteral("L")),
                std::make_unique<MagmaVUMeterView>(QStringLiteral("R")),
                std::make_unique<MagmaAnalyzerView>(), MagmaVUMeterView::aspectRatio) {}

}  // namespace corvanel::meters
