#include "platform/graphics/codecs/libraries/tiff/TIFFHandle.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

int reportNothing(TIFF*, void*, const char*, const char*, va_list) {
  return 1;
}

int close(thandle_t) {
  return 0;
}

void unmap(thandle_t, void*, toff_t) {}

struct FreeOptions {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

}  // namespace

TIFFHandle TIFFMemory::open(const char* mode, int64_t largestBlock) {
  const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
  if (options == nullptr) return nullptr;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), largestBlock);
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), reportNothing, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), reportNothing, nullptr);
  return TIFFHandle(TIFFClientOpenExt("picture", mode, this, read, write, seek, close, size, map,
                                      unmap, options.get()));
}

tmsize_t TIFFMemory::read(thandle_t handle, void* out, tmsize_t count) {
  auto& memory = *static_cast<TIFFMemory*>(handle);
  const std::span<const uint8_t> bytes = memory.output_.empty() ? memory.input_ : memory.output_;
  if (count <= 0 || memory.position_ >= bytes.size()) return 0;
  const size_t available = std::min(static_cast<size_t>(count), bytes.size() - memory.position_);
  std::memcpy(out, bytes.data() + memory.position_, available);
  memory.position_ += available;
  return static_cast<tmsize_t>(available);
}

tmsize_t TIFFMemory::write(thandle_t handle, void* bytes, tmsize_t count) {
  auto& memory = *static_cast<TIFFMemory*>(handle);
  const auto end = static_cast<size_t>(memory.position_) + static_cast<size_t>(count);
  try {
    if (memory.output_.size() < end) memory.output_.resize(end);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  std::memcpy(memory.output_.data() + memory.position_, bytes, static_cast<size_t>(count));
  memory.position_ = end;
  return count;
}

toff_t TIFFMemory::seek(thandle_t handle, toff_t offset, int from) {
  auto& memory = *static_cast<TIFFMemory*>(handle);
  if (from == SEEK_CUR) offset += memory.position_;
  if (from == SEEK_END) offset += size(handle);
  memory.position_ = offset;
  return offset;
}

toff_t TIFFMemory::size(thandle_t handle) {
  const auto& memory = *static_cast<TIFFMemory*>(handle);
  return std::max(memory.input_.size(), memory.output_.size());
}

int TIFFMemory::map(thandle_t handle, void** base, toff_t* size) {
  const auto& memory = *static_cast<TIFFMemory*>(handle);
  if (memory.input_.empty()) return 0;
  // The library only reads what is mapped.
  *base = const_cast<uint8_t*>(memory.input_.data());
  *size = memory.input_.size();
  return 1;
}
