#pragma once

#include <memory>
#include <string>

#include "common/ExitStatus.h"
#include "document/PaintManager.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSURL.h"

class NSBitmapImageRep;

/// The file that an argument means: a path, or a file: URI.
std::shared_ptr<NSURL> fileURLFromArgument(const std::string& argument);

/// A document read from a file, or why there is none.
struct LoadedDocument {
  std::shared_ptr<PaintManager> document;
  ExitStatus status = kExitUnreadable;
  /// What the system said when the file could not be read, else empty.
  std::string reason;
  int64_t version = 0;
  double resolution = 0;
};
LoadedDocument loadDocument(const NSURL& file);
/// The same for a file's bytes.
LoadedDocument loadDocument(const std::shared_ptr<NSData>& data);

/// The bytes of the file that an argument means, or of standard input when it is "-". Null when it
/// cannot be read; `reason` then says why.
std::shared_ptr<NSData> readInput(const std::string& argument, std::string* reason);

/// Encodes the bitmap and writes the file in one go. Answers kExitSuccess or, after a line on
/// standard error, kExitOutputFailed; the file is then left as it was, or absent.
ExitStatus writePicture(const char* program, const NSBitmapImageRep& bitmap,
                        const std::string& path);
