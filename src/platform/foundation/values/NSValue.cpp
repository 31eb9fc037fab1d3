#include "platform/foundation/values/NSValue.h"

#include <array>
#include <functional>
#include <string>

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSNumber.h"

namespace {

// What "NS.special" says about the type.
enum Special : int32_t { kPoint = 1, kSize = 2, kRect = 3, kRange = 4, kTransform = 10 };

uint64_t decodeCount(NSCoder& coder, std::string_view key) {
  const auto number = coder.decodeNumberForKey(key);
  return number != nullptr ? number->unsignedIntegerValue() : 0;
}

CGAffineTransform decodeTransform(NSCoder& coder) {
  const auto field = [&coder](const char* name) {
    return coder.decodeDoubleForKey(std::string("NS.atval.") + name);
  };
  return {field("a"), field("b"), field("c"), field("d"), field("tx"), field("ty")};
}

/// Some writers leave the type to be told from the key that is there.
int32_t decodeSpecial(NSCoder& coder) {
  if (coder.containsValueForKey("NS.special")) return coder.decodeInt32ForKey("NS.special");
  if (coder.containsValueForKey("NS.pointval")) return kPoint;
  if (coder.containsValueForKey("NS.sizeval")) return kSize;
  return coder.containsValueForKey("NS.rectval") ? kRect : 0;
}

struct Encoder {
  NSCoder& coder;

  void special(Special type) const { coder.encodeInt32(type, "NS.special"); }
  void operator()(const NSPoint& value) const {
    coder.encodePoint(value, "NS.pointval");
    special(kPoint);
  }
  void operator()(const NSSize& value) const {
    coder.encodeSize(value, "NS.sizeval");
    special(kSize);
  }
  void operator()(const NSRect& value) const {
    coder.encodeRect(value, "NS.rectval");
    special(kRect);
  }
  void operator()(const NSRange& value) const {
    const auto count = [this](uint64_t number, const char* key) {
      coder.encodeObject(NSNumber::numberWithUnsignedInteger(number), key);
    };
    count(value.location, "NS.rangeval.location");
    count(value.length, "NS.rangeval.length");
    special(kRange);
  }
  void operator()(const CGAffineTransform& t) const {
    const std::pair<const char*, CGFloat> fields[] = {{"NS.atval.a", t.a},   {"NS.atval.b", t.b},
                                                      {"NS.atval.c", t.c},   {"NS.atval.d", t.d},
                                                      {"NS.atval.tx", t.tx}, {"NS.atval.ty", t.ty}};
    for (const auto& [key, value] : fields) coder.encodeDouble(value, key);
    special(kTransform);
  }
};

}  // namespace

const NSClass NSValue::kClass{"NSValue", &NSObject::kClass, NSAllocate<NSValue>};

std::shared_ptr<NSValue> NSValue::valueWithPoint(const NSPoint& point) {
  return std::make_shared<NSValue>(point);
}
std::shared_ptr<NSValue> NSValue::valueWithSize(const NSSize& size) {
  return std::make_shared<NSValue>(size);
}
std::shared_ptr<NSValue> NSValue::valueWithRect(const NSRect& rect) {
  return std::make_shared<NSValue>(rect);
}
std::shared_ptr<NSValue> NSValue::valueWithRange(const NSRange& range) {
  return std::make_shared<NSValue>(range);
}

bool NSValue::isEqual(const NSObject& other) const {
  const auto* value = dynamic_cast<const NSValue*>(&other);
  return value != nullptr && value->content_ == content_;
}

size_t NSValue::hash() const {
  struct Hasher {
    size_t operator()(const NSPoint& p) const { return of({p.x, p.y}); }
    size_t operator()(const NSSize& s) const { return of({s.width, s.height}); }
    size_t operator()(const NSRect& r) const { return (*this)(r.origin) * 31 + (*this)(r.size); }
    size_t operator()(const NSRange& r) const { return r.location * 31 + r.length; }
    size_t operator()(const CGAffineTransform& t) const { return of({t.tx, t.ty}); }
    static size_t of(std::array<double, 2> v) {
      return std::hash<double>{}(v[0]) * 31 + std::hash<double>{}(v[1]);
    }
  };
  return std::visit(Hasher{}, content_);
}

bool NSValue::initWithCoder(NSCoder& coder) {
  switch (decodeSpecial(coder)) {
    case kPoint:
      content_ = coder.decodePointForKey("NS.pointval");
      return true;
    case kSize:
      content_ = coder.decodeSizeForKey("NS.sizeval");
      return true;
    case kRect:
      content_ = coder.decodeRectForKey("NS.rectval");
      return true;
    case kRange:
      content_ = NSRange{decodeCount(coder, "NS.rangeval.location"),
                         decodeCount(coder, "NS.rangeval.length")};
      return true;
    case kTransform:
      content_ = decodeTransform(coder);
      return true;
    default:
      return false;
  }
}

void NSValue::encodeWithCoder(NSCoder& coder) const {
  std::visit(Encoder{coder}, content_);
}
