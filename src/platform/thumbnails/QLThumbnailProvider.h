#pragma once

#include <functional>
#include <memory>
#include <system_error>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/PaintExport.h"
#include "platform/foundation/values/NSURL.h"
#include "platform/thumbnails/QLThumbnailReply.h"

/// What the thumbnail service asks for: a picture of a file, no larger than the maximum size in
/// either direction (pixels).
class PAINT_API QLFileThumbnailRequest {
 public:
  QLFileThumbnailRequest(std::shared_ptr<const NSURL> fileURL, NSSize maximumSize)
      : fileURL_(std::move(fileURL)), maximumSize_(maximumSize) {}

  const NSURL& fileURL() const { return *fileURL_; }
  NSSize maximumSize() const { return maximumSize_; }

 private:
  std::shared_ptr<const NSURL> fileURL_;
  NSSize maximumSize_;
};

/// Base of the classes that the thumbnail service calls, on any thread and for several files at
/// once.
class PAINT_API QLThumbnailProvider {
 public:
  /// Takes the reply, or null and an error.
  using CompletionHandler =
      std::function<void(std::shared_ptr<QLThumbnailReply> reply, std::error_code error)>;

  virtual ~QLThumbnailProvider() = default;

  /// Calls the handler exactly once.
  virtual void provideThumbnailForFileRequest(const QLFileThumbnailRequest& request,
                                              const CompletionHandler& completionHandler) = 0;
};
