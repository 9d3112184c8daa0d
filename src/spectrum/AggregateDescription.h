#pragma once
// The description of the private aggregate device that carries the spectrum tap, with a fresh
// device UID every time it is built.
#include <string>

#include "platform/DescriptionValue.h"

namespace corvanel {

// A random (version 4) UUID in its 36-character upper-case text form.
std::string makeUUIDString();

DescriptionDictionary spectrumAggregateDescription(const std::string& outputDeviceUID,
                                                   const std::string& tapUID);

}  // namespace corvanel
