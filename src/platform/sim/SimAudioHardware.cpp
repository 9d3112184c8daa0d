#include "platform/sim/SimAudioHardware.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace corvanel {
namespace {

template <typename Value>
Value valueOf(const std::vector<unsigned char>& bytes) {
    Value value{};
    if (bytes.size() == sizeof(Value)) std::memcpy(&value, bytes.data(), sizeof(Value));
    return value;
}

bool offersRate(const std::vector<AudioValueRange>& ranges, double rate) {
    return std::any_of(ranges.begin(), ranges.end(), [rate](const AudioValueRange& range) {
        return range.mMinimum <= rate && rate <= range.mMaximum;
    });
}

bool offersFormat(const std::vector<AudioStreamRangedDescription>& offered,
                  const AudioStreamBasicDescription& format) {
    return std::any_of(
        offered.begin(), offered.end(), [&format](const AudioStreamRangedDescription& entry) {
            const bool rateFits = std::fabs(entry.mFormat.mSampleRate - format.mSampleRate) < 1.0 ||
                                  (entry.mSampleRateRange.mMinimum <= format.mSampleRate &&
                                   format.mSampleRate <= entry.mSampleRateRange.mMaximum);
            return rateFits && entry.mFormat.mFormatID == format.mFormatID &&
                   entry.mFormat.mBitsPerChannel == format.mBitsPerChannel;
        });
}

}  // namespace

double SimAudioHardware::Write::rate() const {
    return valueOf<double>(data);
}

AudioStreamBasicDescription SimAudioHardware::Write::format() const {
    return valueOf<AudioStreamBasicDescription>(data);
}

SimAudioHardware::SimAudioHardware(std::shared_ptr<MainExecutor> executor)
    : executor_(std::move(executor)) {}

AudioStreamRangedDescription SimAudioHardware::linearPCM(double rate, std::uint32_t bits,
                                                         std::optional<double> minRate,
                                                         std::optional<double> maxRate) {
    AudioStreamRangedDescription entry;
    entry.mFormat.mSampleRate = rate;
    entry.mFormat.mFormatID = kAudioFormatLinearPCM;
    entry.mFormat.mFormatFlags =
        kAudioFormatFlagIsPacked | (bits == 32 ? kAudioFormatFlagIsFloat : 0u);
    entry.mFormat.mChannelsPerFrame = 2;
    entry.mFormat.mBitsPerChannel = bits;
    entry.mFormat.mBytesPerFrame = 2 * ((bits + 7) / 8);
    entry.mFormat.mFramesPerPacket = 1;
    entry.mFormat.mBytesPerPacket = entry.mFormat.mBytesPerFrame;
    entry.mSampleRateRange = {minRate.value_or(rate), maxRate.value_or(rate)};
    return entry;
}

AudioObjectID SimAudioHardware::addDevice(DeviceSpec setup) {
    std::lock_guard lock(mutex_);
    const AudioObjectID id = nextObjectID_++;
    std::vector<AudioObjectID> streamIDs;
    for (std::size_t stream = 0; stream < setup.outputStreams.size(); ++stream)
        streamIDs.push_back(nextObjectID_++);
    objects_.addDevice(id, std::move(setup), streamIDs);
    return id;
}

void SimAudioHardware::removeDevice(AudioObjectID device) {
    std::vector<PropertyListener> toNotify;
    {
        std::lock_guard lock(mutex_);
        if (!objects_.devices.contains(device)) return;
        objects_.removeDevice(device);
        listeners_.removeAll(device);
        if (objects_.defaultOutputDevice == device) {
            objects_.defaultOutputDevice =
                objects_.devices.empty() ? kAudioObjectUnknown : objects_.devices.begin()->first;
            toNotify = listeners_.matching(kAudioObjectSystemObject,
                                           kAudioHardwarePropertyDefaultOutputDevice);
        }
    }
    notify(toNotify);
}

void SimAudioHardware::setDefaultOutputDevice(AudioObjectID device) {
    std::vector<PropertyListener> toNotify;
    {
        std::lock_guard lock(mutex_);
        if (objects_.defaultOutputDevice == device) return;
        objects_.defaultOutputDevice = device;
        toNotify = listeners_.matching(kAudioObjectSystemObject,
                                       kAudioHardwarePropertyDefaultOutputDevice);
    }
    notify(toNotify);
}

