#include "platform/linux/OutputWithoutRateControl.h"

namespace corvanel {

namespace {

constexpr AudioObjectID outputDevice = 2;

}  // namespace

OutputWithoutRateControl::OutputWithoutRateControl() {
    // A rate of 0 reads as unknown; no rates read as a device that allows no rate changes.
    objects_.addDevice(outputDevice,
                       {.name = deviceName,
                        .uid = "default",
                        .nominalRate = 0,
                        .availableRates = {},
                        .outputStreams = {}},
                       {});
    objects_.defaultOutputDevice = outputDevice;
}

OSStatus OutputWithoutRateControl::getPropertyDataSize(AudioObjectID object,
                                                       const AudioObjectPropertyAddress& address,
                                                       std::uint32_t& outSize) {
    return objects_.propertySize(object, address, outSize);
}

OSStatus OutputWithoutRateControl::getPropertyData(AudioObjectID object,
                                                   const AudioObjectPropertyAddress& address,
                                                   std::uint32_t& ioSize, void* outData) {
    return objects_.readProperty(object, address, ioSize, outData);
}

OSStatus OutputWithoutRateControl::setPropertyData(AudioObjectID, const AudioObjectPropertyAddress&,
                                                   std::uint32_t, const void*) {
    return kAudioHardwareUnsupportedOperationError;
}

OSStatus OutputWithoutRateControl::getPropertyString(AudioObjectID object,
                                                     const AudioObjectPropertyAddress& address,
                                                     std::string& outText) {
    return objects_.readText(object, address, outText);
}

OSStatus OutputWithoutRateControl::addPropertyListener(AudioObjectID object,
                                                       const AudioObjectPropertyAddress&,
                                                       PropertyListener,
                                                       PropertyListenerID& outListener) {
    if (!objects_.contains(object)) return kAudioHardwareBadObjectError;
    outListener = ++lastListener_;
    return kNoErr;
}

OSStatus OutputWithoutRateControl::removePropertyListener(AudioObjectID object,
                                                          const AudioObjectPropertyAddress&,
                                                          PropertyListenerID) {
    return objects_.contains(object) ? kNoErr : kAudioHardwareBadObjectError;
}

}  // namespace corvanel
