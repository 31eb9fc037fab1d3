#include "common/Documents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string_view>
#include <system_error>

#include "common/ResourceLimits.h"
#include "platform/foundation/files/FileWriting.h"
#include "platform/foundation/values/NSURL.h"
#include "platform/machine/FileDescriptor.h"

namespace {

/// A path, or a file: URI.
std::shared_ptr<NSURL> fileURLFromArgument(const std::string& argument) {
  auto url = NSURL::URLWithString(argument);
  return url->isFileURL() ? url : NSURL::fileURLWithPath(argument);
}

bool isInput(const struct stat& out, const std::string& input) {
  struct stat in {};
  const bool isThere = input == "-" ? fstat(STDIN_FILENO, &in) == 0
                                    : stat(fileURLFromArgument(input)->path().c_str(), &in) == 0;
  return isThere && in.st_dev == out.st_dev && in.st_ino == out.st_ino;
}

bool holdsDocument(const std::string& path) {
  // What documents begin with (binary property list, version 00); no picture does.
  constexpr std::string_view kMagic = "bplist00";
  std::array<char, kMagic.size()> start{};
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  return file.isOpen() &&
         read(file.number(), start.data(), start.size()) == static_cast<ssize_t>(start.size()) &&
         std::string_view(start.data(), start.size()) == kMagic;
}

}  // namespace

std::shared_ptr<NSData> readInput(const std::string& argument, std::error_code* error) {
  return argument == "-" ? NSData::dataWithContentsOfDescriptor(STDIN_FILENO, error)
                         : NSData::dataWithContentsOfURL(*fileURLFromArgument(argument), error);
}

LoadedDocument loadDocument(const std::string& argument) {
  std::error_code error;
  const auto data = readInput(argument, &error);
  return loadDocument(data, error);
}

LoadedDocument loadDocument(const std::shared_ptr<NSData>& data, std::error_code readError) {
  LoadedDocument loaded;
  if (data == nullptr) {
    loaded.status = statusOf(readError, kExitUnreadable);
    loaded.reason = readError.message();
    return loaded;
  }
  int64_t code = kPaintDataUnreadable;
  loaded.document = PaintManager::paintMgrWithPaintData(data, &loaded.resolution, &code);
  loaded.status = static_cast<ExitStatus>(code);
  return loaded;
}

std::string mistakeInOutput(const std::string& input, const std::string& output) {
  const bool isStandard = output == "-";
  if (isStandard && isatty(STDOUT_FILENO) == 1) return "a terminal shows no pictures";
  struct stat out {};
  const int failed = isStandard ? fstat(STDOUT_FILENO, &out) : stat(output.c_str(), &out);
  if (failed != 0 || !S_ISREG(out.st_mode)) return {};
  if (isInput(out, input)) return "the output is the input";
  return holdsDocument(isStandard ? "/proc/self/fd/1" : output) ? "the output holds a document"
                                                                : "";
}

ExitStatus writeOutput(const char* program, const std::string& path, std::span<const uint8_t> bytes,
                       WriteMode mode) {
  liftTimeLimits();
  if (path == "-") {
    return writeText(program, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  const std::error_code error =
      mode == WriteMode::inPlace ? writeFileInPlace(path, bytes) : replaceFile(path, bytes);
  if (!error) return kExitSuccess;
  return fail(program, path, statusOf(error, kExitOutputFailed), error.message());
}