void SimAudioHardware::changeNominalRateExternally(AudioObjectID device, double rate) {
    std::vector<PropertyListener> toNotify;
    {
        std::lock_guard lock(mutex_);
        const auto found = objects_.devices.find(device);
        if (found == objects_.devices.end()) return;
        found->second.setup.nominalRate = rate;
        moveStreamsToRate(found->second, rate);
        toNotify = listeners_.matching(device, kAudioDevicePropertyNominalSampleRate);
    }
    notify(toNotify);
}

void SimAudioHardware::setPhysicalFormat(AudioObjectID stream,
                                         const AudioStreamBasicDescription& format) {
    std::lock_guard lock(mutex_);
    if (const auto found = objects_.streams.find(stream); found != objects_.streams.end())
        found->second.setup.physicalFormat = format;
}

void SimAudioHardware::moveStreamsToRate(const AudioObjectTable::Device& device, double rate) {
    for (const AudioObjectID id : device.streamIDs) {
        StreamSpec& stream = objects_.streams[id].setup;
        AudioStreamBasicDescription wanted =
            stream.physicalFormat.value_or(AudioStreamBasicDescription{});
        wanted.mSampleRate = rate;
        if (offersFormat(stream.availableFormats, wanted)) {
            stream.physicalFormat = wanted;
            continue;
        }
        // Otherwise the first linear-PCM format offered at the rate.
        for (const AudioStreamRangedDescription& entry : stream.availableFormats) {
            AudioStreamBasicDescription candidate = entry.mFormat;
            candidate.mSampleRate = rate;
            if (candidate.mFormatID == kAudioFormatLinearPCM &&
                offersFormat(stream.availableFormats, candidate)) {
                stream.physicalFormat = candidate;
                break;
            }
        }
    }
}

void SimAudioHardware::injectFailure(Failure failure) {
    std::lock_guard lock(mutex_);
    failures_.push_back(failure);
}

void SimAudioHardware::clearFailures() {
    std::lock_guard lock(mutex_);
    failures_.clear();
}

void SimAudioHardware::overrideReportedSize(AudioObjectID object, std::uint32_t selector,
                                            std::uint32_t size) {
    std::lock_guard lock(mutex_);
    reportedSizes_[{object, selector}] = size;
}

void SimAudioHardware::setWriteObserver(std::function<void(const Write&)> observer) {
    std::lock_guard lock(mutex_);
    writeObserver_ = std::move(observer);
}

AudioObjectID SimAudioHardware::defaultOutputDevice() const {
    std::lock_guard lock(mutex_);
    return objects_.defaultOutputDevice;
}

double SimAudioHardware::nominalRate(AudioObjectID device) const {
    std::lock_guard lock(mutex_);
    const auto found = objects_.devices.find(device);
    return found == objects_.devices.end() ? 0 : found->second.setup.nominalRate;
}

std::vector<AudioObjectID> SimAudioHardware::streams(AudioObjectID device) const {
    std::lock_guard lock(mutex_);
    const auto found = objects_.devices.find(device);
    return found == objects_.devices.end() ? std::vector<AudioObjectID>{} : found->second.streamIDs;
}

AudioStreamBasicDescription SimAudioHardware::physicalFormat(AudioObjectID stream) const {
    std::lock_guard lock(mutex_);
    const auto found = objects_.streams.find(stream);
    return found == objects_.streams.end()
               ? AudioStreamBasicDescription{}
               : found->second.setup.physicalFormat.value_or(AudioStreamBasicDescription{});
}

std::vector<SimAudioHardware::Write> SimAudioHardware::writes() const {
    std::lock_guard lock(mutex_);
    return writes_;
}

std::size_t SimAudioHardware::listenerCount(AudioObjectID object, std::uint32_t selector) const {
    std::lock_guard lock(mutex_);
    return listeners_.matching(object, selector).size();
}

std::optional<OSStatus> SimAudioHardware::injectedStatus(Operation operation, AudioObjectID object,
                                                         std::uint32_t selector) {
    for (auto rule = failures_.begin(); rule != failures_.end(); ++rule) {
        if (rule->operation != operation) continue;
        if (rule->object && *rule->object != object) continue;
        if (rule->selector && *rule->selector != selector) continue;
        const OSStatus status = rule->status;
        if (rule->times && --*rule->times <= 0) failures_.erase(rule);
        return status;
    }
    return std::nullopt;
}

