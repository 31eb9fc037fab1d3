#pragma once

#include <cstdint>

/// Gives the calling thread a number of allocations for the length of a scope and refuses all
/// further ones: operator new of this program and of the engine's modules, and the engine's calloc.
class FailingAllocations {
 public:
  explicit FailingAllocations(int64_t allowed);
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
  ~FailingAllocations();

  /// How many were given so far.
  int64_t used() const;

 private:
  int64_t allowed_;
};
