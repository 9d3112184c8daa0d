#include "platform/linux/mpris/TrackFileHeader.h"

#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include "platform/linux/mpris/MpegAudioHeader.h"

namespace corvanel {
namespace {

struct SoundFileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

// Enough of the start of the audio for the first frames and a Xing or VBRI header, with room
// for junk before them.
constexpr std::size_t mpegProbeBytes = 64 * 1024;

std::string kindOf(int format) {
    const int major = format & SF_FORMAT_TYPEMASK;
    const int subtype = format & SF_FORMAT_SUBMASK;
    switch (major) {
        case SF_FORMAT_WAV:
        case SF_FORMAT_WAVEX:
        case SF_FORMAT_RF64:
        case SF_FORMAT_W64:
            return "WAV audio file";
        case SF_FORMAT_AIFF:
            return "AIFF audio file";
        case SF_FORMAT_FLAC:
            return "FLAC audio file";
        case SF_FORMAT_MPEG:
            return "MPEG audio file";
        case SF_FORMAT_CAF:
            return subtype >= SF_FORMAT_ALAC_16 && subtype <= SF_FORMAT_ALAC_32
                       ? "Apple Lossless audio file"
                       : "CAF audio file";
        case SF_FORMAT_OGG:
            if (subtype == SF_FORMAT_VORBIS) return "Ogg Vorbis audio file";
            if (subtype == SF_FORMAT_OPUS) return "Opus audio file";
            return "Ogg audio file";
        default:
            return "Audio file";
    }
}

std::optional<std::int64_t> depthOf(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
            return 8;
        case SF_FORMAT_PCM_16:
        case SF_FORMAT_ALAC_16:
            return 16;
        case SF_FORMAT_ALAC_20:
            return 20;
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_ALAC_24:
            return 24;
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_FLOAT:
        case SF_FORMAT_ALAC_32:
            return 32;
        case SF_FORMAT_DOUBLE:
            return 64;
        default:
            return std::nullopt;
    }
}

bool isMpeg(int format) {
    const int subtype = format & SF_FORMAT_SUBMASK;
    return (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG || subtype == SF_FORMAT_MPEG_LAYER_I ||
           subtype == SF_FORMAT_MPEG_LAYER_II || subtype == SF_FORMAT_MPEG_LAYER_III;
}

std::optional<std::int64_t> mpegFileBitRate(const std::string& path, std::uint64_t fileSize) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> bytes(10);
    if (!file.read(reinterpret_cast<char*>(bytes.data()), 10)) return std::nullopt;
    const std::uint64_t tagLength = id3v2TagLength(bytes);
    if (tagLength >= fileSize) return std::nullopt;
    file.seekg(static_cast<std::streamoff>(tagLength));
    bytes.assign(mpegProbeBytes, 0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return mpegBitRateKbps(bytes, fileSize - tagLength);
}

// A compressed file's average: its size over its playing time.
std::optional<std::int64_t> averageBitRate(std::uint64_t fileSize, const SF_INFO& info) {
    if (info.frames <= 0) return std::nullopt;
    const double seconds = static_cast<double>(info.frames) / info.samplerate;
    return static_cast<std::int64_t>(
        std::llround(static_cast<double>(fileSize) * 8 / seconds / 1000));
}

}  // namespace

std::optional<TrackFileFormat> readTrackFileHeader(const std::string& path) {
    // Only a regular file: a FIFO or a device behind the URL would block or never end.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    const std::uint64_t fileSize = std::filesystem::file_size(path, error);
    if (error) return std::nullopt;

    SF_INFO info{};
    const std::unique_ptr<SNDFILE, SoundFileCloser> file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file || info.samplerate <= 0 || info.channels <= 0) return std::nullopt;

    TrackFileFormat format;
    format.sampleRate = info.samplerate;
    format.kind = kindOf(info.format);
    format.bitDepth = depthOf(info.format);
    if (!format.bitDepth) {
        if (isMpeg(info.format)) format.bitRateKbps = mpegFileBitRate(path, fileSize);
        if (!format.bitRateKbps) format.bitRateKbps = averageBitRate(fileSize, info);
    }
    return format;
}

}  // namespace corvanel
