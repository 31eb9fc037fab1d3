#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/foundation/Limits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSURL.h"

namespace {

using Bytes = std::vector<uint8_t>;

class Folder {
 public:
  Folder() { EXPECT_NE(mkdtemp(path_), nullptr); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path_); }
  std::string operator/(const char* name) const { return std::string(path_) + "/" + name; }

 private:
  char path_[32] = "/tmp/paint-test-XXXXXX";
};

void expectFailure(const std::string& path, std::errc expected) {
  std::error_code error;
  EXPECT_EQ(NSData::dataWithContentsOfFile(path, &error), nullptr) << path;
  EXPECT_EQ(error, std::make_error_code(expected)) << path << ": " << error.message();
}

}  // namespace

TEST(NSData, ReadsFiles) {
  const Folder folder;
  const std::string path = folder / "50% gr\u00f6\u00dfer #1";
  std::ofstream(path) << "contents";
  std::error_code error = std::make_error_code(std::errc::io_error);
  const auto data = NSData::dataWithContentsOfFile(path, &error);
  ASSERT_NE(data, nullptr);
  EXPECT_FALSE(error);
  EXPECT_EQ(std::string(data->bytes().begin(), data->bytes().end()), "contents");
  EXPECT_TRUE(NSData::dataWithContentsOfURL(*NSURL::fileURLWithPath(path))->isEqual(*data));
  std::ofstream(folder / "empty");
  EXPECT_EQ(NSData::dataWithContentsOfFile(folder / "empty")->length(), 0U);
}

TEST(NSData, ReadsFIFOsToTheEnd) {
  const Folder folder;
  const std::string path = folder / "fifo";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  // More than a pipe holds, so that reading has to wait and to grow.
  Bytes sent(300000);
  for (size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<uint8_t>(i * 7);
  std::thread writer([&] {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(sent.data()),
               static_cast<std::streamsize>(sent.size()));
  });
  const auto data = NSData::dataWithContentsOfFile(path);
  writer.join();
  EXPECT_TRUE(data->isEqual(*NSData::dataWithBytes(sent)));
}

TEST(NSData, FilesThatAreNotRead) {
  const Folder folder;
  expectFailure(folder / "missing", std::errc::no_such_file_or_directory);
  expectFailure(folder / ".", std::errc::is_a_directory);
  expectFailure("/dev/zero", std::errc::not_supported);
  const std::string sparse = folder / "sparse";
  std::ofstream(sparse).put('x');
  ASSERT_EQ(truncate(sparse.c_str(), limits::kMaxFileBytes + 1), 0);
  expectFailure(sparse, std::errc::file_too_large);
  std::error_code error;
  EXPECT_EQ(NSData::dataWithContentsOfURL(NSURL("https://host/x"), &error), nullptr);
  EXPECT_EQ(error, std::make_error_code(std::errc::not_supported));
}

TEST(NSData, ViewsOutliveAndDoNotChange) {
  const auto data = std::make_shared<NSMutableData>(Bytes{1, 2, 3, 4});
  const auto view = data->subdataWithRange({1, 2});
  EXPECT_EQ(view->bytes().data(), data->bytes().data() + 1);
  data->mutableBytes()[1] = 9;
  data->appendBytes(Bytes{5});
  EXPECT_TRUE(view->isEqual(*NSData::dataWithVector({2, 3})));
  EXPECT_TRUE(data->isEqual(*NSData::dataWithVector({1, 9, 3, 4, 5})));
  // Alone again, it changes in place.
  const uint8_t* place = data->bytes().data();
  data->setLength(2);
  EXPECT_EQ(data->bytes().data(), place);
  const NSMutableData copy = *data;
  data->mutableBytes()[0] = 7;
  EXPECT_EQ(copy.bytes()[0], 1);
  EXPECT_THROW(view->subdataWithRange({1, 2}), NSException);
  EXPECT_THROW(view->subdataWithRange({3, 0}), NSException);
  EXPECT_THROW(view->subdataWithRange({1, UINT64_MAX}), NSException);
  EXPECT_EQ(view->subdataWithRange({2, 0})->length(), 0U);
}
