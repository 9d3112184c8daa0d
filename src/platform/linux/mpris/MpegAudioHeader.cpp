#include "platform/linux/mpris/MpegAudioHeader.h"

#include <array>
#include <cmath>
#include <string_view>

namespace corvanel {
namespace {

enum class Version { mpeg1, mpeg2, mpeg25 };

struct FrameHeader {
    Version version;
    int layer;  // 1, 2 or 3
    int bitRateKbps;
    int sampleRate;
    bool padded;
    bool mono;

    int samplesPerFrame() const {
        if (layer == 1) return 384;
        if (layer == 3 && version != Version::mpeg1) return 576;
        return 1152;
    }
    // Layer I counts its length in four-byte slots, the others in bytes.
    std::uint64_t length() const {
        const std::uint64_t bitsPerSecond = static_cast<std::uint64_t>(bitRateKbps) * 1000;
        const auto rate = static_cast<std::uint64_t>(sampleRate);
        if (layer == 1) return (12 * bitsPerSecond / rate + (padded ? 1 : 0)) * 4;
        const auto samples = static_cast<std::uint64_t>(samplesPerFrame());
        return samples * bitsPerSecond / 8 / rate + (padded ? 1 : 0);
    }
    // Where a Layer III frame's side information ends and a Xing header would start.
    std::size_t xingOffset() const {
        if (version == Version::mpeg1) return 4 + (mono ? 17 : 32);
        return 4 + (mono ? 9 : 17);
    }
    bool sameKind(const FrameHeader& other) const {
        return version == other.version && layer == other.layer && sampleRate == other.sampleRate;
    }
};

constexpr std::array<std::array<int, 15>, 5> bitRates{{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},  // MPEG-1 Layer I
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},     // MPEG-1 Layer II
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},      // MPEG-1 Layer III
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},     // MPEG-2 Layer I
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},          // MPEG-2 II, III
}};

std::optional<FrameHeader> frameHeaderAt(std::span<const std::uint8_t> bytes, std::size_t at) {
    if (at + 4 > bytes.size()) return std::nullopt;
    const std::uint8_t b1 = bytes[at + 1], b2 = bytes[at + 2], b3 = bytes[at + 3];
    if (bytes[at] != 0xFF || (b1 & 0xE0) != 0xE0) return std::nullopt;
    const int versionBits = (b1 >> 3) & 3;
    const int layerBits = (b1 >> 1) & 3;
    const int bitRateIndex = b2 >> 4;
    const int rateIndex = (b2 >> 2) & 3;
    // Reserved values, and the free-format rate, whose frames have no length to check.
    if (versionBits == 1 || layerBits == 0 || bitRateIndex == 0 || bitRateIndex == 15 ||
        rateIndex == 3)
        return std::nullopt;
    FrameHeader header{};
    header.version = versionBits == 3   ? Version::mpeg1
                     : versionBits == 2 ? Version::mpeg2
                                        : Version::mpeg25;
    header.layer = 4 - layerBits;
    const std::size_t table = header.version == Version::mpeg1 ? header.layer - 1
                              : header.layer == 1              ? 3
                                                               : 4;
    header.bitRateKbps = bitRates[table][bitRateIndex];
    constexpr std::array<int, 3> mpeg1Rates{44100, 48000, 32000};
    const int divisor = header.version == Version::mpeg1   ? 1
                        : header.version == Version::mpeg2 ? 2
                                                           : 4;
    header.sampleRate = mpeg1Rates[rateIndex] / divisor;
    header.padded = ((b2 >> 1) & 1) != 0;
    header.mono = (b3 >> 6) == 3;
    return header;
}

std::optional<std::uint32_t> bigEndian32(std::span<const std::uint8_t> bytes, std::size_t at) {
    if (at + 4 > bytes.size()) return std::nullopt;
    return static_cast<std::uint32_t>(bytes[at]) << 24 |
           static_cast<std::uint32_t>(bytes[at + 1]) << 16 |
           static_cast<std::uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

bool hasTag(std::span<const std::uint8_t> bytes, std::size_t at, std::string_view tag) {
    if (at + tag.size() > bytes.size()) return false;
    for (std::size_t i = 0; i < tag.size(); ++i) {
        if (bytes[at + i] != static_cast<std::uint8_t>(tag[i])) return false;
    }
    return true;
}

std::optional<std::int64_t> averageKbps(std::uint64_t bytes, std::uint64_t frames,
                                        const FrameHeader& header) {
    if (frames == 0 || bytes == 0) return std::nullopt;
    const double seconds = static_cast<double>(frames) * header.samplesPerFrame() /
                           static_cast<double>(header.sampleRate);
    return static_cast<std::int64_t>(std::llround(static_cast<double>(bytes) * 8 / seconds / 1000));
}

// The average a variable-rate file's first frame states, if it carries a Xing or VBRI header.
std::optional<std::int64_t> statedAverage(std::span<const std::uint8_t> frame,
                                          const FrameHeader& header, std::uint64_t audioLength) {
    const std::size_t xing = header.xingOffset();
    if (header.layer == 3 && hasTag(frame, xing, "Xing")) {
        const auto flags = bigEndian32(frame, xing + 4);
        if (!flags || (*flags & 1) == 0) return std::nullopt;
        const auto frames = bigEndian32(frame, xing + 8);
        const auto bytes = (*flags & 2) != 0 ? bigEndian32(frame, xing + 12) : std::nullopt;
        if (!frames) return std::nullopt;
        return averageKbps(bytes ? *bytes : audioLength, *frames, header);
    }
    constexpr std::size_t vbri = 4 + 32;
    if (hasTag(frame, vbri, "VBRI")) {
        const auto bytes = bigEndian32(frame, vbri + 10);
        const auto frames = bigEndian32(frame, vbri + 14);
        if (!bytes || !frames) return std::nullopt;
        return averageKbps(*bytes, *frames, header);
    }
    return std::nullopt;
}

}  // namespace

std::uint64_t id3v2TagLength(std::span<const std::uint8_t> fileStart) {
    if (fileStart.size() < 10 || !hasTag(fileStart, 0, "ID3")) return 0;
    // The size is "synchsafe": four bytes of seven bits each.
    std::uint64_t size = 0;
    for (std::size_t i = 6; i < 10; ++i) {
        if ((fileStart[i] & 0x80) != 0) return 0;
        size = size << 7 | fileStart[i];
    }
    const bool footer = (fileStart[5] & 0x10) != 0;
    return 10 + size + (footer ? 10 : 0);
}

std::optional<std::int64_t> mpegBitRateKbps(std::span<const std::uint8_t> audio,
                                            std::uint64_t audioLength) {
    for (std::size_t at = 0; at + 4 <= audio.size(); ++at) {
        const auto header = frameHeaderAt(audio, at);
        if (!header) continue;
        // Sync bits occur by chance in junk; a real frame is followed by another of its kind.
        const std::uint64_t next = at + header->length();
        if (next + 4 <= audio.size()) {
            const auto following = frameHeaderAt(audio, static_cast<std::size_t>(next));
            if (!following || !following->sameKind(*header)) continue;
        }
        const std::uint64_t remaining = audioLength > at ? audioLength - at : 0;
        if (const auto average = statedAverage(audio.subspan(at), *header, remaining))
            return average;
        return header->bitRateKbps;
    }
    return std::nullopt;
}

}  // namespace corvanel
