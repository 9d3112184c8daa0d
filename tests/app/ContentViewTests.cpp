// The popup content driven through its real widgets against the engine on a simulated Mac.
#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QToolButton>

#include "AppTestRig.h"
#include "app/ContentView.h"
#include "app/ShrinkingLabel.h"
#include "app/ToggleSwitch.h"
#include "demo/DemoPlaylist.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/ScriptedFollowedPlayer.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

class ContentViewTest : public ::testing::Test {
  protected:
    explicit ContentViewTest(bool withDevice = true) : rig(withDevice) {}

    ContentView& open() {
        rig.start();
        view = std::make_unique<ContentView>(rig.environment());
        view->show();
        return *view;
    }

    QString text(const char* name) const {
        if (auto* label = view->findChild<ShrinkingLabel*>(name)) return label->text();
        if (auto* label = view->findChild<QLabel*>(name)) return label->text();
        ADD_FAILURE() << "no label " << name;
        return {};
    }
    bool shown(const char* name) const {
        const QWidget* widget = view->findChild<QWidget*>(name);
        return widget && widget->isVisible();
    }
    std::vector<QPushButton*> rateButtons() const {
        std::vector<QPushButton*> buttons;
        for (QPushButton* button : view->findChildren<QPushButton*>("rateButton"))
            if (button->parent()) buttons.push_back(button);
        return buttons;
    }
    QPushButton* rateButton(const QString& label) const {
        for (QPushButton* button : rateButtons())
            if (button->text() == label) return button;
        return nullptr;
    }
    QStringList highlightedRates() const {
        QStringList highlighted;
        for (QPushButton* button : rateButtons())
            if (button->property("current").toBool()) highlighted << button->text();
        return highlighted;
    }
    void click(const char* name) {
        auto* button = view->findChild<QAbstractButton*>(name);
        ASSERT_NE(button, nullptr) << name;
        button->click();
        rig.mac.executor->runUntilIdle();
    }

    testing::AppTestRig rig;
    std::unique_ptr<ContentView> view;
};

TEST_F(ContentViewTest, BeforeAnyTrackTheCardShowsTheDeviceAndNoDetection) {
    open();
    EXPECT_EQ(text("detectedText"), QString::fromUtf8("\u2014"));
    EXPECT_EQ(text("detectedSource"), "No track detected");
    EXPECT_EQ(text("deviceText"), QString::fromUtf8("48 kHz \u00b7 32-bit"));
    EXPECT_EQ(text("deviceName"), "Corvanel Demo DAC");
    const QStringList labels = [&] {
        QStringList all;
        for (QPushButton* button : rateButtons())
            all << button->text();
        return all;
    }();
    EXPECT_EQ(labels, (QStringList{"44.1", "48", "88.2", "96", "176.4", "192"}));
    EXPECT_EQ(highlightedRates(), QStringList{"48"});
    EXPECT_EQ(text("activityLine0").mid(text("activityLine0").indexOf("  ") + 2),
              QString::fromUtf8("Started \u2014 watching Apple Music track changes"));
}

TEST_F(ContentViewTest, ADetectionAndTheSwitchReachEveryRow) {
    open();
    rig.play("96000", "4608", "Apple Lossless audio file", audioCapabilitiesMessage(96, 24));
    rig.mac.executor->advanceBy(1s);

    EXPECT_EQ(text("detectedText"), QString::fromUtf8("96 kHz \u00b7 24-bit"));
    EXPECT_EQ(text("detectedSource"), "Apple Lossless audio file");
    EXPECT_EQ(text("deviceText"), QString::fromUtf8("96 kHz \u00b7 32-bit"));
    EXPECT_EQ(highlightedRates(), QStringList{"96"});
    QStringList activity;
    for (int i = 0; i < 3; ++i) {
        const QString line = text(QStringLiteral("activityLine%1").arg(i).toUtf8().constData());
        activity << line.mid(line.indexOf("  ") + 2);
    }
    EXPECT_EQ(activity[0], QString::fromUtf8("Corvanel Demo DAC \u2192 96 kHz"));
    EXPECT_EQ(activity[1], "Detected 96 kHz / 24-bit (Apple Lossless audio file)");
}

TEST_F(ContentViewTest, ARateButtonSetsThatRateOnTheDeviceAndTheHighlightFollows) {
    open();
    QPushButton* button = rateButton("88.2");
    ASSERT_NE(button, nullptr);
    button->click();
    rig.mac.executor->advanceBy(1s);
    EXPECT_EQ(rig.mac.audio->nominalRate(rig.dac), 88200);
    EXPECT_EQ(highlightedRates(), QStringList{"88.2"});

    // A rate a hair away from a listed one still counts as that one.
    rig.mac.audio->changeNominalRateExternally(rig.dac, 48000.3);
    rig.mac.executor->runUntilIdle();
    EXPECT_EQ(highlightedRates(), QStringList{"48"});
}

