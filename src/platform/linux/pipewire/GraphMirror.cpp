#include "platform/linux/pipewire/GraphMirror.h"

#include <spa/param/param.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/pipewire/MetadataValues.h"
#include "platform/linux/pipewire/PipeWireCalls.h"
#include "platform/linux/pipewire/SpaFormat.h"

namespace corvanel::pipewire {
namespace {

constexpr std::string_view sinkClass = "Audio/Sink";
constexpr std::string_view playbackClass = "Stream/Output/Audio";
constexpr std::string_view defaultMetadata = "default";
constexpr std::string_view settingsMetadata = "settings";

std::string_view lookup(const spa_dict* dictionary, const char* key) {
    if (dictionary == nullptr) return {};
    const char* value = spa_dict_lookup(dictionary, key);
    return value != nullptr ? value : std::string_view{};
}

template <typename Number>
std::optional<Number> numberAt(const spa_dict* dictionary, const char* key) {
    const std::string_view text = lookup(dictionary, key);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

bool named(const char* text, std::string_view name) {
    return text != nullptr && name == text;
}

}  // namespace

// A sink or playback stream bound to read its properties and formats.
struct GraphMirror::Node {
    // A parameter read by enumeration: the values of the last finished read, and those of the
    // read under way. Results of an older read carry an older sequence number and are ignored.
    template <typename Value>
    struct Param {
        std::vector<Value> values;
        std::vector<Value> incoming;
        int seq = 0;
        bool reading = false;

        void finishRead() {
            if (!reading) return;
            values = std::move(incoming);
            incoming.clear();
            reading = false;
        }
    };

    Node(GraphMirror& owner, std::uint64_t objectSerial, bool sink)
        : mirror(owner), serial(objectSerial), isSink(sink) {}

    static void onInfo(void* data, const pw_node_info* update) {
        auto& node = *static_cast<Node*>(data);
        node.info.reset(pw_node_info_update(node.info.release(), update));
        if (!node.info) return;
        bool relevant = false;
        if ((update->change_mask & PW_NODE_CHANGE_MASK_PROPS) != 0) {
            node.readProperties();
            relevant = true;
        }
        if ((update->change_mask & PW_NODE_CHANGE_MASK_PARAMS) != 0) {
            for (std::uint32_t index = 0; index < node.info->n_params; ++index) {
                spa_param_info& param = node.info->params[index];
                if (param.user == 0) continue;
                param.user = 0;
                if (param.id == SPA_PARAM_Format) {
                    node.startRead(node.format, param);
                    relevant = true;
                } else if (param.id == SPA_PARAM_EnumFormat) {
                    node.startRead(node.offers, param);
                    relevant = true;
                }
            }
        }
        if (relevant) node.mirror.changed();
    }

    static void onParam(void* data, int seq, std::uint32_t id, std::uint32_t, std::uint32_t,
                        const spa_pod* param) {
        auto& node = *static_cast<Node*>(data);
        if (id == SPA_PARAM_Format && node.format.reading && seq == node.format.seq) {
            if (auto value = negotiatedFormat(param)) node.format.incoming.push_back(*value);
        } else if (id == SPA_PARAM_EnumFormat && node.offers.reading && seq == node.offers.seq) {
            if (auto value = offeredFormat(param)) node.offers.incoming.push_back(*value);
        }
    }

    template <typename Value>
    void startRead(Param<Value>& param, const spa_param_info& about) {
        param.incoming.clear();
        param.reading = true;
        // A parameter that cannot be read now (a suspended node's Format) reads as none.
        param.seq = (about.flags & SPA_PARAM_INFO_READ) != 0
                        ? calls::enumerateParams(proxy.get(), about.id)
                        : 0;
    }

    void readProperties() {
        const spa_dict* props = info->props;
        name = lookup(props, PW_KEY_NODE_NAME);
        description = lookup(props, PW_KEY_NODE_DESCRIPTION);
        nick = lookup(props, PW_KEY_NODE_NICK);
        processID = numberAt<std::int64_t>(props, PW_KEY_APP_PROCESS_ID);
        clientID = numberAt<std::uint32_t>(props, PW_KEY_CLIENT_ID);
    }

    GraphMirror& mirror;
    std::uint64_t serial;
    bool isSink;
    ProxyHandle proxy;
    ListenerHook listener;  // declared after the proxy: it leaves before the proxy goes
    NodeInfoHandle info;
    std::string name;
    std::string description;
    std::string nick;
    std::optional<std::int64_t> processID;
    std::optional<std::uint32_t> clientID;
    Param<NegotiatedFormat> format;
    std::optional<NegotiatedFormat> lastFormat;
    Param<OfferedFormat> offers;
};

// The "default" or the "settings" metadata.
struct GraphMirror::Metadata {
    Metadata(GraphMirror& owner, std::string metadataName)
        : mirror(owner), name(std::move(metadataName)) {}

    static int onProperty(void* data, std::uint32_t subject, const char* key, const char*,
                          const char* value) {
        auto& metadata = *static_cast<Metadata*>(data);
        // Entries about single objects (a stream's target) are not the graph's.
        if (subject == PW_ID_CORE) metadata.mirror.metadataChanged(metadata, key, value);
        return 0;
    }

