// Opens any bytes as a property list and looks at every object in every way that its kind allows.
#include <cstdint>
#include <cstdlib>

#include "platform/foundation/archive/BinaryPropertyList.h"

namespace {

using Kind = PropertyListObject::Kind;

volatile double sink;

void lookAt(const BinaryPropertyList& list, const PropertyListObject& object) {
  switch (object.kind()) {
    case Kind::kInteger:
      sink = static_cast<double>(object.uint64().value_or(0));
      break;
    case Kind::kReal:
    case Kind::kDate:
      sink = object.real();
      break;
    case Kind::kUID:
      sink = object.uid();
      break;
    case Kind::kASCIIString:
    case Kind::kUTF16String:
      if (const auto text = object.text(); text && !object.isText(*text)) std::abort();
      break;
    case Kind::kData:
      for (const uint8_t byte : object.data()) sink = byte;
      break;
    case Kind::kArray:
    case Kind::kSet:
      for (size_t i = 0; i < object.count(); ++i) list.object(list.element(object, i));
      break;
    case Kind::kDictionary:
      list.find(object, "$objects");
      break;
    default:
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto list = BinaryPropertyList::open({data, size});
  if (!list) return 0;
  // Many offsets may lead to one long object: look at no more bytes than a few files hold.
  size_t budget = 16 * size;
  for (BinaryPropertyList::Index i = 0; i < list->objectCount(); ++i) {
    const PropertyListObject object = list->object(i);
    if (object.byteCount() > budget) break;
    budget -= object.byteCount();
    lookAt(*list, object);
  }
  return 0;
}
