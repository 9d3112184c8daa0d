#include "app/ContentView.h"

#include <QApplication>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <cmath>

#include "app/AppStyle.h"
#include "app/ShrinkingLabel.h"
#include "app/StatusDot.h"
#include "app/Symbols.h"
#include "app/ToggleSwitch.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

constexpr int padding = 12;
constexpr int rowSpacing = 10;
constexpr int rateButtonMinimumWidth = 58;
constexpr int rateGridSpacing = 4;
constexpr double currentRateTolerance = 0.5;
constexpr double scanSecondsBack = 1800;

QString rgba(const QColor& color, double opacity) {
    return QStringLiteral("rgba(%1,%2,%3,%4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(opacity);
}

// A bordered button tinted with one colour.
QString tintedButtonStyle(const QColor& tint) {
    return QStringLiteral(
               "QPushButton{color:%1;background:%2;border:1px solid %3;border-radius:5px;"
               "padding:2px 4px;}QPushButton:pressed{background:%4;}")
        .arg(tint.name(), rgba(tint, 0.16), rgba(tint, 0.38), rgba(tint, 0.32));
}

QLabel* makeLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent) {
    auto label = new QLabel(text, parent);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

QWidget* column(ShrinkingLabel*& value, ShrinkingLabel*& caption, QWidget* parent) {
    auto box = new QWidget(parent);
    auto layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    value = new ShrinkingLabel(style::titleSemibold(), 0.55, box);
    // One line: a source or device name too long for the column ends in an ellipsis.
    caption = new ShrinkingLabel(style::caption(), 1.0, box);
    caption->setColor(style::secondary());
    layout->addWidget(value);
    layout->addWidget(caption);
    return box;
}

}  // namespace

ContentView::ContentView(AppEnvironment environment, QWidget* parent)
    : QWidget(parent), environment_(std::move(environment)) {
    setObjectName("contentView");
    // Fixed width, height from the rows. A layout size constraint would override the fixed
    // width with the rows' own minimum (330 px) once laid out.
    setFixedWidth(contentWidth);
    auto stack = new QVBoxLayout(this);
    stack->setContentsMargins(padding, padding, padding, padding);
    stack->setSpacing(rowSpacing);

    stack->addWidget(makeHeader());
    stack->addWidget(makeRatesCard());
    stack->addWidget(makeManualRates());
    autoSwitch_ = makeToggle("Auto-switch sample rate", "autoSwitchToggle");
    pauseDuringSwitch_ = makeToggle("Pause Music while switching", "pauseToggle");
    if (environment_.player) {
        showFollowedPlayer();
        playerChanged_ = environment_.player->changed.connect([this] { showFollowedPlayer(); });
    }
    launchAtLogin_ = makeToggle("Launch at login", "launchAtLoginToggle");
    liveEQ_ = makeToggle("Live EQ in menu bar", "liveEQToggle");
    for (ToggleSwitch* toggle : {autoSwitch_, pauseDuringSwitch_, launchAtLogin_, liveEQ_})
        stack->addWidget(toggle);

    privacyNote_ = makeMessage("privacyNote", style::caption2(), style::secondary());
    privacyNote_->setText(environment_.privacyNote);
    privacyNote_->setWordWrap(true);
    statusMessage_ = makeMessage("statusMessage", style::caption(), style::orange());
    lastError_ = makeMessage("lastError", style::caption(), style::red());
    for (QLabel* message : {privacyNote_, statusMessage_, lastError_})
        stack->addWidget(message);

    auto divider = new QFrame(this);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setStyleSheet(QStringLiteral("color:%1;").arg(rgba(style::secondary(), 0.35)));
    stack->addWidget(divider);

    auto activity = new QWidget(this);
    activity->setObjectName("activityLog");
    auto lines = new QVBoxLayout(activity);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(2);
    for (std::size_t i = 0; i < activityRows; ++i) {
        // A line too long for the popup ends in an ellipsis; its tooltip has all of it.
        auto line = new ShrinkingLabel(style::monospacedSmall(), 1.0, activity);
        line->setColor(style::secondary());
        line->setAlignment(Qt::AlignLeft);
        line->setObjectName(QStringLiteral("activityLine%1").arg(i));
        lines->addWidget(line);
        activity_.push_back(line);
    }
    stack->addWidget(activity);
    stack->addWidget(makeFooter());

    SwitcherEngine& engine = *environment_.engine;
    engineChanged_ = engine.changed.connect([this] { refresh(); });
    spectrumChanged_ = engine.spectrum()->stateChanged.connect([this] { refresh(); });
    refresh();
}

ContentView::~ContentView() = default;

