#include "platform/linux/pipewire/MetadataValues.h"

#include <spa/utils/json.h>

#include <array>
#include <charconv>
#include <cstring>

namespace corvanel::pipewire {

std::optional<std::string> defaultNodeName(std::string_view json) {
    spa_json iterator;
    spa_json object;
    spa_json_init(&iterator, json.data(), json.size());
    if (spa_json_enter_object(&iterator, &object) <= 0) return std::nullopt;
    std::array<char, 1024> key{};
    while (spa_json_get_string(&object, key.data(), static_cast<int>(key.size())) > 0) {
        if (std::strcmp(key.data(), "name") == 0) {
            std::array<char, 1024> name{};
            if (spa_json_get_string(&object, name.data(), static_cast<int>(name.size())) <= 0)
                return std::nullopt;
            if (name[0] == '\0') return std::nullopt;
            return std::string(name.data());
        }
        const char* value = nullptr;
        const int length = spa_json_next(&object, &value);
        if (length <= 0) break;
        if (spa_json_is_container(value, length)) spa_json_container_len(&object, value, length);
    }
    return std::nullopt;
}

std::optional<std::uint32_t> wholeNumber(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::vector<std::uint32_t> numberList(std::string_view json) {
    spa_json iterator;
    spa_json array;
    spa_json_init(&iterator, json.data(), json.size());
    std::vector<std::uint32_t> numbers;
    if (spa_json_enter_array(&iterator, &array) <= 0) return numbers;
    int value = 0;
    while (spa_json_get_int(&array, &value) > 0) {
        if (value > 0) numbers.push_back(static_cast<std::uint32_t>(value));
    }
    return numbers;
}

}  // namespace corvanel::pipewire
