#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/PaintExport.h"

/// A URL: its own text, and perhaps the URL that a relative text is seen from.
class PAINT_API NSURL : public NSObject {
 public:
  static const NSClass kClass;

  NSURL() = default;
  explicit NSURL(std::string text, std::shared_ptr<const NSURL> base = nullptr)
      : relative_(std::move(text)), base_(std::move(base)) {}

  static std::shared_ptr<NSURL> URLWithString(std::string_view text);
  /// The file URL of an absolute path, or of a path seen from the working directory. Bytes that
  /// a URL cannot hold are percent-encoded, so that any file name survives.
  static std::shared_ptr<NSURL> fileURLWithPath(std::string_view path);

  const std::shared_ptr<const NSURL>& baseURL() const { return base_; }
  /// The text with its base in front when it has no scheme of its own (a base's last path
  /// component is replaced).
  std::string absoluteString() const;
  /// True for the scheme "file" with no host or the host "localhost".
  bool isFileURL() const;
  /// The path with percent escapes decoded; without query and fragment.
  std::string path() const;

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::string relative_;
  std::shared_ptr<const NSURL> base_;
};