QWidget* ContentView::makeHeader() {
    auto header = new QWidget(this);
    auto row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    auto symbol = new QLabel(header);
    symbol->setObjectName("headerSymbol");
    // Drawn for the screen's own pixel ratio: a sharper drawing scaled down smears the strokes.
    symbol->setPixmap(
        symbolPixmap(Symbol::waveform, style::accent(), 16, qApp->devicePixelRatio()));
    row->addWidget(symbol);
    row->addWidget(
        makeLabel("Corvanel", style::headline(), palette().color(QPalette::WindowText), header));
    row->addStretch(1);

    auto openPanel = new QToolButton(header);
    openPanel->setObjectName("openPanelButton");
    openPanel->setAutoRaise(true);
    openPanel->setIcon(symbolIcon(Symbol::windowOnRectangle, style::secondary(), 16));
    openPanel->setToolTip("Open the floating panel");
    openPanel->setStyleSheet("QToolButton{border:none;background:transparent;}");
    connect(openPanel, &QToolButton::clicked, this, [this] {
        if (environment_.openWindow) environment_.openWindow("panel");
        if (environment_.workspace) environment_.workspace->activateSelf();
    });
    row->addWidget(openPanel);

    autoSwitchDot_ = new StatusDot(8, header);
    autoSwitchDot_->setObjectName("autoSwitchIndicator");
    row->addWidget(autoSwitchDot_);
    return header;
}

QWidget* ContentView::makeRatesCard() {
    auto card = new QFrame(this);
    card->setObjectName("ratesCard");
    card->setStyleSheet(QStringLiteral("#ratesCard{background:%1;border-radius:8px;}")
                            .arg(rgba(QColor(Qt::white), 0.06)));
    auto row = new QHBoxLayout(card);
    row->setContentsMargins(8, 4 + 6, 8, 4 + 6);
    row->setSpacing(16);
    row->addWidget(column(detectedText_, detectedSource_, card), 1);
    auto arrow = new QLabel(card);
    arrow->setPixmap(symbolPixmap(Symbol::arrowRight, style::secondary(), 14));
    row->addWidget(arrow);
    row->addWidget(column(deviceText_, deviceName_, card), 1);
    detectedText_->setObjectName("detectedText");
    detectedSource_->setObjectName("detectedSource");
    deviceText_->setObjectName("deviceText");
    deviceName_->setObjectName("deviceName");
    return card;
}

QWidget* ContentView::makeManualRates() {
    manualRates_ = new QWidget(this);
    manualRates_->setObjectName("manualRates");
    auto stack = new QVBoxLayout(manualRates_);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(4);
    stack->addWidget(
        makeLabel("Set device rate", style::caption(), style::secondary(), manualRates_));
    auto grid = new QWidget(manualRates_);
    rateGrid_ = new QGridLayout(grid);
    rateGrid_->setContentsMargins(0, 0, 0, 0);
    rateGrid_->setHorizontalSpacing(rateGridSpacing);
    rateGrid_->setVerticalSpacing(rateGridSpacing);
    stack->addWidget(grid);
    return manualRates_;
}

ToggleSwitch* ContentView::makeToggle(const QString& text, const char* name) {
    auto toggle = new ToggleSwitch(text, this);
    toggle->setObjectName(name);
    toggle->setFont(style::callout());
    connect(toggle, &ToggleSwitch::clicked, this, [this, toggle](bool on) {
        SwitcherEngine& engine = *environment_.engine;
        if (toggle == autoSwitch_) engine.setAutoSwitchEnabled(on);
        if (toggle == pauseDuringSwitch_) engine.setPauseDuringSwitch(on);
        if (toggle == launchAtLogin_) engine.setLaunchAtLogin(on);
        if (toggle == liveEQ_) engine.spectrum()->setMenuBarEnabled(on);
        refresh();
    });
    return toggle;
}

QLabel* ContentView::makeMessage(const char* name, const QFont& font, const QColor& color) {
    QLabel* label = makeLabel({}, font, color, this);
    label->setObjectName(name);
    label->setWordWrap(true);
    return label;
}

void ContentView::showFollowedPlayer() {
    // Where any player may be followed, the toggle names the one it pauses; a name too long for
    // the row is not shortened into something else.
    constexpr std::size_t longestName = 24;
    const std::optional<std::string> identity = environment_.player->identity();
    const QString player = identity && identity->size() <= longestName
                               ? QString::fromStdString(*identity)
                               : QStringLiteral("the player");
    pauseDuringSwitch_->setText(QStringLiteral("Pause %1 while switching").arg(player));
}

