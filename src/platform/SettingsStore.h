#pragma once
// Port: the per-user defaults store, standard domain.
#include <cstdint>
#include <string>
#include <variant>

namespace corvanel {

// A stored value of a type this program does not read (a date, a list, ...).
struct OtherSettingValue {
    friend bool operator==(const OtherSettingValue&, const OtherSettingValue&) = default;
};
// std::monostate: no value under the key.
using SettingValue =
    std::variant<std::monostate, bool, std::int64_t, std::string, OtherSettingValue>;
using StoredSettingValue = std::variant<bool, std::int64_t, std::string>;

class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    virtual SettingValue read(const std::string& key) const = 0;
    virtual void write(const std::string& key, const StoredSettingValue& value) = 0;
};

// The stored boolean, or `fallback` when the key is absent or holds another type.
inline bool readBool(const SettingsStore& store, const std::string& key, bool fallback) {
    const SettingValue value = store.read(key);
    if (const bool* stored = std::get_if<bool>(&value)) return *stored;
    return fallback;
}

}  // namespace corvanel
