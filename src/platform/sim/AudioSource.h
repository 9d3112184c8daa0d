#pragma once
// Where simulated capture gets its sound: a stream of interleaved 32-bit float frames at a
// fixed rate and channel count, rendered on demand block by block.
#include <cstddef>
#include <cstdint>

namespace corvanel {

class AudioSource {
  public:
    virtual ~AudioSource() = default;

    virtual double sampleRate() const = 0;
    virtual std::uint32_t channels() const = 0;
    // Fills `frames` interleaved frames (frames × channels() floats). Never fails: a source
    // that runs out starts again from its beginning.
    virtual void render(float* interleaved, std::size_t frames) = 0;
};

}  // namespace corvanel
