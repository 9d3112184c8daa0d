// The tray's square icon read the way a user sees it: at 22 px (and 44 px) on a light and on a
// dark panel, in the desktop palette's colours.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

#include "GuiApplication.h"
#include "app/TrayIcon.h"
#include "app/TrayStatusItem.h"

namespace corvanel {
namespace {

const QColor lightPanel(0xf4, 0xf4, 0xf4);
const QColor darkPanel(0x1e, 0x1e, 0x22);

// The icon as the tray shows it at `pixels` square, over a panel of `background`.
QImage shownOn(const TrayStatusItem& item, int pixels, const QColor& background) {
    QImage panel(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    panel.fill(background);
    QPainter painter(&panel);
    painter.drawPixmap(QRect(0, 0, pixels, pixels), item.icon().pixmap(QSize(pixels, pixels), 1.0));
    painter.end();
    return panel;
}

// The box of pixels that stand out from the panel (lightness at least 40 % apart).
QRect legibleInk(const QImage& panel, const QColor& background, int rows) {
    QRect ink;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < panel.width(); ++x)
            if (std::abs(panel.pixelColor(x, y).lightness() - background.lightness()) > 100)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

std::vector<float> levels(float value) {
    return std::vector<float>(40, value);
}

class TrayIconTest : public ::testing::Test {
  protected:
    TrayIconTest() : saved(QGuiApplication::palette()) { testing::guiApplication(); }
    ~TrayIconTest() override { QGuiApplication::setPalette(saved); }

    void show(const QString& title, const std::optional<std::vector<float>>& bands) {
        item.setLabelImage(item.labelImage(title, bands));
    }

    QPalette saved;
    TrayStatusItem item;
};

TEST_F(TrayIconTest, TheRateDigitsAreLegibleAt22PixelsOnLightAndDarkPanels) {
    struct Case {
        const char* title;
        int minimumDigitHeight;
    };
    for (const Case& rate : {Case{"96 kHz \u00b7 24-bit", 12}, Case{"44.1 kHz", 9},
                             Case{"176.4 kHz \u00b7 24-bit", 7}}) {
        show(QString::fromUtf8(rate.title), levels(0.5f));
        for (const int pixels : {22, 44}) {
            for (const QColor& background : {lightPanel, darkPanel}) {
                SCOPED_TRACE(std::string(rate.title) + " at " + std::to_string(pixels) + " px on " +
                             background.name().toStdString());
                // The digits: everything above the bars' strip.
                const QRect digits =
                    legibleInk(shownOn(item, pixels, background), background, pixels * 15 / 22);
                EXPECT_GE(digits.height(), rate.minimumDigitHeight * pixels / 22);
                EXPECT_GE(digits.width(), digits.height());  // more than a sliver: all digits
                EXPECT_LE(digits.right(), pixels - 1);
            }
        }
    }
}

TEST_F(TrayIconTest, TheIconTakesTheDesktopPalettesTextColourAndItsBarsFollowTheLevels) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, QColor(0xd0, 0x20, 0x20));
    palette.setColor(QPalette::Window, QColor(0xff, 0xff, 0xff));
    QGuiApplication::setPalette(palette);
    const QColor red(0xd0, 0x20, 0x20);
    // Rows of the icon (at 2x) below the digits that hold the text colour.
    const auto barRows = [&](const std::optional<std::vector<float>>& bands) {
        const QImage icon = item.labelImage("48 kHz", bands);
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
    const QRect digitsAlone = legibleInk(shownOn(item, 44, darkPanel), darkPanel, 44);
    EXPECT_GT(digitsAlone.height(), 30);
}

}  // namespace
}  // namespace corvanel
