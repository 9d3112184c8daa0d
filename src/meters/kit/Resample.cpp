#include "meters/kit/Resample.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace corvanel::meters {

namespace {

// The row loops below take restrict-qualified pointers so that they compile to vector code.

void addCoverage(std::uint16_t* __restrict sums, const std::uint32_t* __restrict row, int count) {
    for (int i = 0; i < count; ++i)
        sums[i] = static_cast<std::uint16_t>(sums[i] + (row[i] >> 24));
}

template <int Factor>
void averageBlocks(const std::uint16_t* __restrict sums, std::uint8_t* __restrict out, int blocks) {
    constexpr unsigned area = Factor * Factor;
    for (int t = 0; t < blocks; ++t) {
        unsigned sum = area / 2;
        for (int k = 0; k < Factor; ++k)
            sum += sums[t * Factor + k];
        out[t] = static_cast<std::uint8_t>(sum / area);
    }
}

template <int Factor>
void shrinkCoverageBy(const QImage& layer, QImage& coverage) {
    const int columns = layer.width();
    const int rows = layer.height();
    const QSize size((columns + Factor - 1) / Factor, (rows + Factor - 1) / Factor);
    if (coverage.size() != size || coverage.format() != QImage::Format_Alpha8)
        coverage = QImage(size, QImage::Format_Alpha8);
    if (coverage.isNull()) return;  // no memory for it: no coverage, rather than a crash
    // Column sums of each band of Factor rows; the tail past the last column stays zero.
    thread_local std::vector<std::uint16_t> sums;
    for (int ty = 0; ty < size.height(); ++ty) {
        sums.assign(static_cast<std::size_t>(size.width() * Factor), 0);
        for (int y = ty * Factor; y < std::min(rows, (ty + 1) * Factor); ++y)
            addCoverage(sums.data(), reinterpret_cast<const std::uint32_t*>(layer.constScanLine(y)),
                        columns);
        averageBlocks<Factor>(sums.data(), coverage.scanLine(ty), size.width());
    }
}

unsigned mean(unsigned a, unsigned b) {
    return (a + b + 1) >> 1;
}

// `out` becomes a mix of `a` and `b` in which `b` weighs Eighths / 8, byte by byte. Made of
// rounded means, which vector units take one instruction for; each rounds up by less than one
// level, and equal inputs come out unchanged.
template <int Eighths>
void leanBytes(const std::uint8_t* __restrict a, const std::uint8_t* __restrict b,
               std::uint8_t* __restrict out, int count) {
    static_assert(Eighths >= 1 && Eighths <= 3);
    for (int i = 0; i < count; ++i) {
        const unsigned half = mean(a[i], b[i]);
        unsigned mixed = 0;
        if constexpr (Eighths == 1)
            mixed = mean(a[i], mean(a[i], half));
        else if constexpr (Eighths == 2)
            mixed = mean(a[i], half);
        else
            mixed = mean(a[i], mean(b[i], half));
        out[i] = static_cast<std::uint8_t>(mixed);
    }
}

void lean(const std::uint32_t* a, const std::uint32_t* b, int eighths, std::uint32_t* out,
          int pixels) {
    const auto* from = reinterpret_cast<const std::uint8_t*>(a);
    const auto* towards = reinterpret_cast<const std::uint8_t*>(b);
    auto* bytes = reinterpret_cast<std::uint8_t*>(out);
    const int count = 4 * pixels;
    if (eighths == 1)
        leanBytes<1>(from, towards, bytes, count);
    else if (eighths == 2)
        leanBytes<2>(from, towards, bytes, count);
    else
        leanBytes<3>(from, towards, bytes, count);
}

// Output pixel `phase` of each run of Factor lies (2 phase + 1 - Factor) / (2 Factor) source
// pixels from its source pixel's centre: a quarter for a factor of 2, one or three eighths for
// a factor of 4.
struct Phase {
    int eighths;
    bool before;  // towards the previous pixel or row
};

template <int Factor>
constexpr std::array<Phase, Factor> phasesOf() {
    std::array<Phase, Factor> phases{};
    for (int p = 0; p < Factor; ++p) {
        const int offset = 2 * p + 1 - Factor;  // in 1 / (2 Factor) of a source pixel
        const int eighths = (offset < 0 ? -offset : offset) * 4 / Factor;
        phases[static_cast<std::size_t>(p)] = {eighths, offset < 0};
    }
    return phases;
}

template <int Factor>
class Enlarger {
  public:
    explicit Enlarger(const QImage& reduced)
        : reduced_(reduced), columns_(reduced.width()), rows_(reduced.height()) {
        const std::size_t wide = static_cast<std::size_t>(columns_) * Factor;
        scratch().padded.resize(static_cast<std::size_t>(columns_) + 2);
        scratch().phase.resize(wide);
        scratch().widened.resize(3 * wide);
    }

