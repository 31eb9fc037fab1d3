#pragma once

#include <mutex>
#include <new>
#include <utility>
#include <vector>

/// Objects that are costly to make and used by one thread at a time. Thread-local objects would do
/// the same, but leak checkers lose track of them in modules loaded at run time.
template <class Pointer>
class ObjectPool {
 public:
  /// An object taken from the pool for the length of a scope.
  class Lease {
   public:
    Lease(ObjectPool& pool, Pointer object) : pool_(pool), object_(std::move(object)) {}
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    ~Lease() { pool_.giveBack(std::move(object_)); }
    auto* get() const { return object_.get(); }

   private:
    ObjectPool& pool_;
    Pointer object_;
  };

  /// An idle object, or what `make` answers when there is none.
  template <class Make>
  Lease take(Make make) {
    {
      const std::lock_guard lock(mutex_);
      if (!idle_.empty()) {
        Pointer object = std::move(idle_.back());
        idle_.pop_back();
        return Lease(*this, std::move(object));
      }
    }
    return Lease(*this, make());
  }

 private:
  void giveBack(Pointer object) noexcept {
    const std::lock_guard lock(mutex_);
    try {
      idle_.push_back(std::move(object));
    } catch (const std::bad_alloc&) {
      // The object goes.
    }
  }

  std::mutex mutex_;
  std::vector<Pointer> idle_;
};
