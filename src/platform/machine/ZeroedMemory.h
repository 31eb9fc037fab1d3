#pragma once

#include <cstddef>
#include <cstdint>

/// Memory for pixels, zero at first.
///
/// Large pieces are mapped on their own and in huge pages where the system has them: the first
/// touch of a small page costs far more than filling it. What is never touched takes no memory,
/// huge pages rounded up. Smaller pieces, most of them for short-lived layers and masks, reuse
/// memory that was given back.
class ZeroedMemory {
 public:
  ZeroedMemory() = default;
  /// Throws std::bad_alloc when the system has no memory. Empty for none.
  explicit ZeroedMemory(size_t bytes);
  /// Memory with something in it already: private pages of its own, mapped by mmap(2), which are
  /// unmapped with this.
  ZeroedMemory(void* mapping, size_t bytes);
  ZeroedMemory(ZeroedMemory&& other) noexcept;
  ZeroedMemory& operator=(ZeroedMemory&& other) noexcept;
  ~ZeroedMemory();

  uint8_t* data() const { return data_; }
  size_t size() const { return bytes_; }
  bool empty() const { return data_ == nullptr; }

  /// Makes everything zero again, given that nothing outside [first, end) was written since. The
  /// memory of large pieces goes back to the system.
  void clear(size_t first, size_t end);

 private:
  enum class Source : uint8_t { heap, system, mapping };

  uint8_t* data_ = nullptr;
  size_t bytes_ = 0;
  Source source_ = Source::heap;
};
