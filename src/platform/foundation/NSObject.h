#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/foundation/PaintExport.h"

class NSCoder;
class NSObject;

/// Run-time description of a class that archives can name: its name, its superclass and how an
/// instance is allocated (before `initWithCoder` fills it). Instances are static constants.
struct NSClass {
  std::string_view name;
  const NSClass* superclass;
  std::shared_ptr<NSObject> (*alloc)();

  bool isSubclassOf(const NSClass& other) const {
    for (const NSClass* c = this; c != nullptr; c = c->superclass) {
      if (c == &other) return true;
    }
    return false;
  }
};

/// Root of everything an archive can hold. Shared ownership is std::shared_ptr.
class PAINT_API NSObject {
 public:
  static const NSClass kClass;

  NSObject() = default;
  NSObject(const NSObject&) = default;
  NSObject& operator=(const NSObject&) = default;
  virtual ~NSObject() = default;

  /// The most derived class; overridden by every class that archives can name.
  virtual const NSClass& classInfo() const { return kClass; }
  std::string_view className() const { return classInfo().name; }
  bool isKindOfClass(const NSClass& c) const { return classInfo().isSubclassOf(c); }
  bool isMemberOfClass(const NSClass& c) const { return &classInfo() == &c; }

  /// Equality of contents for simple values, of identity otherwise (also for collections: comparing
  /// them by content could take for ever where they share parts). Equal objects have equal hashes;
  /// both serve as keys of dictionaries and members of sets.
  virtual bool isEqual(const NSObject& other) const { return this == &other; }
  virtual size_t hash() const { return reinterpret_cast<size_t>(this) >> 4; }

  /// Fills a freshly allocated object from the keyed record open on the coder. Answers false for
  /// nil: the reference that led here then decodes to nil. May throw NSException.
  virtual bool initWithCoder(NSCoder& coder);
  /// Writes the object's keys into the record open on the coder.
  virtual void encodeWithCoder(NSCoder& coder) const;
};

/// Allocation function for an NSClass constant.
template <class T>
std::shared_ptr<NSObject> NSAllocate() {
  return std::make_shared<T>();
}

/// Registers classes under their names, so that archives may name them. Registering a class again
/// changes nothing. Safe to call from several threads.
void NSRegisterClasses(std::span<const NSClass* const> classes);

/// The registered class of that name, or null.
const NSClass* NSClassFromString(std::string_view name);
