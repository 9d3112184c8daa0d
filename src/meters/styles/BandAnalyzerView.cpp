#include "meters/styles/BandAnalyzerView.h"

namespace corvanel::meters {

void BandAnalyzerView::setValues(const MeterValues& values) {
    levels_ = values.levels;
    peaks_ = values.peaks;
    if (levels_.size() != layoutBands_) {
        layoutBands_ = levels_.size();
        background_.invalidate();
    }
}

}  // namespace corvanel::meters
