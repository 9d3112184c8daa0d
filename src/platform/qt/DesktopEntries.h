#pragma once
// Desktop entries (freedesktop .desktop files): how a Linux desktop names its applications. The
// workspace opens them as macOS opens an application bundle, and the popup's button for the
// system's sound settings is one of them.
#include <QString>
#include <QStringList>
#include <optional>

namespace corvanel {

// The program and arguments of the entry's Exec key, its field codes (%f, %U, ...) dropped;
// nothing when the file is no application entry, is hidden, or its program is not installed.
std::optional<QStringList> desktopEntryCommand(const QString& path);

// The desktop's own sound settings where one is installed: the current desktop's panel first
// (GNOME, KDE Plasma, Xfce, ...), then a volume control any desktop may have. Searched in the
// XDG data folders, the user's own first.
std::optional<QString> findSoundSettingsEntry();

}  // namespace corvanel
