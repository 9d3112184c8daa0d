#pragma once
// What the PipeWire suites share: a private session, an executor pumped in real time while
// PipeWire's thread posts to it, and the output connected to that session.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "ChildProcess.h"
#include "PipeWireTestSession.h"
#include "platform/linux/pipewire/PipeWireOutput.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "switching/CoreAudioHelper.h"
#include "switching/PropertyReads.h"

namespace corvanel::testing {

using namespace std::chrono_literals;

// A listener that counts its calls and notes whether any came off this (the main) thread.
struct CountingListener {
    int calls = 0;
    bool offMainThread = false;
    std::thread::id mainThread = std::this_thread::get_id();

    AudioHardware::PropertyListener callback() {
        return [this] {
            ++calls;
            offMainThread = offMainThread || std::this_thread::get_id() != mainThread;
        };
    }
};

class PipeWireTest : public ::testing::Test {
  protected:
    void SetUp() override {
        // CI machines have PipeWire installed: a session that cannot start is a failure.
        ASSERT_TRUE(session.failure().empty())
            << "The private PipeWire session for this test did not start: " << session.failure();
    }
    void TearDown() override {
        for (const pid_t player : players)
            stopProgram(player);
    }

    // Plays silence into `sink` until the test ends, as a player would; true once the sink runs
    // at the graph's default rate. The player's process id is the last of `players`.
    bool playInto(const std::string& sink) {
        players.push_back(session.playSilence(sink));
        return players.back() > 0 &&
               session.waitForSinkRate(sink, PipeWireTestSession::defaultRate);
    }

    // Stops the last player now.
    void stopPlaying() {
        stopProgram(players.back());
        players.pop_back();
    }

    // Registers `listener` for the object's property (global scope); its id.
    static PropertyListenerID listen(AudioHardware& audio, AudioObjectID object,
                                     std::uint32_t selector, CountingListener& listener) {
        PropertyListenerID id = 0;
        EXPECT_EQ(
            audio.addPropertyListener(object, globalAddress(selector), listener.callback(), id),
            kNoErr);
        return id;
    }

    // Connects the output to the session; the test fails when it cannot.
    PipeWireOutput connect() {
        auto result = connectPipeWireOutput(executor, 2000ms);
        if (const auto* failure = std::get_if<std::string>(&result)) {
            ADD_FAILURE() << "no PipeWire output: " << *failure;
            return {};
        }
        return std::get<PipeWireOutput>(std::move(result));
    }

    // Runs the main-thread work PipeWire's thread posts, in real time, until `done` holds;
    // false when it did not within `timeout`.
    bool pumpUntil(const std::function<bool()>& done,
                   std::chrono::milliseconds timeout = 3000ms) const {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        for (;;) {
            executor->runUntilIdle();
            if (done()) return true;
            if (std::chrono::steady_clock::now() >= deadline) return false;
            std::this_thread::sleep_for(2ms);
        }
    }

    // Lets `duration` of real time pass while the main-thread work runs.
    void pumpFor(std::chrono::milliseconds duration) const {
        pumpUntil([] { return false; }, duration);
    }

    static AudioObjectID defaultDevice(AudioHardware& audio) {
        return CoreAudioHelper::defaultOutputDevice(audio).value_or(kAudioObjectUnknown);
    }

    static OSStatus writeRate(AudioHardware& audio, AudioObjectID device, double rate) {
        return audio.setPropertyData(device, globalAddress(kAudioDevicePropertyNominalSampleRate),
                                     sizeof rate, &rate);
    }

    PipeWireTestSession session;
    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::vector<pid_t> players;
};

}  // namespace corvanel::testing
