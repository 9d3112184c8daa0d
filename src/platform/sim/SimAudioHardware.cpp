#include "platform/sim/SimAudioHardware.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace corvanel {
namespace {

template <typename Value>
std::vector<unsigned char> bytesOf(const Value& value) {
    std::vector<unsigned char> bytes(sizeof(Value));
    std::memcpy(bytes.data(), &value, sizeof(Value));
    return bytes;
}

template <typename Element>
std::vector<unsigned char> bytesOf(const std::vector<Element>& elements) {
    std::vector<unsigned char> bytes(elements.size() * sizeof(Element));
    if (!bytes.empty()) std::memcpy(bytes.data(), elements.data(), bytes.size());
    return bytes;
}

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
    Device device;
    for (StreamSpec& stream : setup.outputStreams) {
        const AudioObjectID streamID = nextObjectID_++;
        device.streamIDs.push_back(streamID);
        streams_[streamID] = Stream{id, std::move(stream)};
    }
    setup.outputStreams.clear();
    device.setup = std::move(setup);
    devices_[id] = std::move(device);
    return id;
}

void SimAudioHardware::removeDevice(AudioObjectID device) {
    std::vector<Listener> toNotify;
    {
        std::lock_guard lock(mutex_);
        const auto found = devices_.find(device);
        if (found == devices_.end()) return;
        for (const AudioObjectID stream : found->second.streamIDs)
            streams_.erase(stream);
        devices_.erase(found);
        std::erase_if(listeners_,
                      [device](const auto& entry) { return entry.second.object == device; });
        if (defaultDevice_ == device) {
            defaultDevice_ = devices_.empty() ? kAudioObjectUnknown : devices_.begin()->first;
            toNotify =
                listenersFor(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice);
        }
    }
    notify(toNotify);
}

void SimAudioHardware::setDefaultOutputDevice(AudioObjectID device) {
    std::vector<Listener> toNotify;
    {
        std::lock_guard lock(mutex_);
        if (defaultDevice_ == device) return;
        defaultDevice_ = device;
        toNotify =
            listenersFor(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice);
    }
    notify(toNotify);
}

void SimAudioHardware::changeNominalRateExternally(AudioObjectID device, double rate) {
    std::vector<Listener> toNotify;
    {
        std::lock_guard lock(mutex_);
        const auto found = devices_.find(device);
        if (found == devices_.end()) return;
        found->second.setup.nominalRate = rate;
        moveStreamsToRate(found->second, rate);
        toNotify = listenersFor(device, kAudioDevicePropertyNominalSampleRate);
    }
    notify(toNotify);
}

void SimAudioHardware::setPhysicalFormat(AudioObjectID stream,
                                         const AudioStreamBasicDescription& format) {
    std::lock_guard lock(mutex_);
    if (const auto found = streams_.find(stream); found != streams_.end())
        found->second.setup.physicalFormat = format;
}

void SimAudioHardware::moveStreamsToRate(const Device& device, double rate) {
    for (const AudioObjectID id : device.streamIDs) {
        StreamSpec& stream = streams_[id].setup;
        AudioStreamBasicDescription wanted = stream.physicalFormat;
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
    return defaultDevice_;
}

double SimAudioHardware::nominalRate(AudioObjectID device) const {
    std::lock_guard lock(mutex_);
    const auto found = devices_.find(device);
    return found == devices_.end() ? 0 : found->second.setup.nominalRate;
}

std::vector<AudioObjectID> SimAudioHardware::streams(AudioObjectID device) const {
    std::lock_guard lock(mutex_);
    const auto found = devices_.find(device);
    return found == devices_.end() ? std::vector<AudioObjectID>{} : found->second.streamIDs;
}

AudioStreamBasicDescription SimAudioHardware::physicalFormat(AudioObjectID stream) const {
    std::lock_guard lock(mutex_);
    const auto found = streams_.find(stream);
    return found == streams_.end() ? AudioStreamBasicDescription{}
                                   : found->second.setup.physicalFormat;
}

std::vector<SimAudioHardware::Write> SimAudioHardware::writes() const {
    std::lock_guard lock(mutex_);
    return writes_;
}

std::size_t SimAudioHardware::listenerCount(AudioObjectID object, std::uint32_t selector) const {
    std::lock_guard lock(mutex_);
    return listenersFor(object, selector).size();
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

OSStatus SimAudioHardware::propertyBytes(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         std::vector<unsigned char>& out) const {
    const std::uint32_t selector = address.mSelector;
    if (object == kAudioObjectSystemObject) {
        if (selector != kAudioHardwarePropertyDefaultOutputDevice)
            return kAudioHardwareUnknownPropertyError;
        out = bytesOf(defaultDevice_);
        return kNoErr;
    }
    if (const auto device = devices_.find(object); device != devices_.end()) {
        const DeviceSpec& setup = device->second.setup;
        if (selector == kAudioDevicePropertyNominalSampleRate) {
            out = bytesOf(setup.nominalRate);
        } else if (selector == kAudioDevicePropertyAvailableNominalSampleRates) {
            out = bytesOf(setup.availableRates);
        } else if (selector == kAudioDevicePropertyStreams) {
            // Only output streams are simulated; other scopes have none.
            out = address.mScope == kAudioObjectPropertyScopeOutput
                      ? bytesOf(device->second.streamIDs)
                      : std::vector<unsigned char>{};
        } else if (selector == kAudioObjectPropertyName ||
                   selector == kAudioDevicePropertyDeviceUID) {
            out = bytesOf(std::uintptr_t{0});  // a string reference; read it with getPropertyString
        } else {
            return kAudioHardwareUnknownPropertyError;
        }
        return kNoErr;
    }
    if (const auto stream = streams_.find(object); stream != streams_.end()) {
        if (selector == kAudioStreamPropertyAvailablePhysicalFormats) {
            out = bytesOf(stream->second.setup.availableFormats);
        } else if (selector == kAudioStreamPropertyPhysicalFormat) {
            out = bytesOf(stream->second.setup.physicalFormat);
        } else {
            return kAudioHardwareUnknownPropertyError;
        }
        return kNoErr;
    }
    return kAudioHardwareBadObjectError;
}

OSStatus SimAudioHardware::getPropertyDataSize(AudioObjectID object,
                                               const AudioObjectPropertyAddress& address,
                                               std::uint32_t& outSize) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::getSize, object, address.mSelector)) return *status;
    std::vector<unsigned char> bytes;
    if (const OSStatus status = propertyBytes(object, address, bytes); status != kNoErr)
        return status;
    const auto overridden = reportedSizes_.find({object, address.mSelector});
    outSize = overridden != reportedSizes_.end() ? overridden->second
                                                 : static_cast<std::uint32_t>(bytes.size());
    return kNoErr;
}

