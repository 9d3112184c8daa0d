#pragma once
// The floating meter panel's content: a style menu at the top right, a one-line summary of the
// rate switch, and the live meter in the chosen style. It tells the analyzer while it is on
// screen, keeps the window buttons hidden unless the pointer is over the window, resizes the
// window between the compact and the tall styles with the top edge fixed, and stores the chosen
// style and the always-on-top choice.
#include <QPointer>
#include <QPropertyAnimation>
#include <QWidget>
#include <memory>
#include <optional>

#include "app/AppEnvironment.h"
#include "app/PanelMeterStyle.h"
#include "platform/Signal.h"
#include "platform/Task.h"

class QAction;
class QLabel;
class QMenu;
class QToolButton;

namespace corvanel {

class AppWindow;
class MeterContent;
class ShrinkingLabel;

class PanelView final : public QWidget {
    Q_OBJECT

  public:
    static constexpr const char* meterStyleKey = "panelMeterStyle";
    static constexpr const char* alwaysOnTopKey = "panelAlwaysOnTop";
    static constexpr const char* defaultMeterStyle = "bars";
    static constexpr int compactHeight = 300;
    static constexpr int tallHeight = 560;
    static constexpr int minimumWidth = 460;
    static constexpr Seconds hoverPollInterval{0.25};
    static constexpr int resizeAnimationMilliseconds = 200;

    explicit PanelView(AppEnvironment environment, QWidget* parent = nullptr);
    ~PanelView() override;

    const QString& meterStyle() const { return meterStyle_; }
    // What the style menu does: stores the style and resizes across groups.
    void chooseStyle(const QString& rawValue);
    bool alwaysOnTop() const;
    void setAlwaysOnTop(bool onTop);

    // The first open window of the application whose identifier contains "panel".
    AppWindow* panelWindow() const;
    void handleHover(bool inside);
    void setWindowControls(bool visible);
    void resizePanel(const QString& oldStyle, const QString& newStyle);

    QMenu& styleMenu() { return *menu_; }
    bool hasPendingHide() const { return hideTask_ && !hideTask_->isFinished(); }

    static PanelHeightGroup groupOf(const QString& rawValue);
    static int contentHeight(PanelHeightGroup group);

  protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // What the hide task needs from the view, held weakly by the task.
    struct HoverProbe {
        std::function<bool()> pointerInsideWindow;
        std::function<bool()> hasWindow;
        std::function<void()> hideControls;
    };
    static Task<> hideWhenPointerLeaves(std::weak_ptr<HoverProbe> weak);

    QWidget* makeHeader();
    QWidget* makeSummary();
    void refreshSummary();
    void refreshMenuChecks();
    void applyMinimumSize(PanelHeightGroup group);
    // Brings the window to the group's content height with its top edge fixed.
    void bringToGroupHeight(AppWindow& window, PanelHeightGroup group, bool animated);

    AppEnvironment environment_;
    QString meterStyle_;
    QToolButton* menuButton_ = nullptr;
    QMenu* menu_ = nullptr;
    QAction* alwaysOnTopAction_ = nullptr;
    ShrinkingLabel* detectedValue_ = nullptr;
    ShrinkingLabel* detectedCaption_ = nullptr;
    ShrinkingLabel* deviceValue_ = nullptr;
    ShrinkingLabel* deviceCaption_ = nullptr;
    MeterContent* meter_ = nullptr;
    Connection engineChanged_;
    std::shared_ptr<HoverProbe> hoverProbe_;
    std::optional<TaskHandle> hideTask_;
    QPointer<QPropertyAnimation> resizeAnimation_;
    // The group whose height a zoomed window takes when it is restored.
    std::optional<PanelHeightGroup> heightOnRestore_;
    bool appeared_ = false;
};

}  // namespace corvanel
