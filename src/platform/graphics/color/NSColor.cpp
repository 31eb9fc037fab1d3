#include "platform/graphics/color/NSColor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"

namespace {

/// NaN ends as 0 too.
double clipped(double value) {
  return value > 0 ? std::min(value, 1.0) : 0;
}

using Shared = std::shared_ptr<NSColor>;

}  // namespace

const NSClass NSColor::kClass{"NSColor", &NSObject::kClass, NSAllocate<NSColor>};

NSColor::NSColor(Space space, const SRGBColor& color, double alpha)
    : space_(space),
      red_(clipped(color[0])),
      green_(clipped(color[1])),
      blue_(clipped(color[2])),
      alpha_(clipped(alpha)) {}

Shared NSColor::make(Space space, const SRGBColor& color, double alpha) {
  return std::make_shared<NSColor>(NSColor(space, color, alpha));
}

Shared NSColor::colorWithCalibratedRed(double red, double green, double blue, double alpha) {
  return make(Space::kCalibratedRGB, {red, green, blue}, alpha);
}

Shared NSColor::colorWithDeviceRed(double red, double green, double blue, double alpha) {
  return make(Space::kDeviceRGB, {red, green, blue}, alpha);
}

Shared NSColor::colorWithSRGBRed(double red, double green, double blue, double alpha) {
  return make(Space::kSRGB, {red, green, blue}, alpha);
}

Shared NSColor::colorWithCalibratedWhite(double white, double alpha) {
  return make(Space::kCalibratedWhite, {white, white, white}, alpha);
}

Shared NSColor::colorWithDeviceWhite(double white, double alpha) {
  return make(Space::kDeviceWhite, {white, white, white}, alpha);
}

Shared NSColor::colorWithDeviceCyan(double cyan, double magenta, double yellow, double black,
                                    double alpha) {
  const double inks[] = {clipped(cyan), clipped(magenta), clipped(yellow), clipped(black)};
  const NSColorSpace space(NSColorSpace::ID::kDeviceCMYK);
  return make(Space::kSRGB, *space.sRGBFromComponents(inks), alpha);
}

Shared NSColor::colorWithPatternImage(std::shared_ptr<NSObject> image) {
  auto color = make(Space::kPattern, {0, 0, 0}, 1);
  color->pattern_ = std::move(image);
  return color;
}

const Shared& NSColor::blackColor() {
  static const Shared color = colorWithCalibratedWhite(0, 1);
  return color;
}
const Shared& NSColor::grayColor() {
  static const Shared color = colorWithCalibratedWhite(0.5, 1);
  return color;
}
const Shared& NSColor::whiteColor() {
  static const Shared color = colorWithCalibratedWhite(1, 1);
  return color;
}
const Shared& NSColor::clearColor() {
  static const Shared color = colorWithCalibratedWhite(0, 0);
  return color;
}
const Shared& NSColor::redColor() {
  static const Shared color = colorWithCalibratedRed(1, 0, 0, 1);
  return color;
}
const Shared& NSColor::greenColor() {
  static const Shared color = colorWithCalibratedRed(0, 1, 0, 1);
  return color;
}
const Shared& NSColor::blueColor() {
  static const Shared color = colorWithCalibratedRed(0, 0, 1, 1);
  return color;
}

bool NSColor::isGray() const {
  return space_ == Space::kCalibratedWhite || space_ == Space::kDeviceWhite ||
         space_ == Space::kGamma22White;
}

Shared NSColor::colorWithAlphaComponent(double alpha) const {
  auto color = std::make_shared<NSColor>(*this);
  color->alpha_ = clipped(alpha);
  return color;
}

bool NSColor::isEqual(const NSObject& other) const {
  const auto* color = dynamic_cast<const NSColor*>(&other);
  return color != nullptr && color->space_ == space_ && color->red_ == red_ &&
         color->green_ == green_ && color->blue_ == blue_ && color->alpha_ == alpha_ &&
         color->pattern_ == pattern_;
}

size_t NSColor::hash() const {
  const auto mix = [](size_t seed, double value) { return seed * 31 + std::hash<double>{}(value); };
  return mix(mix(mix(mix(0, red_), green_), blue_), alpha_);
}

// --- Archives ---
// How colours stand in archives: numbers as text in inline data, in one form for each kind of
// space, and for custom spaces a second, newer text that the first is only a conversion of.

namespace {

using ID = NSColorSpace::ID;

// Values of the key "NSColorSpace".
constexpr int32_t kCalibratedRGBCode = 1;
constexpr int32_t kDeviceRGBCode = 2;
constexpr int32_t kCalibratedWhiteCode = 3;
constexpr int32_t kDeviceWhiteCode = 4;
constexpr int32_t kCMYKCode = 5;
constexpr int32_t kCatalogCode = 6;
constexpr int32_t kPatternCode = 10;

/// Component texts hold at most five numbers; more are counted as one too many.
struct Numbers {
  std::array<double, 6> values{};
  size_t count = 0;

