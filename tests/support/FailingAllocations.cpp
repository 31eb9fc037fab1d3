#include "support/FailingAllocations.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr int64_t kUnlimited = -1;

thread_local int64_t gLeft = kUnlimited;

bool isRefused() {
  if (gLeft == 0) return true;
  if (gLeft > 0) --gLeft;
  return false;
}

}  // namespace

FailingAllocations::FailingAllocations(int64_t allowed) : allowed_(allowed) {
  gLeft = allowed;
}

FailingAllocations::~FailingAllocations() {
  gLeft = kUnlimited;
}

int64_t FailingAllocations::used() const {
  return allowed_ - gLeft;
}

void* operator new(size_t bytes) {
  void* const memory = isRefused() ? nullptr : std::malloc(std::max<size_t>(bytes, 1));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  return isRefused() ? nullptr : std::malloc(std::max<size_t>(bytes, 1));
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}

// The engine's pixels come from calloc; the linker sends its calls this way.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void* __real_calloc(size_t count, size_t bytes);
extern "C" void* __wrap_calloc(size_t count, size_t bytes);

void* __wrap_calloc(size_t count, size_t bytes) {
  return isRefused() ? nullptr : __real_calloc(count, bytes);
}
// NOLINTEND(bugprone-reserved-identifier)
