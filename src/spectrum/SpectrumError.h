#pragma once
// The one failure value of capture start: its description is exactly `message`.
#include <string>

namespace corvanel {

struct SpectrumError {
    std::string message;

    friend bool operator==(const SpectrumError&, const SpectrumError&) = default;
};

}  // namespace corvanel
