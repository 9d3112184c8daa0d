// --help and --version are answers the program prints and ends with, read before any window
// system exists; they are not mistakes in the command line.
#include <gtest/gtest.h>

#include <QRegularExpression>

#include "app/AppOptions.h"

namespace corvanel {
namespace {

QString informationFor(const QStringList& arguments) {
    const auto parsed = parseOptions(arguments);
    const auto* information = std::get_if<ProgramInformation>(&parsed);
    return information ? information->text : QString();
}

TEST(AppOptionsInformationTest, HelpListsEveryOptionAndVersionNamesTheRelease) {
    for (const QString& help : {QString("--help"), QString("-h")}) {
        const QString text = informationFor({"/usr/bin/corvanel", help});
        EXPECT_TRUE(text.startsWith("Usage: corvanel [options]\n")) << text.toStdString();
        for (const char* option : {"--demo", "--headless", "--capture", "--open", "--version"})
            EXPECT_TRUE(text.contains(option)) << option << " in " << text.toStdString();
    }
    const QRegularExpression version("^Corvanel \\d+\\.\\d+\\.\\d+\\n$");
    EXPECT_TRUE(version.match(informationFor({"corvanel", "--version"})).hasMatch());
    EXPECT_TRUE(version.match(informationFor({"corvanel", "--demo", "-v"})).hasMatch());
}

TEST(AppOptionsInformationTest, AMistakeBesideHelpIsStillNamed) {
    const auto parsed = parseOptions({"corvanel", "--help", "--bogus"});
    ASSERT_TRUE(std::holds_alternative<QString>(parsed));
    EXPECT_TRUE(std::get<QString>(parsed).contains("bogus"));
}

TEST(AppOptionsInformationTest, TheFindersProcessNumberIsNotAnOption) {
    char program[] = "Corvanel", serial[] = "-psn_0_4242", demo[] = "--demo";
    char* argv[] = {program, serial, demo};
    const QStringList arguments = commandLineArguments(3, argv);
    EXPECT_EQ(arguments, QStringList({"Corvanel", "--demo"}));
    ASSERT_TRUE(std::holds_alternative<AppOptions>(parseOptions(arguments)));
}

}  // namespace
}  // namespace corvanel
