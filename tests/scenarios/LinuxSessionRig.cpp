#include "LinuxSessionRig.h"

#include <sys/wait.h>

#include <fstream>
#include <sstream>
#include <thread>

namespace corvanel::testing {
namespace {

const QString playerName = QStringLiteral("org.mpris.MediaPlayer2.corvaneltest1");
const QString connectionName = QStringLiteral("corvanel-scenario-control");

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

std::filesystem::path writeOnce(const std::filesystem::path& path, int format, int rate,
                                double compression = -1) {
    if (!std::filesystem::exists(path)) writeToneFile(path, format, rate, 2.0, 2, compression);
    return path;
}

}  // namespace

double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::vector<std::string> activityLines(const std::string& printed) {
    // A headless run prints each activity line as "<time of day>  <text>".
    std::vector<std::string> result;
    for (const std::string& line : lines(printed)) {
        const std::size_t gap = line.find("  ");
        if (gap != std::string::npos && gap > 0 &&
            std::isdigit(static_cast<unsigned char>(line[0])))
            result.push_back(line.substr(gap + 2));
    }
    return result;
}

LinuxSessionRig::LinuxSessionRig() : directory_(makePrivateDirectory("corvanel-scenario-")) {
    if (!session_.failure().empty()) return;
    control_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(
        QString::fromStdString(session_.bus().address()), connectionName));
}

LinuxSessionRig::~LinuxSessionRig() {
    stopProgram(app_);
    stopPlayer();
    control_.reset();
    QDBusConnection::disconnectFromBus(connectionName);
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

std::string LinuxSessionRig::failure() const {
    if (!session_.failure().empty()) return session_.failure();
    if (directory_.empty()) return "could not make a private directory";
    if (!control_ || !control_->isConnected()) return "could not connect to the session's bus";
    return {};
}

std::filesystem::path LinuxSessionRig::cdTrack() {
    return writeOnce(directory_ / "cd.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100);
}
std::filesystem::path LinuxSessionRig::hiResTrack() {
    return writeOnce(directory_ / "hires.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000);
}
std::filesystem::path LinuxSessionRig::mp3Track() {
    return writeOnce(directory_ / "lossy.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 44100,
                     mp3At256kbps);
}

void LinuxSessionRig::startPlayer() {
    player_ = startProgram({CORVANEL_TEST_PLAYER, "--instance", "1", "--journal",
                            (directory_ / "player.journal").string()},
                           session_.clientEnvironment(), (directory_ / "player.log").string());
    const bool ready = QTest::qWaitFor(
        [&] {
            return readTextFile(directory_ / "player.journal").find("event ready") !=
                   std::string::npos;
        },
        5000);
    EXPECT_TRUE(ready) << readTextFile(directory_ / "player.log");
}

void LinuxSessionRig::stopPlayer() {
    stopProgram(player_);
    player_ = -1;
}

QDBusMessage LinuxSessionRig::playerCall(const QString& method, const QVariantList& arguments) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(playerName, QStringLiteral("/org/mpris/MediaPlayer2"),
                                       QStringLiteral("org.mpris.MediaPlayer2.Player"), method);
    call.setArguments(arguments);
    return control_->call(call, QDBus::Block, 5000);
}

QDBusMessage LinuxSessionRig::playerControl(const QString& method, const QVariantList& arguments) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(playerName, QStringLiteral("/org/mpris/MediaPlayer2"),
                                       QStringLiteral("org.corvanel.TestPlayer"), method);
    call.setArguments(arguments);
    return control_->call(call, QDBus::Block, 5000);
}

void LinuxSessionRig::play(const std::filesystem::path& track) {
    playerControl(QStringLiteral("Open"), {QByteArray::fromStdString(track.string())});
    playerCall(QStringLiteral("Play"));
}

std::vector<std::string> LinuxSessionRig::playerJournal() const {
    return lines(readTextFile(directory_ / "player.journal"));
}

void LinuxSessionRig::startApp(double seconds, const std::string& settingsMembers,
                               const std::vector<std::string>& extraEnvironment) {
    const std::filesystem::path home = directory_ / "home";
    for (const char* folder : {"config", "data", "cache"})
        std::filesystem::create_directories(home / folder);
    const std::filesystem::path settings = directory_ / "settings.json";
    // The meters' capture is PulseAudio's (or PipeWire's pulse server's); this session runs
    // neither, so it stays off and says nothing.
    std::ofstream(settings) << "{ \"spectrumEnabled\": false"
                            << (settingsMembers.empty() ? "" : ", " + settingsMembers) << " }\n";
    std::vector<std::string> environment = extraEnvironment;
    for (const std::string& entry : session_.clientEnvironment())
        environment.push_back(entry);
    for (const std::string& entry :
         {"HOME=" + home.string(), "XDG_CONFIG_HOME=" + (home / "config").string(),
          "XDG_DATA_HOME=" + (home / "data").string(),
          "XDG_CACHE_HOME=" + (home / "cache").string(), std::string("QT_QPA_PLATFORM=offscreen")})
        environment.push_back(entry);
    // The first of two entries for one name wins.
    app_ = startProgram({CORVANEL_APP, "--headless", "--duration", std::to_string(seconds),
                         "--settings", settings.string()},
                        environment, (directory_ / "app.log").string());
    ASSERT_GT(app_, 0);
}

int LinuxSessionRig::waitForAppExit(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (waitpid(app_, &status, WNOHANG) == app_) {
            app_ = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        QTest::qWait(20);
    }
    stopProgram(app_);
    app_ = -1;
    return -1;
}

std::string LinuxSessionRig::appOutput() const {
    return readTextFile(directory_ / "app.log");
}

std::vector<std::string> LinuxSessionRig::activity() const {
    return activityLines(appOutput());
}

bool LinuxSessionRig::waitForActivity(const std::string& line, std::chrono::milliseconds timeout) {
    return QTest::qWaitFor(
        [&] {
            const std::vector<std::string> shown = activity();
            return std::find(shown.begin(), shown.end(), line) != shown.end();
        },
        static_cast<int>(timeout.count()));
}

}  // namespace corvanel::testing
