#include "platform/foundation/NSObject.h"

#include <map>
#include <mutex>
#include <shared_mutex>

namespace {

struct ClassRegistry {
  std::shared_mutex mutex;
  std::map<std::string_view, const NSClass*> classes;
};

ClassRegistry& registry() {
  static ClassRegistry instance;
  return instance;
}

}  // namespace

const NSClass NSObject::kClass{"NSObject", nullptr, NSAllocate<NSObject>};

bool NSObject::initWithCoder(NSCoder&) {
  return true;
}

void NSObject::encodeWithCoder(NSCoder&) const {}

void NSRegisterClasses(std::span<const NSClass* const> classes) {
  ClassRegistry& r = registry();
  const std::unique_lock lock(r.mutex);
  for (const NSClass* c : classes) r.classes.emplace(c->name, c);
}

const NSClass* NSClassFromString(std::string_view name) {
  ClassRegistry& r = registry();
  const std::shared_lock lock(r.mutex);
  const auto found = r.classes.find(name);
  return found == r.classes.end() ? nullptr : found->second;
}
