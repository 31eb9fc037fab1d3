#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <exception>
#include <new>

// Inline, because modules need it too.

/// Whether that many bytes more can be mapped. Libraries that answer "not there" for want of memory
/// are told by it from those whose files are missing or broken.
inline bool hasAddressSpace(size_t bytes) noexcept {
  void* const memory =
      mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return false;
  munmap(memory, bytes);
  return true;
}

/// What the text, picture and colour libraries take for their own small tables; generous.
inline constexpr size_t kLibraryTables = size_t{4} << 20;

/// Throws std::bad_alloc when that many bytes more cannot be mapped. To be called before libraries
/// that go on without what they could not allocate, and so would change a picture.
inline void requireAddressSpace(size_t bytes) {
  if (!hasAddressSpace(bytes)) throw std::bad_alloc();
}

/// Lets the calling thread handle exceptions thrown inside of modules later on. A module's C++
/// library makes room for that at its first exception, and the system ends the process when there
/// is none left. To be called inside of each module, by every thread. Throws std::bad_alloc.
inline void prepareForExceptions() {
  requireAddressSpace(kLibraryTables);
  // Compilers leave out a call whose result nobody looks at.
  [[maybe_unused]] const volatile int count = std::uncaught_exceptions();
}
