#pragma once
#include <chrono>

namespace corvanel {

using MonoTime = std::chrono::steady_clock::time_point;
using WallTime = std::chrono::system_clock::time_point;
using Seconds = std::chrono::duration<double>;

}  // namespace corvanel
