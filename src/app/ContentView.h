#pragma once
// The content that drops down below the status item: the detected source format next to the
// output device's format, the manual rate buttons, the four settings, the privacy note and the
// messages, the six newest activity lines, and the footer actions. It keeps nothing of its own:
// every value is read from the engine and the analyzer, every control writes to them.
#include <QLabel>
#include <QPointer>
#include <QWidget>
#include <vector>

#include "app/AppEnvironment.h"
#include "platform/Signal.h"

class QGridLayout;
class QPushButton;

namespace corvanel {

class ShrinkingLabel;
class ToggleSwitch;
class StatusDot;

class ContentView final : public QWidget {
    Q_OBJECT

  public:
    static constexpr int contentWidth = 340;
    static constexpr std::size_t activityRows = 6;

    explicit ContentView(AppEnvironment environment, QWidget* parent = nullptr);
    ~ContentView() override;

  private:
    QWidget* makeHeader();
    QWidget* makeRatesCard();
    QWidget* makeManualRates();
    QWidget* makeFooter();
    ToggleSwitch* makeToggle(const QString& text, const char* name);
    QLabel* makeMessage(const char* name, const QFont& font, const QColor& color);

    void refresh();
    void showFollowedPlayer();
    void refreshRateButtons();
    void setRate(double rate);

    AppEnvironment environment_;
    Connection engineChanged_;
    Connection spectrumChanged_;
    Connection playerChanged_;

    StatusDot* autoSwitchDot_ = nullptr;
    ShrinkingLabel* detectedText_ = nullptr;
    ShrinkingLabel* detectedSource_ = nullptr;
    ShrinkingLabel* deviceText_ = nullptr;
    ShrinkingLabel* deviceName_ = nullptr;
    QWidget* manualRates_ = nullptr;
    QGridLayout* rateGrid_ = nullptr;
    std::vector<QPushButton*> rateButtons_;
    std::vector<double> shownRates_;
    ToggleSwitch* autoSwitch_ = nullptr;
    ToggleSwitch* pauseDuringSwitch_ = nullptr;
    ToggleSwitch* launchAtLogin_ = nullptr;
    ToggleSwitch* liveEQ_ = nullptr;
    QLabel* privacyNote_ = nullptr;
    QLabel* statusMessage_ = nullptr;
    QLabel* lastError_ = nullptr;
    std::vector<ShrinkingLabel*> activity_;
};

}  // namespace corvanel
