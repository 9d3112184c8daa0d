#pragma once
// Ownership of libpipewire's objects: each handle frees its object the way the library wants it
// freed, and a listener hook leaves its object's hook list when it goes.
#include <pipewire/pipewire.h>

#include <memory>

namespace corvanel::pipewire {

struct ThreadLoopDestroy {
    void operator()(pw_thread_loop* loop) const { pw_thread_loop_destroy(loop); }
};
struct ContextDestroy {
    void operator()(pw_context* context) const { pw_context_destroy(context); }
};
struct CoreDisconnect {
    void operator()(pw_core* core) const { pw_core_disconnect(core); }
};
struct ProxyDestroy {
    void operator()(pw_proxy* proxy) const { pw_proxy_destroy(proxy); }
};
struct NodeInfoFree {
    void operator()(pw_node_info* info) const { pw_node_info_free(info); }
};

using ThreadLoopHandle = std::unique_ptr<pw_thread_loop, ThreadLoopDestroy>;
using ContextHandle = std::unique_ptr<pw_context, ContextDestroy>;
using CoreHandle = std::unique_ptr<pw_core, CoreDisconnect>;
using ProxyHandle = std::unique_ptr<pw_proxy, ProxyDestroy>;
using NodeInfoHandle = std::unique_ptr<pw_node_info, NodeInfoFree>;

// One listener registration. The library keeps the hook's address, so it never moves; it is
// removed when it goes (with the thread loop locked, like every call on a live object).
class ListenerHook {
  public:
    ListenerHook() = default;
    ~ListenerHook() { remove(); }
    ListenerHook(const ListenerHook&) = delete;
    ListenerHook& operator=(const ListenerHook&) = delete;

    spa_hook* get() { return &hook_; }
    // Leaves the hook list now; harmless when it never joined one or has left already.
    void remove() {
        spa_hook_remove(&hook_);
        hook_ = spa_hook{};
    }

  private:
    spa_hook hook_{};
};

// Holds the thread loop's lock for as long as it lives.
class LoopLock {
  public:
    explicit LoopLock(pw_thread_loop* loop) : loop_(loop) { pw_thread_loop_lock(loop_); }
    ~LoopLock() { pw_thread_loop_unlock(loop_); }
    LoopLock(const LoopLock&) = delete;
    LoopLock& operator=(const LoopLock&) = delete;

  private:
    pw_thread_loop* loop_;
};

}  // namespace corvanel::pipewire
