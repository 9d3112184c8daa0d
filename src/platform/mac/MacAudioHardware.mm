// AudioHardware on CoreAudio's audio-object property functions. Listener blocks run on the main
// dispatch queue; each is kept so that removal hands the platform the very same block object.
#import <CoreAudio/CoreAudio.h>
#import <Foundation/Foundation.h>

#include <cstddef>
#include <utility>

#include "platform/AudioHardware.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/HandleTable.h"
#include "platform/mac/MacPlatformPorts.h"

namespace corvanel {
namespace {

// The port mirrors the platform's codes and layouts; these checks keep the mirror honest.
static_assert(corvanel::kAudioObjectSystemObject == ::kAudioObjectSystemObject);
static_assert(corvanel::kAudioObjectUnknown == ::kAudioObjectUnknown);
static_assert(corvanel::kAudioHardwarePropertyDefaultOutputDevice ==
              ::kAudioHardwarePropertyDefaultOutputDevice);
static_assert(corvanel::kAudioDevicePropertyNominalSampleRate ==
              ::kAudioDevicePropertyNominalSampleRate);
static_assert(corvanel::kAudioDevicePropertyAvailableNominalSampleRates ==
              ::kAudioDevicePropertyAvailableNominalSampleRates);
static_assert(corvanel::kAudioObjectPropertyName == ::kAudioObjectPropertyName);
static_assert(corvanel::kAudioDevicePropertyDeviceUID == ::kAudioDevicePropertyDeviceUID);
static_assert(corvanel::kAudioDevicePropertyStreams == ::kAudioDevicePropertyStreams);
static_assert(corvanel::kAudioStreamPropertyAvailablePhysicalFormats ==
              ::kAudioStreamPropertyAvailablePhysicalFormats);
static_assert(corvanel::kAudioStreamPropertyPhysicalFormat == ::kAudioStreamPropertyPhysicalFormat);
static_assert(corvanel::kAudioObjectPropertyScopeGlobal == ::kAudioObjectPropertyScopeGlobal);
static_assert(corvanel::kAudioObjectPropertyScopeOutput == ::kAudioObjectPropertyScopeOutput);
static_assert(corvanel::kAudioObjectPropertyElementMain == ::kAudioObjectPropertyElementMain);
static_assert(corvanel::kAudioFormatLinearPCM == ::kAudioFormatLinearPCM);
static_assert(corvanel::kAudioFormatFlagIsFloat == ::kAudioFormatFlagIsFloat);
static_assert(corvanel::kAudioFormatFlagIsPacked == ::kAudioFormatFlagIsPacked);
static_assert(corvanel::kAudioFormatFlagIsNonInterleaved == ::kAudioFormatFlagIsNonInterleaved);

static_assert(sizeof(corvanel::AudioValueRange) == sizeof(::AudioValueRange));
static_assert(offsetof(corvanel::AudioValueRange, mMaximum) ==
              offsetof(::AudioValueRange, mMaximum));
static_assert(sizeof(corvanel::AudioStreamBasicDescription) ==
              sizeof(::AudioStreamBasicDescription));
static_assert(offsetof(corvanel::AudioStreamBasicDescription, mFormatID) ==
              offsetof(::AudioStreamBasicDescription, mFormatID));
static_assert(offsetof(corvanel::AudioStreamBasicDescription, mChannelsPerFrame) ==
              offsetof(::AudioStreamBasicDescription, mChannelsPerFrame));
static_assert(offsetof(corvanel::AudioStreamBasicDescription, mBitsPerChannel) ==
              offsetof(::AudioStreamBasicDescription, mBitsPerChannel));
static_assert(sizeof(corvanel::AudioStreamRangedDescription) ==
              sizeof(::AudioStreamRangedDescription));
static_assert(offsetof(corvanel::AudioStreamRangedDescription, mSampleRateRange) ==
              offsetof(::AudioStreamRangedDescription, mSampleRateRange));

::AudioObjectPropertyAddress platformAddress(const corvanel::AudioObjectPropertyAddress& address) {
    return {address.mSelector, address.mScope, address.mElement};
}

class MacAudioHardware final : public AudioHardware {
  public:
    OSStatus getPropertyDataSize(AudioObjectID object,
                                 const corvanel::AudioObjectPropertyAddress& address,
                                 std::uint32_t& outSize) override {
        const auto platform = platformAddress(address);
        UInt32 size = 0;
        const OSStatus status =
            AudioObjectGetPropertyDataSize(object, &platform, 0, nullptr, &size);
        outSize = size;
        return status;
    }

    OSStatus getPropertyData(AudioObjectID object,
                             const corvanel::AudioObjectPropertyAddress& address,
                             std::uint32_t& ioSize, void* outData) override {
        const auto platform = platformAddress(address);
        UInt32 size = ioSize;
        const OSStatus status =
            AudioObjectGetPropertyData(object, &platform, 0, nullptr, &size, outData);
        ioSize = size;
        return status;
    }

    OSStatus setPropertyData(AudioObjectID object,
                             const corvanel::AudioObjectPropertyAddress& address,
                             std::uint32_t size, const void* data) override {
        const auto platform = platformAddress(address);
        return AudioObjectSetPropertyData(object, &platform, 0, nullptr, size, data);
    }

    OSStatus getPropertyString(AudioObjectID object,
                               const corvanel::AudioObjectPropertyAddress& address,
                               std::string& outText) override {
        const auto platform = platformAddress(address);
        CFStringRef reference = nullptr;
        UInt32 size = sizeof(reference);
        const OSStatus status =
            AudioObjectGetPropertyData(object, &platform, 0, nullptr, &size, &reference);
        // The caller owns the returned string; ARC releases it with `text`.
        NSString* text = (__bridge_transfer NSString*)reference;
        if (status != noErr) return status;
        // Success without a string would otherwise read as an empty name or UID.
        if (text == nil) return kAudioHardwareUnspecifiedError;
        outText = stdString(text);
        return status;
    }

    OSStatus addPropertyListener(AudioObjectID object,
                                 const corvanel::AudioObjectPropertyAddress& address,
                                 PropertyListener listener,
                                 PropertyListenerID& outListener) override {
        const auto platform = platformAddress(address);
        AudioObjectPropertyListenerBlock block = ^(UInt32, const ::AudioObjectPropertyAddress*) {
          listener();
        };
        const OSStatus status = AudioObjectAddPropertyListenerBlock(
            object, &platform, dispatch_get_main_queue(), block);
        if (status == noErr) outListener = listeners_.insert(block);
        return status;
    }

    OSStatus removePropertyListener(AudioObjectID object,
                                    const corvanel::AudioObjectPropertyAddress& address,
                                    PropertyListenerID listener) override {
        const AudioObjectPropertyListenerBlock* block = listeners_.find(listener);
        if (block == nullptr) return kAudioHardwareIllegalOperationError;
        const auto platform = platformAddress(address);
        const OSStatus status = AudioObjectRemovePropertyListenerBlock(
            object, &platform, dispatch_get_main_queue(), *block);
        // Forgotten also when the removal fails: a device that was unplugged has taken its
        // listeners with it, and nothing could ever remove this one again.
        listeners_.erase(listener);
        return status;
    }

  private:
    HandleTable<AudioObjectPropertyListenerBlock> listeners_;
};

}  // namespace

std::shared_ptr<AudioHardware> makeMacAudioHardware() {
    return std::make_shared<MacAudioHardware>();
}

}  // namespace corvanel