    void run(QImage& target) {
        const QSize size(columns_ * Factor, rows_ * Factor);
        if (target.size() != size || target.format() != QImage::Format_ARGB32_Premultiplied)
            target = QImage(size, QImage::Format_ARGB32_Premultiplied);
        if (target.isNull()) return;  // no memory for it: nothing enlarged, rather than a crash
        constexpr auto phases = phasesOf<Factor>();
        const int width = columns_ * Factor;
        for (int y = 0; y < rows_ * Factor; ++y) {
            const int row = y / Factor;
            const Phase phase = phases[static_cast<std::size_t>(y % Factor)];
            const std::uint32_t* neighbour = widened(phase.before ? row - 1 : row + 1);
            lean(widened(row), neighbour, phase.eighths,
                 reinterpret_cast<std::uint32_t*>(target.scanLine(y)), width);
        }
    }

  private:
    struct Scratch {
        std::vector<std::uint32_t> padded;
        std::vector<std::uint32_t> phase;
        std::vector<std::uint32_t> widened;  // three widened rows, by row modulo 3
    };
    static Scratch& scratch() {
        thread_local Scratch kept;
        return kept;
    }

    // Reduced row `row` (held at the edges) stretched across; rows are widened in order, each
    // once, and the last three are kept.
    const std::uint32_t* widened(int row) {
        row = std::clamp(row, 0, rows_ - 1);
        while (widenedUpTo_ < row)
            widen(++widenedUpTo_);
        return rowOf(row);
    }

    std::uint32_t* rowOf(int row) {
        return scratch().widened.data() +
               static_cast<std::size_t>(row % 3) * static_cast<std::size_t>(columns_) * Factor;
    }

    void widen(int row) {
        Scratch& s = scratch();
        const auto* source = reinterpret_cast<const std::uint32_t*>(reduced_.constScanLine(row));
        // The row with its first and last pixels repeated beyond its ends.
        s.padded.front() = source[0];
        std::memcpy(s.padded.data() + 1, source, static_cast<std::size_t>(columns_) * 4);
        s.padded.back() = source[columns_ - 1];
        constexpr auto phases = phasesOf<Factor>();
        std::uint32_t* out = rowOf(row);
        for (int p = 0; p < Factor; ++p) {
            const Phase phase = phases[static_cast<std::size_t>(p)];
            const std::uint32_t* centre = s.padded.data() + 1;
            lean(centre, phase.before ? centre - 1 : centre + 1, phase.eighths,
                 s.phase.data() + static_cast<std::ptrdiff_t>(p) * columns_, columns_);
        }
        for (int x = 0; x < columns_; ++x)
            for (int p = 0; p < Factor; ++p)
                out[x * Factor + p] = s.phase[static_cast<std::size_t>(p * columns_ + x)];
    }

    const QImage& reduced_;
    int columns_;
    int rows_;
    int widenedUpTo_ = -1;
};

template <int Factor>
void enlargeBy(const QImage& reduced, QImage& target) {
    Enlarger<Factor>(reduced).run(target);
}

}  // namespace

void shrinkCoverage(const QImage& layer, int factor, QImage& coverage) {
    if (factor == 4)
        shrinkCoverageBy<4>(layer, coverage);
    else
        shrinkCoverageBy<2>(layer, coverage);
}

void enlarge(const QImage& reduced, int factor, QImage& target) {
    if (reduced.isNull()) {
        target = QImage();
        return;
    }
    if (factor == 4)
        enlargeBy<4>(reduced, target);
    else
        enlargeBy<2>(reduced, target);
}

}  // namespace corvanel::meters
