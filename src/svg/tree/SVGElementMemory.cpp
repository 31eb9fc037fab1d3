#include "svg/tree/SVGElementMemory.h"

#include <algorithm>

namespace SVGNative {

void* ElementMemory::Blocks::do_allocate(size_t bytes, size_t alignment) {
  constexpr size_t kBlockBytes = size_t{1} << 15;
  if (std::align(alignment, bytes, free_, left_) == nullptr) {
    left_ = std::max(kBlockBytes, bytes + alignment);
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(left_));
    free_ = blocks_.back().get();
    std::align(alignment, bytes, free_, left_);
  }
  void* const memory = free_;
  free_ = static_cast<std::byte*>(free_) + bytes;
  left_ -= bytes;
  return memory;
}

}  // namespace SVGNative
