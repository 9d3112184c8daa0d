// corvanel-tool render, run as the user runs it: images of the right size, the label mode,
// the fallback style, and plain messages for bad input.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include "ToolRun.h"

namespace {

ToolRun render(const QStringList& arguments) {
    return runBuilt("tools/corvanel-tool", QStringList{QStringLiteral("render")} + arguments);
}

class RenderCommand : public ::testing::Test {
  protected:
    QString file(const char* name) const { return directory.filePath(QString::fromLatin1(name)); }
    QTemporaryDir directory;
};

TEST_F(RenderCommand, RendersTheGivenAreaAtTheGivenScale) {
    const ToolRun run = render({"--style", "vu", "--size", "220x120", "--scale", "2", "--left",
                                "0.5", "--right", "0.9", "-o", file("vu.png")});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QImage image(file("vu.png"));
    EXPECT_EQ(image.size(), QSize(440, 240));
}

TEST_F(RenderCommand, UnknownStyleRendersTheSpectrumAnalyzer) {
    const QStringList values{"--size",          "300x160", "--levels",
                             "0.1,0.5,0.9,0.3", "--peaks", "0.2,0.6,1,0.4"};
    ASSERT_EQ(render(values + QStringList{"--style", "bars", "-o", file("bars.png")}).exitCode, 0);
    ASSERT_EQ(render(values + QStringList{"--style", "Bars", "-o", file("other.png")}).exitCode, 0);
    EXPECT_EQ(QImage(file("bars.png")), QImage(file("other.png")));
}

TEST_F(RenderCommand, LabelModeRendersTheMenuBarImage) {
    ASSERT_EQ(render({"--label", "", "--levels", "0.1,0.5,0.3", "-o", file("label.png")}).exitCode,
              0);
    const QImage image(file("label.png"));
    EXPECT_EQ(image.size(), QSize(8, 32));  // two bars, 16 points high, two pixels per point
}

TEST_F(RenderCommand, BadInputIsRefusedWithAPlainMessage) {
    ToolRun run = render({"--style", "vu", "--size", "wide", "-o", file("x.png")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.contains("--size expects WIDTHxHEIGHT")) << run.errors.toStdString();
    run = render({"--levels", "0.1,loud", "-o", file("x.png")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.contains("--levels expects numbers")) << run.errors.toStdString();
    run = render({"--frobnicate", "1", "-o", file("x.png")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.contains("unknown option")) << run.errors.toStdString();
    run = render({"--style", "vu"});
    EXPECT_EQ(run.exitCode, 2);
    run = render({"--audio", file("missing.wav"), "--at", "1", "-o", file("x.png")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains("missing.wav")) << run.errors.toStdString();
    EXPECT_FALSE(QFile::exists(file("x.png")));
}

}  // namespace
