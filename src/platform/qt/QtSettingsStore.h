#pragma once
// The per-user defaults store on QSettings. Values keep their type across processes: a boolean
// written here reads back as a boolean in the next run. macOS uses the native defaults; other
// systems use a JSON file, because an INI file would hand every value back as text.
#include <QSettings>
#include <QString>
#include <memory>
#include <optional>
#include <string>

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

    // What the user must be told once about the file, when it could not be read at start: it
    // was set aside under a new name with the members that still read carried over, or (when
    // it could not be moved) it is left alone and nothing is written to it.
    const std::optional<std::string>& startupNotice() const { return startupNotice_; }

  private:
    void keepAnUnreadableFile();

    std::unique_ptr<QSettings> settings_;
    bool writable_ = true;
    std::optional<std::string> startupNotice_;
};

// The QSettings format used for typed files on systems whose native format is untyped.
QSettings::Format typedSettingsFormat();

}  // namespace corvanel
