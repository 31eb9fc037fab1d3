#include "support/Archives.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "support/Fixtures.h"

namespace {

/// A file that is gone at the end.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::span<const uint8_t> bytes) {
    const int file = mkstemp(path_);
    const ssize_t written = write(file, bytes.data(), bytes.size());
    EXPECT_EQ(written, static_cast<ssize_t>(bytes.size()));
    close(file);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { unlink(path_); }
  const char* path() const { return path_; }

 private:
  char path_[32] = "/tmp/paint-test-XXXXXX";
};

}  // namespace

std::shared_ptr<NSData> madeArchive(const std::string& name) {
  return NSData::dataWithVector(
      readFile(std::string(PAINT_BINARY_DIR) + "/fixtures/archives/" + name + ".plist"));
}

std::string outputOf(const std::string& command, std::span<const uint8_t> bytes) {
  const TemporaryFile file(bytes);
  std::string line = command;
  line.replace(line.find("{}"), 2, file.path());
  FILE* pipe = popen(line.c_str(), "r");
  std::string output;
  std::array<char, 4096> block{};
  for (size_t got = 0; (got = fread(block.data(), 1, block.size(), pipe)) > 0;) {
    output.append(block.data(), got);
  }
  EXPECT_EQ(pclose(pipe), 0) << line;
  return output;
}

std::string describeArchive(std::span<const uint8_t> archive) {
  return outputOf(std::string(PAINT_PYTHON) + " " + sourcePath("tests/support/keyed_archive.py") +
                      " --describe {}",
                  archive);
}

const NSClass Sample::kClass{"Sample", &NSObject::kClass, NSAllocate<Sample>};
std::function<bool(Sample&, NSCoder&)> Sample::decode;
std::function<void(NSCoder&)> Sample::encode;

SampleCoding::SampleCoding(std::function<bool(Sample&, NSCoder&)> decode,
                           std::function<void(NSCoder&)> encode) {
  static constexpr const NSClass* kClasses[] = {&Sample::kClass};
  NSRegisterClasses(kClasses);
  Sample::decode = std::move(decode);
  Sample::encode = std::move(encode);
}

SampleCoding::~SampleCoding() {
  Sample::decode = nullptr;
  Sample::encode = nullptr;
}
