#pragma once
// The demo's playlist: tracks in different source formats, each with what the simulated Music
// app answers about it and the decoder messages the app writes to the system log as it starts
// playing, at the moments it writes them.
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/sim/SimMusicApp.h"

namespace corvanel {

struct DemoLogMessage {
    Seconds after;  // after the start of playback
    std::string text;
};

struct DemoTrack {
    std::string title;
    std::string artist;
    SimMusicApp::Track technicals;
    std::vector<DemoLogMessage> decoderMessages;
    Seconds length;
};

// The decoder messages in the three shapes the log recognisers read: the audio-capabilities
// summary (rate in kHz, depth in bits), the lossless decoder's input format, and the creation of
// an audio queue (rate only).
std::string audioCapabilitiesMessage(double rateKHz, int bitDepth);
std::string losslessDecoderMessage(int rateHz, int bitDepth);
std::string audioQueueMessage(int rateHz);

// Five tracks: 44.1 kHz/16-bit, 96 kHz/24-bit, 48 kHz AAC 256 kbps, 192 kHz/24-bit and
// 88.2 kHz/24-bit, each `trackLength` long.
std::vector<DemoTrack> demoPlaylist(Seconds trackLength);

}  // namespace corvanel
