#pragma once
// Port: process taps, aggregate devices and IO procedures (CATapDescription,
// AudioHardwareCreateProcessTap, AudioHardwareCreateAggregateDevice, the aggregate device's input
// stream configuration, AudioDeviceCreateIOProcIDWithBlock, AudioDeviceStart/Stop, the matching
// destroys).
//
// Threads: the operations are called one at a time and in order, but from background threads
// (one job after another, not always the same thread), so that a platform that does not answer
// never holds up the main thread; they may block. Nothing else of the host's state is touched
// meanwhile, except through setFailureHandler, which is called before any capture is built.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/AudioTypes.h"
#include "platform/DescriptionValue.h"

namespace corvanel {

struct TapDescription {
    bool stereoMixdown = true;                     // a stereo mix-down of the selected processes
    std::vector<AudioObjectID> excludedProcesses;  // global tap: every process but these
    std::string name;
    bool isPrivate = true;
    int muteBehavior = 0;  // 0: unmuted, the listener keeps hearing the output
};

// One buffer of an input buffer list as the platform hands it to an IO procedure.
struct AudioBufferView {
    std::uint32_t numberChannels = 0;
    std::uint32_t dataByteSize = 0;
    const void* data = nullptr;
};

using IOProcID = std::uint64_t;

class ProcessTapHost {
  public:
    // Runs on the host's serial capture thread for every delivered block; must not allocate,
    // log or block. `buffers` may be empty.
    using IOBlock = std::function<void(const AudioBufferView* buffers, std::uint32_t count)>;
    // Told, on any thread, that a started IO procedure has stopped for good (its device vanished,
    // the sound server went away), with the platform's status.
    using FailureHandler = std::function<void(IOProcID proc, OSStatus status)>;

    virtual ~ProcessTapHost() = default;

    virtual OSStatus createProcessTap(const TapDescription& description, AudioObjectID& outTap) = 0;
    virtual OSStatus destroyProcessTap(AudioObjectID tap) = 0;
    virtual OSStatus readTapFormat(AudioObjectID tap, AudioStreamBasicDescription& outFormat) = 0;
    virtual OSStatus readTapUID(AudioObjectID tap, std::string& outUID) = 0;

    virtual OSStatus createAggregateDevice(const DescriptionDictionary& description,
                                           AudioObjectID& outDevice) = 0;
    virtual OSStatus destroyAggregateDevice(AudioObjectID device) = 0;
    // The input buffers a device's IO procedure receives, in order, as the channel count of each
    // (kAudioDevicePropertyStreamConfiguration, input scope).
    virtual OSStatus readInputStreamConfiguration(
        AudioObjectID device, std::vector<std::uint32_t>& outBufferChannels) = 0;

    virtual OSStatus createIOProcID(AudioObjectID device, IOBlock block, IOProcID& outProc) = 0;
    virtual OSStatus destroyIOProcID(AudioObjectID device, IOProcID proc) = 0;
    virtual OSStatus deviceStart(AudioObjectID device, IOProcID proc) = 0;
    virtual OSStatus deviceStop(AudioObjectID device, IOProcID proc) = 0;
    // Replaces the handler for failures after start. A host that cannot see such failures
    // never calls it.
    virtual void setFailureHandler(FailureHandler handler) { (void)handler; }

    // What createProcessTap returns when there is no output to tap (CoreAudio's '!dev',
    // kAudioHardwareBadDeviceError).
    static constexpr OSStatus noOutputDeviceStatus = static_cast<OSStatus>(fourCC("!dev"));

    // What the user is told to check after a failed capture step: on macOS, the system-audio
    // recording permission.
    virtual std::string failureAdvice() const {
        return "Check System Settings ▸ Privacy & Security ▸ Screen & System Audio Recording.";
    }
};

}  // namespace corvanel
