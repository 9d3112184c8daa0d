#include "platform/sim/SimBlockRenderer.h"

#include <algorithm>
#include <utility>

namespace corvanel {

SimBlockRenderer::SimBlockRenderer(std::shared_ptr<AudioSource> source,
                                   const AudioStreamBasicDescription& format, std::uint32_t frames)
    : source_(std::move(source)),
      frames_(frames),
      formatChannels_(format.mChannelsPerFrame),
      bufferChannels_(std::max<std::uint32_t>(1, format.mChannelsPerFrame)),
      interleaved_((format.mFormatFlags & kAudioFormatFlagIsNonInterleaved) == 0),
      sourceBlock_(static_cast<std::size_t>(frames) * source_->channels()),
      samples_(static_cast<std::size_t>(frames) * bufferChannels_) {
    const auto bytesPerChannel = static_cast<std::uint32_t>(frames * sizeof(float));
    if (interleaved_) {
        buffers_.push_back({formatChannels_, bytesPerChannel * bufferChannels_, samples_.data()});
    } else {
        for (std::uint32_t channel = 0; channel < bufferChannels_; ++channel)
            buffers_.push_back(
                {1, bytesPerChannel, samples_.data() + static_cast<std::size_t>(channel) * frames});
    }
}

float SimBlockRenderer::sourceSample(std::size_t frame, std::uint32_t channel) const {
    const std::uint32_t sourceChannels = source_->channels();
    return sourceBlock_[frame * sourceChannels + std::min(channel, sourceChannels - 1)];
}

std::span<const AudioBufferView> SimBlockRenderer::render() {
    source_->render(sourceBlock_.data(), frames_);
    for (std::size_t frame = 0; frame < frames_; ++frame) {
        for (std::uint32_t channel = 0; channel < bufferChannels_; ++channel) {
            const std::size_t index = interleaved_ ? frame * bufferChannels_ + channel
                                                   : channel * std::size_t{frames_} + frame;
            samples_[index] = sourceSample(frame, channel);
        }
    }
    return buffers_;
}

}  // namespace corvanel
