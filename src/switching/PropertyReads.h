#pragma once
// Reads of audio-object properties as the platform requires them: ask the size, allocate whole
// zero-filled elements, read telling the buffer's byte count.
#include <algorithm>
#include <optional>
#include <vector>

#include "platform/AudioHardware.h"

namespace corvanel {

// An array property; absent on a non-zero status at either step, a size of 0, or a size too
// small for one whole element. A driver may deliver fewer bytes than it announced: the list
// holds only the whole elements delivered (and is absent when there are none).
template <typename Element>
std::optional<std::vector<Element>> readPropertyArray(AudioHardware& hardware, AudioObjectID object,
                                                      const AudioObjectPropertyAddress& address) {
    std::uint32_t size = 0;
    if (hardware.getPropertyDataSize(object, address, size) != kNoErr) return std::nullopt;
    const std::size_t count = size / sizeof(Element);
    if (count == 0) return std::nullopt;
    std::vector<Element> elements(count);
    auto byteCount = static_cast<std::uint32_t>(count * sizeof(Element));
    if (hardware.getPropertyData(object, address, byteCount, elements.data()) != kNoErr)
        return std::nullopt;
    const std::size_t delivered = std::min<std::size_t>(byteCount / sizeof(Element), count);
    if (delivered == 0) return std::nullopt;
    elements.resize(delivered);
    return elements;
}

// A fixed-size property read into a zero-filled value; absent on a non-zero status.
template <typename Value>
std::optional<Value> readPropertyValue(AudioHardware& hardware, AudioObjectID object,
                                       const AudioObjectPropertyAddress& address) {
    Value value{};
    auto size = static_cast<std::uint32_t>(sizeof(Value));
    if (hardware.getPropertyData(object, address, size, &value) != kNoErr) return std::nullopt;
    return value;
}

inline AudioObjectPropertyAddress globalAddress(std::uint32_t selector) {
    return {selector, kAudioObjectPropertyScopeGlobal, kAudioObjectPropertyElementMain};
}

}  // namespace corvanel
