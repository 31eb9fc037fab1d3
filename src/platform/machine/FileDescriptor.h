#pragma once

#include <unistd.h>

#include <utility>

/// An open file, closed with its owner.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() {
    if (isOpen()) close(number_);
  }

  bool isOpen() const { return number_ >= 0; }
  /// Negative when there is none.
  int number() const { return number_; }
  int release() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};
