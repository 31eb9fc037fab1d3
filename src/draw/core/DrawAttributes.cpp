#include "draw/core/DrawAttributes.h"

#include <algorithm>

#include "draw/core/ZTSmallKits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSString.h"
#include "platform/text/fonts/NSFont.h"

namespace {

constexpr const char* kClassName = "DAKeyClassName";

bool valuesAreEqual(const std::shared_ptr<NSObject>& a, const std::shared_ptr<NSObject>& b);

bool archivesAreEqual(const std::shared_ptr<NSObject>& a, const std::shared_ptr<NSObject>& b) {
  try {
    const auto first = NSKeyedArchiver::archivedDataWithRootObject(a);
    const auto second = NSKeyedArchiver::archivedDataWithRootObject(b);
    return std::ranges::equal(first->bytes(), second->bytes());
  } catch (const NSException&) {
    return false;
  }
}

template <class T>
const T* as(const std::shared_ptr<NSObject>& object) {
  return dynamic_cast<const T*>(object.get());
}

/// The same pairs in any order; the value under one key may differ.
bool pairsAreEqual(const NSDictionary& a, const NSDictionary& b, const NSString* except = nullptr) {
  if (a.count() != b.count()) return false;
  for (size_t i = 0; i < a.count(); ++i) {
    const auto& key = a.allKeys()[i];
    if (except != nullptr && key->isEqual(*except)) continue;
    const auto other = b.objectForKey(*key);
    if (other == nullptr || !valuesAreEqual(a.allValues()[i], other)) return false;
  }
  return true;
}

bool valuesAreEqual(const std::shared_ptr<NSObject>& a, const std::shared_ptr<NSObject>& b) {
  if (!a->classInfo().isSubclassOf(b->classInfo()) &&
      !b->classInfo().isSubclassOf(a->classInfo())) {
    return false;
  }
  if (const auto* number = as<NSNumber>(a)) return number->isEqual(*b);
  if (const auto* text = as<NSString>(a)) return text->isEqual(*b);
  if (const auto* color = as<NSColor>(a)) return zt_isEqualWithColor(color, as<NSColor>(b));
  if (const auto* g = as<NSGradient>(a)) return zt_isEqualWithGradient(g, as<NSGradient>(b));
  if (const auto* shadow = as<NSShadow>(a)) return zt_isEqualWithShadow(shadow, as<NSShadow>(b));
  if (const auto* font = as<NSFont>(a)) return zt_isEqualWithFont(font, as<NSFont>(b));
  const auto *dictionary = as<NSDictionary>(a), *other = as<NSDictionary>(b);
  if (dictionary != nullptr && other != nullptr) return pairsAreEqual(*dictionary, *other);
  return archivesAreEqual(a, b);
}

}  // namespace

bool IsEqualDrawAttributes(const NSDictionary* a, const NSDictionary* b) {
  const NSDictionary none;
  return a == b || pairsAreEqual(a != nullptr ? *a : none, b != nullptr ? *b : none,
                                 NSString::stringWithString(kClassName).get());
}
