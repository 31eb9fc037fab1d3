#include "platform/machine/AddressSpace.h"

#include <sys/mman.h>

bool hasAddressSpace(size_t bytes) {
  void* const memory =
      mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return false;
  munmap(memory, bytes);
  return true;
}
