// ProcessTapHost on CoreAudio's process taps (macOS 14.2), private aggregate devices and block IO
// procedures. The IO block runs on one serial queue and only forwards the buffer list.
// CoreAudio's calls are safe on any thread and the host keeps no state but that queue, so the
// background threads that build and remove capture call it directly. Such a thread has no
// autorelease pool of its own, so the calls here that make Foundation objects bring one.
#import <CoreAudio/AudioHardwareTapping.h>
#import <CoreAudio/CATapDescription.h>
#import <CoreAudio/CoreAudio.h>
#import <Foundation/Foundation.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "platform/ProcessTapHost.h"
#include "platform/mac/AggregateDeviceKeys.h"
#include "platform/mac/DescriptionTranslation.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/MacPlatformPorts.h"
#include "platform/mac/NativeConversions.h"

namespace corvanel {
namespace {

static_assert(corvanel::kAudioTapPropertyFormat == ::kAudioTapPropertyFormat);
static_assert(corvanel::kAudioTapPropertyUID == ::kAudioTapPropertyUID);

static_assert(aggregateKeys::name == kAudioAggregateDeviceNameKey);
static_assert(aggregateKeys::uid == kAudioAggregateDeviceUIDKey);
static_assert(aggregateKeys::isPrivate == kAudioAggregateDeviceIsPrivateKey);
static_assert(aggregateKeys::isStacked == kAudioAggregateDeviceIsStackedKey);
static_assert(aggregateKeys::tapAutoStart == kAudioAggregateDeviceTapAutoStartKey);
static_assert(aggregateKeys::mainSubDevice == kAudioAggregateDeviceMainSubDeviceKey);
static_assert(aggregateKeys::subDeviceList == kAudioAggregateDeviceSubDeviceListKey);
static_assert(aggregateKeys::tapList == kAudioAggregateDeviceTapListKey);
static_assert(aggregateKeys::subDeviceUID == kAudioSubDeviceUIDKey);
static_assert(aggregateKeys::subTapUID == kAudioSubTapUIDKey);
static_assert(aggregateKeys::subTapDriftCompensation == kAudioSubTapDriftCompensationKey);

// The aggregate's input list: the output device's own inputs (an interface may have one buffer
// per channel), then the tap's one interleaved buffer or one per channel. The block sees at most
// this many.
constexpr std::size_t viewedBufferCount = 256;

// Property-list objects for the platform's aggregate-device description.
struct PropertyListBuilder {
    using Object = id;
    Object boolean(bool value) { return @(value); }
    Object integer(std::int64_t value) { return @(static_cast<long long>(value)); }
    Object text(const std::string& value) { return nsString(value); }
    Object list(std::vector<Object> items) {
        NSMutableArray* result = [NSMutableArray arrayWithCapacity:items.size()];
        for (Object item : items)
            [result addObject:item];
        return result;
    }
    Object dictionary(std::vector<std::pair<std::string, Object>> entries) {
        NSMutableDictionary* result = [NSMutableDictionary dictionaryWithCapacity:entries.size()];
        for (const auto& [key, entry] : entries)
            result[nsString(key)] = entry;
        return result;
    }
};

AudioDeviceIOProcID platformProc(IOProcID proc) {
    return reinterpret_cast<AudioDeviceIOProcID>(static_cast<std::uintptr_t>(proc));
}

class MacProcessTapHost final : public ProcessTapHost {
  public:
    explicit MacProcessTapHost(std::shared_ptr<AudioHardware> audio) : audio_(std::move(audio)) {}

    OSStatus createProcessTap(const TapDescription& description, AudioObjectID& outTap) override {
        if (@available(macOS 14.2, *)) {
            @autoreleasepool {
                NSMutableArray<NSNumber*>* excluded =
                    [NSMutableArray arrayWithCapacity:description.excludedProcesses.size()];
                for (const AudioObjectID process : description.excludedProcesses)
                    [excluded addObject:@(process)];
                CATapDescription* tap =
                    description.stereoMixdown
                        ? [[CATapDescription alloc] initStereoGlobalTapButExcludeProcesses:excluded]
                        : [[CATapDescription alloc] initMonoGlobalTapButExcludeProcesses:excluded];
                tap.name = nsString(description.name);
                tap.privateTap = description.isPrivate;
                tap.muteBehavior = static_cast<CATapMuteBehavior>(description.muteBehavior);
                ::AudioObjectID tapID = ::kAudioObjectUnknown;
                const OSStatus status = AudioHardwareCreateProcessTap(tap, &tapID);
                outTap = tapID;
                return status;
            }
        }
        return kAudioHardwareUnsupportedOperationError;
    }

