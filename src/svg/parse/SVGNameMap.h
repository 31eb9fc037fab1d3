#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace SVGNative {

/// Lets maps by name be asked with a part of a text, without a copy of it.
struct NameHash {
  using is_transparent = void;
  size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
};

template <class T>
using NameMap = std::unordered_map<std::string, T, NameHash, std::equal_to<>>;

}  // namespace SVGNative
