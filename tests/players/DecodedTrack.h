#pragma once
// An audio file decoded into memory in the sample format a player would open its stream with:
// 16-bit files as S16, 24- and 32-bit integer files as S32 (as common players do), anything
// else as F32. Long files are cut at `maximumSeconds`: the test player loops what it holds.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct DecodedTrack {
    enum class Format { s16, s32, f32 };
    static constexpr double maximumSeconds = 30;

    Format format = Format::f32;
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
    std::int64_t fileFrames = 0;  // the whole file's length, even when cut
    std::vector<std::uint8_t> bytes;

    std::uint32_t bytesPerFrame() const;
    std::size_t frames() const { return bytes.size() / bytesPerFrame(); }
    const char* formatName() const;

    // Nothing when libsndfile cannot read the file, or it holds no audio.
    static std::unique_ptr<DecodedTrack> decode(const std::string& path);
};
