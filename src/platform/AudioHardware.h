#pragma once
// Port: the audio-object property interface (AudioObjectGetPropertyDataSize, ...GetPropertyData,
// ...SetPropertyData, ...AddPropertyListenerBlock, ...RemovePropertyListenerBlock). Everything
// above it (sized reads, range expansion, format choice) is portable code. The reads are safe
// from any thread, as CoreAudio's are: capture is built on a background thread.
#include <cstdint>
#include <functional>
#include <string>

#include "platform/AudioTypes.h"

namespace corvanel {

// Identifies one registered listener so it can be removed again, as the platform requires the
// same block object for removal.
using PropertyListenerID = std::uint64_t;

class AudioHardware {
  public:
    // Called on the main thread, like a block registered on the main dispatch queue.
    using PropertyListener = std::function<void()>;

    virtual ~AudioHardware() = default;

    virtual OSStatus getPropertyDataSize(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         std::uint32_t& outSize) = 0;
    // ioSize: the buffer's byte count in, the bytes written out.
    virtual OSStatus getPropertyData(AudioObjectID object,
                                     const AudioObjectPropertyAddress& address,
                                     std::uint32_t& ioSize, void* outData) = 0;
    virtual OSStatus setPropertyData(AudioObjectID object,
                                     const AudioObjectPropertyAddress& address, std::uint32_t size,
                                     const void* data) = 0;
    // String-reference properties (name, UID): the adapter converts and releases the
    // platform string; the status is the read's.
    virtual OSStatus getPropertyString(AudioObjectID object,
                                       const AudioObjectPropertyAddress& address,
                                       std::string& outText) = 0;

    virtual OSStatus addPropertyListener(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         PropertyListener listener,
                                         PropertyListenerID& outListener) = 0;
    virtual OSStatus removePropertyListener(AudioObjectID object,
                                            const AudioObjectPropertyAddress& address,
                                            PropertyListenerID listener) = 0;
};

}  // namespace corvanel
