#include "platform/PropertyListeners.h"

#include <utility>

namespace corvanel {

PropertyListenerID PropertyListeners::add(AudioObjectID object,
                                          const AudioObjectPropertyAddress& address,
                                          AudioHardware::PropertyListener listener) {
    const PropertyListenerID id = nextID_++;
    entries_[id] = Entry{object, address, std::move(listener)};
    return id;
}

OSStatus PropertyListeners::remove(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                   PropertyListenerID listener) {
    const auto found = entries_.find(listener);
    if (found == entries_.end() || found->second.object != object ||
        !(found->second.address == address))
        return kAudioHardwareIllegalOperationError;
    entries_.erase(found);
    return kNoErr;
}

void PropertyListeners::removeAll(AudioObjectID object) {
    std::erase_if(entries_, [object](const auto& entry) { return entry.second.object == object; });
}

std::vector<AudioHardware::PropertyListener> PropertyListeners::matching(
    AudioObjectID object, std::uint32_t selector) const {
    std::vector<AudioHardware::PropertyListener> found;
    for (const auto& [id, entry] : entries_) {
        if (entry.object == object && entry.address.mSelector == selector)
            found.push_back(entry.callback);
    }
    return found;
}

}  // namespace corvanel
