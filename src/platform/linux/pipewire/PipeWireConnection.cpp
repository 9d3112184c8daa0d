#include "platform/linux/pipewire/PipeWireConnection.h"

#include <cerrno>
#include <cstring>
#include <mutex>

#include "platform/linux/pipewire/PipeWireCalls.h"

namespace corvanel::pipewire {
namespace {

std::string connectFailure(int error) {
    // No socket, or nobody listening on it: the daemon of this session does not run.
    if (error == EHOSTDOWN || error == ENOENT || error == ECONNREFUSED)
        return "PipeWire is not running";
    return std::string("Could not connect to PipeWire: ") + std::strerror(error);
}

}  // namespace

std::variant<std::unique_ptr<PipeWireConnection>, std::string> PipeWireConnection::open(
    const std::string& clientName, std::chrono::milliseconds timeout) {
    static std::once_flag initialised;
    std::call_once(initialised, [] { pw_init(nullptr, nullptr); });
    const auto deadline = Clock::now() + timeout;

    auto connection = std::make_unique<PipeWireConnection>(Key{});
    connection->loop_.reset(pw_thread_loop_new("corvanel-pipewire", nullptr));
    if (!connection->loop_) return std::string("Could not start a PipeWire event loop");
    connection->context_.reset(
        pw_context_new(pw_thread_loop_get_loop(connection->loop()),
                       pw_properties_new(PW_KEY_APP_NAME, clientName.c_str(), nullptr), 0));
    if (!connection->context_)
        return std::string("Could not set up a PipeWire client: ") + std::strerror(errno);
    if (pw_thread_loop_start(connection->loop()) < 0)
        return std::string("Could not start a PipeWire event loop");

    std::string failure;
    {
        const Lock lock(*connection);
        connection->core_.reset(pw_context_connect(connection->context_.get(), nullptr, 0));
        if (!connection->core_) return connectFailure(errno);
        static const pw_core_events events = [] {
            pw_core_events handlers{};
            handlers.version = PW_VERSION_CORE_EVENTS;
            handlers.done = onDone;
            handlers.error = onError;
            return handlers;
        }();
        calls::addCoreListener(connection->core(), connection->coreListener_.get(), &events,
                               connection.get());
        if (!connection->roundTrip(deadline)) failure = connection->waitFailure(timeout);
    }
    // The lock is released before a failed connection goes: ending the loop's thread needs it.
    if (!failure.empty()) return failure;
    return connection;
}

PipeWireConnection::~PipeWireConnection() {
    // Ends the loop's thread first: after this nothing runs beside the members' release.
    if (loop_) pw_thread_loop_stop(loop_.get());
}

bool PipeWireConnection::waitUntil(Clock::time_point deadline) const {
    const auto remaining = deadline - Clock::now();
    if (remaining <= Clock::duration::zero()) return false;
    timespec until{};
    pw_thread_loop_get_time(
        loop(), &until, std::chrono::duration_cast<std::chrono::nanoseconds>(remaining).count());
    pw_thread_loop_timed_wait_full(loop(), &until);
    return Clock::now() < deadline;
}

bool PipeWireConnection::roundTrip(Clock::time_point deadline) {
    if (broken_) return false;
    awaitedSync_ = calls::sync(core());
    awaitedSyncDone_ = false;
    while (!awaitedSyncDone_) {
        if (broken_ || !waitUntil(deadline)) return awaitedSyncDone_;
    }
    return true;
}

std::string PipeWireConnection::waitFailure(std::chrono::milliseconds timeout) const {
    if (broken_) return "PipeWire closed the connection";
    return "PipeWire did not answer within " + std::to_string(timeout.count()) + " ms";
}

void PipeWireConnection::signal() const {
    pw_thread_loop_signal(loop(), false);
}

void PipeWireConnection::onDone(void* data, std::uint32_t id, int seq) {
    auto* connection = static_cast<PipeWireConnection*>(data);
    // Other round trips (the graph mirror's) share the core: only the awaited one counts.
    if (id != PW_ID_CORE || seq != connection->awaitedSync_) return;
    connection->awaitedSyncDone_ = true;
    connection->signal();
}

void PipeWireConnection::onError(void* data, std::uint32_t id, int, int result, const char*) {
    auto* connection = static_cast<PipeWireConnection*>(data);
    // Errors about single objects (a refused bind, a write without permission) leave the
    // connection usable; a broken pipe on the core itself does not.
    if (id != PW_ID_CORE || result != -EPIPE) return;
    connection->broken_ = true;
    connection->signal();
}

}  // namespace corvanel::pipewire
