#include "platform/sim/SimSettingsStore.h"

namespace corvanel {

void SimSettingsStore::preset(const std::string& key, SettingValue value) {
    std::lock_guard lock(mutex_);
    if (std::holds_alternative<std::monostate>(value)) {
        values_.erase(key);
    } else {
        values_[key] = std::move(value);
    }
}

std::vector<std::pair<std::string, StoredSettingValue>> SimSettingsStore::writes() const {
    std::lock_guard lock(mutex_);
    return writes_;
}

SettingValue SimSettingsStore::read(const std::string& key) const {
    std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    return found == values_.end() ? SettingValue{} : found->second;
}

void SimSettingsStore::write(const std::string& key, const StoredSettingValue& value) {
    std::lock_guard lock(mutex_);
    values_[key] = std::visit([](const auto& stored) { return SettingValue{stored}; }, value);
    writes_.emplace_back(key, value);
}

}  // namespace corvanel
