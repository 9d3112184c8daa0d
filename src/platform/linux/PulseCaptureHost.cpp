#include "platform/linux/PulseCaptureHost.h"

#include <utility>

namespace corvanel {

namespace {

// One tap, one capture device and one callback at a time: fixed ids.
constexpr AudioObjectID tapObject = 1;
constexpr AudioObjectID deviceObject = 2;
constexpr IOProcID procObject = 1;
constexpr std::uint32_t channelCount = 2;

}  // namespace

// A query the main thread waits on while the pulse thread fills it in.
struct PulseCaptureHost::SinkQuery {
    PulseConnection* connection;
    std::string defaultSink;
    std::string monitor;
    std::uint32_t rate = 0;
    bool found = false;
};

void PulseCaptureHost::StreamDelete::operator()(pa_stream* stream) const {
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

PulseCaptureHost::PulseCaptureHost() = default;

PulseCaptureHost::~PulseCaptureHost() {
    if (!connection_) return;
    {
        PulseConnection::Lock lock(*connection_);
        stream_.reset();
    }
    connection_.reset();
}

std::string PulseCaptureHost::currentMonitor() const {
    if (!connection_) return {};
    PulseConnection::Lock lock(*connection_);
    return monitor_;
}

int PulseCaptureHost::queryDefaultSink(std::string& sink, std::string& monitor,
                                       std::uint32_t& rate) {
    SinkQuery query{connection_.get(), {}, {}, 0, false};
    const auto onServer = [](pa_context*, const pa_server_info* info, void* userdata) {
        auto* target = static_cast<SinkQuery*>(userdata);
        if (info != nullptr && info->default_sink_name != nullptr)
            target->defaultSink = info->default_sink_name;
        target->connection->signal();
    };
    if (!connection_->complete(
            pa_context_get_server_info(connection_->context(), onServer, &query)))
        return connection_->lastError();
    if (query.defaultSink.empty()) return PA_ERR_NOENTITY;

    const auto onSink = [](pa_context*, const pa_sink_info* info, int eol, void* userdata) {
        auto* target = static_cast<SinkQuery*>(userdata);
        if (eol == 0 && info != nullptr && info->monitor_source_name != nullptr) {
            target->monitor = info->monitor_source_name;
            target->rate = info->sample_spec.rate;
            target->found = true;
        }
        target->connection->signal();
    };
    if (!connection_->complete(pa_context_get_sink_info_by_name(
            connection_->context(), query.defaultSink.c_str(), onSink, &query)))
        return connection_->lastError();
    if (!query.found) return PA_ERR_NOENTITY;
    sink = query.defaultSink;
    monitor = query.monitor;
    rate = query.rate;
    return PA_OK;
}

OSStatus PulseCaptureHost::createProcessTap(const TapDescription& description,
                                            AudioObjectID& outTap) {
    if (connection_) return PA_ERR_EXIST;
    auto opened = PulseConnection::open(description.name.empty() ? "Corvanel" : description.name);
    if (const int* error = std::get_if<int>(&opened)) return *error;
    connection_ = std::move(std::get<std::unique_ptr<PulseConnection>>(opened));

    int status = PA_OK;
    {
        PulseConnection::Lock lock(*connection_);
        connection_->setLostHandler([this](int error) { reportLost(error); });
        status = queryDefaultSink(sink_, monitor_, rate_);
        // A server without a default sink has no output whose monitor could be recorded.
        if (status == PA_ERR_NOENTITY) status = noOutputDeviceStatus;
        if (status == PA_OK) status = followDefaultSink();
    }
    if (status != PA_OK) {
        connection_.reset();  // nothing was created
        return status;
    }
    outTap = tapObject;
    return PA_OK;
}

int PulseCaptureHost::followDefaultSink() {
    // A change of the default sink arrives as a change of the server object.
    pa_context_set_subscribe_callback(connection_->context(), onSubscription, this);
    pa_operation* subscribe =
        pa_context_subscribe(connection_->context(), PA_SUBSCRIPTION_MASK_SERVER, nullptr, nullptr);
    if (subscribe == nullptr) return connection_->lastError();
    pa_operation_unref(subscribe);
    return PA_OK;
}

void PulseCaptureHost::onSubscription(pa_context* context, pa_subscription_event_type_t type,
                                      std::uint32_t, void* userdata) {
    const auto facility = type & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
    const auto kind = type & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
    if (facility != PA_SUBSCRIPTION_EVENT_SERVER || kind != PA_SUBSCRIPTION_EVENT_CHANGE) return;
    if (pa_operation* query = pa_context_get_server_info(context, onServerInfoForFollow, userdata))
        pa_operation_unref(query);
}

void PulseCaptureHost::onServerInfoForFollow(pa_context* context, const pa_server_info* info,
                                             void* userdata) {
    auto* host = static_cast<PulseCaptureHost*>(userdata);
    if (info == nullptr || info->default_sink_name == nullptr) return;
    if (host->sink_ == info->default_sink_name) return;
    if (pa_operation* query = pa_context_get_sink_info_by_name(context, info->default_sink_name,
                                                               onSinkInfoForFollow, userdata))
        pa_operation_unref(query);
}

void PulseCaptureHost::onSinkInfoForFollow(pa_context*, const pa_sink_info* info, int eol,
                                           void* userdata) {
    auto* host = static_cast<PulseCaptureHost*>(userdata);
    if (eol != 0 || info == nullptr || info->monitor_source_name == nullptr) return;
    host->sink_ = info->name;
    host->monitor_ = info->monitor_source_name;
    // The stream is pinned to the monitor it was opened on, so it is opened anew on the new
    // sink's monitor, in its own format (the server resamples): the rate the analyzer was
    // given stays true.
    if (host->recording_ && host->openStream() == PA_OK) host->connectStream();
}

int PulseCaptureHost::openStream() {
    const pa_sample_spec sampleFormat{PA_SAMPLE_FLOAT32LE, rate_, channelCount};
    stream_.reset(
        pa_stream_new(connection_->context(), "Corvanel Spectrum", &sampleFormat, nullptr));
    if (!stream_) return connection_->lastError();
    pa_stream_set_state_callback(stream_.get(), onStreamState, this);
    if (procInstalled_) pa_stream_set_read_callback(stream_.get(), onStreamRead, this);
    return PA_OK;
}

int PulseCaptureHost::connectStream() {
    // Ask for blocks of about 512 frames, as a tap would deliver them. The server must never
    // move the stream: when its sink goes away it would carry it to another source, which may
    // be a microphone.
    pa_buffer_attr attributes{};
    attributes.maxlength = static_cast<std::uint32_t>(-1);
    attributes.tlength = static_cast<std::uint32_t>(-1);
    attributes.prebuf = static_cast<std::uint32_t>(-1);
    attributes.minreq = static_cast<std::uint32_t>(-1);
    attributes.fragsize = blockFrames * channelCount * 4;
    if (pa_stream_connect_record(
            stream_.get(), monitor_.c_str(), &attributes,
            static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE)) < 0)
        return connection_->lastError();
    return PA_OK;
}

OSStatus PulseCaptureHost::destroyProcessTap(AudioObjectID tap) {
    if (tap != tapObject || !connection_) return PA_ERR_NOENTITY;
    {
        PulseConnection::Lock lock(*connection_);
        stream_.reset();
        block_ = nullptr;
        procInstalled_ = false;
        recording_ = false;
        sink_.clear();
        monitor_.clear();
    }
    connection_.reset();
    return PA_OK;
}

OSStatus PulseCaptureHost::readTapFormat(AudioObjectID tap,
                                         AudioStreamBasicDescription& outFormat) {
    if (tap != tapObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    outFormat = {};
    outFormat.mSampleRate = rate_;
    outFormat.mFormatID = kAudioFormatLinearPCM;
    outFormat.mFormatFlags = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
    outFormat.mBytesPerPacket = 4 * channelCount;
    outFormat.mFramesPerPacket = 1;
    outFormat.mBytesPerFrame = 4 * channelCount;
    outFormat.mChannelsPerFrame = channelCount;
    outFormat.mBitsPerChannel = 32;
    return PA_OK;
}

OSStatus PulseCaptureHost::readTapUID(AudioObjectID tap, std::string& outUID) {
    if (tap != tapObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    outUID = monitor_;
    return PA_OK;
}

OSStatus PulseCaptureHost::createAggregateDevice(const DescriptionDictionary&,
                                                 AudioObjectID& outDevice) {
    if (!connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (stream_) return PA_ERR_EXIST;
    if (const int status = openStream(); status != PA_OK) return status;
    outDevice = deviceObject;
    return PA_OK;
}

OSStatus PulseCaptureHost::destroyAggregateDevice(AudioObjectID device) {
    if (device != deviceObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (!stream_) return PA_ERR_NOENTITY;
    stream_.reset();
    return PA_OK;
}

OSStatus PulseCaptureHost::readInputStreamConfiguration(
    AudioObjectID device, std::vector<std::uint32_t>& outBufferChannels) {
    if (device != deviceObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (!stream_) return PA_ERR_NOENTITY;
    // The monitor's record stream is the only input: one interleaved buffer.
    outBufferChannels = {channelCount};
    return PA_OK;
}

OSStatus PulseCaptureHost::createIOProcID(AudioObjectID device, IOBlock block, IOProcID& outProc) {
    if (device != deviceObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (!stream_) return PA_ERR_NOENTITY;
    if (procInstalled_) return PA_ERR_EXIST;
    block_ = std::move(block);
    procInstalled_ = true;
    pa_stream_set_read_callback(stream_.get(), onStreamRead, this);
    outProc = procObject;
    return PA_OK;
}

OSStatus PulseCaptureHost::destroyIOProcID(AudioObjectID device, IOProcID proc) {
    if (device != deviceObject || proc != procObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (!procInstalled_) return PA_ERR_NOENTITY;
    if (stream_) pa_stream_set_read_callback(stream_.get(), nullptr, nullptr);
    block_ = nullptr;
    procInstalled_ = false;
    return PA_OK;
}

OSStatus PulseCaptureHost::deviceStart(AudioObjectID device, IOProcID proc) {
    if (device != deviceObject || proc != procObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (!stream_ || !procInstalled_) return PA_ERR_NOENTITY;
    if (pa_stream_get_state(stream_.get()) != PA_STREAM_UNCONNECTED) return PA_ERR_BADSTATE;
    if (const int status = connectStream(); status != PA_OK) return status;
    recording_ = true;
    const PulseConnection::Deadline deadline(*connection_);
    for (;;) {
        const pa_stream_state_t state = pa_stream_get_state(stream_.get());
        if (state == PA_STREAM_READY) return PA_OK;
        if (!PA_STREAM_IS_GOOD(state) || deadline.passed()) {
            recording_ = false;
            return connection_->lastError();
        }
        connection_->wait();
    }
}

OSStatus PulseCaptureHost::deviceStop(AudioObjectID device, IOProcID proc) {
    if (device != deviceObject || proc != procObject || !connection_) return PA_ERR_NOENTITY;
    PulseConnection::Lock lock(*connection_);
    if (!stream_) return PA_ERR_NOENTITY;
    // Once this returns no further block is delivered: callbacks run under the same lock.
    recording_ = false;
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream_.get()))) pa_stream_disconnect(stream_.get());
    return PA_OK;
}

void PulseCaptureHost::onStreamState(pa_stream* stream, void* userdata) {
    auto* host = static_cast<PulseCaptureHost*>(userdata);
    host->connection_->signal();
    // A recording stream the server ends (its sink went away and it may not be moved) is lost,
    // unless a change of the default sink is opening its successor.
    if (pa_stream_get_state(stream) == PA_STREAM_FAILED && host->recording_ &&
        stream == host->stream_.get())
        host->reportLost(host->connection_->lastError());
}

void PulseCaptureHost::reportLost(int error) {
    if (!recording_) return;
    recording_ = false;
    if (failureHandler_) failureHandler_(procObject, error);
}

void PulseCaptureHost::setFailureHandler(FailureHandler handler) {
    if (!connection_) {
        failureHandler_ = std::move(handler);
        return;
    }
    PulseConnection::Lock lock(*connection_);
    failureHandler_ = std::move(handler);
}

std::string PulseCaptureHost::failureAdvice() const {
    return "Check that a PulseAudio or PipeWire sound server runs for this session (pactl info).";
}

void PulseCaptureHost::onStreamRead(pa_stream* stream, std::size_t, void* userdata) {
    auto* host = static_cast<PulseCaptureHost*>(userdata);
    while (pa_stream_readable_size(stream) > 0) {
        const void* data = nullptr;
        std::size_t bytes = 0;
        if (pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0) return;
        // A hole (data absent) is dropped like a delivered block.
        if (data != nullptr && host->block_) {
            const AudioBufferView buffer{channelCount, static_cast<std::uint32_t>(bytes), data};
            host->block_(&buffer, 1);
        }
        pa_stream_drop(stream);
    }
}

}  // namespace corvanel
