// The ring write the capture callback makes for every block: budget 2 ns per stereo frame and
// no allocation. "allocations" counts operator new calls during the timed writes.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>
#include <vector>

#include "spectrum/SampleRingBuffer.h"

namespace {
std::atomic<std::int64_t> allocationCount{0};
}  // namespace

// Replacing the global allocator pairs malloc with free by design; GCC cannot see that the two
// replacements belong together.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
    allocationCount.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#pragma GCC diagnostic pop

namespace corvanel {
namespace {

std::vector<float> stereoBlock(std::int64_t frames) {
    std::vector<float> block(static_cast<std::size_t>(frames * 2));
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<float>(std::sin(0.01 * static_cast<double>(i)));
    return block;
}

void ringWriteStereo(benchmark::State& state) {
    const std::int64_t frames = state.range(0);
    SampleRingBuffer ring([] { return std::chrono::steady_clock::now(); });
    const std::vector<float> block = stereoBlock(frames);
    const std::int64_t before = allocationCount.load();
    for (auto _ : state) {
        ring.writeInterleaved(block.data(), frames, 2);
        benchmark::ClobberMemory();
    }
    const std::int64_t allocations = allocationCount.load() - before;
    state.SetItemsProcessed(state.iterations() * frames);
    state.counters["ns_per_frame"] =
        benchmark::Counter(static_cast<double>(state.iterations() * frames),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["allocations"] = static_cast<double>(allocations);
}
BENCHMARK(ringWriteStereo)->Arg(512)->Arg(4096);

void ringReadLatest(benchmark::State& state) {
    SampleRingBuffer ring([] { return std::chrono::steady_clock::now(); });
    const std::vector<float> block = stereoBlock(8192);
    ring.writeInterleaved(block.data(), 8192, 2);
    std::vector<float> out(4096);
    for (auto _ : state) {
        benchmark::DoNotOptimize(ring.copyLatest(out));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(ringReadLatest);

}  // namespace
}  // namespace corvanel

BENCHMARK_MAIN();
