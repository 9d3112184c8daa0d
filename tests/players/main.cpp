// corvanel-test-player: a music player for tests, on the session bus as
// org.mpris.MediaPlayer2.corvaneltest<N>, playing through PipeWire when there is a server.
//
//   corvanel-test-player [--instance N] [--identity TEXT] [--journal FILE] [--open FILE]
//                        [--play] [--silent]
//
//   --instance N     the name's number (default: the process id)
//   --identity TEXT  the MPRIS Identity (default "Corvanel Test Player")
//   --journal FILE   where every call is written (default: standard output)
//   --open FILE      the first track, opened before the name is taken
//   --play           start playing it at once
//   --silent         no sound output, even with a PipeWire server
//
// The journal's last start-up line is "event ready <bus name>". Tests command it over the bus:
// MPRIS's own methods, and org.corvanel.TestPlayer at /org/mpris/MediaPlayer2 (see
// PlayerAdaptors.h). SIGTERM ends it, and so does the end of the process that started it.
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

#include <QCoreApplication>
#include <QDBusConnection>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "CallJournal.h"
#include "PipeWireOutput.h"
#include "PlayerAdaptors.h"
#include "TestPlayer.h"

namespace {

struct Options {
    std::string instance = std::to_string(getpid());
    std::string identity = "Corvanel Test Player";
    std::string journal;
    std::string open;  // the file name's bytes, as given
    bool play = false;
    bool silent = false;
};

bool parse(int argc, char** argv, Options& options) {
    for (int at = 1; at < argc; ++at) {
        const std::string_view argument = argv[at];
        const bool hasValue = at + 1 < argc;
        if (argument == "--play") {
            options.play = true;
        } else if (argument == "--silent") {
            options.silent = true;
        } else if (argument == "--instance" && hasValue) {
            options.instance = argv[++at];
        } else if (argument == "--identity" && hasValue) {
            options.identity = argv[++at];
        } else if (argument == "--journal" && hasValue) {
            options.journal = argv[++at];
        } else if (argument == "--open" && hasValue) {
            options.open = argv[++at];
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        std::fputs(
            "usage: corvanel-test-player [--instance N] [--identity TEXT] [--journal FILE] "
            "[--open FILE] [--play] [--silent]\n",
            stderr);
        return 2;
    }
    // A test that dies does not leave its players behind.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    QCoreApplication application(argc, argv);
    CallJournal journal(options.journal);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        journal.write("event no session bus");
        return 1;
    }
    std::unique_ptr<PipeWireOutput> output =
        options.silent ? nullptr : PipeWireOutput::connect(journal);
    TestPlayer player(bus, journal, std::move(output), QString::fromStdString(options.identity));
    // Parent-owned by the player, as adaptors are.
    new RootAdaptor(&player);
    new PlayerAdaptor(&player);
    new ControlAdaptor(&player);
    if (!bus.registerObject(QString::fromLatin1(TestPlayer::objectPath), &player)) {
        journal.write("event could not register the object");
        return 1;
    }
    if (!options.open.empty()) player.open(QByteArray::fromStdString(options.open));
    if (options.play) player.play();
    const QString name = QStringLiteral("org.mpris.MediaPlayer2.corvaneltest") +
                         QString::fromStdString(options.instance);
    if (!bus.registerService(name)) {
        journal.write("event could not take the name " + name.toStdString());
        return 1;
    }
    journal.write("event ready " + name.toStdString());
    return application.exec();
}
