#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/foundation/Geometry.h"
#include "platform/machine/SharedMemory.h"
#include "platform/pictures/HelperProcess.h"
#include "platform/pictures/HelperProtocol.h"
#include "platform/pictures/PictureFailure.h"

class NSBitmapImageRep;
class NSData;
struct PictureLimits;

/// Data of a picture that paint-picture-helper reads and draws. Immutable.
struct HelperPicture {
  HelperPicture(PictureKind pictureKind, std::shared_ptr<const NSData> pictureData);

  const PictureKind kind;
  const std::shared_ptr<const NSData> data;
  const uint64_t number;  ///< unlike that of any other picture of this process
};

/// The way to paint-picture-helper, one for a process. A helper is started with the first picture
/// and again when one was lost; pictures are drawn one after the other. Functions may be called
/// from any thread and throw std::bad_alloc when this process lacks memory.
class PictureHelper {
 public:
  static PictureHelper& shared();

  /// Whether the system's SVG renderer is installed; no without a helper.
  bool hasSystemSVG();

  /// The natural size: of a PDF page in points after its rotation, of an SVG in pixels. Both sides
  /// are finite, and 0 or more.
  PictureFailure measure(const HelperPicture& picture, NSSize* size);

  /// Draws onto a transparent bitmap of that many pixels. `transform` leads from the picture's own
  /// space (its natural size, y downwards from its upper edge) to pixels, rows counted from the
  /// top.
  PictureFailure draw(const HelperPicture& picture, const CGAffineTransform& transform,
                      int64_t width, int64_t height, std::shared_ptr<NSBitmapImageRep>* bitmap,
                      NSSize* naturalSize = nullptr);

  PictureHelper(const PictureHelper&) = delete;
  PictureHelper& operator=(const PictureHelper&) = delete;

 private:
  /// Nothing: the helper was lost before it had the picture.
  using Outcome = std::optional<PictureFailure>;

  PictureHelper() = default;
  PictureFailure ensureStarted();
  /// Does something with a running helper, with a second one when the first was lost beforehand.
  template <class Exchange>
  PictureFailure withHelper(const Exchange& exchange);
  /// Fills in the request's data and limits, sends it and takes the reply.
  Outcome ask(const HelperPicture& picture, HelperRequest request, FileDescriptor* attached);
  /// Copies the data into the inbox.
  Outcome handOver(const NSData& data);
  Outcome makeInbox(size_t bytes);
  Outcome receive(const PictureLimits& limits, HelperReply* reply, FileDescriptor* attached);
  /// False when that is none for a picture of that many bytes.
  bool takeOutbox(size_t bytes, const SharedMemory& memory);
  /// From the outbox or, large ones, from memory of their own. Null when they are not there.
  std::shared_ptr<NSBitmapImageRep> takePixels(int64_t width, int64_t height,
                                               const SharedMemory& memory);
  PictureFailure lost(PictureFailure failure);

  std::mutex mutex_;
  HelperProcess process_;
  bool isStarted_ = false;
  std::optional<bool> hasSystemSVG_;
  MemoryMapping inbox_;
  MemoryMapping outbox_;
  uint64_t openNumber_ = 0;  ///< of the picture that the helper holds; 0 for none
  NSSize openSize_;
};
