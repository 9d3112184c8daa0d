#include "meters/styles/ValhallaComboView.h"

#include "meters/styles/StormAnalyzerView.h"
#include "meters/styles/StormVUMeterView.h"

namespace corvanel::meters {

ValhallaComboView::ValhallaComboView()
    : ComboView(std::make_unique<StormVUMeterView>(QStringLiteral("L")),
                std::make_unique<StormVUMeterView>(QStringLiteral("R")),
                std::make_unique<StormAnalyzerView>(), StormVUMeterView::aspectRatio) {}

}  // namespace corvanel::meters
