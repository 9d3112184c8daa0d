#pragma once
// Walks a description value (an aggregate-device description) depth first and rebuilds it with
// a platform's own objects, 1:1: booleans stay booleans, integers stay integers, entry order is
// kept. The builder names its object type and makes one object per kind of value:
//   Object boolean(bool); Object integer(std::int64_t); Object text(const std::string&);
//   Object list(std::vector<Object>); Object dictionary(std::vector<std::pair<std::string,
//   Object>>)
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "platform/DescriptionValue.h"

namespace corvanel {

template <typename Builder>
typename Builder::Object translateDescription(const DescriptionValue& value, Builder& builder) {
    using Object = typename Builder::Object;
    return std::visit(
        [&builder](const auto& held) -> Object {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, bool>) {
                return builder.boolean(held);
            } else if constexpr (std::is_same_v<Held, std::int64_t>) {
                return builder.integer(held);
            } else if constexpr (std::is_same_v<Held, std::string>) {
                return builder.text(held);
            } else if constexpr (std::is_same_v<Held, DescriptionList>) {
                std::vector<Object> items;
                items.reserve(held.size());
                for (const DescriptionValue& item : held)
                    items.push_back(translateDescription(item, builder));
                return builder.list(std::move(items));
            } else {
                std::vector<std::pair<std::string, Object>> entries;
                entries.reserve(held.size());
                for (const auto& [key, entry] : held)
                    entries.emplace_back(key, translateDescription(entry, builder));
                return builder.dictionary(std::move(entries));
            }
        },
        value.value);
}

}  // namespace corvanel
