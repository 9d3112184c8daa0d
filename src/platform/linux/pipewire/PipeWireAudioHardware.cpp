#include "platform/linux/pipewire/PipeWireAudioHardware.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace corvanel::pipewire {
namespace {

// How long giving back the forced rate may hold up the program's end.
constexpr std::chrono::seconds giveBackTimeout{1};

bool offersRate(const std::vector<AudioValueRange>& ranges, double rate) {
    return std::any_of(ranges.begin(), ranges.end(), [rate](const AudioValueRange& range) {
        return range.mMinimum <= rate && rate <= range.mMaximum;
    });
}

}  // namespace

PipeWireAudioHardware::PipeWireAudioHardware(Key, std::shared_ptr<PipeWireGraph> graph,
                                             std::shared_ptr<MainExecutor> executor)
    : graph_(std::move(graph)), executor_(std::move(executor)) {}

std::shared_ptr<PipeWireAudioHardware> PipeWireAudioHardware::create(
    std::shared_ptr<PipeWireGraph> graph, std::shared_ptr<MainExecutor> executor) {
    auto adapter = std::make_shared<PipeWireAudioHardware>(Key{}, std::move(graph), executor);
    {
        const std::lock_guard lock(adapter->mutex_);
        adapter->reported_ = adapter->reported();
    }
    std::weak_ptr<PipeWireAudioHardware> weakAdapter = adapter;
    std::weak_ptr<MainExecutor> weakExecutor = executor;
    adapter->graph_->mirror->setOnPublished([weakAdapter, weakExecutor] {
        const auto target = weakExecutor.lock();
        if (!target) return;
        target->post([weakAdapter] {
            if (const auto alive = weakAdapter.lock()) alive->graphChanged();
        });
    });
    return adapter;
}

PipeWireAudioHardware::~PipeWireAudioHardware() {
    graph_->mirror->setOnPublished(nullptr);
    giveBackForcedRate();
}

const AudioObjectTable& PipeWireAudioHardware::objects() {
    auto snapshot = graph_->mirror->snapshot();
    if (snapshot != tableSource_) {
        table_ = sinkDevices(*snapshot, ids_);
        tableSource_ = std::move(snapshot);
    }
    return table_;
}

PipeWireAudioHardware::Reported PipeWireAudioHardware::reported() {
    const AudioObjectTable& table = objects();
    Reported result;
    result.defaultDevice = table.defaultOutputDevice;
    for (const auto& [id, device] : table.devices)
        result.rates[id] = device.setup.nominalRate;
    return result;
}

void PipeWireAudioHardware::graphChanged() {
    std::vector<PropertyListener> toCall;
    {
        const std::lock_guard lock(mutex_);
        const Reported now = reported();
        const auto notify = [this, &toCall](AudioObjectID object, std::uint32_t selector) {
            const std::vector<PropertyListener> found = listeners_.matching(object, selector);
            toCall.insert(toCall.end(), found.begin(), found.end());
        };
        if (now.defaultDevice != reported_.defaultDevice)
            notify(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice);
        for (const auto& [device, rate] : now.rates) {
            const auto before = reported_.rates.find(device);
            if (before != reported_.rates.end() && before->second != rate)
                notify(device, kAudioDevicePropertyNominalSampleRate);
        }
        reported_ = now;
    }
    // Outside the lock: a listener may read or remove listeners.
    for (const PropertyListener& listener : toCall)
        listener();
}

OSStatus PipeWireAudioHardware::getPropertyDataSize(AudioObjectID object,
                                                    const AudioObjectPropertyAddress& address,
                                                    std::uint32_t& outSize) {
    const std::lock_guard lock(mutex_);
    return objects().propertySize(object, address, outSize);
}

OSStatus PipeWireAudioHardware::getPropertyData(AudioObjectID object,
                                                const AudioObjectPropertyAddress& address,
                                                std::uint32_t& ioSize, void* outData) {
    const std::lock_guard lock(mutex_);
    return objects().readProperty(object, address, ioSize, outData);
}

OSStatus PipeWireAudioHardware::getPropertyString(AudioObjectID object,
                                                  const AudioObjectPropertyAddress& address,
                                                  std::string& outText) {
    const std::lock_guard lock(mutex_);
    return objects().readText(object, address, outText);
}

OSStatus PipeWireAudioHardware::setPropertyData(AudioObjectID object,
                                                const AudioObjectPropertyAddress& address,
                                                std::uint32_t size, const void* data) {
    const std::lock_guard lock(mutex_);
    const AudioObjectTable& table = objects();
    if (table.devices.contains(object)) {
        if (address.mSelector != kAudioDevicePropertyNominalSampleRate)
            return kAudioHardwareIllegalOperationError;
        if (size != sizeof(double)) return kAudioHardwareBadPropertySizeError;
        double rate = 0;
        std::memcpy(&rate, data, sizeof rate);
        return writeNominalRate(object, rate);
    }
    if (table.streams.contains(object)) {
        if (address.mSelector != kAudioStreamPropertyPhysicalFormat)
            return kAudioHardwareIllegalOperationError;
        // PipeWire picks a sink's sample format itself; no client can choose it.
        return kAudioHardwareUnsupportedOperationError;
    }
    if (object == kAudioObjectSystemObject) return kAudioHardwareIllegalOperationError;
    return kAudioHardwareBadObjectError;
}

OSStatus PipeWireAudioHardware::writeNominalRate(AudioObjectID device, double rate) {
    if (!offersRate(table_.devices.at(device).setup.availableRates, rate) || !(rate >= 1))
        return kAudioDeviceUnsupportedFormatError;
    const std::optional<ClockSettings>& clock = tableSource_->clock;
    if (!clock) return kAudioHardwareUnsupportedOperationError;
    const auto wholeRate = static_cast<std::uint32_t>(std::lround(rate));
    if (!forcedRateBefore_) forcedRateBefore_ = clock->forcedRate;
    if (!graph_->mirror->setForcedRate(wholeRate)) return kAudioHardwareUnsupportedOperationError;
    forcedRateWritten_ = wholeRate;
    return kNoErr;
}

void PipeWireAudioHardware::giveBackForcedRate() {
    if (!forcedRateBefore_) return;
    GraphMirror& mirror = *graph_->mirror;
    const auto deadline = PipeWireConnection::Clock::now() + giveBackTimeout;
    // Once the daemon has handled the writes, the forced rate it reports is current.
    if (!mirror.flush(deadline)) return;
    if (mirror.forcedRate() != forcedRateWritten_) return;
    if (mirror.setForcedRate(*forcedRateBefore_)) mirror.flush(deadline);
}

OSStatus PipeWireAudioHardware::addPropertyListener(AudioObjectID object,
                                                    const AudioObjectPropertyAddress& address,
                                                    PropertyListener listener,
                                                    PropertyListenerID& outListener) {
    const std::lock_guard lock(mutex_);
    if (!objects().contains(object)) return kAudioHardwareBadObjectError;
    outListener = listeners_.add(object, address, std::move(listener));
    return kNoErr;
}

OSStatus PipeWireAudioHardware::removePropertyListener(AudioObjectID object,
                                                       const AudioObjectPropertyAddress& address,
                                                       PropertyListenerID listener) {
    const std::lock_guard lock(mutex_);
    return listeners_.remove(object, address, listener);
}

}  // namespace corvanel::pipewire
