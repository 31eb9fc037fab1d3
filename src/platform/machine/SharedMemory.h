#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/machine/FileDescriptor.h"

/// How a mapping may be used. A private copy starts with what is there and keeps its changes.
enum class MapAccess : uint8_t { read, write, privateCopy };

/// A piece of memory in the address space, given back with its owner.
class MemoryMapping {
 public:
  MemoryMapping() = default;
  MemoryMapping(void* start, size_t bytes) : start_(start), bytes_(bytes) {}
  MemoryMapping(MemoryMapping&& other) noexcept { *this = std::move(other); }
  MemoryMapping& operator=(MemoryMapping&& other) noexcept {
    std::swap(start_, other.start_);
    std::swap(bytes_, other.bytes_);
    return *this;
  }
  ~MemoryMapping();

  std::span<uint8_t> bytes() const { return {static_cast<uint8_t*>(start_), bytes_}; }
  bool empty() const { return bytes_ == 0; }
  /// Leaves the memory to the caller, who unmaps it.
  uint8_t* release();

 private:
  void* start_ = nullptr;
  size_t bytes_ = 0;
};

/// Memory that two processes can map, known by a descriptor (memfd_create(2)). What one process
/// received from another is trusted only once it is sealed: memory that shrinks under a mapping
/// would end the process that looks at it.
class SharedMemory {
 public:
  SharedMemory() = default;
  /// Memory behind a descriptor that another process sent.
  explicit SharedMemory(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}
  /// New memory of a fixed size, all zero and untouched. Not open when the system or a limit
  /// (RLIMIT_FSIZE, which also sends SIGXFSZ) refuses it.
  static SharedMemory create(size_t bytes);

  bool isOpen() const { return descriptor_.isOpen(); }
  const FileDescriptor& descriptor() const { return descriptor_; }

  /// Fixes the contents for ever too; no writable mapping may be left. False when that fails.
  bool seal() const;
  /// Whether there are exactly that many bytes, and will be.
  bool hasFixedSize(size_t bytes) const;
  /// The same, and the bytes cannot change either.
  bool isSealed(size_t bytes) const;

  /// Maps the first `bytes`, which must be there. Empty for none; throws std::bad_alloc when there
  /// is no address space.
  MemoryMapping map(size_t bytes, MapAccess access) const;

 private:
  FileDescriptor descriptor_;
};
