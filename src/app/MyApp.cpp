#include "app/MyApp.h"

#include <QApplication>
#include <QCursor>

#include "app/CandlelightView.h"
#include "app/ContentView.h"
#include "app/MenuBarLabel.h"
#include "app/PanelView.h"
#include "app/PopupWindow.h"
#include "demo/DemoPlayer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

constexpr QSize panelSize{500, 300};
constexpr QSize visualizerSize{960, 600};
constexpr Seconds demoStartDelay{1.0};

}  // namespace

MyApp::MyApp(Composition composition) : composition_(std::move(composition)) {
    const PlatformPorts& ports = composition_.ports;
    if (composition_.singleInstance) ports.workspace->askOlderCopiesToQuit();
#if defined(Q_OS_MACOS)
    ports.settings->write(statusItemPositionKey, leftmostPosition);
#endif

    environment_.engine = SwitcherEngine::create(ports);
    for (const std::string& notice : composition_.notices)
        environment_.engine->logLine(notice);
    environment_.executor = ports.executor;
    environment_.settings = ports.settings;
    environment_.workspace = ports.workspace;
    environment_.windows = std::make_shared<WindowList>();
    environment_.openWindow = [this](const QString& identifier) { openWindow(identifier); };
    environment_.quit = composition_.quit ? composition_.quit : [] { QCoreApplication::quit(); };
    environment_.pointerPosition = [] { return QCursor::pos(); };
    environment_.privacyNote = composition_.privacyNote;
    environment_.soundSettings = composition_.soundSettings;
    environment_.player = ports.player;

    popup_ = std::make_unique<PopupWindow>();
    content_ = new ContentView(environment_, popup_.get());
    popup_->setContent(content_);

    StatusItemChoice choice = composition_.makeStatusItem();
    statusItem_ = std::move(choice.item);
    labelInterval_ = choice.labelInterval;
    statusItem_->onActivated = [this] { popup_->toggle(statusItem_->geometry()); };
    statusItem_->onQuitRequested = environment_.quit;
    label_ = std::make_unique<MenuBarLabel>(environment_.engine, *statusItem_, ports.executor,
                                            labelInterval_);
}

MyApp::~MyApp() {
    // Windows go first: their views still talk to the engine as they close.
    for (AppWindow* window : environment_.windows->openWindows())
        window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // The engine goes here, while the application object still exists: the views let go of it,
    // then the executor drops the tasks that still hold it (the start-up scan among them).
    label_.reset();
    content_ = nullptr;
    popup_.reset();
    statusItem_.reset();
    environment_.engine.reset();
    composition_.demo.reset();
    composition_.ports.executor->shutDown();
}

void MyApp::start() {
    statusItem_->setInserted(true);
    reinsertStatusItemLater();
    if (composition_.demo) composition_.demo->start(demoStartDelay);
}

void MyApp::reinsertStatusItemLater() {
#if defined(Q_OS_MACOS)
    // The status bar places a re-inserted item by the stored position: leftmost. Once per run.
    auto settings = composition_.ports.settings;
    auto executor = composition_.ports.executor;
    StatusItem* item = statusItem_.get();
    QPointer<MyApp> self(this);
    executor->postAfter(std::chrono::seconds(12), [self, settings, executor, item] {
        if (!self) return;
        settings->write(statusItemPositionKey, leftmostPosition);
        item->setInserted(false);
        executor->postAfter(std::chrono::milliseconds(400), [self, item] {
            if (self) item->setInserted(true);
        });
    });
#endif
}

AppWindow* MyApp::openWindow(const QString& identifier) {
    AppWindow* window = environment_.windows->withIdentifier(identifier);
    if (!window) {
        if (identifier == "panel") window = makePanelWindow();
        if (identifier == "visualizer") window = makeVisualizerWindow();
        if (!window) return nullptr;
        environment_.windows->add(window);
    }
    // show() alone leaves a minimised window in the dock or taskbar: restore it to the state it
    // had (normal or zoomed) first, then bring it to the front with the keyboard focus.
    window->setWindowState((window->windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

AppWindow* MyApp::makePanelWindow() {
    auto window = new AppWindow("panel", "Corvanel", panelSize, composition_.windowChrome);
    window->chrome().setFloating(readBool(*environment_.settings, PanelView::alwaysOnTopKey, true));
    window->setContent(new PanelView(environment_, window));
    return window;
}

AppWindow* MyApp::makeVisualizerWindow() {
    auto window =
        new AppWindow("visualizer", "Candlelight", visualizerSize, composition_.windowChrome);
    window->setContent(new CandlelightView(environment_.engine, window));
    return window;
}

}  // namespace corvanel
