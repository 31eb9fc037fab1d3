// Decodes any bytes as a keyed archive of plain values and colours. What decodes must survive being
// written and read again.
#include <cstdint>
#include <cstdlib>

#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/GraphicsClasses.h"

namespace {

template <class Call>
void attempt(Call call) {
  try {
    call();
  } catch (const NSException&) {
  }
}

/// An object that tries every typed call on each of its keys.
class Sample : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  bool initWithCoder(NSCoder& coder) override {
    for (const std::string& key : coder.decodableKeys()) {
      attempt([&] { coder.decodeBoolForKey(key); });
      attempt([&] { coder.decodeInt32ForKey(key); });
      attempt([&] { coder.decodeFloatForKey(key); });
      attempt([&] { coder.decodeRectForKey(key); });
      attempt([&] { coder.decodeBytesForKey(key); });
      attempt([&] { coder.decodeDataForKey(key); });
      attempt([&] { coder.decodeNumberForKey(key); });
      attempt([&] { coder.decodeObjectsForKey(key); });
      attempt([&] {
        const auto object = coder.decodeObjectForKey(key);
        if (object != nullptr && !coder.isDecoding(*object)) objects_.push_back(object);
      });
    }
    return true;
  }
  void encodeWithCoder(NSCoder& coder) const override { coder.encodeObjects(objects_, "objects"); }

 private:
  NSArray::Objects objects_;
};

const NSClass Sample::kClass{"Sample", &NSObject::kClass, NSAllocate<Sample>};

void registerClasses() {
  static constexpr const NSClass* kClasses[] = {&Sample::kClass};
  NSRegisterClasses(kClasses);
  registerGraphicsClasses();
}

NSArray::Objects decodeAll(const std::shared_ptr<NSData>& data) {
  NSKeyedUnarchiver coder(data);
  NSArray::Objects roots;
  for (const std::string& key : coder.decodableKeys()) {
    attempt([&] {
      if (auto root = coder.decodeObjectForKey(key)) roots.push_back(root);
    });
  }
  return roots;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  registerClasses();
  NSArray::Objects roots;
  attempt([&] { roots = decodeAll(NSData::dataWithBytes({bytes, size})); });
  if (roots.empty()) return 0;
  for (const auto& root : roots) {
    const auto written = NSKeyedArchiver::archivedDataWithRootObject(root);
    const auto again = NSKeyedUnarchiver::unarchiveObjectWithData(written);
    if (again == nullptr || again->className() != root->className()) std::abort();
  }
  return 0;
}
