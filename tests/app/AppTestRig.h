#pragma once
// The shell's views against the real engine and analyzer on a simulated Mac in virtual time,
// with the demo's DAC as the output device and a workspace that records what it is asked.
#include <QPoint>
#include <memory>
#include <string>
#include <vector>

#include "GuiApplication.h"
#include "app/AppEnvironment.h"
#include "app/AppWindow.h"
#include "demo/DemoDac.h"
#include "switching/SimulatedMac.h"
#include "switching/SwitcherEngine.h"

namespace corvanel::testing {

class RecordingWorkspace final : public Workspace {
  public:
    bool hasApplications = false;
    std::vector<std::string> opened;
    int activations = 0;
    int olderCopiesAskedToQuit = 0;

    bool hasApplication(const std::string&) override { return hasApplications; }
    bool openApplication(const std::string& path) override {
        opened.push_back(path);
        return true;
    }
    void activateSelf() override { ++activations; }
    void askOlderCopiesToQuit() override { ++olderCopiesAskedToQuit; }
};

struct AppTestRig {
    SimulatedMac mac;
    std::shared_ptr<RecordingWorkspace> workspace = std::make_shared<RecordingWorkspace>();
    std::shared_ptr<WindowList> windows = std::make_shared<WindowList>();
    std::vector<QString> openedWindows;
    int quits = 0;
    QPoint pointer{-1000, -1000};
    AudioObjectID dac = 0;
    std::shared_ptr<SwitcherEngine> engine;

    explicit AppTestRig(bool withDevice = true) {
        guiApplication();
        if (withDevice) dac = installDemoDac(*mac.audio);
    }

    SwitcherEngine& start() {
        engine = SwitcherEngine::create(mac.ports());
        mac.executor->runUntilIdle();
        return *engine;
    }

    AppEnvironment environment() {
        AppEnvironment environment;
        environment.engine = engine;
        environment.executor = mac.executor;
        environment.settings = mac.settings;
        environment.workspace = workspace;
        environment.windows = windows;
        environment.openWindow = [this](const QString& id) { openedWindows.push_back(id); };
        environment.quit = [this] { ++quits; };
        environment.pointerPosition = [this] { return pointer; };
        return environment;
    }

    // The Music app starts a track whose decoder message reaches the log at once.
    void play(const std::string& rate, const std::string& bitRate, const std::string& kind,
              const std::string& decoderMessage) {
        mac.music->setTrack(SimMusicApp::Track{rate, bitRate, kind});
        mac.music->setPlayerState("playing");
        mac.log->add("Music", decoderMessage, mac.executor->wallNow());
        mac.postPlayerState("Playing");
        mac.executor->runUntilIdle();
    }
};

}  // namespace corvanel::testing
