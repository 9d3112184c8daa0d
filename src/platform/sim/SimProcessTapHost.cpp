#include "platform/sim/SimProcessTapHost.h"

#include <chrono>
#include <condition_variable>
#include <thread>
#include <utility>

#include "platform/sim/SimAudioHardware.h"
#include "switching/CoreAudioHelper.h"

namespace corvanel {

// The capture thread: one block per block duration on a steady schedule, until destroyed,
// which stops and joins it (Apple's libc++ has no std::jthread).
class SimProcessTapHost::RealTimeDelivery {
  public:
    RealTimeDelivery(IOBlock block, SimAggregateRenderer renderer, std::chrono::nanoseconds period)
        : thread_([this, block = std::move(block), renderer = std::move(renderer),
                   period]() mutable { run(block, renderer, period); }) {}
    ~RealTimeDelivery() {
        {
            std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        wake_.notify_all();
        thread_.join();
    }
    RealTimeDelivery(const RealTimeDelivery&) = delete;
    RealTimeDelivery& operator=(const RealTimeDelivery&) = delete;

  private:
    void run(const IOBlock& block, SimAggregateRenderer& renderer,
             std::chrono::nanoseconds period) {
        auto next = std::chrono::steady_clock::now();
        std::unique_lock lock(mutex_);
        while (!stopping_) {
            lock.unlock();
            const std::span<const AudioBufferView> buffers = renderer.render();
            block(buffers.data(), static_cast<std::uint32_t>(buffers.size()));
            next += period;
            lock.lock();
            wake_.wait_until(lock, next, [this] { return stopping_; });
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;  // last: starts once the members it uses exist
};

AudioStreamBasicDescription SimProcessTapHost::floatFormat(double sampleRate,
                                                           std::uint32_t channels,
                                                           bool interleaved) {
    AudioStreamBasicDescription format;
    format.mSampleRate = sampleRate;
    format.mFormatID = kAudioFormatLinearPCM;
    format.mFormatFlags = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked |
                          (interleaved ? 0u : kAudioFormatFlagIsNonInterleaved);
    const std::uint32_t sampleChannels = interleaved ? channels : 1;
    format.mBytesPerFrame = 4 * sampleChannels;
    format.mBytesPerPacket = format.mBytesPerFrame;
    format.mFramesPerPacket = 1;
    format.mChannelsPerFrame = channels;
    format.mBitsPerChannel = 32;
    return format;
}

SimProcessTapHost::SimProcessTapHost(std::shared_ptr<AudioSource> source, Pacing pacing)
    : source_(std::move(source)), pacing_(pacing), format_(floatFormat(source_->sampleRate(), 2)) {}

SimProcessTapHost::~SimProcessTapHost() {
    std::lock_guard lock(mutex_);
    for (auto& [id, proc] : procs_)
        stopLocked(proc);
}

void SimProcessTapHost::setFormat(const AudioStreamBasicDescription& format) {
    std::lock_guard lock(mutex_);
    format_ = format;
}

void SimProcessTapHost::setDeviceInputs(std::vector<std::shared_ptr<AudioSource>> inputs) {
    std::lock_guard lock(mutex_);
    deviceInputs_ = std::move(inputs);
}

void SimProcessTapHost::followDeviceRate(std::shared_ptr<AudioHardware> audio) {
    std::lock_guard lock(mutex_);
    rateDevices_ = std::move(audio);
}

AudioStreamBasicDescription SimProcessTapHost::currentFormatLocked() const {
    AudioStreamBasicDescription format = format_;
    if (!rateDevices_) return format;
    const std::optional<AudioObjectID> device = CoreAudioHelper::defaultOutputDevice(*rateDevices_);
    const double rate = device ? CoreAudioHelper::nominalRate(*rateDevices_, *device) : 0.0;
    if (rate > 0) format.mSampleRate = rate;
    return format;
}

SimAggregateRenderer SimProcessTapHost::rendererLocked(std::uint32_t frames) const {
    return SimAggregateRenderer(deviceInputs_, source_, currentFormatLocked(), frames);
}

void SimProcessTapHost::setBlockFrames(std::uint32_t frames) {
    std::lock_guard lock(mutex_);
    blockFrames_ = frames;
}

void SimProcessTapHost::failOperation(SimTapOperation operation, OSStatus status) {
    std::lock_guard lock(mutex_);
    if (status == kNoErr) {
        failures_.erase(operation);
    } else {
        failures_[operation] = status;
    }
}

std::vector<SimTapCall> SimProcessTapHost::calls() const {
    std::lock_guard lock(mutex_);
    return calls_;
}

void SimProcessTapHost::clearCalls() {
    std::lock_guard lock(mutex_);
    calls_.clear();
}

std::optional<TapDescription> SimProcessTapHost::lastTapDescription() const {
    std::lock_guard lock(mutex_);
    return lastTap_;
}

std::optional<DescriptionDictionary> SimProcessTapHost::lastAggregateDescription() const {
    std::lock_guard lock(mutex_);
    return lastAggregate_;
}

std::size_t SimProcessTapHost::liveObjectCount() const {
    std::lock_guard lock(mutex_);
    return taps_.size() + aggregates_.size() + procs_.size();
}

bool SimProcessTapHost::isDelivering() const {
    std::lock_guard lock(mutex_);
    for (const auto& [id, proc] : procs_) {
        if (proc.started) return true;
    }
    return false;
}

bool SimProcessTapHost::deliverBlock() {
    std::lock_guard lock(mutex_);
    bool delivered = false;
    for (auto& [id, proc] : procs_) {
        if (!proc.started) continue;
        SimAggregateRenderer renderer = rendererLocked(blockFrames_);
        const std::span<const AudioBufferView> buffers = renderer.render();
        proc.block(buffers.data(), static_cast<std::uint32_t>(buffers.size()));
        delivered = true;
    }
    return delivered;
}

bool SimProcessTapHost::deliverBuffers(const AudioBufferView* buffers, std::uint32_t count) {
    std::lock_guard lock(mutex_);
    bool delivered = false;
    for (auto& [id, proc] : procs_) {
        if (!proc.started) continue;
        proc.block(buffers, count);
        delivered = true;
    }
    return delivered;
}

void SimProcessTapHost::loseCapture(OSStatus status) {
    std::vector<IOProcID> lost;
    FailureHandler handler;
    {
        std::lock_guard lock(mutex_);
        for (auto& [id, proc] : procs_) {
            if (!proc.started) continue;
            stopLocked(proc);
            lost.push_back(id);
        }
        handler = failureHandler_;
    }
    // Outside the lock: the handler may call back into the host.
    if (!handler) return;
    for (const IOProcID proc : lost)
        handler(proc, status);
}

void SimProcessTapHost::setFailureHandler(FailureHandler handler) {
    std::lock_guard lock(mutex_);
    failureHandler_ = std::move(handler);
}

OSStatus SimProcessTapHost::record(SimTapOperation operation, std::uint64_t object,
                                   OSStatus status) {
    calls_.push_back({operation, object, status});
    return status;
}

OSStatus SimProcessTapHost::injected(SimTapOperation operation) const {
    const auto failure = failures_.find(operation);
    return failure == failures_.end() ? kNoErr : failure->second;
}

OSStatus SimProcessTapHost::createProcessTap(const TapDescription& description,
                                             AudioObjectID& outTap) {
    std::lock_guard lock(mutex_);
    lastTap_ = description;
    if (const OSStatus status = injected(SimTapOperation::createProcessTap))
        return record(SimTapOperation::createProcessTap, 0, status);
    outTap = nextObject_++;
    taps_[outTap] = "SimTap-" + std::to_string(outTap);
    return record(SimTapOperation::createProcessTap, outTap, kNoErr);
}

OSStatus SimProcessTapHost::destroyProcessTap(AudioObjectID tap) {
    std::lock_guard lock(mutex_);
    if (const OSStatus status = injected(SimTapOperation::destroyProcessTap))
        return record(SimTapOperation::destroyProcessTap, tap, status);
    const OSStatus status = taps_.erase(tap) == 1 ? kNoErr : kAudioHardwareBadObjectError;
    return record(SimTapOperation::destroyProcessTap, tap, status);
}

OSStatus SimProcessTapHost::readTapFormat(AudioObjectID tap,
                                          AudioStreamBasicDescription& outFormat) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::readTapFormat);
    if (status == kNoErr && !taps_.contains(tap)) status = kAudioHardwareBadObjectError;
    if (status == kNoErr) outFormat = currentFormatLocked();
    return record(SimTapOperation::readTapFormat, tap, status);
}

OSStatus SimProcessTapHost::readTapUID(AudioObjectID tap, std::string& outUID) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::readTapUID);
    const auto found = taps_.find(tap);
    if (status == kNoErr && found == taps_.end()) status = kAudioHardwareBadObjectError;
    if (status == kNoErr) outUID = found->second;
    return record(SimTapOperation::readTapUID, tap, status);
}

