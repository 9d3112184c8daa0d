#include "switching/CoreAudioHelper.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "switching/PropertyReads.h"

namespace corvanel::CoreAudioHelper {
namespace {

// The bits per channel reached so far; the first value found sets it.
void raise(std::optional<std::uint32_t>& result, std::uint32_t bits) {
    result = result ? std::max(*result, bits) : bits;
}

bool fitsRate(const AudioStreamRangedDescription& entry, double rate) {
    if (std::fabs(entry.mFormat.mSampleRate - rate) < 1.0) return true;
    return entry.mSampleRateRange.mMinimum <= rate && rate <= entry.mSampleRateRange.mMaximum;
}

// The deepest linear-PCM entry that fits the rate; the first among equals.
std::optional<AudioStreamRangedDescription> deepestFormat(
    const std::vector<AudioStreamRangedDescription>& offered, double rate) {
    std::optional<AudioStreamRangedDescription> chosen;
    for (const AudioStreamRangedDescription& entry : offered) {
        if (entry.mFormat.mFormatID != kAudioFormatLinearPCM || !fitsRate(entry, rate)) continue;
        if (!chosen || entry.mFormat.mBitsPerChannel > chosen->mFormat.mBitsPerChannel)
            chosen = entry;
    }
    return chosen;
}

}  // namespace

std::vector<double> availableSampleRates(AudioHardware& hardware, AudioObjectID device) {
    const auto ranges = readPropertyArray<AudioValueRange>(
        hardware, device, globalAddress(kAudioDevicePropertyAvailableNominalSampleRates));
    if (!ranges) return {};
    std::set<double> rates;
    for (const AudioValueRange& range : *ranges) {
        if (range.mMinimum == range.mMaximum) {
            rates.insert(range.mMinimum);
            continue;
        }
        for (const double standard : standardRates) {
            if (range.mMinimum <= standard && standard <= range.mMaximum) rates.insert(standard);
        }
    }
    return {rates.begin(), rates.end()};
}

std::string deviceName(AudioHardware& hardware, AudioObjectID device) {
    std::string name;
    if (hardware.getPropertyString(device, globalAddress(kAudioObjectPropertyName), name) != kNoErr)
        return "Unknown device";
    return name;
}

std::optional<std::string> deviceUID(AudioHardware& hardware, AudioObjectID device) {
    std::string uid;
    if (hardware.getPropertyString(device, globalAddress(kAudioDevicePropertyDeviceUID), uid) !=
        kNoErr)
        return std::nullopt;
    return uid;
}

std::vector<AudioObjectID> outputStreams(AudioHardware& hardware, AudioObjectID device) {
    const AudioObjectPropertyAddress address{kAudioDevicePropertyStreams,
                                             kAudioObjectPropertyScopeOutput,
                                             kAudioObjectPropertyElementMain};
    return readPropertyArray<AudioObjectID>(hardware, device, address)
        .value_or(std::vector<AudioObjectID>{});
}

std::optional<std::uint32_t> setMaxBitDepth(AudioHardware& hardware, AudioObjectID device,
                                            double rate) {
    const std::vector<AudioObjectID> streams = outputStreams(hardware, device);
    if (streams.empty()) return std::nullopt;
    std::optional<std::uint32_t> result;
    for (const AudioObjectID stream : streams) {
        const auto offered = readPropertyArray<AudioStreamRangedDescription>(
            hardware, stream, globalAddress(kAudioStreamPropertyAvailablePhysicalFormats));
        if (!offered || offered->empty()) continue;
        const auto chosen = deepestFormat(*offered, rate);
        if (!chosen) continue;
        const std::uint32_t chosenBits = chosen->mFormat.mBitsPerChannel;

        const auto formatAddress = globalAddress(kAudioStreamPropertyPhysicalFormat);
        const auto current =
            readPropertyValue<AudioStreamBasicDescription>(hardware, stream, formatAddress);
        const std::uint32_t currentBits = current ? current->mBitsPerChannel : 0;
        if (current && currentBits >= chosenBits) {
            raise(result, currentBits);
            continue;
        }
        AudioStreamBasicDescription wanted = chosen->mFormat;
        wanted.mSampleRate = rate;
        if (hardware.setPropertyData(stream, formatAddress, sizeof wanted, &wanted) == kNoErr) {
            raise(result, chosenBits);
        } else if (currentBits != 0) {
            raise(result, currentBits);
        }
    }
    return result;
}

std::optional<AudioObjectID> defaultOutputDevice(AudioHardware& hardware) {
    const auto device =
        readPropertyValue<AudioObjectID>(hardware, kAudioObjectSystemObject,
                                         globalAddress(kAudioHardwarePropertyDefaultOutputDevice));
    if (!device || *device == kAudioObjectUnknown) return std::nullopt;
    return device;
}

double nominalRate(AudioHardware& hardware, AudioObjectID device) {
    const auto rate = readPropertyValue<double>(
        hardware, device, globalAddress(kAudioDevicePropertyNominalSampleRate));
    if (!rate || !(*rate > 0)) return 0;
    return *rate;
}

}  // namespace corvanel::CoreAudioHelper
