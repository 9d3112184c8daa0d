#pragma once
// Value conversions between what the macOS frameworks hand over and what the ports carry. Plain
// C++ so they are tested on every platform; the Objective-C++ adapters only call them.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

#include "platform/Clock.h"
#include "platform/ProcessTapHost.h"

namespace corvanel {

// What a user-info number holds, from its Objective-C type encoding (NSNumber objCType) and
// whether it is the shared boolean object (kCFBooleanTrue / kCFBooleanFalse).
enum class NumberKind { boolean, integer, real };

constexpr NumberKind numberKind(const char* objCType, bool isSharedBoolean) {
    if (isSharedBoolean) return NumberKind::boolean;
    if (objCType != nullptr && (objCType[0] == 'f' || objCType[0] == 'd')) return NumberKind::real;
    return NumberKind::integer;
}

// A date given as seconds since 1970 (NSDate timeIntervalSince1970), to the port's wall time.
inline WallTime wallTimeFromUnixSeconds(double seconds) {
    return WallTime{std::chrono::duration_cast<WallTime::duration>(Seconds{seconds})};
}

// The first buffers of a platform buffer list (anything with mNumberChannels, mDataByteSize and
// mData) as the port's views, in storage the audio thread already owns: no allocation. Returns
// how many were copied; buffers beyond the storage's size are not shown.
template <typename PlatformBuffer, std::size_t capacity>
std::uint32_t viewBuffers(const PlatformBuffer* buffers, std::uint32_t count,
                          std::array<AudioBufferView, capacity>& views) {
    const std::uint32_t shown = std::min<std::uint32_t>(count, capacity);
    for (std::uint32_t i = 0; i < shown; ++i)
        views[i] = {buffers[i].mNumberChannels, buffers[i].mDataByteSize, buffers[i].mData};
    return shown;
}

}  // namespace corvanel
