#pragma once
// Text between the ports (UTF-8 std::string) and Foundation (NSString), for the Objective-C++
// adapters only.
#import <Foundation/Foundation.h>

#include <string>

namespace corvanel {

// nil when `text` is not valid UTF-8.
inline NSString* nsString(const std::string& text) {
    return [[NSString alloc] initWithBytes:text.data()
                                    length:text.size()
                                  encoding:NSUTF8StringEncoding];
}

// Empty for nil.
inline std::string stdString(NSString* text) {
    const char* utf8 = text.UTF8String;
    return utf8 != nullptr ? std::string(utf8) : std::string();
}

}  // namespace corvanel
