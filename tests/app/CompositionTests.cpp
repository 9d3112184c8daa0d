// What a run on this machine is composed of, and the status item where there is no tray.
#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>

#include "GuiApplication.h"
#include "app/AppStyle.h"
#include "app/DesktopPalette.h"
#include "app/PlatformComposition.h"
#include "app/TrayStatusItem.h"
#include "app/WindowStatusItem.h"
#include "meters/styles/SpectrumBarsView.h"

namespace corvanel {
namespace {

class CompositionTest : public ::testing::Test {
  protected:
    CompositionTest() : saved(QGuiApplication::palette()) { testing::guiApplication(); }
    ~CompositionTest() override {
        desktop.reset();
        QGuiApplication::setPalette(saved);
    }

    std::variant<Composition, std::string> compose(const AppOptions& options) {
        return composePlatform(options, {}, desktop);
    }

    AppOptions options() const {
        AppOptions options;
        options.demo = true;
        options.settingsFile = directory.filePath("settings.json");
        return options;
    }

    QTemporaryDir directory;
    QPalette saved;
    std::shared_ptr<DesktopPalette> desktop =
        std::make_shared<DesktopPalette>(style::darkPalette());
};

TEST_F(CompositionTest, TheDemoPlatformHasEveryPortAndNoTrayMeansALabelWindow) {
    auto composed = compose(options());
    ASSERT_TRUE(std::holds_alternative<Composition>(composed));
    Composition& composition = std::get<Composition>(composed);
    const PlatformPorts& ports = composition.ports;
    EXPECT_TRUE(ports.executor && ports.audio && ports.taps && ports.systemLog && ports.scripts &&
                ports.notifications && ports.settings && ports.loginItems && ports.workspace);
    EXPECT_NE(composition.demo, nullptr);

    // The offscreen platform has no system tray.
    StatusItemChoice choice = composition.makeStatusItem();
    EXPECT_NE(dynamic_cast<WindowStatusItem*>(choice.item.get()), nullptr);
    EXPECT_EQ(choice.labelInterval, Seconds{0});
}

TEST_F(CompositionTest, ThePrivacyNoteSaysWhatThisRunListensTo) {
    AppOptions captured = options();
    captured.audio = AudioSourceChoice::pulse;
    const auto demo = compose(options());
    const auto capture = compose(captured);
    ASSERT_TRUE(std::holds_alternative<Composition>(demo));
    ASSERT_TRUE(std::holds_alternative<Composition>(capture));
    const QString demoNote = std::get<Composition>(demo).privacyNote;
    const QString captureNote = std::get<Composition>(capture).privacyNote;
#if defined(__APPLE__)
    const QString mac =
        "Uses the System Audio Recording permission to see what your Mac plays — output only, "
        "never the microphone. Analyzed live, never recorded.";
    EXPECT_EQ(demoNote, mac);
    EXPECT_EQ(captureNote, mac);
#else
    EXPECT_EQ(captureNote,
              "Listens to what your computer plays through the sound server — output only, never "
              "the microphone. Analyzed live, never recorded.");
    EXPECT_EQ(demoNote,
              "The meters show the demo's own music; nothing your computer plays is listened to "
              "or recorded.");
#endif
}

TEST_F(CompositionTest, AnUnreadableAudioFileIsReportedByName) {
    AppOptions withFile = options();
    withFile.audio = AudioSourceChoice::file;
    withFile.audioFile = directory.filePath("missing.wav");
    const auto composed = compose(withFile);
    ASSERT_TRUE(std::holds_alternative<std::string>(composed));
    EXPECT_NE(std::get<std::string>(composed).find("missing.wav"), std::string::npos);
}

TEST_F(CompositionTest, TheLabelWindowShowsTheLabelAndOpensThePopupWhenClicked) {
    WindowStatusItem item;
    int clicks = 0;
    item.onActivated = [&] { ++clicks; };
    EXPECT_TRUE(item.geometry().isEmpty());  // not inserted yet

    const QImage label =
        meters::SpectrumBarsView::menuBarImage("96 kHz \u00b7 24-bit", std::nullopt);
    item.setLabelImage(label);
    item.setInserted(true);
    EXPECT_FALSE(item.geometry().isEmpty());
    EXPECT_GE(item.window().width(), int(label.deviceIndependentSize().width()));
    QTest::mouseClick(&item.window(), Qt::LeftButton);
    EXPECT_EQ(clicks, 1);

    // The label is drawn light: somewhere in the window a pixel is near white.
    const QImage shown = item.window().grab().toImage();
    bool light = false;
    for (int y = 0; y < shown.height() && !light; ++y)
        for (int x = 0; x < shown.width() && !light; ++x)
            light = shown.pixelColor(x, y).lightness() > 200;
    EXPECT_TRUE(light);
    item.setInserted(false);
    EXPECT_TRUE(item.geometry().isEmpty());
}

TEST(TintedTemplateTest, KeepsTheAlphaAndTakesTheColour) {
    testing::guiApplication();
    QImage stencil(4, 1, QImage::Format_ARGB32_Premultiplied);
    stencil.fill(Qt::transparent);
    stencil.setPixelColor(1, 0, QColor(0, 0, 0, 255));
    stencil.setPixelColor(2, 0, QColor(0, 0, 0, 128));
    const QImage tinted = tintedTemplate(stencil, QColor(255, 255, 255));
    EXPECT_EQ(tinted.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(tinted.pixelColor(1, 0), QColor(255, 255, 255));
    EXPECT_NEAR(tinted.pixelColor(2, 0).alpha(), 128, 1);
    EXPECT_EQ(tinted.pixelColor(2, 0).red(), 255);
}

}  // namespace
}  // namespace corvanel