TEST_F(ContentViewTest, EachToggleChangesItsOwnSettingAndNoOther) {
    rig.mac.settings->preset("spectrumEnabled", true);
    open();
    EXPECT_TRUE(shown("privacyNote"));
    const SwitcherEngine& engine = *rig.engine;
    const auto settings = [&] {
        return std::array<bool, 4>{engine.autoSwitchEnabled(), engine.pauseDuringSwitch(),
                                   engine.launchAtLogin(), engine.spectrum()->menuBarEnabled()};
    };
    const std::array<const char*, 4> toggles{"autoSwitchToggle", "pauseToggle",
                                             "launchAtLoginToggle", "liveEQToggle"};
    for (std::size_t flipped = 0; flipped < toggles.size(); ++flipped) {
        SCOPED_TRACE(toggles[flipped]);
        const auto before = settings();
        EXPECT_EQ(view->findChild<ToggleSwitch*>(toggles[flipped])->isChecked(), before[flipped]);
        click(toggles[flipped]);
        const auto after = settings();
        for (std::size_t i = 0; i < toggles.size(); ++i)
            EXPECT_EQ(after[i], i == flipped ? !before[i] : before[i]) << toggles[i];
        EXPECT_EQ(view->findChild<ToggleSwitch*>(toggles[flipped])->isChecked(), after[flipped]);
    }
    using Write = std::pair<std::string, StoredSettingValue>;
    EXPECT_EQ(rig.mac.settings->writes(), (std::vector<Write>{{"autoSwitchEnabled", false},
                                                              {"pauseDuringSwitch", true},
                                                              {"spectrumEnabled", false}}));
    EXPECT_EQ(rig.mac.loginItems->calls(), std::vector<std::string>{"register"});
    EXPECT_FALSE(shown("privacyNote"));
    EXPECT_FALSE(rig.engine->spectrum()->isCapturing());
}

TEST_F(ContentViewTest, ScanNowReadsTheLastHalfHourOfTheLog) {
    rig.mac.music->setRunning(false);
    open();
    ASSERT_EQ(text("detectedSource"), "No track detected");
    // Found by a scan of 1800 s, missed by one of 180 s or 600 s.
    rig.mac.log->add("Music", audioCapabilitiesMessage(88.2, 24),
                     rig.mac.executor->wallNow() - std::chrono::seconds(1500));
    click("scanNowButton");
    rig.mac.executor->advanceBy(1s);
    EXPECT_EQ(text("detectedText"), QString::fromUtf8("88.2 kHz \u00b7 24-bit"));
}

TEST_F(ContentViewTest, TheCaptureMessageShowsWhileCaptureFailsAndGoesWhenItStops) {
    rig.mac.settings->preset("spectrumEnabled", true);
    rig.mac.taps->failOperation(SimTapOperation::createProcessTap, -1);
    open();
    ASSERT_TRUE(shown("statusMessage"));
    EXPECT_TRUE(text("statusMessage").startsWith("Could not create the audio tap"))
        << text("statusMessage").toStdString();

    click("liveEQToggle");
    EXPECT_FALSE(shown("statusMessage"));
}

TEST_F(ContentViewTest, AFailedScanShowsItsErrorUntilAScanSucceeds) {
    rig.mac.music->setRunning(false);
    rig.mac.log->failWith("The log store is unavailable.");
    open();
    ASSERT_TRUE(shown("lastError"));
    EXPECT_EQ(text("lastError"),
              "Could not read the system log (The log store is unavailable.). Your account must "
              "be an administrator.");

    rig.mac.log->failWith(std::nullopt);
    click("scanNowButton");
    EXPECT_FALSE(shown("lastError"));
}

TEST_F(ContentViewTest, OnlyTheSixNewestActivityLinesAreListed) {
    rig.mac.loginItems->failWith("Denied");
    open();
    for (int i = 0; i < 25; ++i) {
        rig.engine->setLaunchAtLogin(i % 2 == 0);
    }
    ASSERT_EQ(rig.engine->activity().size(), 20u);
    for (std::size_t i = 0; i < ContentView::activityRows; ++i) {
        const std::string name = "activityLine" + std::to_string(i);
        EXPECT_EQ(text(name.c_str()).toStdString(), rig.engine->activity()[i]);
    }
    EXPECT_EQ(view->findChildren<QWidget*>(QRegularExpression("^activityLine")).size(), 6);
}

