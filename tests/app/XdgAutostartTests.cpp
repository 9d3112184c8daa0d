// "Launch at login" on a freedesktop desktop: the autostart entry starts the program as the
// installed desktop entry starts it, names the program so a removed one is skipped, and follows
// a program that moved.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/qt/XdgAutostart.h"

namespace corvanel {
namespace {

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& text) {
    QDir().mkpath(path.section('/', 0, -2));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(text);
}

// PATH for one test: a desktop finds a bare Exec name there.
class ScopedPath {
  public:
    explicit ScopedPath(const QString& path) : saved_(qgetenv("PATH")) {
        qputenv("PATH", path.toLocal8Bit());
    }
    ~ScopedPath() { qputenv("PATH", saved_); }
    ScopedPath(const ScopedPath&) = delete;
    ScopedPath& operator=(const ScopedPath&) = delete;

  private:
    QByteArray saved_;
};

class XdgAutostartTest : public ::testing::Test {
  protected:
    void SetUp() override {
        writeFile(installed(), "#!/bin/sh\n");
        QFile::setPermissions(installed(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString path(const QString& relative) const { return root_.filePath(relative); }
    QString installed() const { return path("usr/bin/corvanel"); }
    QString desktopEntry(const QByteArray& exec) {
        const QString entry = path("usr/share/applications/com.corvanel.Corvanel.desktop");
        writeFile(entry, "[Desktop Entry]\nType=Application\nName=Corvanel\nExec=" + exec +
                             "\n\n[Desktop Action Panel]\nExec=elsewhere --open panel\n");
        return entry;
    }
    QString autostartEntry() const {
        return path("config/autostart/com.corvanel.Corvanel.desktop");
    }

  private:
    QTemporaryDir root_;
};

TEST_F(XdgAutostartTest, TheInstalledProgramStartsAsItsDesktopEntrySays) {
    const ScopedPath onPath(path("usr/bin"));
    const auto byName = XdgAutostart::launcherFor(installed(), desktopEntry("corvanel"));
    EXPECT_EQ(byName.exec, "corvanel");
    EXPECT_EQ(byName.program, installed());

    // The same program reached through another folder (a merged /bin, a symlink) is the same.
    ASSERT_TRUE(QFile::link(path("usr/bin"), path("bin")));
    const auto byPath =
        XdgAutostart::launcherFor(path("bin/corvanel"), desktopEntry(installed().toUtf8()));
    EXPECT_EQ(byPath.exec, installed());

    const QString spaced = path("opt/My Apps/corvanel");
    writeFile(spaced, "#!/bin/sh\n");
    const auto quoted =
        XdgAutostart::launcherFor(spaced, desktopEntry("\"" + spaced.toUtf8() + "\" --demo"));
    EXPECT_EQ(quoted.exec, "\"" + spaced + "\" --demo");
    EXPECT_EQ(quoted.program, spaced);
}

TEST_F(XdgAutostartTest, AnotherCopyStartsByItsOwnPath) {
    const ScopedPath onPath(path("usr/bin"));
    const QString build = path("src/build \"dev\"/corvanel");
    writeFile(build, "#!/bin/sh\n");
    const auto fromBuild = XdgAutostart::launcherFor(build, desktopEntry("corvanel"));
    EXPECT_EQ(fromBuild.exec, "\"" + path("src/build \\\"dev\\\"/corvanel") + "\"");
    EXPECT_EQ(fromBuild.program, build);

    // Not installed at all, or installed for a program that is gone.
    EXPECT_EQ(XdgAutostart::launcherFor(build, QString()).program, build);
    EXPECT_EQ(XdgAutostart::launcherFor(build, desktopEntry("\"/nowhere/corvanel\"")).program,
              build);
}

TEST_F(XdgAutostartTest, RegisteringWritesAnEntryThatARemovedProgramCannotBreak) {
    XdgAutostart autostart(autostartEntry(), {"corvanel --flag", installed()});
    EXPECT_EQ(autostart.status(), LoginItemStatus::notRegistered);

    EXPECT_EQ(autostart.registerApp(), std::nullopt);
    EXPECT_EQ(autostart.status(), LoginItemStatus::enabled);
    const QByteArray text = contentsOf(autostartEntry());
    EXPECT_TRUE(text.contains("\nExec=corvanel --flag\n")) << text.toStdString();
    // Desktops skip an entry whose TryExec program is missing instead of failing to start it.
    EXPECT_TRUE(text.contains("\nTryExec=" + installed().toUtf8() + "\n")) << text.toStdString();

    EXPECT_EQ(autostart.unregisterApp(), std::nullopt);
    EXPECT_EQ(autostart.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(autostart.unregisterApp(), std::nullopt);  // nothing left to remove
}

TEST_F(XdgAutostartTest, StartingFromANewPlaceRewritesOnlyAnEnabledEntry) {
    const XdgAutostart::Launcher moved{"\"/opt/corvanel/corvanel\"", "/opt/corvanel/corvanel"};
    EXPECT_EQ(XdgAutostart(autostartEntry(), moved).refresh(), std::nullopt);
    EXPECT_FALSE(QFile::exists(autostartEntry()));  // never switched on: nothing is written

    ASSERT_EQ(XdgAutostart(autostartEntry(), {"corvanel", installed()}).registerApp(),
              std::nullopt);
    EXPECT_EQ(XdgAutostart(autostartEntry(), moved).refresh(), std::nullopt);
    const QByteArray rewritten = contentsOf(autostartEntry());
    EXPECT_TRUE(rewritten.contains("\nExec=\"/opt/corvanel/corvanel\"\n"));
    EXPECT_TRUE(rewritten.contains("\nTryExec=/opt/corvanel/corvanel\n"));
    EXPECT_FALSE(rewritten.contains(installed().toUtf8()));

    // Switched off by the desktop: the user's choice stays as the desktop left it.
    const QByteArray switchedOff = "[Desktop Entry]\nExec=corvanel\nHidden=true\n";
    writeFile(autostartEntry(), switchedOff);
    EXPECT_EQ(XdgAutostart(autostartEntry(), moved).refresh(), std::nullopt);
    EXPECT_EQ(contentsOf(autostartEntry()), switchedOff);
}

TEST_F(XdgAutostartTest, AnEntrySwitchedOffByTheDesktopIsNotEnabledAndFailuresAreWorded) {
    writeFile(autostartEntry(),
              "[Desktop Entry]\nExec=corvanel\nX-GNOME-Autostart-enabled=false\n");
    EXPECT_EQ(XdgAutostart(autostartEntry(), {"corvanel", installed()}).status(),
              LoginItemStatus::notRegistered);

    // The autostart folder cannot be made where a plain file stands.
    writeFile(path("blocked"), "");
    const auto failure =
        XdgAutostart(path("blocked/autostart/corvanel.desktop"), {"corvanel", installed()})
            .registerApp();
    ASSERT_TRUE(failure);
    EXPECT_NE(failure->find("blocked"), std::string::npos);
}

}  // namespace
}  // namespace corvanel
