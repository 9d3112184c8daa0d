#pragma once
// System-audio capture on Linux through libpulse (PulseAudio, or PipeWire's pulse server):
// the monitor source of the default sink — what every application plays, never a microphone —
// recorded as 32-bit float stereo at the sink's rate. The tap host's operations map onto it:
//
//   create the audio tap       connect to the server, find the default sink and its monitor,
//                              and follow later changes of the default sink
//   read the tap format        the sink's rate, as float32 interleaved stereo
//   read the tap UID           the monitor source's name
//   create the capture device  a record stream (not yet connected)
//   install the audio callback the stream's read callback, delivering into the IO block
//   start audio capture        connect the stream to the monitor
//
// The record stream is pinned to the monitor it was opened on: the server never moves it, so it
// can never end up on a microphone. When the default sink changes while recording, a new stream
// is opened on the new sink's monitor in the same sample format (the server resamples), so the
// rate the analyzer was told stays true and no rebuild is needed. Failures report the server's
// error code as the status; a server that stops answering fails with PA_ERR_TIMEOUT after
// PulseConnection::replyDeadline, and one without a default sink with noOutputDeviceStatus.
// A recording the server ends (it quit, or the sink went away with no other to follow) is
// reported to the failure handler. Blocks arrive on the pulse thread, one at a time, in order.
// The operations may come from different threads, one after another (see ProcessTapHost);
// removal never waits for the server, so a hung one cannot hold it up.
#include <pulse/pulseaudio.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/ProcessTapHost.h"
#include "platform/linux/PulseConnection.h"

namespace corvanel {

class PulseCaptureHost final : public ProcessTapHost {
  public:
    static constexpr std::uint32_t blockFrames = 512;

    PulseCaptureHost();
    ~PulseCaptureHost() override;
    PulseCaptureHost(const PulseCaptureHost&) = delete;
    PulseCaptureHost& operator=(const PulseCaptureHost&) = delete;

    // The monitor being recorded (it changes when the default sink does); empty without a tap.
    // Not while an operation runs on another thread.
    std::string currentMonitor() const;

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
    // Told when the server ends the recording stream or the connection while recording.
    void setFailureHandler(FailureHandler handler) override;
    std::string failureAdvice() const override;

  private:
    struct StreamDelete {
        void operator()(pa_stream* stream) const;
    };
    struct SinkQuery;

    static void onSubscription(pa_context* context, pa_subscription_event_type_t type,
                               std::uint32_t index, void* userdata);
    static void onServerInfoForFollow(pa_context* context, const pa_server_info* info,
                                      void* userdata);
    static void onSinkInfoForFollow(pa_context* context, const pa_sink_info* info, int eol,
                                    void* userdata);
    static void onStreamRead(pa_stream* stream, std::size_t bytes, void* userdata);
    static void onStreamState(pa_stream* stream, void* userdata);

    // With the lock held: the default sink's name, monitor and rate, or an error code.
    int queryDefaultSink(std::string& sink, std::string& monitor, std::uint32_t& rate);
    // With the lock held: subscribes to server changes to move along with the default sink.
    int followDefaultSink();
    // With the lock held: a new record stream in the tap's format, with the installed callback;
    // an error code when the server refuses.
    int openStream();
    // With the lock held: connects the stream to the current monitor, pinned there.
    int connectStream();
    // On the loop's thread: a recording that ended for good goes to the failure handler, once.
    void reportLost(int error);

    std::unique_ptr<PulseConnection> connection_;
    // Written with the connection's lock held; the pulse thread reads them under it too.
    std::string sink_;
    std::string monitor_;
    std::uint32_t rate_ = 0;
    std::unique_ptr<pa_stream, StreamDelete> stream_;
    IOBlock block_;
    bool procInstalled_ = false;
    bool recording_ = false;  // between a successful start and a stop or a loss
    FailureHandler failureHandler_;
};

}  // namespace corvanel
