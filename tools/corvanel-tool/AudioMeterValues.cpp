#include "AudioMeterValues.h"

#include <memory>

#include "platform/sim/AudioFileSource.h"
#include "platform/sim/MusicSynthesizer.h"
#include "platform/sim/OfflineSpectrum.h"

namespace corvanel::tool {

namespace {

// Deep enough into a bar that the peaks have built up and the channel levels have settled.
constexpr double galleryMoment = 6.4;

meters::MeterValues valuesAt(std::shared_ptr<AudioSource> source, double seconds) {
    OfflineSpectrum offline(std::move(source));
    SpectrumSnapshot snapshot = offline.valuesAt(seconds);
    return {std::move(snapshot.levels), std::move(snapshot.peaks), snapshot.leftLevel,
            snapshot.rightLevel};
}

}  // namespace

std::variant<meters::MeterValues, std::string> meterValuesFromFile(const std::string& path,
                                                                   double seconds) {
    auto opened = AudioFileSource::open(path);
    if (auto* error = std::get_if<std::string>(&opened)) return std::move(*error);
    return valuesAt(std::move(std::get<std::unique_ptr<AudioFileSource>>(opened)), seconds);
}

meters::MeterValues galleryMeterValues() {
    return valuesAt(std::make_shared<MusicSynthesizer>(), galleryMoment);
}

}  // namespace corvanel::tool
