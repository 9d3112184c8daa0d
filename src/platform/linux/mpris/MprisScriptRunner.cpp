#include "platform/linux/mpris/MprisScriptRunner.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "platform/MusicScripts.h"

namespace corvanel {
namespace {

// The rates a technicals reply may carry, as the Music app's own replies do.
constexpr double lowestRate = 8000;
constexpr double highestRate = 768000;

std::string decimalText(double value, std::chars_format format, int precision) {
    std::array<char, 64> text{};
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
    if (error != std::errc{}) return {};
    return std::string(text.data(), end);
}

// Whole rates as whole numbers ("96000"), others with their fraction ("44100.5").
std::string rateText(double rate) {
    if (rate == std::round(rate)) return std::to_string(std::llround(rate));
    return decimalText(rate, std::chars_format::fixed, 3);
}

std::optional<std::string> stateText(std::optional<PlaybackStatus> status) {
    if (!status) return std::nullopt;
    switch (*status) {
        case PlaybackStatus::playing:
            return "playing";
        case PlaybackStatus::paused:
            return "paused";
        case PlaybackStatus::stopped:
            return "stopped";
    }
    return std::nullopt;
}

std::optional<std::string> sentReply(bool sent) {
    if (!sent) return std::nullopt;
    return std::string();
}

}  // namespace

MprisScriptRunner::MprisScriptRunner(std::shared_ptr<MprisPlayers> players,
                                     std::shared_ptr<MprisTrackHeaders> headers,
                                     std::shared_ptr<const PlaybackStreams> streams)
    : players_(std::move(players)), headers_(std::move(headers)), streams_(std::move(streams)) {}

std::optional<std::string> MprisScriptRunner::runScript(const std::string& source) {
    const MprisPlayer* player = players_->followed();
    if (!player) return std::nullopt;
    if (source == MusicScripts::playerState) return stateText(player->status);
    if (source == MusicScripts::pause) return sentReply(players_->pause());
    if (source == MusicScripts::play) return sentReply(players_->play());
    if (source == MusicScripts::rewind) return sentReply(players_->rewind());
    if (source == MusicScripts::readPosition) {
        const auto position = players_->followedPosition();
        if (!position) return std::nullopt;
        return decimalText(*position, std::chars_format::fixed, 3);
    }
    if (source == MusicScripts::trackTechnicals) return trackTechnicals(*player);
    return std::nullopt;
}

bool MprisScriptRunner::isApplicationRunning(const std::string& bundleIdentifier) {
    return bundleIdentifier == MusicScripts::musicBundleIdentifier && players_->followed();
}

std::string MprisScriptRunner::trackTechnicals(const MprisPlayer& player) {
    if (!player.status || *player.status == PlaybackStatus::stopped) return {};
    const MprisTrackHeaders::Lookup header = headers_->lookup(player.track.url);
    if (std::holds_alternative<MprisTrackHeaders::Reading>(header)) return {};
    if (const auto* format = std::get_if<TrackFileFormat>(&header)) {
        if (format->sampleRate < lowestRate || format->sampleRate > highestRate) return {};
        const std::string bitRate =
            format->bitRateKbps ? std::to_string(*format->bitRateKbps) : std::string();
        return rateText(format->sampleRate) + "|" + bitRate + "|" + format->kind;
    }
    if (!streams_ || !player.processID) return {};
    const auto stream = streams_->streamOfProcess(*player.processID);
    if (!stream || !(stream->sampleRate >= lowestRate && stream->sampleRate <= highestRate))
        return {};
    return rateText(stream->sampleRate) + "||Audio stream";
}

}  // namespace corvanel
