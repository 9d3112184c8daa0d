#pragma once
// Change notification for the portable models (engine, analyzer): views connect a slot and keep
// the returned Connection; dropping the Connection disconnects. Main thread only.
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace corvanel {

class Connection {
  public:
    Connection() = default;
    explicit Connection(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}
    Connection(Connection&& other) noexcept : disconnect_(std::exchange(other.disconnect_, {})) {}
    Connection& operator=(Connection&& other) noexcept {
        if (this != &other) {
            reset();
            disconnect_ = std::exchange(other.disconnect_, {});
        }
        return *this;
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { reset(); }

    void reset() {
        if (auto disconnect = std::exchange(disconnect_, {})) disconnect();
    }

  private:
    std::function<void()> disconnect_;
};

template <typename... Args>
class Signal {
  public:
    using Slot = std::function<void(Args...)>;

    [[nodiscard]] Connection connect(Slot slot) {
        const std::uint64_t id = ++slots_->lastID;
        slots_->entries.push_back({id, std::make_shared<Slot>(std::move(slot))});
        std::weak_ptr<Slots> weak = slots_;
        return Connection([weak, id] {
            if (auto slots = weak.lock())
                std::erase_if(slots->entries, [id](const Entry& entry) { return entry.id == id; });
        });
    }

    // Slots connected or disconnected during an emission take effect from the next one.
    void emit(Args... args) const {
        const std::vector<Entry> snapshot = slots_->entries;
        for (const Entry& entry : snapshot)
            (*entry.slot)(args...);
    }

  private:
    struct Entry {
        std::uint64_t id;
        std::shared_ptr<Slot> slot;
    };
    struct Slots {
        std::uint64_t lastID = 0;
        std::vector<Entry> entries;
    };
    std::shared_ptr<Slots> slots_ = std::make_shared<Slots>();
};

}  // namespace corvanel
