#include "demo/DemoPlaylist.h"

#include <cstdio>

namespace corvanel {

std::string audioCapabilitiesMessage(double rateKHz, int bitDepth) {
    char rate[32];
    std::snprintf(rate, sizeof rate, "%g", rateKHz);
    return "[AudioCapabilities] audioCapabilities: { asbdSampleRate = " + std::string(rate) +
           " kHz, asbdFormatID = alac, sdBitDepth = " + std::to_string(bitDepth) +
           " bit, channelCount = 2, isSpatial = NO }";
}

std::string losslessDecoderMessage(int rateHz, int bitDepth) {
    return "ACAppleLosslessDecoder.cpp:183  Input format: 2 ch, " + std::to_string(rateHz) +
           " Hz, 'alac' (0x00000001) from " + std::to_string(bitDepth) +
           "-bit source, 4096 frames/packet";
}

std::string audioQueueMessage(int rateHz) {
    return "Creating AudioQueue with sampleRate:" + std::to_string(rateHz) +
           ".0, channels:2, format:'aac ', bufferFrames:4096";
}

std::vector<DemoTrack> demoPlaylist(Seconds trackLength) {
    return {
        {"Harbour Lights",
         "The Quiet Cartographers",
         {"44100", "1411", "Apple Lossless audio file"},
         {{Seconds{0.4}, losslessDecoderMessage(44100, 16)}},
         trackLength},
        // The depth reaches the log only after the first scan: the app's report comes first,
        // the decoder's depth follows in a later scan.
        {"Night Ferry",
         "Ilse Marren",
         {"96000", "4608", "Apple Lossless audio file"},
         {{Seconds{1.8}, audioCapabilitiesMessage(96, 24)}},
         trackLength},
        {"Paper Satellites",
         "Northbound Static",
         {"48000", "256", "Apple Music AAC audio file"},
         {{Seconds{0.3}, audioQueueMessage(48000)}},
         trackLength},
        {"Glass Orchard",
         "Ilse Marren",
         {"192000", "9216", "Apple Lossless audio file"},
         {{Seconds{0.35}, losslessDecoderMessage(192000, 24)},
          {Seconds{0.5}, audioCapabilitiesMessage(192, 24)}},
         trackLength},
        {"Slow Tide",
         "The Quiet Cartographers",
         {"88200", "4233", "Apple Lossless audio file"},
         {{Seconds{0.45}, audioCapabilitiesMessage(88.2, 24)}},
         trackLength},
    };
}

}  // namespace corvanel
