#pragma once
// The capture chain over the ProcessTapHost port: a process tap mirroring the output mix, a
// private aggregate device carrying it, and an IO procedure whose callback writes the tap's
// buffer of every block into the ring. Built in that order, removed in the reverse order; a failed
// build leaves what it made for `teardown()`, which is safe at any time and any number of times.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/AudioHardware.h"
#include "platform/ProcessTapHost.h"
#include "spectrum/SampleRingBuffer.h"
#include "spectrum/SpectrumError.h"

namespace corvanel {

class TapPipeline {
  public:
    static constexpr double defaultSampleRate = 44100;

    // `sampleRate`: what tapSampleRate() says until a format read says otherwise.
    TapPipeline(std::shared_ptr<ProcessTapHost> host, std::shared_ptr<AudioHardware> audio,
                std::shared_ptr<SampleRingBuffer> ring, double sampleRate = defaultSampleRate);
    ~TapPipeline();
    TapPipeline(const TapPipeline&) = delete;
    TapPipeline& operator=(const TapPipeline&) = delete;

    // Nothing on success; otherwise the error of the step that failed.
    std::optional<SpectrumError> build();
    void teardown();

    bool isRunning() const { return ioProcID_.has_value(); }
    double tapSampleRate() const { return tapSampleRate_; }
    AudioObjectID tapID() const { return tapID_; }
    AudioObjectID aggregateID() const { return aggregateID_; }
    std::optional<IOProcID> ioProcID() const { return ioProcID_; }

    // "Could not <step> (error <status>). <the host's advice>" for a non-zero status.
    std::optional<SpectrumError> check(OSStatus status, const std::string& step) const;

    static constexpr const char* tapName = "Corvanel Spectrum Tap";
    static constexpr const char* noOutputDeviceMessage =
        "No default output device available for the spectrum tap.";
    static constexpr const char* noTapStreamMessage =
        "The capture device carries no stream for the audio tap.";

  private:
    std::shared_ptr<ProcessTapHost> host_;
    std::shared_ptr<AudioHardware> audio_;
    std::shared_ptr<SampleRingBuffer> ring_;
    AudioObjectID tapID_ = kAudioObjectUnknown;
    AudioObjectID aggregateID_ = kAudioObjectUnknown;
    std::optional<IOProcID> ioProcID_;
    double tapSampleRate_ = defaultSampleRate;
};

}  // namespace corvanel
