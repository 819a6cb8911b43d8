#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace SensorFile {

/// The canonical column type name whose values a T holds exactly, empty when there is none.
template <typename T>
constexpr std::string_view typeNameOf() {
    if constexpr (std::is_same_v<T, unsigned char>) return "unsigned char";
    if constexpr (std::is_same_v<T, signed char>) return "signed char";
    if constexpr (std::is_same_v<T, unsigned short>) return "unsigned short";
    if constexpr (std::is_same_v<T, short>) return "short";
    if constexpr (std::is_same_v<T, std::uint32_t>) return "uint32";
    if constexpr (std::is_same_v<T, std::int32_t>) return "int32";
    if constexpr (std::is_same_v<T, float>) return "float";
    if constexpr (std::is_same_v<T, double>) return "double";
    if constexpr (std::is_same_v<T, bool>) return "bool";
    if constexpr (std::is_same_v<T, std::uint64_t>) return "uint64";
    if constexpr (std::is_same_v<T, std::int64_t>) return "int64";
    return {};
}

}  // namespace SensorFile
