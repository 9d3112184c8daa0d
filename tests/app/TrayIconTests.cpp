// The tray's square icon read the way a user sees it: at 22 px (and 44 px) on a light and on a
// dark panel, in the colours of the desktop's own theme rather than the shell's dark palette.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <memory>
#include <optional>

#include "DesktopTheme.h"
#include "GuiApplication.h"
#include "app/AppStyle.h"
#include "app/DesktopPalette.h"
#include "app/TrayIcon.h"
#include "app/TrayStatusItem.h"

namespace corvanel {
namespace {

const QColor lightPanel(0xf4, 0xf4, 0xf4);
const QColor darkPanel(0x1e, 0x1e, 0x22);

using testing::desktopTheme;
const QPalette lightTheme = desktopTheme(QColor(0x20, 0x20, 0x24), QColor(0xf6, 0xf5, 0xf4));
const QPalette darkTheme = desktopTheme(QColor(0xee, 0xee, 0xee), QColor(0x2a, 0x2a, 0x2e));

// The icon as the tray shows it at `pixels` square, over a panel of `background`.
QImage shownOn(const TrayStatusItem& item, int pixels, const QColor& background) {
    QImage panel(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    panel.fill(background);
    QPainter painter(&panel);
    painter.drawPixmap(QRect(0, 0, pixels, pixels), item.icon().pixmap(QSize(pixels, pixels), 1.0));
    painter.end();
    return panel;
}

// The pixels of the top `rows` that stand out from the panel (lightness at least 40 % apart).
struct Ink {
    QRect box;
    int darker = 0;
    int lighter = 0;
};
Ink legibleInk(const QImage& panel, const QColor& background, int rows) {
    Ink ink;
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < panel.width(); ++x) {
            const int difference = panel.pixelColor(x, y).lightness() - background.lightness();
            if (std::abs(difference) <= 100) continue;
            ink.box |= QRect(x, y, 1, 1);
            ++(difference < 0 ? ink.darker : ink.lighter);
        }
    }
    return ink;
}

// The pixels of the icon at least `depth` pixels inside its opaque shape: the digits' strokes
// without their outline. Counted as darker or lighter than mid-grey.
struct Core {
    int darker = 0;
    int lighter = 0;
};
Core strokeCore(const QImage& icon, int depth) {
    const int width = icon.width();
    const int height = icon.height();
    std::vector<char> inside(std::size_t(width) * height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            inside[std::size_t(y) * width + x] = icon.pixelColor(x, y).alpha() >= 250;
    for (int step = 0; step < depth; ++step) {
        std::vector<char> eroded(inside.size());
        for (int y = 1; y + 1 < height; ++y) {
            for (int x = 1; x + 1 < width; ++x) {
                const std::size_t i = std::size_t(y) * width + x;
                eroded[i] = inside[i] && inside[i - 1] && inside[i + 1] && inside[i - width] &&
                            inside[i + width];
            }
        }
        inside = std::move(eroded);
    }
    Core core;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (inside[std::size_t(y) * width + x])
                ++(icon.pixelColor(x, y).lightness() < 128 ? core.darker : core.lighter);
    return core;
}

std::vector<float> levels(float value) {
    return std::vector<float>(40, value);
}

class TrayIconTest : public ::testing::Test {
  protected:
    TrayIconTest() : saved(QGuiApplication::palette()) { testing::guiApplication(); }
    ~TrayIconTest() override {
        item.reset();
        desktop.reset();
        QGuiApplication::setPalette(saved);
    }

    // The item of an application started on a desktop whose theme gives `palette`.
    TrayStatusItem& startOn(const QPalette& palette) {
        item.reset();
        desktop.reset();
        QGuiApplication::setPalette(palette);
        desktop = std::make_shared<DesktopPalette>(style::darkPalette());
        item.emplace(desktop);
        return *item;
    }

    void show(const QString& title, const std::optional<std::vector<float>>& bands) {
        item->setLabelImage(item->labelImage(title, bands));
    }

    QPalette saved;
    std::shared_ptr<DesktopPalette> desktop;
    std::optional<TrayStatusItem> item;
};

TEST_F(TrayIconTest, ALightThemeGivesDarkDigitsADarkOneLightAndBothReadOnEitherPanel) {
    struct Case {
        const char* title;
        int minimumDigitHeight;
    };
    for (const bool lightDesktop : {true, false}) {
        startOn(lightDesktop ? lightTheme : darkTheme);
        // The shell keeps its own dark palette for its windows.
        EXPECT_EQ(QGuiApplication::palette().color(QPalette::Window),
                  style::darkPalette().color(QPalette::Window));
        // The digits are filled with the theme's text colour and outlined in its window colour.
        show(QString::fromUtf8("96 kHz \u00b7 24-bit"), std::nullopt);
        for (const int pixels : {22, 44}) {
            const QImage icon = item->icon().pixmap(QSize(22, 22), pixels / 22.0).toImage();
            ASSERT_EQ(icon.width(), pixels);
            const Core core = strokeCore(icon, pixels / 22);
            const int ink = lightDesktop ? core.darker : core.lighter;
            const int outline = lightDesktop ? core.lighter : core.darker;
            EXPECT_GE(ink, 4 * outline) << pixels << " px, light theme: " << lightDesktop;
            EXPECT_GE(ink, 40 * pixels / 22);
        }
        for (const Case& rate : {Case{"96 kHz \u00b7 24-bit", 12}, Case{"44.1 kHz", 9},
                                 Case{"176.4 kHz \u00b7 24-bit", 7}}) {
            show(QString::fromUtf8(rate.title), levels(0.5f));
            for (const int pixels : {22, 44}) {
                for (const QColor& background : {lightPanel, darkPanel}) {
                    SCOPED_TRACE(std::string(lightDesktop ? "light" : "dark") + " theme, " +
                                 rate.title + " at " + std::to_string(pixels) + " px on " +
                                 background.name().toStdString());
                    // The digits: everything above the bars' strip.
                    const Ink digits = legibleInk(shownOn(*item, pixels, background), background,
                                                  pixels * 15 / 22);
                    EXPECT_GE(digits.box.height(), rate.minimumDigitHeight * pixels / 22);
                    EXPECT_GE(digits.box.width(), digits.box.height());  // all digits, not a sliver
                    EXPECT_LE(digits.box.right(), pixels - 1);
                    // On the theme's own panel the digits are its text colour; on the other
                    // panel the halo of its window colour carries them.
                    if (lightDesktop && background == lightPanel) {
                        EXPECT_EQ(digits.lighter, 0);
                    }
                    if (!lightDesktop && background == darkPanel) {
                        EXPECT_EQ(digits.darker, 0);
                    }
                }
            }
        }
    }
}

TEST_F(TrayIconTest, TheIconFollowsWhenTheDesktopHandsTheApplicationANewPalette) {
    startOn(lightTheme);
    int redraws = 0;
    item->onAppearanceChanged = [&] {
        ++redraws;
        show("48 kHz", std::nullopt);
    };
    show("48 kHz", std::nullopt);
    const auto core = [&] {
        return strokeCore(item->icon().pixmap(QSize(22, 22), 2.0).toImage(), 2);
    };
    EXPECT_GE(core().darker, 4 * core().lighter);

    // A platform theme that switches running applications to a dark scheme replaces their
    // palette (and may say so once more); the icon takes the new colours, once, and the shell's
    // palette goes back on.
    QGuiApplication::setPalette(darkTheme);
    QEvent again(QEvent::ApplicationPaletteChange);
    QCoreApplication::sendEvent(qApp, &again);
    EXPECT_EQ(redraws, 1);
    EXPECT_GE(core().lighter, 4 * core().darker);
    EXPECT_GE(core().lighter, 100);
    QCoreApplication::processEvents();
    EXPECT_EQ(QGuiApplication::palette().color(QPalette::WindowText),
              style::darkPalette().color(QPalette::WindowText));
    EXPECT_EQ(redraws, 1);
}

TEST_F(TrayIconTest, TheBarsFollowTheLevelsAndTheFullTitleIsTheTooltip) {
    const QColor red(0xd0, 0x20, 0x20);
    startOn(desktopTheme(red, Qt::white));
    // Rows of the icon (at 2x) below the digits that hold the text colour.
    const auto barRows = [&](const std::optional<std::vector<float>>& bands) {
        const QImage icon = item->labelImage("48 kHz", bands);
        EXPECT_EQ(icon.size(), QSize(44, 44));
        int rows = 0;
        for (int y = 33; y < icon.height(); ++y) {
            bool inked = false;
            for (int x = 0; x < icon.width(); ++x)
                inked = inked || icon.pixelColor(x, y) == red;
            rows += inked ? 1 : 0;
        }
        return rows;
    };
    // Silent bands are one-point stubs, loud ones fill the strip; without the live image
    // there are no bars and the digits take the whole square.
    EXPECT_EQ(barRows(levels(0.0f)), 2);
    EXPECT_GE(barRows(levels(1.0f)), 8);
    show("48 kHz", std::nullopt);
    const QRect digitsAlone = legibleInk(shownOn(*item, 44, darkPanel), darkPanel, 44).box;
    EXPECT_GT(digitsAlone.height(), 30);

    item->setTitle(QString::fromUtf8("48 kHz \u00b7 24-bit"));
    EXPECT_EQ(item->toolTip(), QString::fromUtf8("48 kHz \u00b7 24-bit"));
}

}  // namespace
}  // namespace corvanel
