#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

class NSData;

/// A bitmap as the bytes of a picture file. It is decoded for those who look at it and kept as long
/// as they do: a document needs memory for the pictures that are being painted, not for all that it
/// holds. What archives name a bitmap is one of these.
class EncodedBitmap : public NSObject {
 public:
  /// The class that archives name a bitmap.
  static const NSClass kClass;

  EncodedBitmap() = default;
  explicit EncodedBitmap(std::shared_ptr<const NSData> file) { addFile(std::move(file)); }

  /// A file to be tried when none of those before it can be decoded.
  void addFile(std::shared_ptr<const NSData> file) { files_.push_back(std::move(file)); }

  /// The picture of the first file that can be decoded, by everybody who asks while somebody has
  /// it, so that it must not be changed. Null when there is none; `isTooLarge` may be null, and
  /// then takes whether one of the files is too large. Throws std::bad_alloc.
  std::shared_ptr<NSBitmapImageRep> bitmap(bool* isTooLarge = nullptr) const;

  /// Format of the file that bitmap() shows, or of the first that none can read; empty when its
  /// start is that of no format.
  const char* formatName() const;

  const NSClass& classInfo() const override { return NSBitmapImageRep::kClass; }
  /// The record holds the bitmap as a TIFF file, or as any other picture; false when it holds none.
  bool initWithCoder(NSCoder& coder) override;
  /// As the bitmap does; throws NSException (NSInvalidArchiveOperationException) when there is
  /// none.
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::vector<std::shared_ptr<const NSData>> files_;
  mutable std::weak_ptr<NSBitmapImageRep> decoded_;
};

/// What a draw's record holds of a bitmap: an archived one under the first key, a file under the
/// second, which counts where the first cannot be decoded. Null when there is neither.
std::shared_ptr<const EncodedBitmap> decodeBitmapForKeys(NSCoder& coder, std::string_view bitmapKey,
                                                         std::string_view fileKey);

/// A bitmap decoded from a file, or the one that the document drawn now remembers for it; it must
/// not be changed. Null when it cannot be decoded; `isTooLarge` is left alone or set to true.
std::shared_ptr<NSBitmapImageRep> decodedBitmap(const std::shared_ptr<const NSData>& file,
                                                bool* isTooLarge);

/// Bytes of the pixels of a bitmap.
size_t pixelBytes(const NSBitmapImageRep& bitmap);
