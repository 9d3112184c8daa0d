// The desktop's sound settings as the popup offers them on Linux: which entry is found on which
// desktop, and that opening it really starts its program with the entry's arguments.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "GuiApplication.h"
#include "platform/qt/DesktopEntries.h"
#include "platform/qt/LocalWorkspace.h"

#if !defined(__APPLE__)

namespace corvanel {
namespace {

// XDG data folders of the test's own: the user's (XDG_DATA_HOME) and one system folder.
class DesktopEntriesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::guiApplication();
        ASSERT_TRUE(root_.isValid());
        for (const char* folder : {"home/applications", "system/applications", "bin"})
            QDir(root_.path()).mkpath(folder);
        saved_ = {qgetenv("XDG_DATA_HOME"), qgetenv("XDG_DATA_DIRS"),
                  qgetenv("XDG_CURRENT_DESKTOP")};
        qputenv("XDG_DATA_HOME", root_.filePath("home").toUtf8());
        qputenv("XDG_DATA_DIRS", root_.filePath("system").toUtf8());
        qunsetenv("XDG_CURRENT_DESKTOP");
        // A "program" that records its arguments, one per line, where the test can read them.
        program_ = root_.filePath("bin/sound-tool");
        writeFile(program_, "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"" +
                                root_.filePath("arguments").toUtf8() + "\"\n");
        QFile::setPermissions(program_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void TearDown() override {
        qputenv("XDG_DATA_HOME", saved_[0]);
        qputenv("XDG_DATA_DIRS", saved_[1]);
        qputenv("XDG_CURRENT_DESKTOP", saved_[2]);
    }

    static void writeFile(const QString& path, const QByteArray& text) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }
    QString entry(const char* folder, const char* name, const QByteArray& extra = {},
                  const QByteArray& arguments = {}) {
        const QString path = root_.filePath(QString(folder) + "/applications/" + name);
        writeFile(path, "[Desktop Entry]\nType=Application\nName=Sound\nExec=" + program_.toUtf8() +
                            arguments + "\n" + extra +
                            "[Desktop Action Other]\nExec=/nonexistent\n");
        return path;
    }

    QTemporaryDir root_;
    QString program_;
    std::array<QByteArray, 3> saved_;
};

TEST_F(DesktopEntriesTest, TheCurrentDesktopsOwnPanelComesBeforeAnyVolumeControl) {
    EXPECT_FALSE(findSoundSettingsEntry()) << "nothing installed, nothing offered";

    const QString volumeControl = entry("system", "org.pulseaudio.pavucontrol.desktop");
    const QString plasma = entry("system", "kcm_pulseaudio.desktop");
    const QString gnome = entry("system", "gnome-sound-panel.desktop");
    EXPECT_EQ(findSoundSettingsEntry(), volumeControl) << "no desktop named: a desktop's panel "
                                                          "would open the wrong desktop";
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    EXPECT_EQ(findSoundSettingsEntry(), gnome);
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    EXPECT_EQ(findSoundSettingsEntry(), plasma);

    // The user's own copy of an entry overrides the system's, and may hide it.
    entry("home", "kcm_pulseaudio.desktop", "Hidden=true\n");
    EXPECT_EQ(findSoundSettingsEntry(), volumeControl);
}

TEST_F(DesktopEntriesTest, EntriesWhoseProgramIsMissingAreNotOffered) {
    entry("system", "pavucontrol.desktop", "TryExec=/nonexistent/pavucontrol\n");
    EXPECT_FALSE(findSoundSettingsEntry());
    writeFile(root_.filePath("system/applications/pavucontrol.desktop"),
              "[Desktop Entry]\nType=Application\nExec=no-such-program-here %U\n");
    EXPECT_FALSE(findSoundSettingsEntry());
    writeFile(root_.filePath("system/applications/pavucontrol.desktop"),
              "[Desktop Entry]\nType=Link\nURL=https://example.invalid\n");
    EXPECT_FALSE(findSoundSettingsEntry());
    writeFile(root_.filePath("system/applications/pavucontrol.desktop"), "not an entry at all");
    EXPECT_FALSE(findSoundSettingsEntry());
}

TEST_F(DesktopEntriesTest, OpeningAnEntryRunsItsCommandWithoutFieldCodes) {
    const QString path =
        entry("system", "pavucontrol.desktop", {}, " --tab=3 \"two words\" %U 100%% back\\\\slash");
    LocalWorkspace workspace("corvanel-test-unused", {});
    ASSERT_TRUE(workspace.hasApplication(path.toStdString()));
    ASSERT_TRUE(workspace.openApplication(path.toStdString()));

    QFile arguments(root_.filePath("arguments"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return arguments.exists() && arguments.size() > 0; }, 5000));
    ASSERT_TRUE(arguments.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(arguments.readAll()), "--tab=3\ntwo words\n100%\nback\\slash\n");
}

}  // namespace
}  // namespace corvanel

#endif
