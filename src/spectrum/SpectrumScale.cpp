#include "spectrum/SpectrumScale.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace corvanel {

namespace {

// Each band is this factor above the one before: 20 Hz × 800^(i/39) ends at 16 kHz.
constexpr double bandSpan = 800.0;
constexpr double bandSteps = 39.0;

std::string labelText(double frequency) {
    if (frequency < 1000.0) return std::to_string(static_cast<std::int64_t>(frequency));
    return std::to_string(static_cast<std::int64_t>(frequency / 1000.0)) + "K";
}

}  // namespace

const std::array<double, SpectrumScale::bandCount>& SpectrumScale::bandCenters() {
    static const std::array<double, bandCount> centers = [] {
        std::array<double, bandCount> table{};
        for (std::size_t i = 0; i < bandCount; ++i)
            table[i] = 20.0 * std::pow(bandSpan, static_cast<double>(i) / bandSteps);
        return table;
    }();
    return centers;
}

const std::array<FrequencyLabel, 10>& SpectrumScale::frequencyLabels() {
    static const std::array<FrequencyLabel, 10> labels = [] {
        constexpr std::array<double, 10> axis = {31.5,   63.0,   125.0,  250.0,  500.0,
                                                 1000.0, 2000.0, 4000.0, 8000.0, 16000.0};
        const auto& centers = bandCenters();
        std::array<FrequencyLabel, 10> table;
        for (std::size_t a = 0; a < axis.size(); ++a) {
            std::size_t nearest = 0;
            for (std::size_t i = 1; i < bandCount; ++i) {
                // Strictly nearer only, so a tie keeps the lower band.
                if (std::abs(centers[i] - axis[a]) < std::abs(centers[nearest] - axis[a]))
                    nearest = i;
            }
            table[a] = {static_cast<std::int64_t>(nearest), labelText(axis[a])};
        }
        return table;
    }();
    return labels;
}

BinRange SpectrumScale::binRange(std::size_t band, double sampleRate, std::int64_t fftSize) {
    const double binHz = sampleRate / static_cast<double>(fftSize);
    const double halfStep = std::pow(bandSpan, 0.5 / bandSteps);
    const double center = bandCenters()[band];
    const auto lo = static_cast<std::int64_t>(center / halfStep / binHz);
    const auto hi = static_cast<std::int64_t>(center * halfStep / binHz);
    return {std::max<std::int64_t>(1, lo), std::min<std::int64_t>(fftSize / 2 - 1, hi)};
}

}  // namespace corvanel
