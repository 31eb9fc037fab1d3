#include "platform/foundation/collections/CollectionCoding.h"

#include <string>

namespace {

std::string numberedKey(std::string_view prefix, size_t index) {
  return std::string(prefix) + std::to_string(index);
}

}  // namespace

std::optional<std::vector<std::shared_ptr<NSObject>>> decodeElements(
    NSCoder& coder, std::string_view listKey, std::string_view numberedPrefix) {
  if (coder.containsValueForKey(listKey)) return coder.decodeObjectsForKey(listKey);
  std::vector<std::shared_ptr<NSObject>> objects;
  for (;;) {
    const std::string key = numberedKey(numberedPrefix, objects.size());
    if (!coder.containsValueForKey(key)) return objects;
    auto object = coder.decodeObjectForKey(key);
    if (object == nullptr) return std::nullopt;
    if (coder.isDecoding(*object)) object = nullptr;
    objects.push_back(std::move(object));
  }
}

void encodeNumberedElements(NSCoder& coder, const std::vector<std::shared_ptr<NSObject>>& objects,
                            std::string_view numberedPrefix) {
  for (size_t i = 0; i < objects.size(); ++i) {
    coder.encodeObject(objects[i], numberedKey(numberedPrefix, i));
  }
}
