#pragma once

#include <memory>
#include <span>
#include <string>
#include <system_error>

#include "common/ExitStatus.h"
#include "document/PaintManager.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSURL.h"

/// The file that an argument means: a path, or a file: URI.
std::shared_ptr<NSURL> fileURLFromArgument(const std::string& argument);

/// A document read from a file, or why there is none.
struct LoadedDocument {
  std::shared_ptr<PaintManager> document;
  ExitStatus status = kExitUnreadable;
  /// What the system said when the file could not be read, else empty.
  std::string reason;
  double resolution = 0;
};
LoadedDocument loadDocument(const NSURL& file);
/// The same for a file's bytes, null with what the system said when they were read.
LoadedDocument loadDocument(const std::shared_ptr<NSData>& data, std::error_code readError);

/// The bytes of the file that an argument means, or of standard input when it is "-". Null when it
/// cannot be read; `error` then says why.
std::shared_ptr<NSData> readInput(const std::string& argument, std::error_code* error);

/// Writes the file in one go. Answers kExitSuccess or, after a line on standard error, what went
/// wrong; the file is then as empty as it was, or absent.
ExitStatus writeOutput(const char* program, const std::string& path,
                       std::span<const uint8_t> bytes);
