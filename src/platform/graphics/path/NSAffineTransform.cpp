#include "platform/graphics/path/NSAffineTransform.h"

#include <cmath>
#include <numbers>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/values/NSCoder.h"

const NSClass NSAffineTransform::kClass{"NSAffineTransform", &NSObject::kClass,
                                        NSAllocate<NSAffineTransform>};

namespace {

constexpr const char* kTransformStructKey = "NSTransformStruct";

CGAffineTransform rotation(CGFloat degrees) {
  const CGFloat quarters = degrees / 90;
  if (!std::isfinite(quarters) || quarters != std::floor(quarters)) {
    return CGAffineTransformMakeRotation(degrees * std::numbers::pi / 180);
  }
  constexpr CGFloat kSine[4] = {0, 1, 0, -1};
  const int turn = static_cast<int>(quarters - 4 * std::floor(quarters / 4)) & 3;
  const CGFloat s = kSine[turn];
  const CGFloat c = kSine[(turn + 1) & 3];
  return {c, s, -s, c, 0, 0};
}

}  // namespace

void NSAffineTransform::translateXBy(CGFloat dx, CGFloat dy) {
  t_ = CGAffineTransformConcat(CGAffineTransformMakeTranslation(dx, dy), t_);
}

void NSAffineTransform::scaleXBy(CGFloat sx, CGFloat sy) {
  t_ = CGAffineTransformConcat(CGAffineTransformMakeScale(sx, sy), t_);
}

void NSAffineTransform::rotateByDegrees(CGFloat degrees) {
  t_ = CGAffineTransformConcat(rotation(degrees), t_);
}

void NSAffineTransform::appendTransform(const NSAffineTransform& other) {
  t_ = CGAffineTransformConcat(t_, other.t_);
}

bool NSAffineTransform::initWithCoder(NSCoder& coder) {
  const auto bytes = coder.decodeBytesForKey(kTransformStructKey);
  const auto at = [&](size_t offset) { return CGFloat{loadBigEndianFloat(&bytes[offset])}; };
  t_ = {};
  if (bytes.size() >= 24) {
    t_ = {at(0), at(4), at(8), at(12), at(16), at(20)};
  } else if (bytes.size() >= 16) {
    t_ = {at(0), 0, 0, at(4), at(8), at(12)};
  } else if (bytes.size() >= 9 && bytes[0] == 1) {
    t_ = CGAffineTransformMakeTranslation(at(1), at(5));
  } else if (bytes.size() >= 9 && bytes[0] == 2) {
    t_ = CGAffineTransformMakeScale(at(1), at(5));
  }
  return true;
}

void NSAffineTransform::encodeWithCoder(NSCoder& coder) const {
  if (isIdentity()) return;
  std::vector<uint8_t> bytes;
  for (CGFloat v : {t_.a, t_.b, t_.c, t_.d, t_.tx, t_.ty})
    appendBigEndian(bytes, std::bit_cast<uint32_t>(static_cast<float>(v)), 4);
  coder.encodeBytes(bytes, kTransformStructKey);
}
