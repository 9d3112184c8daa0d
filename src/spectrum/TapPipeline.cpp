#include "spectrum/TapPipeline.h"

#include <utility>
#include <vector>

#include "spectrum/AggregateDescription.h"
#include "spectrum/CaptureCallback.h"
#include "switching/CoreAudioHelper.h"

namespace corvanel {

TapPipeline::TapPipeline(std::shared_ptr<ProcessTapHost> host, std::shared_ptr<AudioHardware> audio,
                         std::shared_ptr<SampleRingBuffer> ring, double sampleRate)
    : host_(std::move(host)),
      audio_(std::move(audio)),
      ring_(std::move(ring)),
      tapSampleRate_(sampleRate) {}

TapPipeline::~TapPipeline() {
    teardown();
}

std::optional<SpectrumError> TapPipeline::check(OSStatus status, const std::string& step) const {
    if (status == kNoErr) return std::nullopt;
    return SpectrumError{"Could not " + step + " (error " + std::to_string(status) + "). " +
                         host_->failureAdvice()};
}

std::optional<SpectrumError> TapPipeline::build() {
    TapDescription description;
    description.stereoMixdown = true;
    description.name = tapName;
    description.isPrivate = true;
    description.muteBehavior = 0;

    AudioObjectID tap = kAudioObjectUnknown;
    const OSStatus created = host_->createProcessTap(description, tap);
    if (created == ProcessTapHost::noOutputDeviceStatus)
        return SpectrumError{noOutputDeviceMessage};
    if (auto error = check(created, "create the audio tap")) return error;
    tapID_ = tap;

    AudioStreamBasicDescription format{};
    if (auto error = check(host_->readTapFormat(tapID_, format), "read the tap format"))
        return error;
    tapSampleRate_ = format.mSampleRate > 0 ? format.mSampleRate : defaultSampleRate;

    std::string tapUID;
    if (auto error = check(host_->readTapUID(tapID_, tapUID), "read the tap UID")) return error;

    const std::optional<AudioObjectID> output = CoreAudioHelper::defaultOutputDevice(*audio_);
    const std::optional<std::string> outputUID =
        output ? CoreAudioHelper::deviceUID(*audio_, *output) : std::nullopt;
    if (!outputUID) return SpectrumError{noOutputDeviceMessage};

    AudioObjectID aggregate = kAudioObjectUnknown;
    if (auto error = check(host_->createAggregateDevice(
                               spectrumAggregateDescription(*outputUID, tapUID), aggregate),
                           "create the capture device"))
        return error;
    aggregateID_ = aggregate;

    // The callback reads the tap's buffer, never one of the output device's own inputs.
    std::vector<std::uint32_t> inputBuffers;
    if (auto error = check(host_->readInputStreamConfiguration(aggregateID_, inputBuffers),
                           "read the capture device's streams"))
        return error;
    const std::optional<std::uint32_t> tapBuffer = tapBufferIndex(inputBuffers, format);
    if (!tapBuffer) return SpectrumError{noTapStreamMessage};

    IOProcID proc = 0;
    const CaptureContext context = CaptureContext::forFormat(format, ring_, *tapBuffer);
    auto block = [context](const AudioBufferView* buffers, std::uint32_t count) {
        deliverCapturedBlock(context, buffers, count);
    };
    if (auto error = check(host_->createIOProcID(aggregateID_, std::move(block), proc),
                           "install the audio callback"))
        return error;
    ioProcID_ = proc;

    return check(host_->deviceStart(aggregateID_, *ioProcID_), "start audio capture");
}

void TapPipeline::teardown() {
    // Stop before destroying anything, so no callback runs against a destroyed device.
    if (ioProcID_ && aggregateID_ != kAudioObjectUnknown) {
        host_->deviceStop(aggregateID_, *ioProcID_);
        host_->destroyIOProcID(aggregateID_, *ioProcID_);
    }
    ioProcID_.reset();
    if (aggregateID_ != kAudioObjectUnknown) {
        host_->destroyAggregateDevice(aggregateID_);
        aggregateID_ = kAudioObjectUnknown;
    }
    if (tapID_ != kAudioObjectUnknown) {
        host_->destroyProcessTap(tapID_);
        tapID_ = kAudioObjectUnknown;
    }
}

}  // namespace corvanel
