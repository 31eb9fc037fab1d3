#include "platform/foundation/files/FileWriting.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr int kFlags = O_WRONLY | O_CLOEXEC | O_NOCTTY;
constexpr mode_t kMode = 0666;

struct OutputFile {
  int descriptor = -1;
  bool created = false;
};

OutputFile openOutput(const char* path) {
  const int fresh = open(path, kFlags | O_CREAT | O_EXCL, kMode);
  if (fresh >= 0 || errno != EEXIST) return {fresh, true};
  // Creates too, for a link whose target is missing.
  return {open(path, kFlags | O_CREAT | O_TRUNC, kMode), false};
}

int writeAll(int descriptor, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes = bytes.subspan(static_cast<size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

std::error_code writeFileInPlace(const std::string& path, std::span<const uint8_t> bytes) {
  const OutputFile file = openOutput(path.c_str());
  if (file.descriptor < 0) return {errno, std::generic_category()};
  int error = writeAll(file.descriptor, bytes);
  if (close(file.descriptor) != 0 && error == 0) error = errno;
  if (error == 0) return {};
  // There is nothing left to try where this fails too (a device, a folder taken away).
  const int undone = file.created ? unlink(path.c_str()) : truncate(path.c_str(), 0);
  static_cast<void>(undone);
  return {error, std::generic_category()};
}
