#include "platform/machine/ZeroedMemory.h"

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr size_t kHugePage = size_t{2} << 20;

/// From here on a huge page costs less than the small ones in its place.
constexpr size_t kMapped = size_t{1} << 19;

/// Larger pieces go back to the system when they are cleared; for smaller ones writing zeros is
/// cheaper than touching the pages again.
constexpr size_t kReturned = size_t{4} << 20;

size_t mappedBytes(size_t bytes) {
  return (bytes + kHugePage - 1) / kHugePage * kHugePage;
}

/// A mapping that starts on a huge page; null when there is none.
uint8_t* map(size_t bytes) {
  if (bytes > SIZE_MAX / 2) return nullptr;
  const size_t wanted = mappedBytes(bytes);
  void* const memory = mmap(nullptr, wanted + kHugePage, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  auto* const start = static_cast<uint8_t*>(memory);
  const size_t skipped = (kHugePage - reinterpret_cast<uintptr_t>(start) % kHugePage) % kHugePage;
  uint8_t* const aligned = start + skipped;
  if (skipped > 0) munmap(start, skipped);
  munmap(aligned + wanted, kHugePage - skipped);
  madvise(aligned, wanted, MADV_HUGEPAGE);
  return aligned;
}

}  // namespace

ZeroedMemory::ZeroedMemory(size_t bytes) {
  if (bytes == 0) return;
  source_ = bytes < kMapped ? Source::heap : Source::system;
  data_ = source_ == Source::heap ? static_cast<uint8_t*>(std::calloc(bytes, 1)) : map(bytes);
  if (data_ == nullptr) throw std::bad_alloc();
  bytes_ = bytes;
}

ZeroedMemory::ZeroedMemory(void* mapping, size_t bytes)
    : data_(static_cast<uint8_t*>(mapping)), bytes_(bytes), source_(Source::mapping) {}

ZeroedMemory::ZeroedMemory(ZeroedMemory&& other) noexcept {
  *this = std::move(other);
}

ZeroedMemory& ZeroedMemory::operator=(ZeroedMemory&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(bytes_, other.bytes_);
  std::swap(source_, other.source_);
  return *this;
}

ZeroedMemory::~ZeroedMemory() {
  if (data_ == nullptr) return;
  if (source_ == Source::heap) {
    std::free(data_);
  } else {
    munmap(data_, source_ == Source::system ? mappedBytes(bytes_) : bytes_);
  }
}

void ZeroedMemory::clear(size_t first, size_t end) {
  // Dropping private anonymous pages makes them read as zero again.
  const bool returned = source_ == Source::system && end - first >= kReturned &&
                        madvise(data_, mappedBytes(bytes_), MADV_DONTNEED) == 0;
  if (!returned) std::memset(data_ + first, 0, end - first);
}
