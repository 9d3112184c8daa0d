#pragma once
// The output device where PipeWire does not answer (plain PulseAudio, or no sound server): the
// sound server plays at a rate no client can read or set. One device whose name says so, with no
// rates and no formats, so the popup and every activity line about it tell the user why nothing
// switches; every write fails and no listener ever fires.
#include <string>

#include "platform/AudioHardware.h"
#include "platform/AudioObjectTable.h"

namespace corvanel {

class OutputWithoutRateControl final : public AudioHardware {
  public:
    static constexpr const char* deviceName = "Sound server output (rate needs PipeWire)";

    OutputWithoutRateControl();

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
    AudioObjectTable objects_;
    PropertyListenerID lastListener_ = 0;
};

}  // namespace corvanel
