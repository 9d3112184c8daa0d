#pragma once
// The application: one engine for the whole run, the status item with its live label and the
// popup below it, and the panel and visualizer windows opened by identifier. The newest copy a
// user starts asks older ones to quit before anything else happens; a headless run does not.
#include <QObject>
#include <memory>

#include "app/AppEnvironment.h"
#include "app/AppWindow.h"
#include "app/PlatformComposition.h"

namespace corvanel {

class ContentView;
class MenuBarLabel;
class PopupWindow;

class MyApp final : public QObject {
    Q_OBJECT

  public:
    static constexpr const char* statusItemPositionKey = "NSStatusItem Preferred Position Item-0";
    static constexpr std::int64_t leftmostPosition = 10000;

    explicit MyApp(Composition composition);
    ~MyApp() override;

    // Shows the status item and starts the demo, if any.
    void start();

    // Opens "panel" or "visualizer", or brings the open one forward. Null for other names.
    AppWindow* openWindow(const QString& identifier);

    const AppEnvironment& environment() const { return environment_; }
    PopupWindow& popup() { return *popup_; }
    ContentView& content() { return *content_; }
    StatusItem& statusItem() { return *statusItem_; }
    const MenuBarLabel& label() const { return *label_; }
    DemoPlayer* demo() const { return composition_.demo.get(); }

  private:
    AppWindow* makePanelWindow();
    AppWindow* makeVisualizerWindow();
    void reinsertStatusItemLater();

    Composition composition_;
    AppEnvironment environment_;
    std::unique_ptr<StatusItem> statusItem_;
    Seconds labelInterval_{0};
    std::unique_ptr<PopupWindow> popup_;
    ContentView* content_ = nullptr;
    std::unique_ptr<MenuBarLabel> label_;
};

}  // namespace corvanel
