#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <vector>

namespace SVGNative {

/// Where the elements of a document lie with what they say: in blocks, freed with the document.
/// Making and freeing thousands of small pieces one by one costs as much as reading them.
class ElementMemory {
 public:
  struct Destroy {
    template <class T>
    void operator()(T* object) const {
      std::destroy_at(object);
    }
  };
  template <class T>
  using Pointer = std::unique_ptr<T, Destroy>;

  /// What these make must be gone before the memory is.
  template <class T>
  Pointer<T> makeUnique() {
    return Pointer<T>(std::pmr::polymorphic_allocator<>(&blocks_).new_object<T>());
  }
  template <class T>
  std::shared_ptr<T> makeShared() {
    return std::allocate_shared<T>(std::pmr::polymorphic_allocator<T>(&blocks_));
  }

 private:
  // The standard's monotonic resource doubles its blocks. Large ones go back to the system when
  // they are freed, and the next document pays for every page again.
  class Blocks : public std::pmr::memory_resource {
    void* do_allocate(size_t bytes, size_t alignment) override;
    void do_deallocate(void* /*memory*/, size_t /*bytes*/, size_t /*alignment*/) override {}
    bool do_is_equal(const memory_resource& other) const noexcept override {
      return this == &other;
    }

    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    void* free_ = nullptr;
    size_t left_ = 0;
  };

  Blocks blocks_;
};

}  // namespace SVGNative
