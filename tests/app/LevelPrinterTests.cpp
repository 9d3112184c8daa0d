// What the meters see, printed by a headless run: one JSON object a second that any JSON reader
// takes, with the loudest band, the channel levels and the status as the analyzer has them.
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <vector>

#include "PrivateHome.h"
#include "app/LevelPrinter.h"

namespace corvanel {
namespace {

QJsonObject parsed(const QByteArray& line) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    return document.object();
}

TEST(LevelLine, NamesTheLoudestBandAndTheChannelsRounded) {
    std::vector<float> levels(40, 0.1f);
    levels[19] = 0.90049f;
    levels[31] = 0.5f;
    const QByteArray line = levelLine(12.04, levels, 0.70712f, 0.7f, std::nullopt);
    EXPECT_EQ(line.count('\n'), 0);
    const QJsonObject object = parsed(line);
    EXPECT_EQ(object.keys(),
              (QStringList{"left", "loudestBand", "loudestLevel", "right", "status", "t"}));
    EXPECT_DOUBLE_EQ(object["t"].toDouble(), 12.0);
    EXPECT_EQ(object["loudestBand"].toInt(), 19);
    EXPECT_DOUBLE_EQ(object["loudestLevel"].toDouble(), 0.9);
    EXPECT_DOUBLE_EQ(object["left"].toDouble(), 0.707);
    EXPECT_DOUBLE_EQ(object["right"].toDouble(), 0.7);
    EXPECT_TRUE(object["status"].isNull());
}

TEST(LevelLine, TakesTheFirstOfEqualBandsAndCarriesAnyStatusText) {
    std::vector<float> levels(40, 0.0f);
    levels[9] = 0.5f;
    levels[5] = 0.5f;
    const std::string status = "Could not \"keep\" it\nrunning ▸ (error 6)";
    const QJsonObject object = parsed(levelLine(1, levels, 0, 0, status));
    EXPECT_EQ(object["loudestBand"].toInt(), 5);
    EXPECT_EQ(object["status"].toString().toStdString(), status);

    const QJsonObject silent = parsed(levelLine(0, {}, 0, 0, std::nullopt));
    EXPECT_EQ(silent["loudestBand"].toInt(), 0);
    EXPECT_DOUBLE_EQ(silent["loudestLevel"].toDouble(), 0.0);
}

TEST(HeadlessLevels, AHeadlessDemoPrintsWhatItsMetersSeeOnceASecond) {
    const testing::PrivateHome home;
    ASSERT_TRUE(home.isValid());
    QProcess run;
    run.setProcessEnvironment(home.environment());
    run.start(CORVANEL_BINARY_DIR "/src/corvanel",
              {"--demo", "--headless", "--duration", "3.5", "--print-levels"});
    ASSERT_TRUE(run.waitForFinished(30000)) << "the headless run did not end";
    EXPECT_EQ(run.exitCode(), 0) << run.readAllStandardError().toStdString();

    std::vector<QJsonObject> lines;
    for (const QByteArray& line : run.readAllStandardOutput().split('\n'))
        if (line.startsWith('{')) lines.push_back(parsed(line));
    ASSERT_GE(lines.size(), 3u);
    bool heard = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const QJsonObject& line = lines[i];
        EXPECT_NEAR(line["t"].toDouble(), double(i + 1), 0.3);
        EXPECT_GE(line["loudestBand"].toInt(-1), 0);
        EXPECT_LT(line["loudestBand"].toInt(), 40);
        for (const char* key : {"loudestLevel", "left", "right"}) {
            EXPECT_GE(line[key].toDouble(-1), 0.0) << key;
            EXPECT_LE(line[key].toDouble(2), 1.0) << key;
        }
        EXPECT_TRUE(line["status"].isNull());
        heard = heard || line["loudestLevel"].toDouble() > 0.1;
    }
    EXPECT_TRUE(heard) << "the demo's music never reached the meters";
}

TEST(HeadlessLevels, AreOnlyPrintedByAHeadlessRun) {
    QProcess run;
    run.start(CORVANEL_BINARY_DIR "/src/corvanel", {"--demo", "--print-levels"});
    ASSERT_TRUE(run.waitForFinished(30000));
    EXPECT_EQ(run.exitCode(), 2);
    EXPECT_EQ(run.readAllStandardError().trimmed(), "--print-levels needs --headless");
}

}  // namespace
}  // namespace corvanel