  std::span<const double> first(size_t n) const { return {values.data(), n}; }
  double alphaAfter(size_t n) const { return count > n ? values[n] : 1; }
};

/// What a number that double cannot hold counts as.
double outOfRange(std::string_view digits) {
  if (digits.find("e-") != std::string_view::npos || digits.find("E-") != std::string_view::npos) {
    return 0;
  }
  return digits.front() == '-' ? -1 : 1;
}

/// Numbers separated by blanks, up to a NUL or anything that is no number.
Numbers parseNumbers(std::string_view text) {
  Numbers numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (numbers.count < numbers.values.size()) {
    while (at < end && *at == ' ') ++at;
    if (at + 1 < end && *at == '+') ++at;
    double value = 0;
    const auto [next, error] = std::from_chars(at, end, value);
    if (error == std::errc::invalid_argument) break;
    // The number is then infinite, or too small to tell from 0; clipping makes the first 0 or 1.
    if (error == std::errc::result_out_of_range) value = outOfRange({at, next});
    numbers.values[numbers.count++] = std::isfinite(value) ? value : 0;
    at = next;
  }
  return numbers;
}

/// The numbers under a key: inline data as a rule; data and string objects are taken too.
Numbers decodeNumbers(NSCoder& coder, const char* key) {
  // Six numbers of seventeen digits are shorter.
  constexpr size_t kLongest = 256;
  if (const auto data = coder.decodeDataForKey(key)) {
    const auto bytes = data->bytes().first(std::min(kLongest, data->length()));
    return parseNumbers({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  return parseNumbers(coder.decodeStringForKey(key).value_or(""));
}

/// The text of components: "%.10g" each, a blank between them.
std::string textOf(std::span<const double> values) {
  std::string text;
  for (const double value : values) {
    char digits[32];
    const auto result =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 10);
    if (!text.empty()) text += ' ';
    text.append(digits, result.ptr);
  }
  return text;
}

void encodeText(NSCoder& coder, const std::string& text, const char* key) {
  coder.encodeBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, key);
}

/// The older text: alpha only when it is not 1, and a NUL at the end.
void encodeOlderText(NSCoder& coder, std::span<const double> components, double alpha,
                     const char* key) {
  std::string text = textOf(components);
  if (alpha != 1) text += " " + textOf({&alpha, 1});
  text.push_back('\0');
  encodeText(coder, text, key);
}

/// Calibrated numbers (gamma 1.8, its own primaries) of an sRGB colour, fitted to recorded pairs of
/// both.
SRGBColor calibratedFromSRGB(const SRGBColor& color) {
  constexpr double kMatrix[3][3] = {{0.97485259, 0.02730371, -0.00215159},
                                    {-0.02000935, 1.05420210, -0.03421968},
                                    {0.00168632, 0.00155485, 0.99675007}};
  SRGBColor calibrated{};
  for (size_t i = 0; i < 3; ++i) {
    double light = 0;
    for (size_t j = 0; j < 3; ++j) light += kMatrix[i][j] * sRGBInverseCurve(color[j]);
    calibrated[i] = std::pow(std::clamp(light, 0.0, 1.0), 1 / 1.8);
  }
  return calibrated;
}

/// The space that a decoded colour is kept in.
NSColor::Space keptSpace(const NSColorSpace& space) {
  switch (space.identifier()) {
    case ID::kGenericRGB:
      return NSColor::Space::kCalibratedRGB;
    case ID::kDeviceRGB:
      return NSColor::Space::kDeviceRGB;
    case ID::kGenericGray:
      return NSColor::Space::kCalibratedWhite;
    case ID::kDeviceGray:
      return NSColor::Space::kDeviceWhite;
    default:
      break;
  }
  return space.colorSpaceModel() == NSColorSpace::Model::kGray ? NSColor::Space::kGamma22White
                                                               : NSColor::Space::kSRGB;
}

/// Catalogue colours whose fallback is missing: the light ones, by name; the rest are texts and
/// lines, which are dark.
bool isLightCatalogName(std::string_view name) {
  constexpr std::string_view kLight[] = {"whiteColor",
                                         "textBackgroundColor",
                                         "controlBackgroundColor",
                                         "windowBackgroundColor",
                                         "controlColor",
                                         "controlHighlightColor",
                                         "controlLightHighlightColor",
                                         "highlightColor",
                                         "selectedMenuItemTextColor",
                                         "alternateSelectedControlTextColor"};
  return std::ranges::find(kLight, name) != std::end(kLight);
}

}  // namespace

bool NSColor::initWithCoder(NSCoder& coder) {
  const auto number = coder.decodeNumberForKey("NSColorSpace");
  const int64_t code = number != nullptr ? number->integerValue() : 0;
  if (code == kCatalogCode) {
    decodeCatalogColor(coder);
    return true;
  }
  if (code == kPatternCode) {
    const auto image = coder.decodeObjectForKey("NSImage");
    if (image != nullptr && !coder.isDecoding(*image)) *this = *colorWithPatternImage(image);
    return true;
  }
  const auto custom = coder.decodeObjectOfClass<NSColorSpace>("NSCustomColorSpace");
  if (custom != nullptr && decodeComponents(coder, *custom)) return true;
  const bool isPlain = custom == nullptr || coder.containsValueForKey("NSComponents");
  decodeOlderText(coder, code, isPlain ? nullptr : custom.get());
  return true;
}

void NSColor::decodeCatalogColor(NSCoder& coder) {
  const auto fallback = coder.decodeObjectOfClass<NSColor>("NSColor");
  if (fallback != nullptr && !coder.isDecoding(*fallback)) {
    *this = *fallback;
  } else if (isLightCatalogName(coder.decodeStringForKey("NSColorName").value_or(""))) {
    *this = *whiteColor();
  }
}

/// The newer text, numbers in a custom space: exactly its components and alpha.
bool NSColor::decodeComponents(NSCoder& coder, const NSColorSpace& space) {
  const Numbers numbers = decodeNumbers(coder, "NSComponents");
  const size_t n = space.numberOfColorComponents();
  if (n == 0 || numbers.count != n + 1) return false;
  const auto color = space.sRGBFromComponents(numbers.first(n));
  if (!color) return false;
  *this = NSColor(keptSpace(space), *color, numbers.values[n]);
  return true;
}

/// The older text: the numbers of the space that the code names or, when only that text is there,
/// of the custom space.
void NSColor::decodeOlderText(NSCoder& coder, int64_t code, const NSColorSpace* custom) {
  struct Form {
    const char* key;
    int32_t code;
    ID space;
  };
  constexpr Form kForms[] = {{"NSRGB", kCalibratedRGBCode, ID::kGenericRGB},
                             {"NSRGB", kDeviceRGBCode, ID::kDeviceRGB},
                             {"NSWhite", kCalibratedWhiteCode, ID::kGenericGray},
                             {"NSWhite", kDeviceWhiteCode, ID::kDeviceGray},
                             {"NSCMYK", kCMYKCode, ID::kDeviceCMYK},
                             // A slip of another implementation.
                             {"NSCYMK", kCMYKCode, ID::kDeviceCMYK}};
  // The forms of the code first; where they give nothing, whatever is there.
  for (const bool wanted : {true, false}) {
    for (const Form& form : kForms) {
      if ((form.code == code) != wanted) continue;
      const Numbers numbers = decodeNumbers(coder, form.key);
      if (numbers.count == 0) continue;
      const NSColorSpace named(form.space);
      const size_t n = named.numberOfColorComponents();
      const bool isCustom = custom != nullptr && custom->numberOfColorComponents() == n;
      auto color = isCustom ? custom->sRGBFromComponents(numbers.first(n)) : std::nullopt;
      const Space kept = keptSpace(color ? *custom : named);
      if (!color) color = named.sRGBFromComponents(numbers.first(n));
      *this = NSColor(kept, *color, numbers.alphaAfter(n));
      return;
    }
  }
}

void NSColor::encodeWithCoder(NSCoder& coder) const {
  if (space_ == Space::kPattern) {
    coder.encodeInt32(kPatternCode, "NSColorSpace");
    coder.encodeObject(pattern_, "NSImage");
  } else if (isGray()) {
    encodeWhite(coder);
  } else {
    encodeRGB(coder);
  }
}

void NSColor::encodeRGB(NSCoder& coder) const {
  const SRGBColor color{red_, green_, blue_};
  const bool isCustom = space_ == Space::kSRGB;
  encodeOlderText(coder, isCustom ? calibratedFromSRGB(color) : color, alpha_, "NSRGB");
  coder.encodeInt32(space_ == Space::kDeviceRGB ? kDeviceRGBCode : kCalibratedRGBCode,
                    "NSColorSpace");
  if (!isCustom) return;
  coder.encodeObject(NSColorSpace::sRGBColorSpace(), "NSCustomColorSpace");
  encodeText(coder, textOf(std::array{red_, green_, blue_, alpha_}), "NSComponents");
}

void NSColor::encodeWhite(NSCoder& coder) const {
  const bool isCustom = space_ == Space::kGamma22White;
  // Calibrated white has gamma 1.8.
  const double white = isCustom ? std::pow(sRGBInverseCurve(red_), 1 / 1.8) : red_;
  encodeOlderText(coder, {&white, 1}, alpha_, "NSWhite");
  coder.encodeInt32(space_ == Space::kDeviceWhite ? kDeviceWhiteCode : kCalibratedWhiteCode,
                    "NSColorSpace");
  if (!isCustom) return;
  coder.encodeObject(NSColorSpace::genericGamma22GrayColorSpace(), "NSCustomColorSpace");
  encodeText(coder, textOf(std::array{red_, alpha_}), "NSComponents");
}
