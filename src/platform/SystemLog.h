#pragma once
// Port: the unified system log (OSLogStore local store, position relative to the end,
// predicate "process == %@", oldest-first enumeration of composedMessage and date).
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Clock.h"

namespace corvanel {

class SystemLog {
  public:
    using EntryVisitor = std::function<void(std::string_view message, WallTime date)>;

    virtual ~SystemLog() = default;

    // Visits the messages written by `process` during the last `secondsBack` seconds of the
    // log, oldest first. Returns nothing on success, or the platform error's localized
    // description when the store cannot be opened or enumerated. Blocking; call it off the
    // main thread.
    virtual std::optional<std::string> enumerate(const std::string& process, double secondsBack,
                                                 const EntryVisitor& visit) = 0;
};

}  // namespace corvanel
