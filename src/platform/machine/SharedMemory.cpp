#include "platform/machine/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <new>

namespace {

constexpr int kSizeSeals = F_SEAL_SHRINK | F_SEAL_GROW;
constexpr int kContentSeals = F_SEAL_WRITE | F_SEAL_SEAL;

bool hasSeals(const FileDescriptor& descriptor, int wanted) {
  const int seals = fcntl(descriptor.number(), F_GET_SEALS);
  return seals >= 0 && (seals & wanted) == wanted;
}

}  // namespace

MemoryMapping::~MemoryMapping() {
  if (bytes_ > 0) munmap(start_, bytes_);
}

uint8_t* MemoryMapping::release() {
  bytes_ = 0;
  return static_cast<uint8_t*>(std::exchange(start_, nullptr));
}

SharedMemory SharedMemory::create(size_t bytes) {
  SharedMemory memory(FileDescriptor(memfd_create("paint", MFD_CLOEXEC | MFD_ALLOW_SEALING)));
  const int number = memory.descriptor_.number();
  const bool made = memory.isOpen() && ftruncate(number, static_cast<off_t>(bytes)) == 0 &&
                    fcntl(number, F_ADD_SEALS, kSizeSeals) == 0;
  return made ? std::move(memory) : SharedMemory();
}

bool SharedMemory::seal() const {
  return fcntl(descriptor_.number(), F_ADD_SEALS, kContentSeals) == 0;
}

bool SharedMemory::hasFixedSize(size_t bytes) const {
  struct stat facts {};
  return hasSeals(descriptor_, kSizeSeals) && fstat(descriptor_.number(), &facts) == 0 &&
         facts.st_size == static_cast<off_t>(bytes);
}

bool SharedMemory::isSealed(size_t bytes) const {
  return hasFixedSize(bytes) && hasSeals(descriptor_, kContentSeals);
}

MemoryMapping SharedMemory::map(size_t bytes, MapAccess access) const {
  if (bytes == 0) return {};
  const int protection = access == MapAccess::read ? PROT_READ : PROT_READ | PROT_WRITE;
  const int sharing = access == MapAccess::privateCopy ? MAP_PRIVATE : MAP_SHARED;
  void* const start = mmap(nullptr, bytes, protection, sharing, descriptor_.number(), 0);
  if (start == MAP_FAILED) throw std::bad_alloc();
  return {start, bytes};
}