OSStatus SimAudioHardware::getPropertyDataSize(AudioObjectID object,
                                               const AudioObjectPropertyAddress& address,
                                               std::uint32_t& outSize) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::getSize, object, address.mSelector)) return *status;
    if (const OSStatus status = objects_.propertySize(object, address, outSize); status != kNoErr)
        return status;
    if (const auto overridden = reportedSizes_.find({object, address.mSelector});
        overridden != reportedSizes_.end())
        outSize = overridden->second;
    return kNoErr;
}

OSStatus SimAudioHardware::getPropertyData(AudioObjectID object,
                                           const AudioObjectPropertyAddress& address,
                                           std::uint32_t& ioSize, void* outData) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::getData, object, address.mSelector)) return *status;
    return objects_.readProperty(object, address, ioSize, outData);
}

OSStatus SimAudioHardware::applyWrite(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      const std::vector<unsigned char>& data,
                                      std::vector<PropertyListener>& toNotify) {
    if (const auto device = objects_.devices.find(object); device != objects_.devices.end()) {
        if (address.mSelector != kAudioDevicePropertyNominalSampleRate)
            return kAudioHardwareIllegalOperationError;
        if (data.size() != sizeof(double)) return kAudioHardwareBadPropertySizeError;
        const double rate = valueOf<double>(data);
        DeviceSpec& setup = device->second.setup;
        if (!offersRate(setup.availableRates, rate)) return kAudioDeviceUnsupportedFormatError;
        if (setup.nominalRate != rate) {
            setup.nominalRate = rate;
            moveStreamsToRate(device->second, rate);
            toNotify = listeners_.matching(object, kAudioDevicePropertyNominalSampleRate);
        }
        return kNoErr;
    }
    if (const auto stream = objects_.streams.find(object); stream != objects_.streams.end()) {
        if (address.mSelector != kAudioStreamPropertyPhysicalFormat)
            return kAudioHardwareIllegalOperationError;
        if (data.size() != sizeof(AudioStreamBasicDescription))
            return kAudioHardwareBadPropertySizeError;
        const auto format = valueOf<AudioStreamBasicDescription>(data);
        if (!offersFormat(stream->second.setup.availableFormats, format))
            return kAudioDeviceUnsupportedFormatError;
        stream->second.setup.physicalFormat = format;
        return kNoErr;
    }
    if (object == kAudioObjectSystemObject) return kAudioHardwareIllegalOperationError;
    return kAudioHardwareBadObjectError;
}

OSStatus SimAudioHardware::setPropertyData(AudioObjectID object,
                                           const AudioObjectPropertyAddress& address,
                                           std::uint32_t size, const void* data) {
    std::vector<PropertyListener> toNotify;
    Write write{object, address, {}, kNoErr};
    std::function<void(const Write&)> observer;
    {
        std::lock_guard lock(mutex_);
        const auto* begin = static_cast<const unsigned char*>(data);
        write.data.assign(begin, begin + size);
        if (auto status = injectedStatus(Operation::setData, object, address.mSelector))
            write.status = *status;
        else
            write.status = applyWrite(object, address, write.data, toNotify);
        writes_.push_back(write);
        observer = writeObserver_;
    }
    if (observer) observer(write);
    notify(toNotify);
    return write.status;
}

OSStatus SimAudioHardware::getPropertyString(AudioObjectID object,
                                             const AudioObjectPropertyAddress& address,
                                             std::string& outText) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::getString, object, address.mSelector))
        return *status;
    return objects_.readText(object, address, outText);
}

OSStatus SimAudioHardware::addPropertyListener(AudioObjectID object,
                                               const AudioObjectPropertyAddress& address,
                                               PropertyListener listener,
                                               PropertyListenerID& outListener) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::addListener, object, address.mSelector))
        return *status;
    if (!objects_.contains(object)) return kAudioHardwareBadObjectError;
    outListener = listeners_.add(object, address, std::move(listener));
    return kNoErr;
}

OSStatus SimAudioHardware::removePropertyListener(AudioObjectID object,
                                                  const AudioObjectPropertyAddress& address,
                                                  PropertyListenerID listener) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::removeListener, object, address.mSelector))
        return *status;
    return listeners_.remove(object, address, listener);
}

void SimAudioHardware::notify(const std::vector<PropertyListener>& listeners) {
    // Delivered like blocks on the main dispatch queue: later, on the main thread.
    for (const PropertyListener& listener : listeners)
        executor_->post(listener);
}

}  // namespace corvanel
