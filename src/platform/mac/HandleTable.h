#pragma once
// Platform handles (listener blocks, observer tokens) kept under plain numeric ids, so the ports
// can hand out copyable ids while the adapter keeps the very object the platform needs back for
// removal. Ids start at 1 and are never reused within one table.
#include <cstdint>
#include <map>
#include <utility>

namespace corvanel {

template <typename Handle>
class HandleTable {
  public:
    using ID = std::uint64_t;

    ID insert(Handle handle) {
        const ID id = ++lastID_;
        handles_.emplace(id, std::move(handle));
        return id;
    }

    // The handle stored under `id`, or nullptr when there is none (never given, or erased).
    const Handle* find(ID id) const {
        const auto found = handles_.find(id);
        return found == handles_.end() ? nullptr : &found->second;
    }

    void erase(ID id) { handles_.erase(id); }

    template <typename Visit>
    void forEach(Visit&& visit) const {
        for (const auto& [id, handle] : handles_)
            visit(handle);
    }

    std::size_t size() const { return handles_.size(); }

  private:
    ID lastID_ = 0;
    std::map<ID, Handle> handles_;
};

}  // namespace corvanel