QWidget* ContentView::makeFooter() {
    auto footer = new QWidget(this);
    auto row = new QHBoxLayout(footer);
    row->setContentsMargins(0, 0, 0, 0);
    auto scan = new QPushButton("Scan Now", footer);
    scan->setObjectName("scanNowButton");
    connect(scan, &QPushButton::clicked, this,
            [this] { spawn(environment_.executor, environment_.engine->scan(scanSecondsBack)); });
    row->addWidget(scan);
    row->addStretch(1);
    const SoundSettingsApp& settingsApp = environment_.soundSettings;
    if (environment_.workspace && environment_.workspace->hasApplication(settingsApp.path)) {
        auto midi = new QPushButton(settingsApp.title, footer);
        midi->setObjectName("audioMidiSetupButton");
        connect(midi, &QPushButton::clicked, this, [this] {
            environment_.workspace->openApplication(environment_.soundSettings.path);
        });
        row->addWidget(midi);
        row->addStretch(1);
    }
    auto quit = new QPushButton("Quit Corvanel", footer);
    quit->setObjectName("quitButton");
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QPushButton::clicked, this, [this] {
        if (environment_.quit) environment_.quit();
    });
    row->addWidget(quit);
    for (QPushButton* button : footer->findChildren<QPushButton*>())
        button->setFont(style::callout());
    return footer;
}

void ContentView::refresh() {
    const SwitcherEngine& engine = *environment_.engine;
    const SpectrumAnalyzer& spectrum = *engine.spectrum();

    autoSwitchDot_->setColor(engine.autoSwitchEnabled() ? style::green() : style::secondary());
    detectedText_->setText(QString::fromStdString(engine.detectedText()));
    const auto& detection = engine.detection();
    detectedSource_->setText(detection ? QString::fromStdString(detection->source)
                                       : QStringLiteral("No track detected"));
    deviceText_->setText(QString::fromStdString(engine.deviceText()));
    deviceName_->setText(QString::fromStdString(engine.deviceName()));

    manualRates_->setVisible(!engine.supportedRates().empty());
    refreshRateButtons();

    autoSwitch_->setChecked(engine.autoSwitchEnabled());
    pauseDuringSwitch_->setChecked(engine.pauseDuringSwitch());
    launchAtLogin_->setChecked(engine.launchAtLogin());
    liveEQ_->setChecked(spectrum.menuBarEnabled());

    privacyNote_->setVisible(spectrum.menuBarEnabled());
    const auto& status = spectrum.statusMessage();
    statusMessage_->setVisible(status.has_value());
    statusMessage_->setText(status ? QString::fromStdString(*status) : QString());
    const auto& error = engine.lastError();
    lastError_->setVisible(error.has_value());
    lastError_->setText(error ? QString::fromStdString(*error) : QString());

    const auto& lines = engine.activity();
    for (std::size_t i = 0; i < activity_.size(); ++i) {
        const bool present = i < lines.size();
        activity_[i]->setVisible(present);
        activity_[i]->setText(present ? QString::fromStdString(lines[i]) : QString());
    }
}

void ContentView::refreshRateButtons() {
    const SwitcherEngine& engine = *environment_.engine;
    const std::vector<double>& rates = engine.supportedRates();
    if (rates != shownRates_) {
        for (QPushButton* button : rateButtons_) {
            // Out of the grid at once; Qt frees it once no event refers to it any more.
            rateGrid_->removeWidget(button);
            button->setParent(nullptr);
            button->deleteLater();
        }
        rateButtons_.clear();
        shownRates_ = rates;
        const int available = contentWidth - 2 * padding;
        const int columns =
            std::max(1, (available + rateGridSpacing) / (rateButtonMinimumWidth + rateGridSpacing));
        for (std::size_t i = 0; i < rates.size(); ++i) {
            const double rate = rates[i];
            auto button = new QPushButton(QString::fromStdString(SwitcherEngine::format(rate)),
                                          rateGrid_->parentWidget());
            button->setObjectName("rateButton");
            button->setProperty("rate", rate);
            button->setFont(style::callout());
            button->setMinimumWidth(rateButtonMinimumWidth);
            connect(button, &QPushButton::clicked, this, [this, rate] { setRate(rate); });
            rateGrid_->addWidget(button, int(i) / columns, int(i) % columns);
            button->show();  // a child added to a shown grid stays hidden otherwise
            rateButtons_.push_back(button);
        }
        for (int c = 0; c < columns; ++c)
            rateGrid_->setColumnStretch(c, 1);
    }
    for (QPushButton* button : rateButtons_) {
        const bool current = std::abs(button->property("rate").toDouble() - engine.deviceRate()) <
                             currentRateTolerance;
        if (button->property("current").isValid() &&
            button->property("current").toBool() == current)
            continue;
        button->setProperty("current", current);
        button->setStyleSheet(tintedButtonStyle(current ? style::accent() : style::secondary()));
    }
}

void ContentView::setRate(double rate) {
    const SwitcherEngine& engine = *environment_.engine;
    const auto device = engine.deviceID();
    if (!device) return;
    spawn(environment_.executor, environment_.engine->setRate(rate, *device));
}

}  // namespace corvanel