TEST_F(ContentViewTest, ALongActivityLineEndsInAnEllipsisAndItsTooltipHasAllOfIt) {
    open();
    rig.play("96000", "4608", "Apple Lossless audio file from a very long album title",
             audioCapabilitiesMessage(96, 24));
    rig.mac.executor->advanceBy(1s);
    QCoreApplication::processEvents();
    const ShrinkingLabel* line = nullptr;
    const ShrinkingLabel* shortLine = nullptr;
    for (const auto* each : view->findChildren<ShrinkingLabel*>(QRegularExpression("^activity"))) {
        if (each->text().contains("(Apple Lossless audio file from a very long album title)"))
            line = each;
        if (each->text().endsWith("96 kHz")) shortLine = each;
    }
    ASSERT_NE(line, nullptr);
    ASSERT_NE(shortLine, nullptr);
    const QString shown = line->shownText();
    EXPECT_TRUE(shown.endsWith(QChar(0x2026))) << shown.toStdString();
    EXPECT_LE(QFontMetrics(line->font()).horizontalAdvance(shown), line->width());
    EXPECT_GT(line->width(), 250);  // the popup's width, not a sliver
    EXPECT_EQ(line->toolTip(), line->text());
    // A line that fits is shown whole.
    EXPECT_EQ(shortLine->shownText(), shortLine->text());
}

TEST_F(ContentViewTest, TheHeaderWaveformKeepsItsStrokesApartAtOnePixelPerPoint) {
    open();
    ASSERT_EQ(qApp->devicePixelRatio(), 1.0);
    QWidget* symbol = view->findChild<QWidget*>("headerSymbol");
    ASSERT_NE(symbol, nullptr);
    QImage shown(symbol->size(), QImage::Format_ARGB32_Premultiplied);
    shown.fill(Qt::white);
    symbol->render(&shown);
    // Across the middle, each stroke is a run of ink with white between runs.
    int strokes = 0;
    bool inInk = false;
    for (int x = 0; x < shown.width(); ++x) {
        const int lightness = shown.pixelColor(x, shown.height() / 2).lightness();
        if (!inInk && lightness < 190) ++strokes;
        if (lightness < 190) inInk = true;
        if (lightness > 225) inInk = false;
    }
    EXPECT_GE(strokes, 5);
}

// Where players come and go (MPRIS on Linux), the pause toggle names the one it pauses.
TEST_F(ContentViewTest, ThePauseToggleNamesTheFollowedPlayerWhereThereAreMany) {
    rig.start();
    auto player = std::make_shared<testing::ScriptedFollowedPlayer>();
    AppEnvironment environment = rig.environment();
    environment.player = player;
    view = std::make_unique<ContentView>(environment);
    const auto* toggle = view->findChild<ToggleSwitch*>("pauseToggle");
    EXPECT_EQ(toggle->text(), "Pause the player while switching");
    player->follow("Rhythmbox");
    EXPECT_EQ(toggle->text(), "Pause Rhythmbox while switching");
    player->follow(std::string(200, 'x'));
    EXPECT_EQ(toggle->text(), "Pause the player while switching");

    view = std::make_unique<ContentView>(rig.environment());
    EXPECT_EQ(view->findChild<ToggleSwitch*>("pauseToggle")->text(), "Pause Music while switching");
}

TEST_F(ContentViewTest, FooterAndHeaderActions) {
    rig.workspace->hasApplications = true;
    open();
    click("audioMidiSetupButton");
    EXPECT_EQ(rig.workspace->opened,
              std::vector<std::string>{"/System/Applications/Utilities/Audio MIDI Setup.app"});
    click("openPanelButton");
    EXPECT_EQ(rig.openedWindows, std::vector<QString>{"panel"});
    EXPECT_EQ(rig.workspace->activations, 1);

    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    QTest::keyClick(view.get(), Qt::Key_Q, Qt::ControlModifier);
    // A shortcut presses the button visibly, which takes a moment.
    EXPECT_TRUE(QTest::qWaitFor([&] { return rig.quits == 1; }, 1000));
}

TEST_F(ContentViewTest, WithoutTheSetupToolItsButtonIsAbsent) {
    open();
    EXPECT_EQ(view->findChild<QPushButton*>("audioMidiSetupButton"), nullptr);
}

class ContentViewWithoutDeviceTest : public ContentViewTest {
  protected:
    ContentViewWithoutDeviceTest() : ContentViewTest(false) {}
};

TEST_F(ContentViewWithoutDeviceTest, NoSupportedRatesMeansNoManualRateSection) {
    open();
    EXPECT_FALSE(shown("manualRates"));
    EXPECT_TRUE(rateButtons().empty());
    EXPECT_EQ(text("deviceName"), "No output device");
}

}  // namespace
}  // namespace corvanel
