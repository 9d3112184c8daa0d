#include <array>
#include <ctime>

#include "platform/PlatformPorts.h"

namespace corvanel {

std::string environmentTimeOfDay(WallTime time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%X", &local);
    return std::string(text.data(), length);
}

}  // namespace corvanel
