#include "platform/graphics/gradient/NSGradient.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/color/NSColorSpace.h"

const NSClass NSGradient::kClass{"NSGradient", &NSObject::kClass, NSAllocate<NSGradient>};

std::shared_ptr<NSGradient> NSGradient::initWithStartingColor(
    std::shared_ptr<NSColor> startingColor, std::shared_ptr<NSColor> endingColor) {
  return initWithStops({{std::move(startingColor), 0}, {std::move(endingColor), 1}});
}

std::shared_ptr<NSGradient> NSGradient::initWithColors(
    const std::vector<std::shared_ptr<NSColor>>& colors) {
  std::vector<Stop> stops;
  stops.reserve(colors.size());
  const CGFloat last = colors.size() > 1 ? static_cast<CGFloat>(colors.size() - 1) : 1;
  for (size_t i = 0; i < colors.size(); ++i) {
    stops.push_back({colors[i], static_cast<CGFloat>(i) / last});
  }
  return initWithStops(std::move(stops));
}

std::shared_ptr<NSGradient> NSGradient::initWithStops(std::vector<Stop> stops) {
  std::erase_if(stops, [](const Stop& s) { return s.color == nullptr; });
  if (stops.empty()) return nullptr;
  for (Stop& s : stops) s.location = s.location > 0 ? std::min(s.location, 1.0) : 0;
  std::stable_sort(stops.begin(), stops.end(),
                   [](const Stop& a, const Stop& b) { return a.location < b.location; });
  auto gradient = std::make_shared<NSGradient>();
  gradient->stops_ = std::move(stops);
  return gradient;
}

CGFloat NSGradient::averageOpacity() const {
  CGFloat sum = 0;
  for (const Stop& s : stops_) sum += s.color->alphaComponent();
  return stops_.empty() ? 0 : sum / static_cast<CGFloat>(stops_.size());
}

// --- Archives ---
// The archived form of NSGradient. No real archive of one is known, so reading goes by the kinds
// of values under whatever keys; writing uses the names of the host's own fields.

