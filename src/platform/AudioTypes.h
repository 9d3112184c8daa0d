#pragma once
// Plain mirrors of the CoreAudio values the ports carry. Layouts match the platform's
// structures byte for byte so the macOS adapter can copy them without translation.
#include <cstdint>

namespace corvanel {

using AudioObjectID = std::uint32_t;
using OSStatus = std::int32_t;

constexpr AudioObjectID kAudioObjectUnknown = 0;
constexpr AudioObjectID kAudioObjectSystemObject = 1;
constexpr OSStatus kNoErr = 0;

constexpr std::uint32_t fourCC(const char (&code)[5]) {
    return (static_cast<std::uint32_t>(static_cast<unsigned char>(code[0])) << 24) |
           (static_cast<std::uint32_t>(static_cast<unsigned char>(code[1])) << 16) |
           (static_cast<std::uint32_t>(static_cast<unsigned char>(code[2])) << 8) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(code[3]));
}

// Property selectors and scopes, with the platform's four-character codes.
constexpr std::uint32_t kAudioHardwarePropertyDefaultOutputDevice = fourCC("dOut");
constexpr std::uint32_t kAudioDevicePropertyNominalSampleRate = fourCC("nsrt");
constexpr std::uint32_t kAudioDevicePropertyAvailableNominalSampleRates = fourCC("nsr#");
constexpr std::uint32_t kAudioObjectPropertyName = fourCC("lnam");
constexpr std::uint32_t kAudioDevicePropertyDeviceUID = fourCC("uid ");
constexpr std::uint32_t kAudioDevicePropertyStreams = fourCC("stm#");
constexpr std::uint32_t kAudioStreamPropertyAvailablePhysicalFormats = fourCC("pfta");
constexpr std::uint32_t kAudioStreamPropertyPhysicalFormat = fourCC("pft ");
constexpr std::uint32_t kAudioTapPropertyFormat = fourCC("tfmt");
constexpr std::uint32_t kAudioTapPropertyUID = fourCC("tuid");

// Statuses the platform returns, by their four-character codes.
constexpr OSStatus kAudioHardwareNotRunningError = static_cast<OSStatus>(fourCC("stop"));
constexpr OSStatus kAudioHardwareUnknownPropertyError = static_cast<OSStatus>(fourCC("who?"));
constexpr OSStatus kAudioHardwareBadObjectError = static_cast<OSStatus>(fourCC("!obj"));
constexpr OSStatus kAudioHardwareBadPropertySizeError = static_cast<OSStatus>(fourCC("!siz"));
constexpr OSStatus kAudioHardwareIllegalOperationError = static_cast<OSStatus>(fourCC("nope"));
constexpr OSStatus kAudioHardwareUnsupportedOperationError = static_cast<OSStatus>(fourCC("unop"));
constexpr OSStatus kAudioDeviceUnsupportedFormatError = static_cast<OSStatus>(fourCC("!dat"));

constexpr std::uint32_t kAudioObjectPropertyScopeGlobal = fourCC("glob");
constexpr std::uint32_t kAudioObjectPropertyScopeOutput = fourCC("outp");
constexpr std::uint32_t kAudioObjectPropertyElementMain = 0;

constexpr std::uint32_t kAudioFormatLinearPCM = fourCC("lpcm");
constexpr std::uint32_t kAudioFormatFlagIsFloat = 1u << 0;
constexpr std::uint32_t kAudioFormatFlagIsPacked = 1u << 3;
constexpr std::uint32_t kAudioFormatFlagIsNonInterleaved = 1u << 5;

struct AudioObjectPropertyAddress {
    std::uint32_t mSelector = 0;
    std::uint32_t mScope = kAudioObjectPropertyScopeGlobal;
    std::uint32_t mElement = kAudioObjectPropertyElementMain;

    friend bool operator==(const AudioObjectPropertyAddress&,
                           const AudioObjectPropertyAddress&) = default;
};

struct AudioValueRange {
    double mMinimum = 0;
    double mMaximum = 0;
};

struct AudioStreamBasicDescription {
    double mSampleRate = 0;
    std::uint32_t mFormatID = 0;
    std::uint32_t mFormatFlags = 0;
    std::uint32_t mBytesPerPacket = 0;
    std::uint32_t mFramesPerPacket = 0;
    std::uint32_t mBytesPerFrame = 0;
    std::uint32_t mChannelsPerFrame = 0;
    std::uint32_t mBitsPerChannel = 0;
    std::uint32_t mReserved = 0;
};

struct AudioStreamRangedDescription {
    AudioStreamBasicDescription mFormat;
    AudioValueRange mSampleRateRange;
};

static_assert(sizeof(AudioValueRange) == 16);
static_assert(sizeof(AudioStreamBasicDescription) == 40);
static_assert(sizeof(AudioStreamRangedDescription) == 56);

}  // namespace corvanel
