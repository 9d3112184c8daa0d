#include "platform/linux/pipewire/SpaFormat.h"

#include <spa/debug/types.h>
#include <spa/param/audio/type-info.h>
#include <spa/param/format.h>
#include <spa/pod/iter.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace corvanel::pipewire {
namespace {

// The values of one property of a format object: a single value, or the values of a choice
// with the kind of choice. Only 32-bit ids and integers are read.
struct PropertyValues {
    std::uint32_t choice = SPA_CHOICE_None;
    std::vector<std::uint32_t> values;
};

std::optional<PropertyValues> propertyValues(const spa_pod* object, std::uint32_t key,
                                             std::uint32_t valueType) {
    const spa_pod_prop* property = spa_pod_find_prop(object, nullptr, key);
    if (property == nullptr) return std::nullopt;
    std::uint32_t count = 0;
    PropertyValues result;
    const spa_pod* values = spa_pod_get_values(&property->value, &count, &result.choice);
    if (values->type != valueType || values->size != sizeof(std::uint32_t)) return std::nullopt;
    const auto* first = static_cast<const std::uint32_t*>(SPA_POD_BODY_CONST(values));
    result.values.assign(first, first + count);
    if (result.values.empty()) return std::nullopt;
    return result;
}

bool isRawAudio(const spa_pod* param) {
    if (!spa_pod_is_object_type(param, SPA_TYPE_OBJECT_Format)) return false;
    const auto mediaType = propertyValues(param, SPA_FORMAT_mediaType, SPA_TYPE_Id);
    const auto mediaSubtype = propertyValues(param, SPA_FORMAT_mediaSubtype, SPA_TYPE_Id);
    return mediaType && mediaSubtype && mediaType->values.front() == SPA_MEDIA_TYPE_audio &&
           mediaSubtype->values.front() == SPA_MEDIA_SUBTYPE_raw;
}

std::string formatName(std::uint32_t format) {
    const char* name = spa_debug_type_find_short_name(spa_type_audio_format, format);
    return name != nullptr ? name : "UNKNOWN";
}

// An enumeration's first value is its default, repeated among the alternatives that follow.
std::vector<std::uint32_t> choices(const PropertyValues& property) {
    if (property.choice == SPA_CHOICE_Enum && property.values.size() > 1)
        return {property.values.begin() + 1, property.values.end()};
    return {property.values.front()};
}

// Rates are signed in the pod. ALSA's null device offers rates up to -1: an unsigned "no limit"
// read as a signed number. Any maximum below the minimum means no limit.
std::uint32_t upperRate(std::uint32_t minimum, std::uint32_t maximum) {
    const auto signedMaximum = static_cast<std::int32_t>(maximum);
    if (signedMaximum <= 0 || maximum < minimum) return std::numeric_limits<std::int32_t>::max();
    return maximum;
}

}  // namespace

std::optional<NegotiatedFormat> negotiatedFormat(const spa_pod* param) {
    if (!isRawAudio(param)) return std::nullopt;
    const auto format = propertyValues(param, SPA_FORMAT_AUDIO_format, SPA_TYPE_Id);
    const auto rate = propertyValues(param, SPA_FORMAT_AUDIO_rate, SPA_TYPE_Int);
    if (!format || !rate) return std::nullopt;
    NegotiatedFormat result;
    result.sampleFormat = formatName(format->values.front());
    result.rate = rate->values.front();
    if (const auto channels = propertyValues(param, SPA_FORMAT_AUDIO_channels, SPA_TYPE_Int))
        result.channels = channels->values.front();
    return result;
}

std::optional<OfferedFormat> offeredFormat(const spa_pod* param) {
    if (!isRawAudio(param)) return std::nullopt;
    OfferedFormat result;
    if (const auto formats = propertyValues(param, SPA_FORMAT_AUDIO_format, SPA_TYPE_Id)) {
        for (const std::uint32_t format : choices(*formats))
            result.sampleFormats.push_back(formatName(format));
    }
    if (const auto rates = propertyValues(param, SPA_FORMAT_AUDIO_rate, SPA_TYPE_Int)) {
        const bool ranged = rates->choice == SPA_CHOICE_Range || rates->choice == SPA_CHOICE_Step;
        if (ranged && rates->values.size() >= 3) {
            result.minRate = rates->values[1];
            result.maxRate = upperRate(rates->values[1], rates->values[2]);
        } else {
            result.rates = choices(*rates);
        }
    }
    if (const auto channels = propertyValues(param, SPA_FORMAT_AUDIO_channels, SPA_TYPE_Int))
        result.channels = channels->values.front();
    return result;
}

}  // namespace corvanel::pipewire
