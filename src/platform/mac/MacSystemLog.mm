// SystemLog on the unified log's local store (OSLogStore): the entries of one process from a
// position relative to the end of the log, oldest first.
#import <Foundation/Foundation.h>
#import <OSLog/OSLog.h>

#include <string>

#include "platform/SystemLog.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/MacPlatformPorts.h"
#include "platform/mac/NativeConversions.h"

namespace corvanel {
namespace {

// Why a read failed: the error's description, or what failed when the store hands back nothing
// without an error, so the user never sees an empty cause.
std::string failureCause(NSError* error, const char* whatFailed) {
    const std::string described = error != nil ? stdString(error.localizedDescription) : "";
    return described.empty() ? whatFailed : described;
}

class MacSystemLog final : public SystemLog {
  public:
    std::optional<std::string> enumerate(const std::string& process, double secondsBack,
                                         const EntryVisitor& visit) override {
        @autoreleasepool {
            NSError* error = nil;
            OSLogStore* store = [OSLogStore localStoreAndReturnError:&error];
            if (store == nil) return failureCause(error, "the local log store did not open");
            OSLogPosition* start = [store positionWithTimeIntervalSinceEnd:-secondsBack];
            NSPredicate* fromProcess =
                [NSPredicate predicateWithFormat:@"process == %@", nsString(process)];
            // No options: oldest first.
            OSLogEnumerator* entries = [store entriesEnumeratorWithOptions:0
                                                                  position:start
                                                                 predicate:fromProcess
                                                                     error:&error];
            if (entries == nil) return failureCause(error, "the log entries could not be listed");
            for (OSLogEntry* entry in entries) {
                // A long span holds many entries; free each one's temporaries as it goes.
                @autoreleasepool {
                    if (![entry isKindOfClass:[OSLogEntryLog class]]) continue;
                    OSLogEntryLog* log = static_cast<OSLogEntryLog*>(entry);
                    visit(stdString(log.composedMessage),
                          wallTimeFromUnixSeconds(log.date.timeIntervalSince1970));
                }
            }
            return std::nullopt;
        }
    }
};

}  // namespace

std::shared_ptr<SystemLog> makeMacSystemLog() {
    return std::make_shared<MacSystemLog>();
}

}  // namespace corvanel
