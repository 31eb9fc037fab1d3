#include "platform/foundation/files/FileReading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/foundation/Limits.h"
#include "platform/machine/FileDescriptor.h"

namespace {

/// Contents that grow without being cleared first.
struct Buffer : FileContents {
  size_t capacity = 0;

  void reserve(size_t wanted) {
    auto larger = std::make_shared_for_overwrite<uint8_t[]>(wanted);
    if (size > 0) std::memcpy(larger.get(), bytes.get(), size);
    bytes = std::move(larger);
    capacity = wanted;
  }
};

std::error_code systemError(int number) {
  return {number, std::generic_category()};
}

/// Sizes the buffer for a file that can be read at all.
std::error_code prepare(int file, Buffer& buffer) {
  struct stat status = {};
  if (fstat(file, &status) != 0) return systemError(errno);
  if (S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  // Devices may have no end.
  if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) {
    return std::make_error_code(std::errc::not_supported);
  }
  const int64_t expected = S_ISREG(status.st_mode) ? int64_t{status.st_size} : 0;
  if (expected > limits::kMaxFileBytes) return std::make_error_code(std::errc::file_too_large);
  // One byte more, so that a read of nothing shows the end without growing first.
  constexpr size_t kPipeSize = 65536;
  buffer.reserve(expected > 0 ? static_cast<size_t>(expected) + 1 : kPipeSize);
  return {};
}

std::error_code readToEnd(int file, Buffer& buffer) {
  constexpr size_t kLimit = static_cast<size_t>(limits::kMaxFileBytes) + 1;
  for (;;) {
    if (buffer.size == kLimit) return std::make_error_code(std::errc::file_too_large);
    if (buffer.size == buffer.capacity) buffer.reserve(std::min(kLimit, 2 * buffer.capacity));
    const ssize_t got = read(file, buffer.bytes.get() + buffer.size, buffer.capacity - buffer.size);
    if (got == 0) return {};
    if (got > 0) {
      buffer.size += static_cast<size_t>(got);
    } else if (errno != EINTR) {
      return systemError(errno);
    }
  }
}

}  // namespace

std::error_code readDescriptor(int descriptor, FileContents& contents) {
  Buffer buffer;
  std::error_code failure = prepare(descriptor, buffer);
  if (!failure) failure = readToEnd(descriptor, buffer);
  if (!failure) contents = std::move(buffer);
  return failure;
}

std::error_code readFile(const std::string& path, FileContents& contents) {
  // The rest of such a path would be ignored.
  if (path.find('\0') != std::string::npos) return systemError(EINVAL);
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  return file.isOpen() ? readDescriptor(file.number(), contents) : systemError(errno);
}
