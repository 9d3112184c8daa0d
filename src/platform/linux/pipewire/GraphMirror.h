#pragma once
// Follows the PipeWire graph on the connection's thread loop: the audio sinks with their
// negotiated and offered formats, the playback streams with their processes, the "default"
// metadata's default sink and the "settings" metadata's clock entries. After every change, once
// the daemon has answered every question the change raised, it publishes one consistent
// GraphSnapshot; readers on any thread take the newest one without waiting on the daemon.
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/linux/pipewire/GraphSnapshot.h"
#include "platform/linux/pipewire/PipeWireConnection.h"

namespace corvanel::pipewire {

class GraphMirror {
  public:
    // Starts following the graph of `connection`, which must outlive the mirror.
    explicit GraphMirror(PipeWireConnection& connection);
    ~GraphMirror();
    GraphMirror(const GraphMirror&) = delete;
    GraphMirror& operator=(const GraphMirror&) = delete;

    // `onPublished` runs on the loop's thread after each new snapshot from now on: it should
    // only hand the news on.
    void setOnPublished(std::function<void()> onPublished);
    // The newest snapshot; an empty one before the first. Any thread, never waits on the daemon.
    std::shared_ptr<const GraphSnapshot> snapshot() const;
    // Waits until the first complete snapshot is out (every object known at the start read
    // with its formats and metadata); false when the deadline passed or the daemon went first.
    bool waitForFirstSnapshot(PipeWireConnection::Clock::time_point deadline);
    // Asks the daemon to run the whole graph at `rate` (0 lets it choose again) through the
    // "settings" metadata's clock.force-rate; false when there is no such metadata to write.
    bool setForcedRate(std::uint32_t rate);
    // The clock.force-rate the daemon reported last, without waiting for the next snapshot;
    // absent without "settings" metadata.
    std::optional<std::uint32_t> forcedRate() const;
    // Waits until the daemon has handled every request sent so far; false at the deadline.
    bool flush(PipeWireConnection::Clock::time_point deadline);

  private:
    struct Node;
    struct Metadata;

    static void onGlobal(void* data, std::uint32_t id, std::uint32_t permissions, const char* type,
                         std::uint32_t version, const spa_dict* props);
    static void onGlobalRemove(void* data, std::uint32_t id);
    static void onDone(void* data, std::uint32_t id, int seq);
    static void onError(void* data, std::uint32_t id, int seq, int result, const char* message);

    void addNode(std::uint32_t id, const spa_dict& props, bool isSink);
    void addMetadata(std::uint32_t id, const std::string& name);
    void metadataChanged(const Metadata& metadata, const char* key, const char* value);
    // While a client binds metadata that another client owns (WirePlumber's "default"),
    // PipeWire 0.3.65 passes the owner's changes only to the binding client: everyone else
    // misses them. A client that has gone has finished binding, so reading the values afresh
    // then brings back any change missed meanwhile.
    void readDefaultsAgain();
    // Something changed: publish once the daemon has answered everything asked so far.
    void changed();
    void publish();
    void forgetEverything();

    PipeWireConnection& connection_;
    std::function<void()> onPublished_;
    ProxyHandle registry_;
    ListenerHook registryListener_;
    ListenerHook coreListener_;

    // The loop thread's working copy.
    std::map<std::uint32_t, std::unique_ptr<Node>> nodes_;
    std::map<std::uint32_t, std::unique_ptr<Metadata>> metadata_;
    std::map<std::uint32_t, std::optional<std::int64_t>> clients_;  // their processes
    std::optional<std::string> defaultSinkName_;
    std::optional<ClockSettings> clock_;
    std::uint64_t localSerials_ = 0;
    int latestSync_ = -1;
    bool published_ = false;

    mutable std::mutex snapshotMutex_;
    std::shared_ptr<const GraphSnapshot> snapshot_;
};

}  // namespace corvanel::pipewire
