#include "AudioMeterValues.h"

#include <cstdio>
#include <memory>

#include "corvanel-tool/OfflineSpectrum.h"
#include "demo/MusicSynthesizer.h"
#include "platform/sim/AudioFileSource.h"

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
    std::unique_ptr<AudioFileSource> file =
        std::move(std::get<std::unique_ptr<AudioFileSource>>(opened));
    // Playing on to a moment the file never reaches would take as long as the moment is far.
    const double duration = static_cast<double>(file->frameCount()) / file->sampleRate();
    if (!(seconds <= duration)) {
        char message[160];
        std::snprintf(message, sizeof message, "--at %g is past the end of the file (%.3f s long)",
                      seconds, duration);
        return "\"" + path + "\": " + message;
    }
    return valuesAt(std::move(file), seconds);
}

meters::MeterValues galleryMeterValues() {
    return valuesAt(std::make_shared<MusicSynthesizer>(), galleryMoment);
}

}  // namespace corvanel::tool
