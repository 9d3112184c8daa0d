#pragma once
// The frequency axis every renderer labels: 40 band centres from 20 Hz to 16 kHz, a quarter
// octave apart, the FFT bins each band gathers, and the ten labelled axis positions.
#include <array>
#include <cstdint>
#include <string>

namespace corvanel {

struct FrequencyLabel {
    std::int64_t index = 0;  // the band whose centre is nearest the labelled frequency
    std::string text;

    friend bool operator==(const FrequencyLabel&, const FrequencyLabel&) = default;
};

// The inclusive bin span [lo, hi] of one band; empty when lo > hi.
struct BinRange {
    std::int64_t lo = 0;
    std::int64_t hi = 0;

    bool empty() const { return lo > hi; }
    friend bool operator==(const BinRange&, const BinRange&) = default;
};

struct SpectrumScale {
    static constexpr std::size_t bandCount = 40;

    static const std::array<double, bandCount>& bandCenters();
    static const std::array<FrequencyLabel, 10>& frequencyLabels();
    // Bins of a `fftSize`-point transform at `sampleRate` that band `band` sums: half a band
    // step either side of its centre, never the DC bin nor any bin above fftSize / 2 - 1.
    static BinRange binRange(std::size_t band, double sampleRate, std::int64_t fftSize);
};

}  // namespace corvanel
