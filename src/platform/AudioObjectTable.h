#pragma once
// The audio objects one hardware layer shows — output devices with their output streams, and the
// system object with the default output device — and the property reads answered from them byte
// for byte as the platform's property interface answers them. The simulated hardware keeps its
// world in one; the PipeWire adapter builds one from each picture of the sound server's graph.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/AudioTypes.h"

namespace corvanel {

struct AudioObjectTable {
    struct StreamSpec {
        std::vector<AudioStreamRangedDescription> availableFormats;  // in the device's order
        // The current format; absent while the device runs none, and then the read fails.
        std::optional<AudioStreamBasicDescription> physicalFormat;
    };
    struct DeviceSpec {
        std::string name;
        std::string uid;
        double nominalRate = 48000;
        std::vector<AudioValueRange> availableRates;  // discrete (min == max) or ranged
        std::vector<StreamSpec> outputStreams;
    };
    struct Device {
        DeviceSpec setup;  // without its streams: they live in `streams`
        std::vector<AudioObjectID> streamIDs;
    };
    struct Stream {
        AudioObjectID device = kAudioObjectUnknown;
        StreamSpec setup;
    };

    AudioObjectID defaultOutputDevice = kAudioObjectUnknown;
    std::map<AudioObjectID, Device> devices;
    std::map<AudioObjectID, Stream> streams;

    // Adds a device under `id` and its output streams under `streamIDs`, one id per stream in
    // the order of setup.outputStreams.
    void addDevice(AudioObjectID id, DeviceSpec setup, const std::vector<AudioObjectID>& streamIDs);
    // Removes a device with its streams (the default device stays as it is).
    void removeDevice(AudioObjectID id);
    // The system object, a device or a stream.
    bool contains(AudioObjectID object) const;

    // getPropertyDataSize: the byte count of the property's value.
    OSStatus propertySize(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          std::uint32_t& outSize) const;
    // getPropertyData: a single value needs room for all of it; an array fills what fits and
    // ioSize says how much was written.
    OSStatus readProperty(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          std::uint32_t& ioSize, void* outData) const;
    // The name or UID of a device as text.
    OSStatus readText(AudioObjectID object, const AudioObjectPropertyAddress& address,
                      std::string& outText) const;

  private:
    // The property's bytes as the platform hands them out, or the error status.
    OSStatus propertyBytes(AudioObjectID object, const AudioObjectPropertyAddress& address,
                           std::vector<unsigned char>& out) const;
};

}  // namespace corvanel
