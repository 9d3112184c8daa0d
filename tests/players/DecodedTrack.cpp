#include "DecodedTrack.h"

#include <sndfile.h>

#include <algorithm>

namespace {

struct SoundFileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

DecodedTrack::Format formatFor(int fileFormat) {
    switch (fileFormat & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_PCM_16:
        case SF_FORMAT_ALAC_16:
            return DecodedTrack::Format::s16;
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_ALAC_20:
        case SF_FORMAT_ALAC_24:
        case SF_FORMAT_ALAC_32:
            return DecodedTrack::Format::s32;
        default:
            return DecodedTrack::Format::f32;
    }
}

}  // namespace

std::uint32_t DecodedTrack::bytesPerFrame() const {
    return channels * (format == Format::s16 ? 2 : 4);
}

const char* DecodedTrack::formatName() const {
    switch (format) {
        case Format::s16:
            return "S16LE";
        case Format::s32:
            return "S32LE";
        case Format::f32:
            return "F32LE";
    }
    return "";
}

std::unique_ptr<DecodedTrack> DecodedTrack::decode(const std::string& path) {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, SoundFileCloser> file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file || info.samplerate <= 0 || info.channels <= 0 || info.frames <= 0) return nullptr;
    auto track = std::make_unique<DecodedTrack>();
    track->format = formatFor(info.format);
    track->rate = static_cast<std::uint32_t>(info.samplerate);
    track->channels = static_cast<std::uint32_t>(info.channels);
    track->fileFrames = info.frames;
    const auto frames = static_cast<sf_count_t>(
        std::min<double>(static_cast<double>(info.frames), maximumSeconds * info.samplerate));
    track->bytes.resize(static_cast<std::size_t>(frames) * track->bytesPerFrame());
    sf_count_t read = 0;
    switch (track->format) {
        case Format::s16:
            read =
                sf_readf_short(file.get(), reinterpret_cast<short*>(track->bytes.data()), frames);
            break;
        case Format::s32:
            read = sf_readf_int(file.get(), reinterpret_cast<int*>(track->bytes.data()), frames);
            break;
        case Format::f32:
            read =
                sf_readf_float(file.get(), reinterpret_cast<float*>(track->bytes.data()), frames);
            break;
    }
    if (read <= 0) return nullptr;
    track->bytes.resize(static_cast<std::size_t>(read) * track->bytesPerFrame());
    return track;
}
