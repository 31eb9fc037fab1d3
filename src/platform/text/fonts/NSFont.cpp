#include "platform/text/fonts/NSFont.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/text/TextLengths.h"
#include "platform/text/fonts/FontFamilies.h"
#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/fonts/HostFonts.h"
#include "platform/text/fonts/NSFontDescriptor.h"

namespace {

constexpr CGFloat kDefaultSize = 12;
constexpr const char* kDefaultName = "Helvetica";
constexpr const char* kSystemName = ".AppleSystemUIFont";
constexpr const char* kBoldSystemName = ".AppleSystemUIFontBold";

// Flags of archived fonts: in the second byte the part that a font of the system plays (titles,
// labels, menus, ...), 0 for fonts that were chosen by name.
constexpr int32_t kUserFontFlags = 0x10;
constexpr int32_t kBoldSystemRole = 8;
constexpr int32_t kBoldSmallSystemRole = 13;

int32_t systemRole(int32_t flags) {
  return flags >> 8 & 0xff;
}

constexpr size_t kMatrixBytes = 6 * sizeof(float);
/// Larger factors are damaged values; together with the largest size they would leave the range of
/// glyph positions.
constexpr double kMaxMatrixFactor = 1000;

CGFloat usableSize(CGFloat size) {
  return std::isfinite(size) && size > 0 ? std::min(size, kMaxLayoutLength) : kDefaultSize;
}

bool isKnown(std::string_view name) {
  return hostFaceNamed(name) || FontRegistry::shared()->installedFace(name) != nullptr;
}

const char* nameForFlags(int32_t flags) {
  const int32_t role = systemRole(flags);
  if (role == kBoldSystemRole || role == kBoldSmallSystemRole) return kBoldSystemName;
  return role != 0 ? kSystemName : kDefaultName;
}

/// An archived matrix holds the size too; the result does not. The identity when the matrix is
/// damaged or cannot be drawn with.
CGAffineTransform unitMatrix(std::span<const uint8_t> bytes, CGFloat size) {
  if (bytes.size() != kMatrixBytes) return {};
  double m[6];
  for (size_t i = 0; i < 6; ++i) {
    m[i] = loadBigEndianFloat(bytes.data() + 4 * i) / size;
    if (!(std::abs(m[i]) <= kMaxMatrixFactor)) return {};
  }
  const CGAffineTransform matrix{m[0], m[1], m[2], m[3], m[4], m[5]};
  return CGAffineTransformDeterminant(matrix) == 0 ? CGAffineTransform{} : matrix;
}

std::shared_ptr<NSData> matrixData(const CGAffineTransform& matrix, CGFloat size) {
  std::vector<uint8_t> bytes;
  for (const CGFloat value : {matrix.a, matrix.b, matrix.c, matrix.d, matrix.tx, matrix.ty}) {
    appendBigEndian(bytes, std::bit_cast<uint32_t>(static_cast<float>(value * size)), 4);
  }
  return NSData::dataWithVector(std::move(bytes));
}

}  // namespace

const NSClass NSFont::kClass{"NSFont", &NSObject::kClass, NSAllocate<NSFont>};

NSFont::NSFont() : NSFont(kDefaultName, kDefaultSize) {}

NSFont::NSFont(std::string fontName, CGFloat pointSize)
    : name_(std::move(fontName)), size_(usableSize(pointSize)), flags_(kUserFontFlags) {}

NSFont::~NSFont() = default;

std::shared_ptr<NSFont> NSFont::fontWithName(std::string_view name, CGFloat size) {
  return isKnown(name) ? std::make_shared<NSFont>(std::string(name), size) : nullptr;
}

std::shared_ptr<NSFont> NSFont::fontWithDescriptor(const NSFontDescriptor& descriptor,
                                                   CGFloat size) {
  return fontWithName(descriptor.postscriptName(), size == 0 ? descriptor.pointSize() : size);
}

const std::shared_ptr<const NSFont>& NSFont::defaultFont() {
  static const std::shared_ptr<const NSFont> font = std::make_shared<NSFont>();
  return font;
}

std::string NSFont::familyName() const {
  return familyOfFontNamed(name_);
}

std::shared_ptr<NSFontDescriptor> NSFont::fontDescriptor() const {
  return NSFontDescriptor::fontDescriptorWithName(name_, size_);
}

bool NSFont::isFixedPitch() const {
  return any(styleOfFontNamed(name_).traits & NSFontTraitMask::fixedPitch);
}

std::string_view NSFont::drawnName() const {
  return systemRole(flags_) != 0 && !isKnown(name_) ? nameForFlags(flags_)
                                                    : std::string_view(name_);
}

const std::shared_ptr<const ResolvedFont>& NSFont::resolved() const {
  std::call_once(resolveOnce_,
                 [this] { resolved_ = FontRegistry::shared()->resolve(drawnName(), size_); });
  return resolved_;
}

CGFloat NSFont::ascender() const {
  return resolved()->metrics.ascent * size_;
}

CGFloat NSFont::descender() const {
  return -resolved()->metrics.descent * size_;
}

CGFloat NSFont::leading() const {
  return resolved()->metrics.leading * size_;
}

CGFloat NSFont::unitsToPoints(int32_t units) const {
  return units * size_ / resolved()->face->metrics().unitsPerEm;
}

CGFloat NSFont::xHeight() const {
  return resolved()->face == nullptr ? 0 : unitsToPoints(resolved()->face->metrics().xHeight);
}

CGFloat NSFont::capHeight() const {
  return resolved()->face == nullptr ? 0 : unitsToPoints(resolved()->face->metrics().capHeight);
}

CGFloat NSFont::underlineThickness() const {
  return resolved()->face == nullptr
             ? 0
             : unitsToPoints(resolved()->face->metrics().underlineThickness);
}

bool NSFont::isEqual(const NSObject& other) const {
  const auto* font = dynamic_cast<const NSFont*>(&other);
  return font != nullptr && font->name_ == name_ && font->size_ == size_ &&
         font->matrix_ == matrix_;
}

size_t NSFont::hash() const {
  return std::hash<std::string>{}(name_) ^ std::hash<CGFloat>{}(size_);
}

bool NSFont::initWithCoder(NSCoder& coder) {
  // The second of each pair is how the oldest documents name it.
  const bool hasSize = coder.containsValueForKey("NSSize");
  size_ = usableSize(coder.decodeDoubleForKey(hasSize ? "NSSize" : "NSFont pointSize"));
  flags_ = coder.decodeIntForKey("NSfFlags");
  auto name = coder.decodeStringForKey("NSName");
  if (!name) name = coder.decodeStringForKey("NSFont name");
  name_ = name && !name->empty() ? std::move(*name) : nameForFlags(flags_);
  if (const auto matrix = coder.decodeDataForKey("NSMatrix")) {
    matrix_ = unitMatrix(matrix->bytes(), size_);
  }
  return true;
}

void NSFont::encodeWithCoder(NSCoder& coder) const {
  coder.encodeString(name_, "NSName");
  coder.encodeDouble(size_, "NSSize");
  coder.encodeInt32(flags_, "NSfFlags");
  if (matrix_ != CGAffineTransform{}) coder.encodeObject(matrixData(matrix_, size_), "NSMatrix");
}
