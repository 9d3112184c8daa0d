#include "platform/sim/SimAggregateRenderer.h"

#include <utility>

#include "platform/sim/SimProcessTapHost.h"

namespace corvanel {

SimAggregateRenderer::SimAggregateRenderer(
    const std::vector<std::shared_ptr<AudioSource>>& deviceInputs,
    std::shared_ptr<AudioSource> tapSource, const AudioStreamBasicDescription& tapFormat,
    std::uint32_t frames) {
    renderers_.reserve(deviceInputs.size() + 1);
    for (const std::shared_ptr<AudioSource>& input : deviceInputs) {
        // The device's inputs run at the device's rate, which the tap's format carries.
        renderers_.emplace_back(
            input, SimProcessTapHost::floatFormat(tapFormat.mSampleRate, input->channels()),
            frames);
    }
    renderers_.emplace_back(std::move(tapSource), tapFormat, frames);
    for (const SimBlockRenderer& renderer : renderers_) {
        const std::span<const AudioBufferView> own = renderer.buffers();
        buffers_.insert(buffers_.end(), own.begin(), own.end());
    }
}

std::span<const AudioBufferView> SimAggregateRenderer::render() {
    for (SimBlockRenderer& renderer : renderers_)
        renderer.render();
    return buffers_;
}

std::vector<std::uint32_t> SimAggregateRenderer::bufferChannels() const {
    std::vector<std::uint32_t> channels;
    for (const AudioBufferView& buffer : buffers_)
        channels.push_back(buffer.numberChannels);
    return channels;
}

}  // namespace corvanel
