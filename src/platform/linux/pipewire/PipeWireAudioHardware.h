#pragma once
// The audio-object property interface over PipeWire: the default sink is the default output
// device, each audio sink a device with one output stream (see SinkDevices.h). Reads answer from
// the newest snapshot of the graph and never wait on the daemon.
//
// A nominal-rate write forces the whole graph to that rate (the "settings" metadata's
// clock.force-rate): PipeWire runs every driver at one rate, and a sink's own rate cannot be set
// by a client. PipeWire chooses a sink's sample format itself, so physical-format writes fail
// with kAudioHardwareUnsupportedOperationError. Listeners for default-device and nominal-rate
// changes run on the main executor.
//
// When it goes, it gives back the clock.force-rate it found before its first write (0: not
// forced), unless another program has forced a rate of its own since; it waits at most about a
// second for the daemon to take it.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/AudioHardware.h"
#include "platform/AudioObjectTable.h"
#include "platform/MainExecutor.h"
#include "platform/PropertyListeners.h"
#include "platform/linux/pipewire/PipeWireGraph.h"
#include "platform/linux/pipewire/SinkDevices.h"

namespace corvanel::pipewire {

class PipeWireAudioHardware final : public AudioHardware,
                                    public std::enable_shared_from_this<PipeWireAudioHardware> {
  public:
    // Follows `graph` (connected, its first snapshot read) from now on.
    static std::shared_ptr<PipeWireAudioHardware> create(std::shared_ptr<PipeWireGraph> graph,
                                                         std::shared_ptr<MainExecutor> executor);
    ~PipeWireAudioHardware() override;
    PipeWireAudioHardware(const PipeWireAudioHardware&) = delete;
    PipeWireAudioHardware& operator=(const PipeWireAudioHardware&) = delete;

    OSStatus getPropertyDataSize(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                 std::uint32_t& outSize) override;
    OSStatus getPropertyData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                             std::uint32_t& ioSize, void* outData) override;
    OSStatus setPropertyData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                             std::uint32_t size, const void* data) override;
    OSStatus getPropertyString(AudioObjectID object, const AudioObjectPropertyAddress& address,
                               std::string& outText) override;
    OSStatus addPropertyListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                 PropertyListener listener,
                                 PropertyListenerID& outListener) override;
    OSStatus removePropertyListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                    PropertyListenerID listener) override;

  private:
    struct Key {};

  public:
    PipeWireAudioHardware(Key, std::shared_ptr<PipeWireGraph> graph,
                          std::shared_ptr<MainExecutor> executor);

  private:
    // What listeners were last told: the default device and each device's nominal rate.
    struct Reported {
        AudioObjectID defaultDevice = kAudioObjectUnknown;
        std::map<AudioObjectID, double> rates;
    };

    // With mutex_ held: the objects of the newest snapshot.
    const AudioObjectTable& objects();
    Reported reported();
    // On the main thread after each new snapshot: tells the listeners what changed.
    void graphChanged();
    OSStatus writeNominalRate(AudioObjectID device, double rate);
    void giveBackForcedRate();

    std::shared_ptr<PipeWireGraph> graph_;
    std::shared_ptr<MainExecutor> executor_;
    std::mutex mutex_;
    SinkObjectIDs ids_;
    std::shared_ptr<const GraphSnapshot> tableSource_;
    AudioObjectTable table_;
    Reported reported_;
    PropertyListeners listeners_;
    // The clock.force-rate found before the first write, and the rate last written.
    std::optional<std::uint32_t> forcedRateBefore_;
    std::uint32_t forcedRateWritten_ = 0;
};

}  // namespace corvanel::pipewire
