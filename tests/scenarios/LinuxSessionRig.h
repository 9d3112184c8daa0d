#pragma once
// Corvanel as a Linux user runs it, end to end: a private PipeWire session (daemon, WirePlumber,
// session bus, two DAC-like sinks), the project's test player speaking MPRIS and playing real
// files through PipeWire, and the real `corvanel --headless` without --demo. What the test
// checks comes from outside Corvanel: its printed activity, the player's call journal, and
// PipeWire's own tools.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "PipeWireTestSession.h"
#include "TestAudioFiles.h"

namespace corvanel::testing {

// The activity lines a headless run prints, without their times.
std::vector<std::string> activityLines(const std::string& printed);

class LinuxSessionRig {
  public:
    LinuxSessionRig();
    ~LinuxSessionRig();
    LinuxSessionRig(const LinuxSessionRig&) = delete;
    LinuxSessionRig& operator=(const LinuxSessionRig&) = delete;

    // Empty when the session and the control connection are up.
    std::string failure() const;
    PipeWireTestSession& session() { return session_; }
    const std::filesystem::path& directory() const { return directory_; }

    // Short test tracks, written once per test: CD audio, a 96 kHz/24-bit FLAC, a 256 kbps MP3.
    std::filesystem::path cdTrack();
    std::filesystem::path hiResTrack();
    std::filesystem::path mp3Track();

    // Starts the test player on the session (playing through PipeWire) and waits until it has
    // its name on the bus.
    void startPlayer();
    void stopPlayer();
    pid_t playerPid() const { return player_; }
    // Calls one of the player's methods from the test's own connection (the player's MPRIS
    // interface, or its test-control interface) and waits for the answer.
    QDBusMessage playerCall(const QString& method, const QVariantList& arguments = {});
    QDBusMessage playerControl(const QString& method, const QVariantList& arguments = {});
    // Opens a file as the player's new track and plays it.
    void play(const std::filesystem::path& track);
    // The player's journal: "<monotonic seconds> <call or event> ...", one per line.
    std::vector<std::string> playerJournal() const;

    // Starts `corvanel --headless --duration <seconds>` without --demo, with these settings
    // (JSON members such as "\"pauseDuringSwitch\": true"), and extra environment entries
    // (which override the session's).
    void startApp(double seconds, const std::string& settingsMembers = {},
                  const std::vector<std::string>& extraEnvironment = {});
    // Waits for the run to end by itself; its exit status, or -1 when it had to be stopped.
    int waitForAppExit(std::chrono::milliseconds timeout);
    std::vector<std::string> activity() const;
    std::string appOutput() const;
    // Waits until an activity line equals `line`.
    bool waitForActivity(const std::string& line,
                         std::chrono::milliseconds timeout = std::chrono::milliseconds(8000));

  private:
    PipeWireTestSession session_;
    std::filesystem::path directory_;
    std::unique_ptr<QDBusConnection> control_;
    pid_t player_ = -1;
    pid_t app_ = -1;
};

// Seconds on the clock the player's journal uses.
double monotonicSeconds();

}  // namespace corvanel::testing
