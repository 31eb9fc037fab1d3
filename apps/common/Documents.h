#pragma once

#include <memory>
#include <span>
#include <string>
#include <system_error>

#include "common/ExitStatus.h"
#include "document/PaintManager.h"
#include "platform/foundation/values/NSData.h"

/// A document read from a file, or why there is none.
struct LoadedDocument {
  std::shared_ptr<PaintManager> document;
  ExitStatus status = kExitUnreadable;
  /// What the system said when the file could not be read, else empty.
  std::string reason;
  double resolution = 0;
};
/// From the file that an argument means, or from standard input when it is "-".
LoadedDocument loadDocument(const std::string& argument);
/// From a file's bytes, null with what the system said when they were read.
LoadedDocument loadDocument(const std::shared_ptr<NSData>& data, std::error_code readError);

/// The bytes of the file that an argument means, a path or a file: URI, or of standard input when
/// it is "-". Null when it cannot be read; `error` then says why.
std::shared_ptr<NSData> readInput(const std::string& argument, std::error_code* error);

/// Why an output, a path or "-" for standard output, is not to be written to: it is the input of
/// this run, holds a document, or is a terminal. Empty when it may be, or is not there.
std::string mistakeInOutput(const std::string& input, const std::string& output);

/// In place keeps the file's identity, which desktops hold on to; by a new file, what stood there
/// is never half written.
enum class WriteMode : uint8_t { inPlace, byNewFile };

/// Writes the file, or standard output when the path is "-", in one go and with no limit of time in
/// force any more. Answers kExitSuccess or,
/// after a line on standard error, what went wrong.
ExitStatus writeOutput(const char* program, const std::string& path, std::span<const uint8_t> bytes,
                       WriteMode mode);
