#include "common/Documents.h"

#include <unistd.h>

#include <system_error>

#include "platform/foundation/files/FileWriting.h"

std::shared_ptr<NSURL> fileURLFromArgument(const std::string& argument) {
  auto url = NSURL::URLWithString(argument);
  return url->isFileURL() ? url : NSURL::fileURLWithPath(argument);
}

LoadedDocument loadDocument(const NSURL& file) {
  std::error_code error;
  const auto data = NSData::dataWithContentsOfURL(file, &error);
  return loadDocument(data, error);
}

std::shared_ptr<NSData> readInput(const std::string& argument, std::error_code* error) {
  return argument == "-" ? NSData::dataWithContentsOfDescriptor(STDIN_FILENO, error)
                         : NSData::dataWithContentsOfURL(*fileURLFromArgument(argument), error);
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

ExitStatus writeOutput(const char* program, const std::string& path,
                       std::span<const uint8_t> bytes) {
  const std::error_code error = writeFileInPlace(path, bytes);
  if (!error) return kExitSuccess;
  return fail(program, path, statusOf(error, kExitOutputFailed), error.message());
}