    OSStatus destroyProcessTap(AudioObjectID tap) override {
        if (@available(macOS 14.2, *)) return AudioHardwareDestroyProcessTap(tap);
        return kAudioHardwareUnsupportedOperationError;
    }

    OSStatus readTapFormat(AudioObjectID tap, AudioStreamBasicDescription& outFormat) override {
        std::uint32_t size = sizeof(outFormat);
        return audio_->getPropertyData(tap, {corvanel::kAudioTapPropertyFormat}, size, &outFormat);
    }

    OSStatus readTapUID(AudioObjectID tap, std::string& outUID) override {
        return audio_->getPropertyString(tap, {corvanel::kAudioTapPropertyUID}, outUID);
    }

    OSStatus createAggregateDevice(const DescriptionDictionary& description,
                                   AudioObjectID& outDevice) override {
        @autoreleasepool {
            PropertyListBuilder builder;
            NSDictionary* composition =
                translateDescription(DescriptionValue{description}, builder);
            ::AudioObjectID device = ::kAudioObjectUnknown;
            const OSStatus status =
                AudioHardwareCreateAggregateDevice((__bridge CFDictionaryRef)composition, &device);
            outDevice = device;
            return status;
        }
    }

    OSStatus destroyAggregateDevice(AudioObjectID device) override {
        return AudioHardwareDestroyAggregateDevice(device);
    }

    OSStatus readInputStreamConfiguration(AudioObjectID device,
                                          std::vector<std::uint32_t>& outBufferChannels) override {
        const ::AudioObjectPropertyAddress address{::kAudioDevicePropertyStreamConfiguration,
                                                   ::kAudioObjectPropertyScopeInput,
                                                   ::kAudioObjectPropertyElementMain};
        UInt32 size = 0;
        OSStatus status = AudioObjectGetPropertyDataSize(device, &address, 0, nullptr, &size);
        if (status != noErr) return status;
        // A variable-length AudioBufferList, in storage aligned for its buffers.
        std::vector<::AudioBuffer> storage(size / sizeof(::AudioBuffer) + 1);
        auto* list = reinterpret_cast<::AudioBufferList*>(storage.data());
        status = AudioObjectGetPropertyData(device, &address, 0, nullptr, &size, list);
        if (status != noErr) return status;
        outBufferChannels.clear();
        if (size < offsetof(::AudioBufferList, mBuffers)) return status;  // no inputs at all
        const std::size_t held =
            (size - offsetof(::AudioBufferList, mBuffers)) / sizeof(::AudioBuffer);
        for (std::size_t i = 0; i < std::min<std::size_t>(list->mNumberBuffers, held); ++i)
            outBufferChannels.push_back(list->mBuffers[i].mNumberChannels);
        return status;
    }

    OSStatus createIOProcID(AudioObjectID device, IOBlock deliver, IOProcID& outProc) override {
        AudioDeviceIOProcID proc = nullptr;
        const OSStatus status = AudioDeviceCreateIOProcIDWithBlock(
            &proc, device, ioQueue_,
            ^(const AudioTimeStamp*, const AudioBufferList* input, const AudioTimeStamp*,
              AudioBufferList*, const AudioTimeStamp*) {
              std::array<AudioBufferView, viewedBufferCount> views;
              const std::uint32_t count =
                  input != nullptr ? viewBuffers(input->mBuffers, input->mNumberBuffers, views) : 0;
              deliver(views.data(), count);
            });
        outProc = reinterpret_cast<std::uintptr_t>(proc);
        return status;
    }

    OSStatus destroyIOProcID(AudioObjectID device, IOProcID proc) override {
        return AudioDeviceDestroyIOProcID(device, platformProc(proc));
    }

    OSStatus deviceStart(AudioObjectID device, IOProcID proc) override {
        return AudioDeviceStart(device, platformProc(proc));
    }

    OSStatus deviceStop(AudioObjectID device, IOProcID proc) override {
        return AudioDeviceStop(device, platformProc(proc));
    }

  private:
    std::shared_ptr<AudioHardware> audio_;
    // Created once with the host, as the capture's serial queue.
    dispatch_queue_t ioQueue_ = dispatch_queue_create(
        "Corvanel.SpectrumIO", dispatch_queue_attr_make_with_qos_class(
                                   DISPATCH_QUEUE_SERIAL, QOS_CLASS_USER_INITIATED, 0));
};

}  // namespace

std::shared_ptr<ProcessTapHost> makeMacProcessTapHost(std::shared_ptr<AudioHardware> audio) {
    return std::make_shared<MacProcessTapHost>(std::move(audio));
}

}  // namespace corvanel
