#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/PaintExport.h"

class NSURL;

/// Bytes with a shared owner. A picture or an archive inside a file is a view into the file's
/// bytes, which stay alive as long as anyone looks at a part of them.
class PAINT_API NSData : public NSObject {
 public:
  static const NSClass kClass;

  NSData() = default;
  /// A view of `bytes`, which live as long as `owner`.
  NSData(std::shared_ptr<const void> owner, std::span<const uint8_t> bytes)
      : owner_(std::move(owner)), bytes_(bytes) {}

  /// A copy of the bytes.
  static std::shared_ptr<NSData> dataWithBytes(std::span<const uint8_t> bytes);
  /// Takes the vector over without copying its bytes.
  static std::shared_ptr<NSData> dataWithVector(std::vector<uint8_t> bytes);

  /// The whole contents of a regular file, a FIFO or a socket, read with read(2), at most
  /// limits::kMaxFileBytes. Null when that fails; `error` then says why (is_a_directory,
  /// file_too_large, not_supported for devices, or what the system answered).
  static std::shared_ptr<NSData> dataWithContentsOfFile(const std::string& path,
                                                        std::error_code* error = nullptr);
  /// The same from where an open descriptor stands to its end. The descriptor stays open.
  static std::shared_ptr<NSData> dataWithContentsOfDescriptor(int descriptor,
                                                              std::error_code* error = nullptr);
  /// The same for a file URL; other URLs are not_supported.
  static std::shared_ptr<NSData> dataWithContentsOfURL(const NSURL& url,
                                                       std::error_code* error = nullptr);

  std::span<const uint8_t> bytes() const { return bytes_; }
  size_t length() const { return bytes_.size(); }
  /// Keeps the bytes alive and unchanged as long as it is held.
  const std::shared_ptr<const void>& owner() const { return owner_; }
  /// A view of a part of the bytes; throws NSException (NSRangeException) when it is not inside.
  std::shared_ptr<NSData> subdataWithRange(const NSRange& range) const;

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  std::shared_ptr<const void> owner_;
  std::span<const uint8_t> bytes_;
};

/// Bytes that can change. A change first makes a private copy when others look at the bytes.
class NSMutableData : public NSData {
 public:
  static const NSClass kClass;

  NSMutableData() = default;
  explicit NSMutableData(std::vector<uint8_t> bytes) { setVector(std::move(bytes)); }

  void appendBytes(std::span<const uint8_t> bytes);
  /// New bytes are zero.
  void setLength(size_t length);
  /// Takes the vector over without copying its bytes.
  void setVector(std::vector<uint8_t> bytes);
  /// Valid until the next change or until someone else takes the owner.
  std::span<uint8_t> mutableBytes();

  const NSClass& classInfo() const override { return kClass; }

 private:
  std::vector<uint8_t>& editableBuffer();

  // The vector that owner_ holds; null while the bytes are a view of something else.
  std::vector<uint8_t>* buffer_ = nullptr;
};
