// The switcher engine, unchanged, on a real PipeWire session: the track's rate reaches the
// default sink, PipeWire's own choice of depth is what the engine reports, and a new default
// sink brings the engine's device and rate listener along.
#include <algorithm>

#include "PipeWireTestWorld.h"
#include "switching/SimulatedMac.h"
#include "switching/SwitcherEngine.h"

namespace corvanel::testing {
namespace {

class PipeWireEngineTest : public PipeWireTest {
  protected:
    PipeWireEngineTest() {
        executor = mac.executor;
        mac.music->setRunning(false);
    }

    // The engine with the PipeWire output as its hardware and the simulated rest of the Mac.
    std::shared_ptr<SwitcherEngine> startEngine(const PipeWireOutput& output) {
        PlatformPorts ports = mac.ports();
        ports.audio = output.audio;
        return SwitcherEngine::create(ports);
    }

    bool logged(const SwitcherEngine& engine, const std::string& text) const {
        const auto lines = activityTexts(engine.activity());
        return std::find(lines.begin(), lines.end(), text) != lines.end();
    }

    SimulatedMac mac;
};

TEST_F(PipeWireEngineTest, ATracksRateReachesTheRealSinkAndTheDepthIsPipeWiresOwn) {
    ASSERT_TRUE(playInto(PipeWireTestSession::firstSink));
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    mac.log->add("Music", "Creating AudioQueue with sampleRate:96000.0", mac.secondsIn(0));

    const auto engine = startEngine(output);
    EXPECT_EQ(engine->deviceName(), PipeWireTestSession::firstSinkDescription);
    EXPECT_TRUE(pumpUntil([&] { return engine->deviceRate() == 96000; }));
    EXPECT_TRUE(session.waitForSinkRate(PipeWireTestSession::firstSink, 96000));
    EXPECT_TRUE(logged(*engine, "Test DAC A → 96 kHz"));
    // Deeper formats are on offer but cannot be set: the engine reports what the sink runs.
    EXPECT_EQ(engine->deviceBitDepth(), 32u) << ::testing::PrintToString(engine->activity());

    // PipeWire's confirmation of the new rate changes nothing more.
    const std::size_t lines = engine->activity().size();
    pumpFor(200ms);
    EXPECT_EQ(engine->activity().size(), lines);
    EXPECT_EQ(engine->deviceRate(), 96000);
}

TEST_F(PipeWireEngineTest, ANewDefaultSinkBringsTheDeviceAndItsRateListener) {
    ASSERT_TRUE(playInto(PipeWireTestSession::secondSink));
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    const auto engine = startEngine(output);
    ASSERT_EQ(engine->deviceName(), PipeWireTestSession::firstSinkDescription);

    ASSERT_TRUE(session.setDefaultSink(PipeWireTestSession::secondSink));
    EXPECT_TRUE(pumpUntil(
        [&] { return engine->deviceName() == PipeWireTestSession::secondSinkDescription; }));
    EXPECT_TRUE(logged(*engine, "Output device now Test DAC B"));
    EXPECT_EQ(engine->deviceRate(), 48000);

    // Another program moves the graph: the engine hears it from the new device.
    ASSERT_TRUE(session.forceRateAsAnotherProgram(44100));
    EXPECT_TRUE(pumpUntil([&] { return engine->deviceRate() == 44100; }));
    EXPECT_EQ(session.sinkRate(PipeWireTestSession::secondSink), 44100);
}

}  // namespace
}  // namespace corvanel::testing
