#include "platform/foundation/files/FileWriting.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/machine/FileDescriptor.h"

namespace {

constexpr int kFlags = O_WRONLY | O_CLOEXEC | O_NOCTTY;
constexpr mode_t kMode = 0666;

std::error_code systemError(int number) {
  return number == 0 ? std::error_code() : std::error_code(number, std::generic_category());
}

/// The rest of a path with a zero in it would be ignored.
bool hasZero(const std::string& path) {
  return path.find('\0') != std::string::npos;
}

struct OutputFile {
  FileDescriptor descriptor;
  bool created = false;
};

OutputFile openOutput(const char* path) {
  const int fresh = open(path, kFlags | O_CREAT | O_EXCL, kMode);
  if (fresh >= 0 || errno != EEXIST) return {FileDescriptor(fresh), true};
  // Creates too, for a link whose target is missing.
  return {FileDescriptor(open(path, kFlags | O_CREAT, kMode)), false};
}

bool isRegular(int descriptor) {
  struct stat facts {};
  return fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
}

/// Why a regular file cannot take that many bytes; 0 when it can, or when nobody can tell. Nothing
/// of it is changed.
int reserve(int descriptor, size_t bytes) {
  rlimit limit{};
  if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && bytes > limit.rlim_cur) return EFBIG;
  if (bytes == 0) return 0;
  const int result =
      fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes)) == 0 ? 0 : errno;
  return result == ENOSPC || result == EDQUOT || result == EFBIG ? result : 0;
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

int closed(FileDescriptor& descriptor) {
  return close(descriptor.release()) == 0 ? 0 : errno;
}

/// Writes over what is there, and cuts off what is left of it.
int overwrite(FileDescriptor& descriptor, std::span<const uint8_t> bytes, bool regular) {
  int error = writeAll(descriptor.number(), bytes);
  if (error == 0 && regular &&
      ftruncate(descriptor.number(), static_cast<off_t>(bytes.size())) != 0) {
    error = errno;
  }
  const int closing = closed(descriptor);
  return error != 0 ? error : closing;
}

/// The permissions of a new file, as the umask leaves them.
mode_t newMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return kMode & ~mask;
}

/// Writes a file beside the target and moves it there.
int writeBeside(const std::string& target, std::span<const uint8_t> bytes, mode_t mode) {
  const size_t name = target.rfind('/') + 1;
  std::string beside = std::string(target).insert(name, ".") + ".XXXXXX";
  FileDescriptor descriptor(mkostemp(beside.data(), O_CLOEXEC));
  if (!descriptor.isOpen()) return errno;
  int error = fchmod(descriptor.number(), mode) == 0 ? 0 : errno;
  if (error == 0) error = writeAll(descriptor.number(), bytes);
  const int closing = closed(descriptor);
  if (error == 0) error = closing;
  if (error == 0 && rename(beside.c_str(), target.c_str()) != 0) error = errno;
  if (error != 0) unlink(beside.c_str());
  return error;
}

}  // namespace

std::error_code writeFileInPlace(const std::string& path, std::span<const uint8_t> bytes) {
  if (hasZero(path)) return systemError(EINVAL);
  OutputFile file = openOutput(path.c_str());
  if (!file.descriptor.isOpen()) return systemError(errno);
  const bool regular = isRegular(file.descriptor.number());
  const int refusal = regular ? reserve(file.descriptor.number(), bytes.size()) : 0;
  const int error = refusal != 0 ? refusal : overwrite(file.descriptor, bytes, regular);
  if (error == 0) return {};
  // There is nothing left to try where this fails too (a device, a folder taken away).
  int undone = 0;
  if (file.created) {
    undone = unlink(path.c_str());
  } else if (refusal == 0) {
    undone = truncate(path.c_str(), 0);
  }
  static_cast<void>(undone);
  return systemError(error);
}

std::error_code replaceFile(const std::string& path, std::span<const uint8_t> bytes) {
  if (hasZero(path)) return systemError(EINVAL);
  struct stat facts {};
  const bool exists = stat(path.c_str(), &facts) == 0;
  if (exists && !S_ISREG(facts.st_mode)) return writeFileInPlace(path, bytes);
  if (!exists) return systemError(writeBeside(path, bytes, newMode()));
  if (access(path.c_str(), W_OK) != 0) return systemError(errno);
  // The file that a link leads to, not the link.
  const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr),
                                                           std::free);
  if (target == nullptr) return systemError(errno);
  return systemError(writeBeside(target.get(), bytes, facts.st_mode & 07777));
}