OSStatus SimProcessTapHost::createAggregateDevice(const DescriptionDictionary& description,
                                                  AudioObjectID& outDevice) {
    std::lock_guard lock(mutex_);
    lastAggregate_ = description;
    if (const OSStatus status = injected(SimTapOperation::createAggregateDevice))
        return record(SimTapOperation::createAggregateDevice, 0, status);
    outDevice = nextObject_++;
    aggregates_[outDevice] = description;
    return record(SimTapOperation::createAggregateDevice, outDevice, kNoErr);
}

OSStatus SimProcessTapHost::destroyAggregateDevice(AudioObjectID device) {
    std::lock_guard lock(mutex_);
    if (const OSStatus status = injected(SimTapOperation::destroyAggregateDevice))
        return record(SimTapOperation::destroyAggregateDevice, device, status);
    const OSStatus status = aggregates_.erase(device) == 1 ? kNoErr : kAudioHardwareBadObjectError;
    return record(SimTapOperation::destroyAggregateDevice, device, status);
}

OSStatus SimProcessTapHost::readInputStreamConfiguration(
    AudioObjectID device, std::vector<std::uint32_t>& outBufferChannels) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::readInputStreamConfiguration);
    if (status == kNoErr && !aggregates_.contains(device)) status = kAudioHardwareBadObjectError;
    if (status == kNoErr) outBufferChannels = rendererLocked(1).bufferChannels();
    return record(SimTapOperation::readInputStreamConfiguration, device, status);
}

