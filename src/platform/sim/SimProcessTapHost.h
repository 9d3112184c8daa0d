#pragma once
// A ProcessTapHost in memory. Taps, aggregate devices and IO procedures are plain records;
// a started IO procedure receives 32-bit float blocks rendered from an AudioSource (after the
// output device's own inputs, when it has some, as on a Mac), on the host's own serial thread
// paced in real time, or — with manual pacing — one block per `deliverBlock()` call on the
// caller's thread, for deterministic tests. Any operation can be told to fail with a chosen
// status, and every call is recorded.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/AudioHardware.h"
#include "platform/ProcessTapHost.h"
#include "platform/sim/AudioSource.h"
#include "platform/sim/SimAggregateRenderer.h"

namespace corvanel {

enum class SimTapOperation {
    createProcessTap,
    destroyProcessTap,
    readTapFormat,
    readTapUID,
    createAggregateDevice,
    destroyAggregateDevice,
    readInputStreamConfiguration,
    createIOProcID,
    destroyIOProcID,
    deviceStart,
    deviceStop,
};

struct SimTapCall {
    SimTapOperation operation;
    std::uint64_t object;  // the tap, device or IO procedure the call created or addressed
    OSStatus status;

    friend bool operator==(const SimTapCall&, const SimTapCall&) = default;
};

class SimProcessTapHost final : public ProcessTapHost {
  public:
    enum class Pacing { realTime, manual };

    // A 32-bit float linear-PCM format; interleaved unless said otherwise.
    static AudioStreamBasicDescription floatFormat(double sampleRate, std::uint32_t channels,
                                                   bool interleaved = true);

    explicit SimProcessTapHost(std::shared_ptr<AudioSource> source,
                               Pacing pacing = Pacing::realTime);
    ~SimProcessTapHost() override;
    SimProcessTapHost(const SimProcessTapHost&) = delete;
    SimProcessTapHost& operator=(const SimProcessTapHost&) = delete;

    // The format taps report and blocks are delivered in; the source's rate and stereo by
    // default. Takes effect for IO procedures started afterwards.
    void setFormat(const AudioStreamBasicDescription& format);
    // The output device's own input streams (a microphone, a line input): one interleaved stream
    // per source, at its channel count, which every aggregate lists before the tap's buffers.
    // Takes effect for IO procedures started afterwards.
    void setDeviceInputs(std::vector<std::shared_ptr<AudioSource>> inputs);
    // Taps then run at the nominal rate of `audio`'s default output device, as a tap of the
    // output mix does, read whenever a tap's format is asked for or an IO procedure starts.
    void followDeviceRate(std::shared_ptr<AudioHardware> audio);
    void setBlockFrames(std::uint32_t frames);
    // The next calls of `operation` fail with `status` (kNoErr to succeed again).
    void failOperation(SimTapOperation operation, OSStatus status);

    std::vector<SimTapCall> calls() const;
    void clearCalls();
    std::optional<TapDescription> lastTapDescription() const;
    std::optional<DescriptionDictionary> lastAggregateDescription() const;
    // Taps, aggregate devices and IO procedures that exist now.
    std::size_t liveObjectCount() const;
    bool isDelivering() const;

    // Manual pacing: renders one block and hands it to every started IO procedure on this
    // thread. False when none is started.
    bool deliverBlock();
    // Hands the given buffers as they are to every started IO procedure (odd sizes, holes).
    bool deliverBuffers(const AudioBufferView* buffers, std::uint32_t count);
    // Every started IO procedure stops for good, as when the device or the sound server goes
    // away, and the failure handler hears of each with `status`, on the caller's thread.
    void loseCapture(OSStatus status);

    OSStatus createProcessTap(const TapDescription& description, AudioObjectID& outTap) override;
    OSStatus destroyProcessTap(AudioObjectID tap) override;
    OSStatus readTapFormat(AudioObjectID tap, AudioStreamBasicDescription& outFormat) override;
    OSStatus readTapUID(AudioObjectID tap, std::string& outUID) override;
    OSStatus createAggregateDevice(const DescriptionDictionary& description,
                                   AudioObjectID& outDevice) override;
    OSStatus destroyAggregateDevice(AudioObjectID device) override;
    OSStatus readInputStreamConfiguration(AudioObjectID device,
                                          std::vector<std::uint32_t>& outBufferChannels) override;
    OSStatus createIOProcID(AudioObjectID device, IOBlock block, IOProcID& outProc) override;
    OSStatus destroyIOProcID(AudioObjectID device, IOProcID proc) override;
    OSStatus deviceStart(AudioObjectID device, IOProcID proc) override;
    OSStatus deviceStop(AudioObjectID device, IOProcID proc) override;
    void setFailureHandler(FailureHandler handler) override;

  private:
    class RealTimeDelivery;
    struct IOProc {
        AudioObjectID device;
        IOBlock block;
        bool started = false;
        std::unique_ptr<RealTimeDelivery> delivery;  // real-time pacing only; resetting joins
    };
    OSStatus record(SimTapOperation operation, std::uint64_t object, OSStatus status);
    OSStatus injected(SimTapOperation operation) const;
    void stopLocked(IOProc& proc);
    AudioStreamBasicDescription currentFormatLocked() const;
    SimAggregateRenderer rendererLocked(std::uint32_t frames) const;

    mutable std::mutex mutex_;
    std::shared_ptr<AudioSource> source_;
    Pacing pacing_;
    AudioStreamBasicDescription format_;
    std::vector<std::shared_ptr<AudioSource>> deviceInputs_;
    std::shared_ptr<AudioHardware> rateDevices_;
    std::uint32_t blockFrames_ = 512;
    std::map<SimTapOperation, OSStatus> failures_;
    FailureHandler failureHandler_;
    std::vector<SimTapCall> calls_;
    std::optional<TapDescription> lastTap_;
    std::optional<DescriptionDictionary> lastAggregate_;
    std::map<AudioObjectID, std::string> taps_;  // id → UID
    std::map<AudioObjectID, DescriptionDictionary> aggregates_;
    std::map<IOProcID, IOProc> procs_;
    AudioObjectID nextObject_ = 100;
    IOProcID nextProc_ = 1;
};

}  // namespace corvanel
