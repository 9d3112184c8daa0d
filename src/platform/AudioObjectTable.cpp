#include "platform/AudioObjectTable.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace corvanel {
namespace {

template <typename Value>
std::vector<unsigned char> bytesOf(const Value& value) {
    std::vector<unsigned char> bytes(sizeof(Value));
    std::memcpy(bytes.data(), &value, sizeof(Value));
    return bytes;
}

template <typename Element>
std::vector<unsigned char> bytesOf(const std::vector<Element>& elements) {
    std::vector<unsigned char> bytes(elements.size() * sizeof(Element));
    if (!bytes.empty()) std::memcpy(bytes.data(), elements.data(), bytes.size());
    return bytes;
}

bool isArrayProperty(std::uint32_t selector) {
    return selector == kAudioDevicePropertyAvailableNominalSampleRates ||
           selector == kAudioDevicePropertyStreams ||
           selector == kAudioStreamPropertyAvailablePhysicalFormats;
}

}  // namespace

void AudioObjectTable::addDevice(AudioObjectID id, DeviceSpec setup,
                                 const std::vector<AudioObjectID>& streamIDs) {
    Device device;
    for (std::size_t index = 0; index < setup.outputStreams.size() && index < streamIDs.size();
         ++index) {
        device.streamIDs.push_back(streamIDs[index]);
        streams[streamIDs[index]] = Stream{id, std::move(setup.outputStreams[index])};
    }
    setup.outputStreams.clear();
    device.setup = std::move(setup);
    devices[id] = std::move(device);
}

void AudioObjectTable::removeDevice(AudioObjectID id) {
    const auto found = devices.find(id);
    if (found == devices.end()) return;
    for (const AudioObjectID stream : found->second.streamIDs)
        streams.erase(stream);
    devices.erase(found);
}

bool AudioObjectTable::contains(AudioObjectID object) const {
    return object == kAudioObjectSystemObject || devices.contains(object) ||
           streams.contains(object);
}

OSStatus AudioObjectTable::propertyBytes(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         std::vector<unsigned char>& out) const {
    const std::uint32_t selector = address.mSelector;
    if (object == kAudioObjectSystemObject) {
        if (selector != kAudioHardwarePropertyDefaultOutputDevice)
            return kAudioHardwareUnknownPropertyError;
        out = bytesOf(defaultOutputDevice);
        return kNoErr;
    }
    if (const auto device = devices.find(object); device != devices.end()) {
        const DeviceSpec& setup = device->second.setup;
        if (selector == kAudioDevicePropertyNominalSampleRate) {
            out = bytesOf(setup.nominalRate);
        } else if (selector == kAudioDevicePropertyAvailableNominalSampleRates) {
            out = bytesOf(setup.availableRates);
        } else if (selector == kAudioDevicePropertyStreams) {
            // Only output streams are kept; other scopes have none.
            out = address.mScope == kAudioObjectPropertyScopeOutput
                      ? bytesOf(device->second.streamIDs)
                      : std::vector<unsigned char>{};
        } else if (selector == kAudioObjectPropertyName ||
                   selector == kAudioDevicePropertyDeviceUID) {
            out = bytesOf(std::uintptr_t{0});  // a string reference; read it with readText
        } else {
            return kAudioHardwareUnknownPropertyError;
        }
        return kNoErr;
    }
    if (const auto stream = streams.find(object); stream != streams.end()) {
        const StreamSpec& setup = stream->second.setup;
        if (selector == kAudioStreamPropertyAvailablePhysicalFormats) {
            out = bytesOf(setup.availableFormats);
        } else if (selector == kAudioStreamPropertyPhysicalFormat) {
            if (!setup.physicalFormat) return kAudioHardwareNotRunningError;
            out = bytesOf(*setup.physicalFormat);
        } else {
            return kAudioHardwareUnknownPropertyError;
        }
        return kNoErr;
    }
    return kAudioHardwareBadObjectError;
}

OSStatus AudioObjectTable::propertySize(AudioObjectID object,
                                        const AudioObjectPropertyAddress& address,
                                        std::uint32_t& outSize) const {
    std::vector<unsigned char> bytes;
    if (const OSStatus status = propertyBytes(object, address, bytes); status != kNoErr)
        return status;
    outSize = static_cast<std::uint32_t>(bytes.size());
    return kNoErr;
}

OSStatus AudioObjectTable::readProperty(AudioObjectID object,
                                        const AudioObjectPropertyAddress& address,
                                        std::uint32_t& ioSize, void* outData) const {
    std::vector<unsigned char> bytes;
    if (const OSStatus status = propertyBytes(object, address, bytes); status != kNoErr)
        return status;
    if (!isArrayProperty(address.mSelector)) {
        if (ioSize < bytes.size()) return kAudioHardwareBadPropertySizeError;
        ioSize = static_cast<std::uint32_t>(bytes.size());
    } else {
        ioSize = std::min(ioSize, static_cast<std::uint32_t>(bytes.size()));
    }
    if (ioSize > 0) std::memcpy(outData, bytes.data(), ioSize);
    return kNoErr;
}

OSStatus AudioObjectTable::readText(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                    std::string& outText) const {
    const auto device = devices.find(object);
    if (device == devices.end()) return kAudioHardwareBadObjectError;
    if (address.mSelector == kAudioObjectPropertyName) {
        outText = device->second.setup.name;
    } else if (address.mSelector == kAudioDevicePropertyDeviceUID) {
        outText = device->second.setup.uid;
    } else {
        return kAudioHardwareUnknownPropertyError;
    }
    return kNoErr;
}

}  // namespace corvanel
