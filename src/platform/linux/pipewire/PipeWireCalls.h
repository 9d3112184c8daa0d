#pragma once
// The libpipewire methods Corvanel calls, as functions on proxies. The library's method macros
// expand to GNU statement expressions (and compare a signed with an unsigned version number),
// which a pedantic clang build reports at every use; they are expanded here once, with those two
// reports off. Each object's proxy is its pw_proxy, as the library documents.
#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#include <cstdint>

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wgnu-statement-expression-from-macro-expansion"
#pragma clang diagnostic ignored "-Wsign-compare"
#endif

namespace corvanel::pipewire::calls {

// Asks for a round trip; the done event carries the returned sequence number.
inline int sync(pw_core* core) {
    return pw_core_sync(core, PW_ID_CORE, 0);
}

inline void addCoreListener(pw_core* core, spa_hook* hook, const pw_core_events* events,
                            void* data) {
    pw_core_add_listener(core, hook, events, data);
}

inline pw_proxy* registry(pw_core* core) {
    return reinterpret_cast<pw_proxy*>(pw_core_get_registry(core, PW_VERSION_REGISTRY, 0));
}

inline void addRegistryListener(pw_proxy* registry, spa_hook* hook,
                                const pw_registry_events* events, void* data) {
    pw_registry_add_listener(reinterpret_cast<pw_registry*>(registry), hook, events, data);
}

inline pw_proxy* bind(pw_proxy* registry, std::uint32_t id, const char* type,
                      std::uint32_t version) {
    return static_cast<pw_proxy*>(
        pw_registry_bind(reinterpret_cast<pw_registry*>(registry), id, type, version, 0));
}

inline void addNodeListener(pw_proxy* node, spa_hook* hook, const pw_node_events* events,
                            void* data) {
    pw_node_add_listener(reinterpret_cast<pw_node*>(node), hook, events, data);
}

// Asks for every value of one parameter; the param events carry the returned sequence number.
inline int enumerateParams(pw_proxy* node, std::uint32_t id) {
    return pw_node_enum_params(reinterpret_cast<pw_node*>(node), 0, id, 0, UINT32_MAX, nullptr);
}

inline void addMetadataListener(pw_proxy* metadata, spa_hook* hook,
                                const pw_metadata_events* events, void* data) {
    pw_metadata_add_listener(reinterpret_cast<pw_metadata*>(metadata), hook, events, data);
}

inline void setMetadataProperty(pw_proxy* metadata, std::uint32_t subject, const char* key,
                                const char* value) {
    pw_metadata_set_property(reinterpret_cast<pw_metadata*>(metadata), subject, key, nullptr,
                             value);
}

}  // namespace corvanel::pipewire::calls

#if defined(__clang__)
#pragma clang diagnostic pop
#endif
