// The Qt adapters: typed settings across store instances, the locale's time of day, the main
// executor's background work and shut-down, a queue of background jobs on it, and the
// single-instance handshake over the local socket.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <atomic>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#if defined(__APPLE__)
#include <pthread/qos.h>
#else
#include <sys/resource.h>
#include <unistd.h>
#endif

#include "GuiApplication.h"
#include "platform/BackgroundQueue.h"
#include "platform/qt/LocalWorkspace.h"
#include "platform/qt/QtMainExecutor.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/qt/QtTimeOfDay.h"

namespace corvanel {
namespace {

// Runs the event loop until `done` holds or five seconds have passed.
template <typename Condition>
void processEventsUntil(Condition done) {
    QDeadlineTimer deadline(5000);
    while (!done() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

class QtSettingsStoreTest : public ::testing::Test {
  protected:
    void SetUp() override { testing::guiApplication(); }
    QString path() const { return directory_.filePath("settings.json"); }

  private:
    QTemporaryDir directory_;
};

TEST_F(QtSettingsStoreTest, ValuesKeepTheirTypeInAFreshStoreOnTheSameFile) {
    {
        QtSettingsStore writer(path());
        writer.write("autoSwitchEnabled", false);
        writer.write("NSStatusItem Preferred Position Item-0", std::int64_t{10000});
        writer.write("panelMeterStyle", std::string("ledrack"));
        writer.write("looksLikeABoolean", std::string("true"));
    }
    const QtSettingsStore reader(path());
    EXPECT_EQ(reader.read("autoSwitchEnabled"), SettingValue(false));
    EXPECT_EQ(reader.read("NSStatusItem Preferred Position Item-0"),
              SettingValue(std::int64_t{10000}));
    EXPECT_EQ(reader.read("panelMeterStyle"), SettingValue(std::string("ledrack")));
    // A text that spells a boolean stays a text, so the boolean defaults still apply to it.
    EXPECT_EQ(reader.read("looksLikeABoolean"), SettingValue(std::string("true")));
    EXPECT_TRUE(readBool(reader, "looksLikeABoolean", true));
    EXPECT_FALSE(readBool(reader, "looksLikeABoolean", false));
    EXPECT_EQ(reader.read("neverWritten"), SettingValue(std::monostate{}));
}

TEST_F(QtSettingsStoreTest, AWriteIsVisibleToAStoreOpenedAfterIt) {
    QtSettingsStore first(path());
    first.write("pauseDuringSwitch", true);
    const QtSettingsStore second(path());
    EXPECT_EQ(second.read("pauseDuringSwitch"), SettingValue(true));
    first.write("pauseDuringSwitch", false);
    EXPECT_EQ(QtSettingsStore(path()).read("pauseDuringSwitch"), SettingValue(false));
}

TEST_F(QtSettingsStoreTest, ForeignValueTypesReadAsOtherAndSurviveOurWrites) {
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"spectrumEnabled": [1, 2], "ratio": 0.5, "autoSwitchEnabled": "yes"})");
    }
    QtSettingsStore store(path());
    EXPECT_EQ(store.read("spectrumEnabled"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(store.read("ratio"), SettingValue(OtherSettingValue{}));
    EXPECT_TRUE(readBool(store, "spectrumEnabled", true));
    EXPECT_TRUE(readBool(store, "autoSwitchEnabled", true));
    store.write("pauseDuringSwitch", true);
    const QtSettingsStore reopened(path());
    EXPECT_EQ(reopened.read("spectrumEnabled"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(reopened.read("pauseDuringSwitch"), SettingValue(true));
}

TEST_F(QtSettingsStoreTest, ABrokenFileIsKeptAsItWasAndWhatStillReadsCarriesOver) {
    struct Case {
        const char* text;
        qsizetype recovered;
    };
    const Case cases[] = {
        {R"({"autoSwitchEnabled": false, "panelMeterStyle": "ledrack",})", 2},
        {R"({"autoSwitchEnabled": false, "spectrumEnabled": [true, {"a": "}"}], "panelMeter)", 2},
        {"{ not json", 0},
    };
    for (const Case& broken : cases) {
        SCOPED_TRACE(broken.text);
        QTemporaryDir folder;
        const QString file = folder.filePath("settings.json");
        {
            QFile out(file);
            ASSERT_TRUE(out.open(QIODevice::WriteOnly));
            out.write(broken.text);
        }
        {
            QtSettingsStore store(file);
            store.write("pauseDuringSwitch", true);
            ASSERT_TRUE(store.startupNotice());
            EXPECT_NE(store.startupNotice()->find(std::to_string(broken.recovered) + " setting"),
                      std::string::npos)
                << *store.startupNotice();
        }
        const QStringList kept = QDir(folder.path()).entryList({"settings.json.unreadable-*"});
        ASSERT_EQ(kept.size(), 1);
        QFile aside(folder.filePath(kept.front()));
        ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
        EXPECT_EQ(aside.readAll(), QByteArray(broken.text));

        const QtSettingsStore reopened(file);
        EXPECT_FALSE(reopened.startupNotice());  // told once
        EXPECT_EQ(reopened.read("pauseDuringSwitch"), SettingValue(true));
        EXPECT_EQ(readBool(reopened, "autoSwitchEnabled", true), broken.recovered == 0);
    }
}

TEST_F(QtSettingsStoreTest, NumbersAtTheEdgesOf64BitsReadAsWhatTheyAre) {
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"max": 9223372036854775807, "min": -9223372036854775808,
                       "below": 9223372036854774784, "huge": -1e300, "half": 0.5})");
    }
    const QtSettingsStore store(path());
    // 9223372036854775807 reaches a double as 2^63, one past the largest 64-bit integer.
    EXPECT_EQ(store.read("max"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(store.read("min"), SettingValue(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(store.read("below"), SettingValue(std::int64_t{9223372036854774784}));
    EXPECT_EQ(store.read("huge"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(store.read("half"), SettingValue(OtherSettingValue{}));
}

TEST(QtTimeOfDayTest, EveryLocaleShowsHoursMinutesAndSecondsInItsMediumStyle) {
    const QTime time(15, 4, 5);
    const std::pair<const char*, const char*> expected[] = {{"en_US", "3:04:05 PM"},
                                                            {"es_ES", "15:04:05"},
                                                            {"ca_ES", "15:04:05"},
                                                            {"de_DE", "15:04:05"},
                                                            {"ja_JP", "15:04:05"},
                                                            {"sq_AL", "3:04:05 e pasdites"},
                                                            {"fi_FI", "15.04.05"},
                                                            {"bg_BG", "15:04:05 \u0447."},
                                                            {"ko_KR", "\uC624\uD6C4 3:04:05"},
                                                            {"zh_TW", "\u4E0B\u53483:04:05"},
                                                            // Its short style has the seconds.
                                                            {"C", "15:04:05"}};
    for (const auto& [name, text] : expected) {
        const QLocale locale(QString::fromLatin1(name));
        EXPECT_EQ(locale.toString(time, mediumTimeFormat(locale)).toStdString(), text) << name;
    }
    const QDateTime local(QDate(2024, 3, 5), time);
    const WallTime wall{std::chrono::milliseconds(local.toMSecsSinceEpoch())};
    EXPECT_EQ(qtTimeOfDay(QLocale(QLocale::English, QLocale::UnitedStates), wall), "3:04:05 PM");

    // No locale shows a zone's leftovers, and every one shows the seconds.
    for (const QLocale& locale : QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                                          QLocale::AnyTerritory)) {
        const QString shown = locale.toString(time, mediumTimeFormat(locale));
        const QString nextSecond = locale.toString(time.addSecs(1), mediumTimeFormat(locale));
        EXPECT_NE(shown, nextSecond) << locale.name().toStdString();
        EXPECT_LE(shown.count(QStringLiteral("05")), 1) << shown.toStdString();
        EXPECT_EQ(shown, shown.trimmed()) << locale.name().toStdString();
        EXPECT_FALSE(shown.contains(u'(') || shown.endsWith(u',')) << shown.toStdString();
    }
}

// Background work on a thread of lower priority than the main thread's.
bool runsBelowTheMainThread(int mainPriority, int workPriority) {
#if defined(__APPLE__)
    (void)mainPriority;
    return workPriority == static_cast<int>(QOS_CLASS_UTILITY);
#else
    // A larger nice value yields; 19 is the lowest there is.
    return workPriority > mainPriority || workPriority == 19;
#endif
}

int thisThreadsPriority() {
#if defined(__APPLE__)
    return static_cast<int>(qos_class_self());
#else
    return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
#endif
}

bool runsAsTheMainThread(int mainPriority, int workPriority) {
#if defined(__APPLE__)
    (void)mainPriority;
    return workPriority == static_cast<int>(QOS_CLASS_USER_INITIATED);
#else
    return workPriority == mainPriority;
#endif
}

TEST(QtMainExecutorTest, BackgroundWorkRunsAtItsPriorityAndHandsBackOnTheMainThread) {
    testing::guiApplication();
    QtMainExecutor executor;
    std::atomic<int> utilityPriority = 0;
    std::atomic<int> userPriority = 0;
    std::atomic<int> startedThreadPriority = 0;
    std::atomic<bool> workOnMainThread = true;
    bool doneOnMainThread = false;
    int done = 0;
    const auto mainThread = std::this_thread::get_id();
    executor.runInBackground(
        [&] {
            utilityPriority = thisThreadsPriority();
            workOnMainThread = std::this_thread::get_id() == mainThread;
        },
        [&] {
            doneOnMainThread = std::this_thread::get_id() == mainThread;
            ++done;
        },
        BackgroundPriority::utility);
    executor.runInBackground(
        [&] {
            userPriority = thisThreadsPriority();
            // As a sound server's client thread is started for a capture.
            std::thread([&] { startedThreadPriority = thisThreadsPriority(); }).join();
        },
        [&] { ++done; }, BackgroundPriority::userInitiated);
    processEventsUntil([&] { return done == 2; });
    ASSERT_EQ(done, 2);
    EXPECT_FALSE(workOnMainThread);
    EXPECT_TRUE(doneOnMainThread);
    EXPECT_TRUE(runsBelowTheMainThread(thisThreadsPriority(), utilityPriority));
    EXPECT_TRUE(runsAsTheMainThread(thisThreadsPriority(), userPriority));
#if defined(__linux__)
    // A thread inherits its starter's nice value, and could never win back a lowered one.
    EXPECT_EQ(startedThreadPriority, thisThreadsPriority());
#endif
}

TEST(QtMainExecutorTest, ShuttingDownDropsPendingWorkAtOnceAndWaitsForNoBackgroundWork) {
    testing::guiApplication();
    auto executor = std::make_unique<QtMainExecutor>();
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    std::atomic<bool> workEnded = false;
    int ran = 0;
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watch = held;
    executor->runInBackground(
        [opened, &workEnded] {
            opened.wait();
            workEnded = true;
        },
        [held, &ran] { ++ran; }, BackgroundPriority::utility);
    executor->post([held, &ran] { ++ran; });
    executor->postAfter(std::chrono::milliseconds(1), [held, &ran] { ++ran; });
    held.reset();
    // The scan would still be reading for a second.
    std::thread opener([&gate] {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        gate.set_value();
    });

    const auto before = std::chrono::steady_clock::now();
    executor->shutDown();
    EXPECT_TRUE(watch.expired());  // dropped here, on the main thread
    executor->post([&ran] { ++ran; });
    executor.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));

    opener.join();
    processEventsUntil([&] { return workEnded.load(); });
    EXPECT_TRUE(workEnded);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(ran, 0);
}

TEST(BackgroundQueueTest, JobsRunOneAtATimeInOrderOffTheMainThread) {
    testing::guiApplication();
    const auto executor = std::make_shared<QtMainExecutor>();
    BackgroundQueue queue(executor);
    const auto mainThread = std::this_thread::get_id();
    std::mutex mutex;
    std::vector<int> worked;  // under `mutex`
    std::atomic<int> running = 0;
    std::atomic<bool> overlapped = false;
    std::atomic<bool> workOnMainThread = false;
    std::vector<int> finished;
    bool doneOffMainThread = false;

    std::function<void(int)> queueJob = [&](int number) {
        queue.run(
            [&, number] {
                overlapped = overlapped || running.fetch_add(1) != 0;
                workOnMainThread = workOnMainThread || std::this_thread::get_id() == mainThread;
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                {
                    std::lock_guard lock(mutex);
                    worked.push_back(number);
                }
                running.fetch_sub(1);
            },
            [&, number] {
                doneOffMainThread = doneOffMainThread || std::this_thread::get_id() != mainThread;
                finished.push_back(number);
                // A job queued once the others have finished runs as well.
                if (number == 0) queueJob(3);
            });
    };
    for (int number = 0; number < 3; ++number)
        queueJob(number);
    processEventsUntil([&] { return finished.size() == 4; });

    const std::vector<int> inOrder{0, 1, 2, 3};
    EXPECT_EQ(finished, inOrder);
    std::lock_guard lock(mutex);
    EXPECT_EQ(worked, inOrder);
    EXPECT_FALSE(overlapped);
    EXPECT_FALSE(workOnMainThread);
    EXPECT_FALSE(doneOffMainThread);
}

TEST(BackgroundQueueTest, QueuedWorkStillRunsInTheBackgroundAfterTheExecutorShutsDown) {
    testing::guiApplication();
    const auto executor = std::make_shared<QtMainExecutor>();
    BackgroundQueue queue(executor);
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    std::atomic<bool> laterWorkRan = false;
    int dones = 0;
    queue.run([opened] { opened.wait(); }, [&dones] { ++dones; });
    queue.run([&laterWorkRan] { laterWorkRan = true; }, [&dones] { ++dones; });
    executor->shutDown();
    gate.set_value();
    processEventsUntil([&] { return laterWorkRan.load(); });
    EXPECT_TRUE(laterWorkRan);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(dones, 0);
}

TEST(LocalWorkspaceTest, TheNewerCopyAsksTheOlderToQuitAndTakesTheSocket) {
    testing::guiApplication();
    QTemporaryDir folder;
    const QString name = folder.filePath("corvanel.socket");
    // The older copy answers from its own event loop, as a separate process would.
    QThread olderThread;
    QObject olderContext;
    olderContext.moveToThread(&olderThread);
    olderThread.start();
    std::atomic<int> olderQuits = 0;
    std::unique_ptr<LocalWorkspace> older;
    QMetaObject::invokeMethod(
        &olderContext,
        [&] {
            older = std::make_unique<LocalWorkspace>(
                name, LocalWorkspace::Actions{.quit = [&] { ++olderQuits; }, .activate = {}});
            older->askOlderCopiesToQuit();
        },
        Qt::BlockingQueuedConnection);

    int newerQuits = 0;
    LocalWorkspace newer(name, {.quit = [&] { ++newerQuits; }, .activate = {}});
    newer.askOlderCopiesToQuit();
    EXPECT_EQ(olderQuits, 1);
    EXPECT_EQ(newerQuits, 0);
    EXPECT_TRUE(newer.isListening());
    bool olderListening = true;
    QMetaObject::invokeMethod(
        &olderContext,
        [&] {
            olderListening = older->isListening();
            older.reset();
        },
        Qt::BlockingQueuedConnection);
    olderThread.quit();
    olderThread.wait();
    EXPECT_FALSE(olderListening);

    // A third copy finds the second one listening.
    QLocalSocket probe;
    probe.connectToServer(name);
    EXPECT_TRUE(probe.waitForConnected(1000));
}

TEST(LocalWorkspaceTest, AClientThatNeverEndsItsLineIsCutOffAndQuitsNothing) {
    testing::guiApplication();
    QTemporaryDir folder;
    const QString socket = folder.filePath("corvanel.socket");
    int quits = 0;
    LocalWorkspace running(socket, {.quit = [&] { ++quits; }, .activate = {}});
    running.askOlderCopiesToQuit();
    ASSERT_TRUE(running.isListening());

    // The client streams from its own thread while this one runs the copy's event loop.
    std::atomic<bool> done = false;
    std::atomic<bool> cutOff = false;
    std::thread client([&] {
        QLocalSocket stream;
        stream.connectToServer(socket);
        if (stream.waitForConnected(5000)) {
            const QByteArray chunk(64 * 1024, 'x');
            for (int i = 0; i < 64 && stream.state() == QLocalSocket::ConnectedState; ++i) {
                stream.write(chunk);
                stream.waitForBytesWritten(1000);
            }
            cutOff = stream.state() == QLocalSocket::UnconnectedState ||
                     stream.waitForDisconnected(5000);
        }
        done = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return done.load(); }, 60000));
    client.join();
    EXPECT_TRUE(cutOff);
    EXPECT_EQ(quits, 0);
    EXPECT_TRUE(running.isListening());
}

TEST(LocalWorkspaceTest, ApplicationsAreFilesAndActivationIsPassedOn) {
    int activations = 0;
    LocalWorkspace workspace("corvanel-test-unused",
                             {.quit = {}, .activate = [&] { ++activations; }});
    EXPECT_FALSE(workspace.hasApplication("/System/Applications/Utilities/Audio MIDI Setup.app"));
    EXPECT_TRUE(workspace.hasApplication(QCoreApplication::applicationFilePath().toStdString()));
    workspace.activateSelf();
    EXPECT_EQ(activations, 1);
}

}  // namespace
}  // namespace corvanel
