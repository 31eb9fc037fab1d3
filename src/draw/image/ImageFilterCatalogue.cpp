// The filters that filter draws offer, and their settings.
#include <cmath>
#include <span>

#include "draw/image/ImageFilterMembers.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSBundle.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"

namespace {

constexpr const char* kSettingName = "SetttingName";
constexpr const char* kDefaultValue = "SetttingDefaultValue";

using Bound = std::optional<double>;

struct FilterSetting {
  std::string_view name;
  std::string_view displayName;
  Bound most;
  Bound middle;
  Bound least;
  Bound standard;
};

constexpr Bound kNone = std::nullopt;

constexpr FilterSetting kBlur[] = {{"inputRadius", "", 40, kNone, kNone, 4}};
constexpr FilterSetting kSharpen[] = {{"inputSharpness", "", 10, kNone, kNone, 0.4}};
constexpr FilterSetting kColors[] = {{"inputEV", "Exposure", 3, 0, -3, 0},
                                     {"inputSaturation", "Saturation", 5, 1, 0.01, 1},
                                     {"inputContrast", "Contrast", 2, 1, 0.05, 1},
                                     {"inputBrightness", "Brightness", 0.8, kNone, -0.8, 0},
                                     {"inputHighlightAmount", "Highlights", 1, kNone, 0, 1},
                                     {"inputShadowAmount", "Shadows", 1, kNone, -1, 0},
                                     {"inputIntensity", "Sepia", 5, kNone, -5, 0},
                                     {"inputAngle", "Hue", 6.2, kNone, kNone, 0},
                                     {"inputPower", "Gamma", 3, 1, 0.2, 1}};
constexpr FilterSetting kCrystallize[] = {{"inputRadius", "", 100, kNone, 1, 10}};
constexpr FilterSetting kEdges[] = {{"inputIntensity", "", 500, kNone, 0.1, 50}};
constexpr FilterSetting kEdgeWork[] = {{"inputRadius", "", 3, kNone, 0.01, 0.5}};
constexpr FilterSetting kPixellate[] = {{"inputScale", "", 20, kNone, 1, 5}};
constexpr FilterSetting kPointillize[] = {{"inputRadius", "", 20, kNone, 1, 2}};

struct FilterType {
  std::string_view filterName;
  std::string_view displayName;
  std::span<const FilterSetting> settings;
  bool extendsImage;
};

constexpr FilterType kTypes[] = {
    // Not the name of any filter of the platform ("CIColorInvert" is), but what files go with.
    {"CIInvertColor", "Invert Colors", {}, false},
    {"CIGaussianBlur", "Blur", kBlur, true},
    {"CISharpenLuminance", "Sharpen", kSharpen, false},
    {"CIColorControls", "Adjust Colors", kColors, false},
    {"CICrystallize", "Crystallize", kCrystallize, true},
    {"CIEdges", "Edges", kEdges, false},
    {"CIEdgeWork", "Edge Work", kEdgeWork, true},
    {"CIPixellate", "Pixellate", kPixellate, true},
    {"CIPointillize", "Pointillize", kPointillize, true},
    {"", "Black And White", {}, false},
};

const FilterType* knownType(int64_t type) {
  const bool known = type >= 0 && type < static_cast<int64_t>(std::size(kTypes));
  return known ? &kTypes[type] : nullptr;
}

std::string localized(std::string_view name) {
  return localizedStringForKey(name, "");
}

std::shared_ptr<NSNumber> numberOf(double value) {
  return value == std::trunc(value) ? NSNumber::numberWithInteger(static_cast<int64_t>(value))
                                    : NSNumber::numberWithDouble(value);
}

std::shared_ptr<NSDictionary> dictionaryOf(const FilterSetting& setting) {
  auto dictionary = std::make_shared<NSMutableDictionary>();
  dictionary->setObject(NSString::stringWithString(setting.name), kSettingName);
  dictionary->setObject(
      NSString::stringWithString(setting.displayName.empty() ? "" : localized(setting.displayName)),
      "SetttingDisplayName");
  const auto put = [&](const Bound& value, const char* key) {
    if (value) dictionary->setObject(numberOf(*value), key);
  };
  put(setting.most, "SetttingMaxValue");
  put(setting.middle, "SetttingMidValue");
  put(setting.least, "SetttingMinValue");
  put(setting.standard, kDefaultValue);
  return dictionary;
}

}  // namespace

std::optional<std::string_view> ImageFilterMembers::CIFilterNameWithType(int64_t type) {
  const FilterType* known = knownType(type);
  return known != nullptr ? std::optional(known->filterName) : std::nullopt;
}

std::string ImageFilterMembers::nameOfFilterWithType(int64_t type) {
  const FilterType* known = knownType(type);
  return localized(known != nullptr ? known->displayName : "Effect");
}

std::shared_ptr<NSArray> ImageFilterMembers::availableSettingsForFilter(int64_t type) {
  NSArray::Objects settings;
  if (const FilterType* known = knownType(type)) {
    for (const FilterSetting& setting : known->settings) settings.push_back(dictionaryOf(setting));
  }
  return NSArray::arrayWithObjects(std::move(settings));
}

std::shared_ptr<NSMutableDictionary> ImageFilterMembers::defaultSettingsForFilter(int64_t type) {
  const FilterType* known = knownType(type);
  if (known == nullptr || known->settings.empty()) return nullptr;
  auto defaults = std::make_shared<NSMutableDictionary>();
  for (const FilterSetting& setting : known->settings) {
    if (setting.standard) defaults->setObject(numberOf(*setting.standard), setting.name);
  }
  return defaults;
}

bool ImageFilterMembers::extendImageWhenApplyFilter(int64_t type) {
  const FilterType* known = knownType(type);
  return known != nullptr && known->extendsImage;
}
