#pragma once
// The property listeners of an adapter that delivers them itself: each added under a new id,
// removed by that id with the object and address it was added for, and found by object and
// selector when the property changes. Not thread-safe: the adapter's own lock guards it.
#include <cstdint>
#include <map>
#include <vector>

#include "platform/AudioHardware.h"

namespace corvanel {

class PropertyListeners {
  public:
    PropertyListenerID add(AudioObjectID object, const AudioObjectPropertyAddress& address,
                           AudioHardware::PropertyListener listener);
    // kNoErr, or kAudioHardwareIllegalOperationError when no such listener was added for this
    // object and address.
    OSStatus remove(AudioObjectID object, const AudioObjectPropertyAddress& address,
                    PropertyListenerID listener);
    // Forgets every listener of the object (a device that is gone).
    void removeAll(AudioObjectID object);
    // The listeners for the object's property, in the order they were added.
    std::vector<AudioHardware::PropertyListener> matching(AudioObjectID object,
                                                          std::uint32_t selector) const;

  private:
    struct Entry {
        AudioObjectID object;
        AudioObjectPropertyAddress address;
        AudioHardware::PropertyListener callback;
    };
    std::map<PropertyListenerID, Entry> entries_;
    PropertyListenerID nextID_ = 1;
};

}  // namespace corvanel