OSStatus SimProcessTapHost::createIOProcID(AudioObjectID device, IOBlock block, IOProcID& outProc) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::createIOProcID);
    if (status == kNoErr && !aggregates_.contains(device)) status = kAudioHardwareBadObjectError;
    if (status != kNoErr) return record(SimTapOperation::createIOProcID, 0, status);
    outProc = nextProc_++;
    procs_[outProc].device = device;
    procs_[outProc].block = std::move(block);
    return record(SimTapOperation::createIOProcID, outProc, kNoErr);
}

OSStatus SimProcessTapHost::destroyIOProcID(AudioObjectID device, IOProcID proc) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::destroyIOProcID);
    const auto found = procs_.find(proc);
    if (status == kNoErr && (found == procs_.end() || found->second.device != device))
        status = kAudioHardwareBadObjectError;
    if (status == kNoErr) {
        stopLocked(found->second);
        procs_.erase(found);
    }
    return record(SimTapOperation::destroyIOProcID, proc, status);
}

OSStatus SimProcessTapHost::deviceStart(AudioObjectID device, IOProcID proc) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::deviceStart);
    const auto found = procs_.find(proc);
    if (status == kNoErr && (found == procs_.end() || found->second.device != device))
        status = kAudioHardwareBadObjectError;
    if (status == kNoErr && !found->second.started) {
        IOProc& started = found->second;
        started.started = true;
        if (pacing_ == Pacing::realTime) {
            // A format without a rate (a broken tap) still delivers at the source's pace.
            const AudioStreamBasicDescription format = currentFormatLocked();
            const double rate = format.mSampleRate > 0 ? format.mSampleRate : source_->sampleRate();
            const auto period = std::chrono::duration_cast<std::chrono::nanoseconds>(
                std::chrono::duration<double>(blockFrames_ / rate));
            started.delivery = std::make_unique<RealTimeDelivery>(
                started.block, rendererLocked(blockFrames_), period);
        }
    }
    return record(SimTapOperation::deviceStart, proc, status);
}

OSStatus SimProcessTapHost::deviceStop(AudioObjectID device, IOProcID proc) {
    std::lock_guard lock(mutex_);
    OSStatus status = injected(SimTapOperation::deviceStop);
    const auto found = procs_.find(proc);
    if (status == kNoErr && (found == procs_.end() || found->second.device != device))
        status = kAudioHardwareBadObjectError;
    if (status == kNoErr) stopLocked(found->second);
    return record(SimTapOperation::deviceStop, proc, status);
}

void SimProcessTapHost::stopLocked(IOProc& proc) {
    proc.started = false;
    proc.delivery.reset();
}

}  // namespace corvanel
