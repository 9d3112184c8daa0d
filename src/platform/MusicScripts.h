#pragma once
// The fixed script texts exchanged with the Music app: the player side (MusicController) sends
// them and the simulated app answers them, so both read the one copy here.
namespace corvanel::MusicScripts {

inline constexpr const char* playerState =
    "tell application \"Music\" to get player state as string";
inline constexpr const char* pause = "tell application \"Music\" to pause";
inline constexpr const char* play = "tell application \"Music\" to play";
inline constexpr const char* readPosition = "tell application \"Music\" to get player position";
inline constexpr const char* rewind = "tell application \"Music\" to set player position to 0.0";
// Empty when stopped or without a sample rate, else "rate|bit rate|kind".
inline constexpr const char* trackTechnicals =
    "tell application \"Music\"\n"
    "    if player state is stopped then return \"\"\n"
    "    set rateText to \"\"\n"
    "    try\n"
    "        set rateValue to sample rate of current track\n"
    "        if rateValue is missing value then return \"\"\n"
    "        set rateText to rateValue as string\n"
    "    on error\n"
    "        return \"\"\n"
    "    end try\n"
    "    set bitRateText to \"\"\n"
    "    try\n"
    "        set bitRateText to (bit rate of current track) as string\n"
    "    end try\n"
    "    set kindText to \"\"\n"
    "    try\n"
    "        set kindText to (kind of current track) as string\n"
    "    end try\n"
    "    return rateText & \"|\" & bitRateText & \"|\" & kindText\n"
    "end tell";

inline constexpr const char* musicBundleIdentifier = "com.apple.Music";

}  // namespace corvanel::MusicScripts
