#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"

/// An archive that make_archives.py left in the build folder, for example "good/graph".
std::shared_ptr<NSData> madeArchive(const std::string& name);

/// Lists an archive with the kinds that it stores, as the independent reader sees it: one line for
/// the top level, one for each object.
std::string describeArchive(std::span<const uint8_t> archive);

/// What a command prints, given the bytes in a file whose name replaces "{}" in the command. Fails
/// the running test when the command fails.
std::string outputOf(const std::string& command, std::span<const uint8_t> bytes);

/// An archivable object whose coding is whatever a test sets for the time of that test.
class Sample : public NSObject {
 public:
  static const NSClass kClass;
  static std::function<bool(Sample&, NSCoder&)> decode;
  static std::function<void(NSCoder&)> encode;

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override { return !decode || decode(*this, coder); }
  void encodeWithCoder(NSCoder& coder) const override {
    if (encode) encode(coder);
  }
};

/// Sets what samples do and undoes it at the end; makes the class known.
class SampleCoding {
 public:
  explicit SampleCoding(std::function<bool(Sample&, NSCoder&)> decode,
                        std::function<void(NSCoder&)> encode = nullptr);
  SampleCoding(const SampleCoding&) = delete;
  SampleCoding& operator=(const SampleCoding&) = delete;
  ~SampleCoding();
};