OSStatus SimAudioHardware::getPropertyData(AudioObjectID object,
                                           const AudioObjectPropertyAddress& address,
                                           std::uint32_t& ioSize, void* outData) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::getData, object, address.mSelector)) return *status;
    std::vector<unsigned char> bytes;
    if (const OSStatus status = propertyBytes(object, address, bytes); status != kNoErr)
        return status;
    const bool isArray = address.mSelector == kAudioDevicePropertyAvailableNominalSampleRates ||
                         address.mSelector == kAudioDevicePropertyStreams ||
                         address.mSelector == kAudioStreamPropertyAvailablePhysicalFormats;
    if (!isArray) {
        // A single value needs room for all of it.
        if (ioSize < bytes.size()) return kAudioHardwareBadPropertySizeError;
        ioSize = static_cast<std::uint32_t>(bytes.size());
    } else {
        // An array fills what fits; the size says how much was written.
        ioSize = std::min(ioSize, static_cast<std::uint32_t>(bytes.size()));
    }
    if (ioSize > 0) std::memcpy(outData, bytes.data(), ioSize);
    return kNoErr;
}

OSStatus SimAudioHardware::applyWrite(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      const std::vector<unsigned char>& data,
                                      std::vector<Listener>& toNotify) {
    if (const auto device = devices_.find(object); device != devices_.end()) {
        if (address.mSelector != kAudioDevicePropertyNominalSampleRate)
            return kAudioHardwareIllegalOperationError;
        if (data.size() != sizeof(double)) return kAudioHardwareBadPropertySizeError;
        const double rate = valueOf<double>(data);
        DeviceSpec& setup = device->second.setup;
        if (!offersRate(setup.availableRates, rate)) return kAudioDeviceUnsupportedFormatError;
        if (setup.nominalRate != rate) {
            setup.nominalRate = rate;
            moveStreamsToRate(device->second, rate);
            toNotify = listenersFor(object, kAudioDevicePropertyNominalSampleRate);
        }
        return kNoErr;
    }
    if (const auto stream = streams_.find(object); stream != streams_.end()) {
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
    std::vector<Listener> toNotify;
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
    const auto device = devices_.find(object);
    if (device == devices_.end()) return kAudioHardwareBadObjectError;
    if (address.mSelector == kAudioObjectPropertyName) {
        outText = device->second.setup.name;
    } else if (address.mSelector == kAudioDevicePropertyDeviceUID) {
        outText = device->second.setup.uid;
    } else {
        return kAudioHardwareUnknownPropertyError;
    }
    return kNoErr;
}

OSStatus SimAudioHardware::addPropertyListener(AudioObjectID object,
                                               const AudioObjectPropertyAddress& address,
                                               PropertyListener listener,
                                               PropertyListenerID& outListener) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::addListener, object, address.mSelector))
        return *status;
    if (object != kAudioObjectSystemObject && !devices_.contains(object) &&
        !streams_.contains(object))
        return kAudioHardwareBadObjectError;
    outListener = nextListenerID_++;
    listeners_[outListener] = Listener{object, address, std::move(listener)};
    return kNoErr;
}

OSStatus SimAudioHardware::removePropertyListener(AudioObjectID object,
                                                  const AudioObjectPropertyAddress& address,
                                                  PropertyListenerID listener) {
    std::lock_guard lock(mutex_);
    if (auto status = injectedStatus(Operation::removeListener, object, address.mSelector))
        return *status;
    const auto found = listeners_.find(listener);
    if (found == listeners_.end() || found->second.object != object ||
        !(found->second.address == address))
        return kAudioHardwareIllegalOperationError;
    listeners_.erase(found);
    return kNoErr;
}

std::vector<SimAudioHardware::Listener> SimAudioHardware::listenersFor(
    AudioObjectID object, std::uint32_t selector) const {
    std::vector<Listener> matching;
    for (const auto& [id, listener] : listeners_) {
        if (listener.object == object && listener.address.mSelector == selector)
            matching.push_back(listener);
    }
    return matching;
}

void SimAudioHardware::notify(const std::vector<Listener>& listeners) {
    // Delivered like blocks on the main dispatch queue: later, on the main thread.
    for (const Listener& listener : listeners)
        executor_->post(listener.callback);
}

}  // namespace corvanel
