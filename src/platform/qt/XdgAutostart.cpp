#include "platform/qt/XdgAutostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace corvanel {

XdgAutostart::XdgAutostart(QString entryPath, QString executable)
    : entryPath_(std::move(entryPath)), executable_(std::move(executable)) {}

XdgAutostart XdgAutostart::forCurrentUser() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    return XdgAutostart(config + "/autostart/corvanel.desktop",
                        QCoreApplication::applicationFilePath());
}

LoginItemStatus XdgAutostart::status() {
    QFile entry(entryPath_);
    if (!entry.open(QIODevice::ReadOnly)) return LoginItemStatus::notRegistered;
    // A desktop may switch an entry off in place rather than delete it.
    const QByteArray text = entry.readAll();
    if (text.contains("\nHidden=true") || text.contains("\nX-GNOME-Autostart-enabled=false"))
        return LoginItemStatus::notRegistered;
    return LoginItemStatus::enabled;
}

std::optional<std::string> XdgAutostart::registerApp() {
    if (!QDir().mkpath(QFileInfo(entryPath_).absolutePath()))
        return "Could not create the folder of " + entryPath_.toStdString();
    QSaveFile entry(entryPath_);
    if (!entry.open(QIODevice::WriteOnly)) return entry.errorString().toStdString();
    QString quoted = executable_;
    quoted.replace("\\", "\\\\").replace("\"", "\\\"");
    entry.write(QStringLiteral("[Desktop Entry]\nType=Application\nName=Corvanel\n"
                               "Comment=Follows the playing track's sample rate\n"
                               "Exec=\"%1\"\nTerminal=false\nX-GNOME-Autostart-enabled=true\n")
                    .arg(quoted)
                    .toUtf8());
    if (!entry.commit()) return entry.errorString().toStdString();
    return std::nullopt;
}

std::optional<std::string> XdgAutostart::unregisterApp() {
    QFile entry(entryPath_);
    if (!entry.exists() || entry.remove()) return std::nullopt;
    return entry.errorString().toStdString();
}

}  // namespace corvanel
