#pragma once
// MyApp composed on the rig's simulated Mac, with a status item that remembers what it is given.
#include <QCoreApplication>
#include <memory>
#include <vector>

#include "AppTestRig.h"
#include "app/FramelessWindowChrome.h"
#include "app/MyApp.h"

namespace corvanel::testing {

class RecordingStatusItem final : public StatusItem {
  public:
    std::vector<QImage> images;
    std::vector<bool> insertions;
    QRect where{600, 0, 80, 24};

    void setLabelImage(const QImage& image) override { images.push_back(image); }
    void setInserted(bool inserted) override { insertions.push_back(inserted); }
    QRect geometry() const override { return where; }
};

struct AppLaunch {
    AppTestRig rig;
    std::unique_ptr<MyApp> app;
    RecordingStatusItem* item = nullptr;
    // The status item the application gets, when not the recording one.
    std::function<std::unique_ptr<StatusItem>()> makeItem;
    // How often the label may change on the item.
    Seconds labelInterval{0};
    int quits = 0;

    MyApp& launch() {
        Composition composition;
        composition.ports = rig.mac.ports();
        composition.ports.workspace = rig.workspace;
        composition.windowChrome = FramelessWindowChrome::factory();
        composition.quit = [this] { ++quits; };
        composition.makeStatusItem = [this] {
            if (makeItem) return StatusItemChoice{makeItem(), labelInterval};
            auto made = std::make_unique<RecordingStatusItem>();
            item = made.get();
            return StatusItemChoice{std::move(made), labelInterval};
        };
        app = std::make_unique<MyApp>(std::move(composition));
        app->start();
        rig.mac.executor->runUntilIdle();
        return *app;
    }

    void closeWindow(const QString& identifier) {
        app->environment().windows->withIdentifier(identifier)->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        rig.mac.executor->runUntilIdle();
    }
};

}  // namespace corvanel::testing
