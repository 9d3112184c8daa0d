#pragma once
// Short audio files written by the tests with libsndfile: a quiet tone in the format asked for.
#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

namespace corvanel::testing {

// Writes `seconds` of a 440 Hz tone; `compression` (0 best ... 1 smallest) is set when given,
// and MPEG files are written at a constant bit rate. Whether the file was written.
inline bool writeToneFile(const std::filesystem::path& path, int format, int rate,
                          double seconds = 1.0, int channels = 2, double compression = -1) {
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) return false;
    if ((format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG) {
        int mode = SF_BITRATE_MODE_CONSTANT;
        sf_command(file, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
    }
    if (compression >= 0)
        sf_command(file, SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
    const auto frames = static_cast<sf_count_t>(seconds * rate);
    std::vector<float> samples(static_cast<std::size_t>(frames * channels));
    for (sf_count_t frame = 0; frame < frames; ++frame) {
        const float value = 0.25f * static_cast<float>(std::sin(2 * M_PI * 440 * frame / rate));
        for (int channel = 0; channel < channels; ++channel)
            samples[static_cast<std::size_t>(frame * channels + channel)] = value;
    }
    const bool written = sf_writef_float(file, samples.data(), frames) == frames;
    return sf_close(file) == 0 && written;
}

// The compression level at which libsndfile's LAME writes 256 kbps at a constant rate (the
// level runs from 320 down to 32 kbps, snapping to MPEG-1 Layer III's rates); the tests check
// the written frame header, so a LAME that maps it otherwise shows.
inline constexpr double mp3At256kbps = 0.25;

}  // namespace corvanel::testing
