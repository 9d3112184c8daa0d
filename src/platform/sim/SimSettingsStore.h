#pragma once
// An in-memory settings store. It can hold a value of any kind a real store may contain
// (including kinds this program does not read) and records every write in order.
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/SettingsStore.h"

namespace corvanel {

class SimSettingsStore final : public SettingsStore {
  public:
    // Puts a value in place as if it had been stored earlier (not recorded as a write).
    void preset(const std::string& key, SettingValue value);
    std::vector<std::pair<std::string, StoredSettingValue>> writes() const;

    SettingValue read(const std::string& key) const override;
    void write(const std::string& key, const StoredSettingValue& value) override;

  private:
    mutable std::mutex mutex_;
    std::map<std::string, SettingValue> values_;
    std::vector<std::pair<std::string, StoredSettingValue>> writes_;
};

}  // namespace corvanel
