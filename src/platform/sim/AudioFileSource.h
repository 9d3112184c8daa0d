#pragma once
// An audio file (anything libsndfile reads: WAV, FLAC, ...) as a looping source of float
// frames at the file's own rate and channel count.
#include <memory>
#include <string>
#include <variant>

#include "platform/sim/AudioSource.h"

struct sf_private_tag;

namespace corvanel {

class AudioFileSource final : public AudioSource {
  public:
    // The opened file, or a message naming the file and saying why it cannot be played.
    static std::variant<std::unique_ptr<AudioFileSource>, std::string> open(
        const std::string& path);

    double sampleRate() const override { return sampleRate_; }
    std::uint32_t channels() const override { return channels_; }
    std::int64_t frameCount() const { return frameCount_; }
    void render(float* interleaved, std::size_t frames) override;

    struct Closer {
        void operator()(sf_private_tag* file) const;
    };
    AudioFileSource(std::unique_ptr<sf_private_tag, Closer> file, double sampleRate,
                    std::uint32_t channels, std::int64_t frameCount);

  private:
    std::unique_ptr<sf_private_tag, Closer> file_;
    double sampleRate_;
    std::uint32_t channels_;
    std::int64_t frameCount_;
};

}  // namespace corvanel
