#include "spectrum/AggregateDescription.h"

#include <array>
#include <cstdint>
#include <random>

namespace corvanel {

std::string makeUUIDString() {
    static thread_local std::mt19937_64 generator{[] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }()};
    std::array<std::uint8_t, 16> bytes{};
    for (std::size_t i = 0; i < bytes.size(); i += 8) {
        const std::uint64_t word = generator();
        for (std::size_t j = 0; j < 8; ++j)
            bytes[i + j] = static_cast<std::uint8_t>(word >> (8 * j));
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
        text.push_back(digits[bytes[i] >> 4]);
        text.push_back(digits[bytes[i] & 0x0F]);
    }
    return text;
}

DescriptionDictionary spectrumAggregateDescription(const std::string& outputDeviceUID,
                                                   const std::string& tapUID) {
    auto text = [](std::string value) { return DescriptionValue{std::move(value)}; };
    auto flag = [](bool value) { return DescriptionValue{value}; };
    const DescriptionDictionary subdevice = {{"uid", text(outputDeviceUID)}};
    const DescriptionDictionary tap = {{"uid", text(tapUID)}, {"drift", flag(true)}};
    return {
        {"name", text("Corvanel Spectrum")},
        {"uid", text("Corvanel-Spectrum-" + makeUUIDString())},
        {"private", flag(true)},
        {"stacked", flag(false)},
        {"tapautostart", flag(true)},
        {"master", text(outputDeviceUID)},
        {"subdevices", DescriptionValue{DescriptionList{DescriptionValue{subdevice}}}},
        {"taps", DescriptionValue{DescriptionList{DescriptionValue{tap}}}},
    };
}

}  // namespace corvanel
