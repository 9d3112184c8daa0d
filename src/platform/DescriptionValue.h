#pragma once
// A property-list-like value (text, boolean, integer, list, dictionary) for descriptions that
// the platform takes as a dictionary, such as an aggregate device. Built and tested in portable
// code; adapters translate it 1:1.
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace corvanel {

struct DescriptionValue;
using DescriptionList = std::vector<DescriptionValue>;
// Ordered entries: the order of insertion is kept, keys are unique by construction.
using DescriptionDictionary = std::vector<std::pair<std::string, DescriptionValue>>;

struct DescriptionValue {
    std::variant<bool, std::int64_t, std::string, DescriptionList, DescriptionDictionary> value;
};

// The entry under key in a dictionary value, or nullptr.
inline const DescriptionValue* findEntry(const DescriptionDictionary& dictionary,
                                         const std::string& key) {
    for (const auto& [entryKey, entryValue] : dictionary) {
        if (entryKey == key) return &entryValue;
    }
    return nullptr;
}

}  // namespace corvanel
