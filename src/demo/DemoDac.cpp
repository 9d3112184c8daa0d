#include "demo/DemoDac.h"

namespace corvanel {

std::vector<double> demoDacRates() {
    return {44100, 48000, 88200, 96000, 176400, 192000};
}

SimAudioHardware::DeviceSpec demoDacSpec() {
    SimAudioHardware::StreamSpec stream;
    for (const double rate : demoDacRates())
        for (const std::uint32_t bits : {16u, 24u, 32u})
            stream.availableFormats.push_back(SimAudioHardware::linearPCM(rate, bits));
    stream.physicalFormat = SimAudioHardware::linearPCM(48000, 24).mFormat;

    SimAudioHardware::DeviceSpec device;
    device.name = demoDacName;
    device.uid = "CorvanelDemoDAC:01";
    device.nominalRate = 48000;
    for (const double rate : demoDacRates())
        device.availableRates.push_back({rate, rate});
    device.outputStreams.push_back(std::move(stream));
    return device;
}

AudioObjectID installDemoDac(SimAudioHardware& hardware) {
    const AudioObjectID device = hardware.addDevice(demoDacSpec());
    hardware.setDefaultOutputDevice(device);
    return device;
}

}  // namespace corvanel
