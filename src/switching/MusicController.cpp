#include "switching/MusicController.h"

#include <string_view>
#include <vector>

#include "switching/NumberText.h"

namespace corvanel::MusicController {

namespace {

constexpr double lowestTrackRate = 8000;
constexpr double highestTrackRate = 768000;
constexpr int rewindTries = 5;
constexpr int stateAttempts = 10;

std::vector<std::string_view> splitAtBars(std::string_view text) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t bar = text.find('|');
        parts.push_back(text.substr(0, bar));
        if (bar == std::string_view::npos) return parts;
        text.remove_prefix(bar + 1);
    }
}

std::optional<double> readPosition(ScriptRunner& scripts) {
    const auto reply = runScript(scripts, MusicScripts::readPosition);
    if (!reply) return std::nullopt;
    return parseDecimal(*reply);
}

}  // namespace

std::optional<std::string> runScript(ScriptRunner& scripts, const std::string& source) {
    // An Apple event to an app that is not running launches it. Asking for the technicals never
    // launches Music, and neither may pausing around a switch: nothing is sent to a Music app
    // that is not running, and the switch goes ahead without the pause.
    if (!scripts.isApplicationRunning(MusicScripts::musicBundleIdentifier)) return std::nullopt;
    return scripts.runScript(source);
}

std::optional<TrackTechnicals> currentTrackTechnicals(ScriptRunner& scripts) {
    const auto reply = runScript(scripts, MusicScripts::trackTechnicals);
    if (!reply || reply->empty()) return std::nullopt;
    const std::vector<std::string_view> parts = splitAtBars(*reply);
    if (parts.size() < 3) return std::nullopt;
    const auto rate = parseDecimal(parts[0]);
    if (!rate || *rate < lowestTrackRate || *rate > highestTrackRate) return std::nullopt;
    std::string kind = parts[2].empty() ? std::string("Music library") : std::string(parts[2]);
    return TrackTechnicals{*rate, parsePlainInteger(parts[1]), std::move(kind)};
}

Task<bool> awaitState(std::shared_ptr<ScriptRunner> scripts, std::string state, int attempts) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (runScript(*scripts, MusicScripts::playerState) == state) co_return true;
        co_await sleepFor(Seconds{0.1});
    }
    co_return false;
}

Task<> restartTrackAndPlay(std::shared_ptr<ScriptRunner> scripts) {
    for (int attempt = 0; attempt < rewindTries; ++attempt) {
        runScript(*scripts, MusicScripts::rewind);
        const auto position = readPosition(*scripts);
        if (position && *position < 1.0) break;
        co_await sleepFor(Seconds{0.15});
    }
    runScript(*scripts, MusicScripts::play);
    co_await awaitState(scripts, "playing", stateAttempts);
    const auto position = readPosition(*scripts);
    if (position && *position > 1.5) runScript(*scripts, MusicScripts::rewind);
}

}  // namespace corvanel::MusicController
