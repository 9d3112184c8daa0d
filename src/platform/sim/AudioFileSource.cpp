#include "platform/sim/AudioFileSource.h"

#include <sndfile.h>

#include <algorithm>

#include "platform/sim/InputFile.h"

namespace corvanel {

void AudioFileSource::Closer::operator()(sf_private_tag* file) const {
    sf_close(file);
}

std::variant<std::unique_ptr<AudioFileSource>, std::string> AudioFileSource::open(
    const std::string& path) {
    if (const auto reason = unsuitableInputReason(path))
        return "Cannot read the audio file \"" + path + "\": " + *reason + ".";
    SF_INFO info{};
    std::unique_ptr<sf_private_tag, Closer> file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file) {
        std::string reason = sf_strerror(nullptr);
        while (!reason.empty() && (reason.back() == '.' || reason.back() == ' '))
            reason.pop_back();
        return "Cannot read the audio file \"" + path + "\": " + reason + ".";
    }
    if (info.frames < 1 || info.channels < 1 || info.samplerate < 1)
        return "Cannot read the audio file \"" + path + "\": it holds no audio.";
    return std::make_unique<AudioFileSource>(
        std::move(file), info.samplerate, static_cast<std::uint32_t>(info.channels), info.frames);
}

AudioFileSource::AudioFileSource(std::unique_ptr<sf_private_tag, Closer> file, double sampleRate,
                                 std::uint32_t channels, std::int64_t frameCount)
    : file_(std::move(file)),
      sampleRate_(sampleRate),
      channels_(channels),
      frameCount_(frameCount) {}

void AudioFileSource::render(float* interleaved, std::size_t frames) {
    std::size_t done = 0;
    bool justRewound = false;
    while (done < frames) {
        const sf_count_t read = sf_readf_float(file_.get(), interleaved + done * channels_,
                                               static_cast<sf_count_t>(frames - done));
        if (read > 0) {
            done += static_cast<std::size_t>(read);
            justRewound = false;
            continue;
        }
        // End of the file: loop from the start. A file that yields nothing even after a rewind
        // (damaged part-way) plays on as silence rather than stalling the capture thread.
        if (justRewound || sf_seek(file_.get(), 0, SEEK_SET) < 0) {
            std::fill(interleaved + done * channels_, interleaved + frames * channels_, 0.0f);
            return;
        }
        justRewound = true;
    }
}

}  // namespace corvanel
