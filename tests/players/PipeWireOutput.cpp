#include "PipeWireOutput.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <cstring>
#include <string>

class PipeWireOutput::Lock {
  public:
    explicit Lock(pw_thread_loop* loop) : loop_(loop) { pw_thread_loop_lock(loop_); }
    ~Lock() { pw_thread_loop_unlock(loop_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

  private:
    pw_thread_loop* loop_;
};

struct PipeWireCallbacks {
    static void process(void* data) {
        auto* output = static_cast<PipeWireOutput*>(data);
        if (pw_buffer* buffer = pw_stream_dequeue_buffer(output->stream_)) {
            output->fill(buffer);
            pw_stream_queue_buffer(output->stream_, buffer);
        }
    }
    static void stateChanged(void* data, pw_stream_state, pw_stream_state state,
                             const char* error) {
        auto* output = static_cast<PipeWireOutput*>(data);
        std::string entry = std::string("event stream ") + pw_stream_state_as_string(state);
        if (error) entry += std::string(" error=") + error;
        output->journal_.write(entry);
    }
    static const pw_stream_events& events() {
        static const pw_stream_events built = [] {
            pw_stream_events events{};
            events.version = PW_VERSION_STREAM_EVENTS;
            events.state_changed = &stateChanged;
            events.process = &process;
            return events;
        }();
        return built;
    }
};

namespace {

spa_audio_format spaFormat(DecodedTrack::Format format) {
    switch (format) {
        case DecodedTrack::Format::s16:
            return SPA_AUDIO_FORMAT_S16;
        case DecodedTrack::Format::s32:
            return SPA_AUDIO_FORMAT_S32;
        case DecodedTrack::Format::f32:
            return SPA_AUDIO_FORMAT_F32;
    }
    return SPA_AUDIO_FORMAT_F32;
}

}  // namespace

void PipeWireOutput::LoopDeleter::operator()(pw_thread_loop* loop) const {
    pw_thread_loop_stop(loop);
    pw_thread_loop_destroy(loop);
}

void PipeWireOutput::ContextDeleter::operator()(pw_context* context) const {
    pw_context_destroy(context);
}

std::unique_ptr<PipeWireOutput> PipeWireOutput::connect(CallJournal& journal) {
    pw_init(nullptr, nullptr);
    std::unique_ptr<pw_thread_loop, LoopDeleter> loop(
        pw_thread_loop_new("corvanel-test-player", nullptr));
    if (!loop) return nullptr;
    std::unique_ptr<pw_context, ContextDeleter> context(
        pw_context_new(pw_thread_loop_get_loop(loop.get()), nullptr, 0));
    if (!context) return nullptr;
    pw_core* core = pw_context_connect(context.get(), nullptr, 0);
    if (!core) {
        journal.write("event audio none (no PipeWire server)");
        return nullptr;
    }
    if (pw_thread_loop_start(loop.get()) < 0) {
        pw_core_disconnect(core);
        return nullptr;
    }
    journal.write("event audio PipeWire");
    return std::make_unique<PipeWireOutput>(journal, std::move(loop), std::move(context), core);
}

PipeWireOutput::PipeWireOutput(CallJournal& journal,
                               std::unique_ptr<pw_thread_loop, LoopDeleter> loop,
                               std::unique_ptr<pw_context, ContextDeleter> context, pw_core* core)
    : journal_(journal), loop_(std::move(loop)), context_(std::move(context)), core_(core) {}

PipeWireOutput::~PipeWireOutput() {
    {
        Lock lock(loop_.get());
        closeStream();
        pw_core_disconnect(core_);
    }
    // The loop's thread must end before the context goes, which is destroyed before the loop.
    pw_thread_loop_stop(loop_.get());
}

void PipeWireOutput::open(std::shared_ptr<const DecodedTrack> track, std::int64_t frame,
                          bool active) {
    Lock lock(loop_.get());
    closeStream();
    if (!track || track->frames() == 0) return;
    track_ = std::move(track);
    cursor_ = static_cast<std::size_t>(std::max<std::int64_t>(frame, 0)) % track_->frames();

    pw_properties* properties = pw_properties_new(
        PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback", PW_KEY_MEDIA_ROLE, "Music",
        PW_KEY_APP_NAME, "Corvanel Test Player", PW_KEY_NODE_NAME, "corvanel-test-player", nullptr);
    stream_ = pw_stream_new(core_, "Corvanel Test Player", properties);
    if (!stream_) return;
    listener_ = std::make_unique<spa_hook>();
    pw_stream_add_listener(stream_, listener_.get(), &PipeWireCallbacks::events(), this);

    std::uint8_t podBuffer[1024];
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, podBuffer, sizeof podBuffer);
    spa_audio_info_raw info{};
    info.format = spaFormat(track_->format);
    info.rate = track_->rate;
    info.channels = std::min<std::uint32_t>(track_->channels, SPA_AUDIO_MAX_CHANNELS);
    if (info.channels == 2) {
        info.position[0] = SPA_AUDIO_CHANNEL_FL;
        info.position[1] = SPA_AUDIO_CHANNEL_FR;
    } else if (info.channels == 1) {
        info.position[0] = SPA_AUDIO_CHANNEL_MONO;
    } else {
        info.flags = SPA_AUDIO_FLAG_UNPOSITIONED;
    }
    const spa_pod* parameters[] = {
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
    const auto flags =
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                     (active ? 0 : PW_STREAM_FLAG_INACTIVE));
    journal_.write("event stream open rate=" + std::to_string(track_->rate) + " format=" +
                   track_->formatName() + " channels=" + std::to_string(track_->channels));
    if (pw_stream_connect(stream_, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, parameters, 1) < 0) {
        journal_.write("event stream connect failed");
        closeStream();
    }
}

void PipeWireOutput::setActive(bool active) {
    Lock lock(loop_.get());
    if (stream_) pw_stream_set_active(stream_, active);
}

void PipeWireOutput::seek(std::int64_t frame) {
    Lock lock(loop_.get());
    if (track_ && track_->frames() > 0)
        cursor_ = static_cast<std::size_t>(std::max<std::int64_t>(frame, 0)) % track_->frames();
}

void PipeWireOutput::closeStream() {
    if (stream_) {
        pw_stream_destroy(stream_);
        stream_ = nullptr;
        journal_.write("event stream closed");
    }
    listener_.reset();
    track_.reset();
    cursor_ = 0;
}

// On the loop's thread, with the loop locked.
void PipeWireOutput::fill(pw_buffer* buffer) {
    spa_data& data = buffer->buffer->datas[0];
    if (!data.data || !track_) return;
    const std::uint32_t stride = track_->bytesPerFrame();
    std::size_t frames = data.maxsize / stride;
    if (buffer->requested > 0) frames = std::min<std::size_t>(frames, buffer->requested);
    auto* out = static_cast<std::uint8_t*>(data.data);
    const std::size_t total = track_->frames();
    for (std::size_t done = 0; done < frames;) {
        const std::size_t run = std::min(frames - done, total - cursor_);
        std::memcpy(out + done * stride, track_->bytes.data() + cursor_ * stride, run * stride);
        done += run;
        cursor_ = (cursor_ + run) % total;
    }
    data.chunk->offset = 0;
    data.chunk->stride = static_cast<std::int32_t>(stride);
    data.chunk->size = static_cast<std::uint32_t>(frames * stride);
}
