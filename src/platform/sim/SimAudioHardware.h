#pragma once
// A simulated audio hardware layer: output devices with names, UIDs, nominal rates, rate ranges
// and output streams with physical formats, a default output device on the system object, and
// property listeners delivered on the main executor. Tests and demo mode use it in place of the
// platform's audio-object property interface.
//
// Beyond what a program could do through the port, it lets a test play the rest of the world:
// plug and unplug devices, pick another default device, change a rate "from another program",
// make any call fail with a chosen status, and read back every write in order.
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/AudioHardware.h"
#include "platform/AudioObjectTable.h"
#include "platform/MainExecutor.h"
#include "platform/PropertyListeners.h"

namespace corvanel {

class SimAudioHardware final : public AudioHardware {
  public:
    using StreamSpec = AudioObjectTable::StreamSpec;
    using DeviceSpec = AudioObjectTable::DeviceSpec;

    enum class Operation { getSize, getData, setData, getString, addListener, removeListener };

    // Makes matching calls fail with `status`. Absent object or selector match any; `times`
    // absent means every call from now on.
    struct Failure {
        Operation operation;
        std::optional<AudioObjectID> object;
        std::optional<std::uint32_t> selector;
        OSStatus status = kAudioHardwareIllegalOperationError;
        std::optional<int> times;
    };

    // One setPropertyData call, successful or not, as it was made.
    struct Write {
        AudioObjectID object = 0;
        AudioObjectPropertyAddress address;
        std::vector<unsigned char> data;
        OSStatus status = kNoErr;

        // The data read as a 64-bit float (a nominal rate write); 0 when it is not 8 bytes.
        double rate() const;
        // The data read as a stream format; zeros when it is not 40 bytes.
        AudioStreamBasicDescription format() const;
    };

    explicit SimAudioHardware(std::shared_ptr<MainExecutor> executor);

    // A linear-PCM entry at `rate` with `bits` per channel (stereo, packed, integer), offered
    // over minRate..maxRate (both `rate` when not given).
    static AudioStreamRangedDescription linearPCM(double rate, std::uint32_t bits,
                                                  std::optional<double> minRate = std::nullopt,
                                                  std::optional<double> maxRate = std::nullopt);

    // --- The world around the program ---------------------------------------------------------
    // Adds a device (not yet the default) and returns its id; its streams get ids of their own.
    AudioObjectID addDevice(DeviceSpec setup);
    // Unplugs a device: its listeners go, and if it was the default the first remaining device
    // (lowest id) becomes the default, or none; default-device listeners fire when it changes.
    void removeDevice(AudioObjectID device);
    // The user picks another default output device (0: none); listeners fire when it changes.
    void setDefaultOutputDevice(AudioObjectID device);
    // Another program sets the device's nominal rate; its rate listeners fire.
    void changeNominalRateExternally(AudioObjectID device, double rate);
    // The driver changes a stream's current format by itself (no listener fires).
    void setPhysicalFormat(AudioObjectID stream, const AudioStreamBasicDescription& format);
    // Makes calls fail (see Failure); clearFailures() lifts every rule.
    void injectFailure(Failure failure);
    void clearFailures();
    // Makes getPropertyDataSize report `size` bytes for the property (a misbehaving driver).
    void overrideReportedSize(AudioObjectID object, std::uint32_t selector, std::uint32_t size);
    // Called after every write is recorded (for one journal shared with other simulations).
    void setWriteObserver(std::function<void(const Write&)> observer);

    // --- What a test reads back ---------------------------------------------------------------
    AudioObjectID defaultOutputDevice() const;
    double nominalRate(AudioObjectID device) const;
    std::vector<AudioObjectID> streams(AudioObjectID device) const;
    AudioStreamBasicDescription physicalFormat(AudioObjectID stream) const;
    std::vector<Write> writes() const;
    // Listeners currently registered on the object for the selector.
    std::size_t listenerCount(AudioObjectID object, std::uint32_t selector) const;

    // --- AudioHardware ------------------------------------------------------------------------
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
    // The status an injected failure gives this call, consuming one of its times.
    std::optional<OSStatus> injectedStatus(Operation operation, AudioObjectID object,
                                           std::uint32_t selector);
    OSStatus applyWrite(AudioObjectID object, const AudioObjectPropertyAddress& address,
                        const std::vector<unsigned char>& data,
                        std::vector<PropertyListener>& toNotify);
    // Like hardware, streams follow a new nominal rate: they keep their bits when offered there.
    void moveStreamsToRate(const AudioObjectTable::Device& device, double rate);
    void notify(const std::vector<PropertyListener>& listeners);

    std::shared_ptr<MainExecutor> executor_;
    mutable std::mutex mutex_;
    AudioObjectID nextObjectID_ = 100;
    AudioObjectTable objects_;
    PropertyListeners listeners_;
    std::vector<Failure> failures_;
    std::map<std::pair<AudioObjectID, std::uint32_t>, std::uint32_t> reportedSizes_;
    std::vector<Write> writes_;
    std::function<void(const Write&)> writeObserver_;
};

}  // namespace corvanel
