#pragma once
// The per-user defaults store on QSettings. Values keep their type across processes: a boolean
// written here reads back as a boolean in the next run. macOS uses the native defaults; other
// systems use a JSON file, because an INI file would hand every value back as text.
#include <QSettings>
#include <QString>
#include <memory>

#include "platform/SettingsStore.h"

namespace corvanel {

class QtSettingsStore final : public SettingsStore {
  public:
    // The application's standard per-user store.
    QtSettingsStore();
    // A store in the typed file at `filePath` (tests, tools).
    explicit QtSettingsStore(const QString& filePath);

    SettingValue read(const std::string& key) const override;
    void write(const std::string& key, const StoredSettingValue& value) override;

  private:
    std::unique_ptr<QSettings> settings_;
};

// The QSettings format used for typed files on systems whose native format is untyped.
QSettings::Format typedSettingsFormat();

}  // namespace corvanel
