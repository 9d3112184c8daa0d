#include "platform/linux/PulseConnection.h"

#include <pulse/rtclock.h>

#include <utility>

namespace corvanel {

namespace {

// An error code for a failure that left none in the context.
int errorOr(int code, int fallback) {
    return code != PA_OK ? code : fallback;
}

}  // namespace

void PulseConnection::LoopDelete::operator()(pa_threaded_mainloop* loop) const {
    pa_threaded_mainloop_stop(loop);
    pa_threaded_mainloop_free(loop);
}

void PulseConnection::ContextDelete::operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_set_subscribe_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
}

std::variant<std::unique_ptr<PulseConnection>, int> PulseConnection::open(
    const std::string& clientName) {
    auto connection = std::make_unique<PulseConnection>(Key{});
    connection->mainloop_.reset(pa_threaded_mainloop_new());
    if (!connection->mainloop_) return PA_ERR_INTERNAL;
    connection->context_.reset(pa_context_new(
        pa_threaded_mainloop_get_api(connection->mainloop_.get()), clientName.c_str()));
    if (!connection->context_) return PA_ERR_INTERNAL;
    pa_context_set_state_callback(connection->context(), onContextState, connection.get());
    if (pa_threaded_mainloop_start(connection->mainloop_.get()) < 0) return PA_ERR_INTERNAL;

    Lock lock(*connection);
    if (pa_context_connect(connection->context(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        return errorOr(connection->lastError(), PA_ERR_CONNECTIONREFUSED);
    const Deadline deadline(*connection);
    for (;;) {
        const pa_context_state_t state = pa_context_get_state(connection->context());
        if (state == PA_CONTEXT_READY) break;
        if (!PA_CONTEXT_IS_GOOD(state))
            return errorOr(connection->lastError(), PA_ERR_CONNECTIONTERMINATED);
        if (deadline.passed()) return PA_ERR_TIMEOUT;
        connection->wait();
    }
    return connection;
}

PulseConnection::~PulseConnection() {
    if (mainloop_) {
        Lock lock(*this);
        context_.reset();
    }
    mainloop_.reset();
}

PulseConnection::Lock::Lock(PulseConnection& connection) : mainloop_(connection.mainloop_.get()) {
    pa_threaded_mainloop_lock(mainloop_);
}

PulseConnection::Lock::~Lock() {
    pa_threaded_mainloop_unlock(mainloop_);
}

void PulseConnection::onContextState(pa_context* context, void* userdata) {
    auto* connection = static_cast<PulseConnection*>(userdata);
    const pa_context_state_t state = pa_context_get_state(context);
    if (state == PA_CONTEXT_READY) connection->wasReady_ = true;
    if (state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state)) connection->signal();
    if (!PA_CONTEXT_IS_GOOD(state) && connection->wasReady_ && connection->lostHandler_)
        connection->lostHandler_(errorOr(pa_context_errno(context), PA_ERR_CONNECTIONTERMINATED));
}

void PulseConnection::setLostHandler(std::function<void(int error)> handler) {
    lostHandler_ = std::move(handler);
}

void PulseConnection::wait() {
    pa_threaded_mainloop_wait(mainloop_.get());
}

void PulseConnection::signal() {
    pa_threaded_mainloop_signal(mainloop_.get(), 0);
}

int PulseConnection::lastError() const {
    if (timedOut_) return PA_ERR_TIMEOUT;
    return context_ ? errorOr(pa_context_errno(context_.get()), PA_ERR_UNKNOWN) : PA_ERR_UNKNOWN;
}

bool PulseConnection::complete(pa_operation* operation) {
    if (operation == nullptr) return false;
    const Deadline deadline(*this);
    while (pa_operation_get_state(operation) == PA_OPERATION_RUNNING && !deadline.passed())
        wait();
    if (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) pa_operation_cancel(operation);
    const bool done = pa_operation_get_state(operation) == PA_OPERATION_DONE;
    pa_operation_unref(operation);
    return done;
}

PulseConnection::Deadline::Deadline(PulseConnection& connection) : connection_(connection) {
    connection_.timedOut_ = false;
    const auto limit = std::chrono::duration_cast<std::chrono::microseconds>(replyDeadline);
    event_ = pa_context_rttime_new(connection_.context(),
                                   pa_rtclock_now() + static_cast<pa_usec_t>(limit.count()), onTime,
                                   this);
}

PulseConnection::Deadline::~Deadline() {
    if (event_ != nullptr)
        pa_threaded_mainloop_get_api(connection_.mainloop_.get())->time_free(event_);
}

void PulseConnection::Deadline::onTime(pa_mainloop_api*, pa_time_event*, const struct timeval*,
                                       void* userdata) {
    auto* deadline = static_cast<Deadline*>(userdata);
    deadline->passed_ = true;
    deadline->connection_.timedOut_ = true;
    deadline->connection_.signal();
}

}  // namespace corvanel