namespace {

using Colors = std::vector<std::shared_ptr<NSColor>>;
using Locations = std::vector<CGFloat>;

// The names written, first in the lists of names known to be used for the same thing.
constexpr const char* kColorsKey = "NSColors";
constexpr const char* kLocationsKey = "NSLocations";
constexpr const char* kColorSpaceKey = "NSColorSpace";
constexpr std::array kColorsKeys = {kColorsKey, "NSColorArray", "NSGradientColors", "NSColorStops",
                                    "colors"};
constexpr std::array kLocationsKeys = {kLocationsKey, "NSColorLocations", "NSGradientLocations",
                                       "NSLocationArray", "locations"};

/// The record's keys, the well-known ones first.
template <size_t kCount>
std::vector<std::string> keysInOrder(NSCoder& coder, const std::array<const char*, kCount>& known) {
  std::vector<std::string> keys;
  for (const char* key : known) {
    if (coder.containsValueForKey(key)) keys.emplace_back(key);
  }
  for (std::string& key : coder.decodableKeys()) keys.push_back(std::move(key));
  return keys;
}

/// A stop kept as an object of its own: its one colour and one number.
std::optional<NSGradient::Stop> stopOf(const NSDictionary& dictionary) {
  NSGradient::Stop stop;
  for (const auto& value : dictionary.allValues()) {
    if (auto color = std::dynamic_pointer_cast<NSColor>(value)) stop.color = std::move(color);
    if (const auto* n = dynamic_cast<const NSNumber*>(value.get()))
      stop.location = n->doubleValue();
  }
  return stop.color ? std::optional(stop) : std::nullopt;
}

Colors colorsIn(const NSArray& array) {
  Colors colors;
  for (const auto& object : array) {
    if (auto color = std::dynamic_pointer_cast<NSColor>(object)) colors.push_back(std::move(color));
  }
  return colors;
}

Locations numbersIn(const NSArray& array) {
  Locations numbers;
  for (const auto& object : array) {
    if (const auto* n = dynamic_cast<const NSNumber*>(object.get())) {
      numbers.push_back(n->doubleValue());
    }
  }
  return numbers;
}

/// Whether bytes read as numbers make sense as locations.
bool areLocations(const Locations& locations) {
  // Numbers read in the wrong byte order come out as tiny ones.
  constexpr CGFloat kLeast = 1e-9;
  CGFloat previous = 0;
  for (const CGFloat location : locations) {
    if (!(location >= previous && location <= 1) || (location > 0 && location < kLeast)) {
      return false;
    }
    previous = location;
  }
  return true;
}

enum class Endian : uint8_t { little, big };

CGFloat realAt(std::span<const uint8_t> bytes, size_t width, Endian endian) {
  uint64_t bits = 0;
  for (size_t i = 0; i < width; ++i) {
    bits = bits << 8 | bytes[endian == Endian::big ? i : width - 1 - i];
  }
  return width == 8 ? std::bit_cast<double>(bits)
                    : std::bit_cast<float>(static_cast<uint32_t>(bits));
}

/// Locations in raw memory: a plain list, or one before or after the components of each colour.
std::optional<Locations> locationsIn(std::span<const uint8_t> bytes, size_t count) {
  for (const size_t width : {size_t{8}, size_t{4}}) {
    if (count == 0 || bytes.size() % (count * width) != 0) continue;
    const size_t group = bytes.size() / (count * width);
    for (const Endian endian : {Endian::little, Endian::big}) {
      for (const size_t place : {size_t{0}, group - 1}) {
        if (group != 1 && group != 3 && group != 5 && group != 6) continue;
        Locations locations;
        for (size_t i = 0; i < count; ++i) {
          locations.push_back(realAt(bytes.subspan((i * group + place) * width), width, endian));
        }
        if (areLocations(locations)) return locations;
      }
    }
  }
  return std::nullopt;
}

/// What stands under "<prefix>0", "<prefix>1" and so on, or under "<prefix>.0", ...: as many as
/// `decode` finds something under.
template <class Value, class Decode>
std::vector<Value> underNumberedKeys(const std::string& prefix, Decode decode) {
  std::vector<Value> values;
  for (const char* separator : {"", "."}) {
    while (auto value = decode(prefix + separator + std::to_string(values.size()))) {
      values.push_back(std::move(*value));
    }
    if (!values.empty()) break;
  }
  return values;
}

std::optional<Locations> decodeLocations(NSCoder& coder, size_t count) {
  for (const std::string& key : keysInOrder(coder, kLocationsKeys)) {
    if (const auto array = coder.decodeObjectOfClass<NSArray>(key)) {
      Locations numbers = numbersIn(*array);
      if (numbers.size() == count && array->count() == count) return numbers;
    } else if (const auto data = coder.decodeDataForKey(key)) {
      if (auto locations = locationsIn(data->bytes(), count)) return locations;
    }
  }
  Locations numbered = underNumberedKeys<CGFloat>("NSLocation", [&](const std::string& key) {
    const auto number = coder.decodeNumberForKey(key);
    return number ? std::optional(number->doubleValue()) : std::nullopt;
  });
  return numbered.size() == count ? std::optional(std::move(numbered)) : std::nullopt;
}

Colors decodeColors(NSCoder& coder) {
  for (const std::string& key : keysInOrder(coder, kColorsKeys)) {
    if (const auto array = coder.decodeObjectOfClass<NSArray>(key)) {
      Colors colors = colorsIn(*array);
      if (!colors.empty()) return colors;
    }
  }
  using Color = Colors::value_type;
  return underNumberedKeys<Color>("NSColor", [&](const std::string& key) {
    auto color = coder.decodeObjectOfClass<NSColor>(key);
    return color ? std::optional(std::move(color)) : std::nullopt;
  });
}

std::vector<NSGradient::Stop> decodeStopObjects(NSCoder& coder) {
  for (const std::string& key : coder.decodableKeys()) {
    const auto array = coder.decodeObjectOfClass<NSArray>(key);
    if (array == nullptr) continue;
    std::vector<NSGradient::Stop> stops;
    for (const auto& object : *array) {
      const auto* dictionary = dynamic_cast<const NSDictionary*>(object.get());
      if (auto stop = dictionary ? stopOf(*dictionary) : std::nullopt) {
        stops.push_back(std::move(*stop));
      }
    }
    if (!stops.empty()) return stops;
  }
  return {};
}

}  // namespace

bool NSGradient::initWithCoder(NSCoder& coder) {
  const Colors colors = decodeColors(coder);
  std::shared_ptr<NSGradient> gradient;
  if (colors.empty()) {
    gradient = initWithStops(decodeStopObjects(coder));
  } else if (const auto locations = decodeLocations(coder, colors.size())) {
    std::vector<Stop> stops;
    for (size_t i = 0; i < colors.size(); ++i) stops.push_back({colors[i], (*locations)[i]});
    gradient = initWithStops(std::move(stops));
  } else {
    gradient = initWithColors(colors);
  }
  if (gradient == nullptr) return false;
  stops_ = std::move(gradient->stops_);
  return true;
}

void NSGradient::encodeWithCoder(NSCoder& coder) const {
  NSArray::Objects colors;
  NSArray::Objects locations;
  for (const Stop& stop : stops_) {
    colors.push_back(stop.color);
    locations.push_back(NSNumber::numberWithDouble(stop.location));
  }
  coder.encodeObject(NSArray::arrayWithObjects(std::move(colors)), kColorsKey);
  coder.encodeObject(NSArray::arrayWithObjects(std::move(locations)), kLocationsKey);
  coder.encodeObject(NSColorSpace::sRGBColorSpace(), kColorSpaceKey);
}