    GraphMirror& mirror;
    std::string name;
    ProxyHandle proxy;
    ListenerHook listener;
};

GraphMirror::GraphMirror(PipeWireConnection& connection)
    : connection_(connection), snapshot_(std::make_shared<const GraphSnapshot>()) {
    static const pw_core_events coreEvents = [] {
        pw_core_events events{};
        events.version = PW_VERSION_CORE_EVENTS;
        events.done = onDone;
        events.error = onError;
        return events;
    }();
    static const pw_registry_events registryEvents = [] {
        pw_registry_events events{};
        events.version = PW_VERSION_REGISTRY_EVENTS;
        events.global = onGlobal;
        events.global_remove = onGlobalRemove;
        return events;
    }();
    const PipeWireConnection::Lock lock(connection_);
    calls::addCoreListener(connection_.core(), coreListener_.get(), &coreEvents, this);
    registry_.reset(calls::registry(connection_.core()));
    if (registry_)
        calls::addRegistryListener(registry_.get(), registryListener_.get(), &registryEvents, this);
    // The first snapshot goes out once the daemon has announced every object and answered
    // every question about them.
    changed();
}

GraphMirror::~GraphMirror() {
    const PipeWireConnection::Lock lock(connection_);
    coreListener_.remove();
    registryListener_.remove();
    nodes_.clear();
    metadata_.clear();
    registry_.reset();
}

void GraphMirror::setOnPublished(std::function<void()> onPublished) {
    const PipeWireConnection::Lock lock(connection_);
    onPublished_ = std::move(onPublished);
}

std::optional<std::uint32_t> GraphMirror::forcedRate() const {
    const PipeWireConnection::Lock lock(connection_);
    if (!clock_) return std::nullopt;
    return clock_->forcedRate;
}

std::shared_ptr<const GraphSnapshot> GraphMirror::snapshot() const {
    const std::lock_guard lock(snapshotMutex_);
    return snapshot_;
}

bool GraphMirror::waitForFirstSnapshot(PipeWireConnection::Clock::time_point deadline) {
    const PipeWireConnection::Lock lock(connection_);
    while (!published_ && !connection_.broken()) {
        if (!connection_.waitUntil(deadline)) break;
    }
    return published_ && !connection_.broken();
}

bool GraphMirror::setForcedRate(std::uint32_t rate) {
    const PipeWireConnection::Lock lock(connection_);
    for (const auto& [id, metadata] : metadata_) {
        if (metadata->name != settingsMetadata) continue;
        calls::setMetadataProperty(metadata->proxy.get(), PW_ID_CORE, "clock.force-rate",
                                   std::to_string(rate).c_str());
        return true;
    }
    return false;
}

bool GraphMirror::flush(PipeWireConnection::Clock::time_point deadline) {
    const PipeWireConnection::Lock lock(connection_);
    return connection_.roundTrip(deadline);
}

void GraphMirror::onGlobal(void* data, std::uint32_t id, std::uint32_t, const char* type,
                           std::uint32_t, const spa_dict* props) {
    auto& mirror = *static_cast<GraphMirror*>(data);
    if (props == nullptr) return;
    if (named(type, PW_TYPE_INTERFACE_Node)) {
        const std::string_view mediaClass = lookup(props, PW_KEY_MEDIA_CLASS);
        if (mediaClass == sinkClass || mediaClass == playbackClass)
            mirror.addNode(id, *props, mediaClass == sinkClass);
    } else if (named(type, PW_TYPE_INTERFACE_Metadata)) {
        const std::string_view name = lookup(props, PW_KEY_METADATA_NAME);
        if (name == defaultMetadata || name == settingsMetadata)
            mirror.addMetadata(id, std::string(name));
    } else if (named(type, PW_TYPE_INTERFACE_Client)) {
        // A client's process: what it says of itself, else what its socket says.
        auto process = numberAt<std::int64_t>(props, PW_KEY_APP_PROCESS_ID);
        if (!process) process = numberAt<std::int64_t>(props, PW_KEY_SEC_PID);
        mirror.clients_[id] = process;
        mirror.changed();
    }
}

void GraphMirror::onGlobalRemove(void* data, std::uint32_t id) {
    auto& mirror = *static_cast<GraphMirror*>(data);
    bool removed = mirror.nodes_.erase(id) > 0;
    if (mirror.clients_.erase(id) > 0) {
        mirror.readDefaultsAgain();
        removed = true;
    }
    if (const auto found = mirror.metadata_.find(id); found != mirror.metadata_.end()) {
        if (found->second->name == defaultMetadata) mirror.defaultSinkName_.reset();
        if (found->second->name == settingsMetadata) mirror.clock_.reset();
        mirror.metadata_.erase(found);
        removed = true;
    }
    if (removed) mirror.changed();
}

void GraphMirror::addNode(std::uint32_t id, const spa_dict& props, bool isSink) {
    static const pw_node_events nodeEvents = [] {
        pw_node_events events{};
        events.version = PW_VERSION_NODE_EVENTS;
        events.info = Node::onInfo;
        events.param = Node::onParam;
        return events;
    }();
    // Global ids come back for new objects; serials do not. A daemon older than serials gets
    // numbers of the mirror's own, in the order it saw the nodes.
    const std::uint64_t serial =
        numberAt<std::uint64_t>(&props, PW_KEY_OBJECT_SERIAL).value_or(++localSerials_);
    auto node = std::make_unique<Node>(*this, serial, isSink);
    node->proxy.reset(calls::bind(registry_.get(), id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE));
    if (!node->proxy) return;
    calls::addNodeListener(node->proxy.get(), node->listener.get(), &nodeEvents, node.get());
    nodes_[id] = std::move(node);
    changed();
}

void GraphMirror::addMetadata(std::uint32_t id, const std::string& name) {
    static const pw_metadata_events metadataEvents = [] {
        pw_metadata_events events{};
        events.version = PW_VERSION_METADATA_EVENTS;
        events.property = Metadata::onProperty;
        return events;
    }();
    auto metadata = std::make_unique<Metadata>(*this, name);
    metadata->proxy.reset(
        calls::bind(registry_.get(), id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA));
    if (!metadata->proxy) return;
    if (name == settingsMetadata) clock_ = ClockSettings{};
    calls::addMetadataListener(metadata->proxy.get(), metadata->listener.get(), &metadataEvents,
                               metadata.get());
    metadata_[id] = std::move(metadata);
    changed();
}

void GraphMirror::readDefaultsAgain() {
    std::optional<std::uint32_t> defaults;
    for (const auto& [id, metadata] : metadata_) {
        if (metadata->name == defaultMetadata) defaults = id;
    }
    // A new binding replaces the old one and reads every value afresh.
    if (defaults) addMetadata(*defaults, std::string(defaultMetadata));
}

void GraphMirror::metadataChanged(const Metadata& metadata, const char* key, const char* value) {
    // No key: every entry was removed. No value: this entry was.
    const std::string_view text = value != nullptr ? value : std::string_view{};
    if (metadata.name == defaultMetadata) {
        if (key == nullptr || named(key, "default.audio.sink"))
            defaultSinkName_ = key != nullptr ? defaultNodeName(text) : std::nullopt;
    } else if (clock_) {
        if (key == nullptr) {
            *clock_ = ClockSettings{};
        } else if (named(key, "clock.rate")) {
            clock_->rate = wholeNumber(text).value_or(0);
        } else if (named(key, "clock.allowed-rates")) {
            clock_->allowedRates = numberList(text);
        } else if (named(key, "clock.force-rate")) {
            clock_->forcedRate = wholeNumber(text).value_or(0);
        }
    }
    changed();
}

void GraphMirror::changed() {
    // The daemon answers in order: when this round trip is done, so is every read asked for
    // before it. Only the newest one publishes.
    latestSync_ = calls::sync(connection_.core());
}

void GraphMirror::onDone(void* data, std::uint32_t id, int seq) {
    auto& mirror = *static_cast<GraphMirror*>(data);
    if (id != PW_ID_CORE || seq != mirror.latestSync_) return;
    for (const auto& [nodeID, node] : mirror.nodes_) {
        node->format.finishRead();
        node->offers.finishRead();
        if (!node->format.values.empty()) node->lastFormat = node->format.values.front();
    }
    mirror.publish();
}

void GraphMirror::onError(void* data, std::uint32_t id, int, int result, const char*) {
    auto& mirror = *static_cast<GraphMirror*>(data);
    if (id != PW_ID_CORE || result != -EPIPE) return;
    // The daemon has gone, and with it every device it showed.
    mirror.forgetEverything();
    mirror.publish();
}

void GraphMirror::forgetEverything() {
    nodes_.clear();
    metadata_.clear();
    clients_.clear();
    defaultSinkName_.reset();
    clock_.reset();
}

void GraphMirror::publish() {
    auto next = std::make_shared<GraphSnapshot>();
    for (const auto& [id, node] : nodes_) {
        std::optional<NegotiatedFormat> format;
        if (!node->format.values.empty()) format = node->format.values.front();
        if (node->isSink) {
            next->sinks.push_back(SinkNode{node->serial, node->name, node->description, node->nick,
                                           format, node->lastFormat, node->offers.values});
            continue;
        }
        std::optional<std::int64_t> process = node->processID;
        if (!process && node->clientID) {
            if (const auto client = clients_.find(*node->clientID); client != clients_.end())
                process = client->second;
        }
        next->streams.push_back(PlaybackStream{node->serial, process, format});
    }
    const auto bySerial = [](const auto& first, const auto& second) {
        return first.serial < second.serial;
    };
    std::sort(next->sinks.begin(), next->sinks.end(), bySerial);
    std::sort(next->streams.begin(), next->streams.end(), bySerial);
    next->defaultSinkName = defaultSinkName_;
    next->clock = clock_;
    {
        const std::lock_guard lock(snapshotMutex_);
        snapshot_ = std::move(next);
    }
    published_ = true;
    connection_.signal();
    if (onPublished_) onPublished_();
}

}  // namespace corvanel::pipewire
