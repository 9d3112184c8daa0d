// Throughput of the log recognisers over a realistic mix of a Music process's messages: most say
// nothing about the format, a few are the three recognised shapes, some nearly match.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "switching/LogScanner.h"

namespace {

const std::vector<std::string>& messages() {
    static const std::vector<std::string> mix = [] {
        std::vector<std::string> lines = {
            "[audioCapabilities] asbdSampleRate = 44.1 kHz, sdBitDepth = 16 bit, isLossless = 1",
            "ACAppleLosslessDecoder::Initialize: Input format: 2 ch, 96000 Hz, from 24-bit source",
            "Creating AudioQueue 0x600002a4c000 with sampleRate:48000.0, channels:2",
            // Near misses: the markers appear but the numbers are implausible or malformed.
            "[audioCapabilities] asbdSampleRate = 0.5 kHz, sdBitDepth = 16 bit",
            "ACAppleLosslessDecoder::Initialize: decoder ready",
            "Creating AudioQueue with sampleRate: 44100",
        };
        const char* noise[] = {
            "Setting up playback session for item 8123 with options 0x3",
            "Buffer underrun, retrying \"stream\" segment 3 of 41",
            "MPNowPlayingInfoCenter: updated elapsed time 12.345 for item 8123",
            "AVAudioSession category playback, mode default, options 0x0",
            "HTTP 200 for https segment request (bytes 1048576-2097151)",
            "[ICMusicSubscriptionStatus] status 3, capabilities 0x41, cached",
            "Library sync: 0 items inserted, 2 updated, 0 removed in 0.034 s",
            "Audio route changed: reason 3, new route Speakers (built-in)",
            "Artwork cache hit for 6000x6000 image token 0xab12cd",
            "Playback rate 1.000000, state playing, position 93.52",
            "Queue: 24 items, current index 7, shuffle off, repeat all",
            "FigPlayer: item ready to play, duration 241.506 s, 44100 Hz source",
            "Lyrics request finished in 0.112 s with 42 lines",
            "Network reachability changed: wifi, constrained 0, expensive 0",
        };
        // Roughly one line in eight is of a recognised shape.
        for (int round = 0; round < 3; ++round) {
            for (const char* line : noise)
                lines.emplace_back(line);
        }
        return lines;
    }();
    return mix;
}

void recognisers(benchmark::State& state) {
    const std::vector<std::string>& lines = messages();
    const corvanel::WallTime date{};
    std::size_t found = 0;
    for (auto _ : state) {
        for (const std::string& line : lines) {
            auto detection = corvanel::LogScanner::parse(line, date);
            found += detection.has_value();
            benchmark::DoNotOptimize(detection);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * lines.size()));
    state.counters["recognised"] =
        static_cast<double>(found) / static_cast<double>(state.iterations() * lines.size());
}
BENCHMARK(recognisers);

}  // namespace

BENCHMARK_MAIN();
