#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "platform/foundation/files/FileWriting.h"

namespace {

class FileWriting : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "writingXXXXXX";
    folder_ = mkdtemp(pattern.data());
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  static std::string contents(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  static std::error_code write(const std::string& file, const std::string& text) {
    return writeFileInPlace(file, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }

  std::string folder_;
};

/// Files may not grow beyond this many bytes.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit low{bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &low);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit old_{};
  void (*handler_)(int);
};

}  // namespace

TEST_F(FileWriting, ReplacesTheContentsOfTheSameFile) {
  EXPECT_FALSE(write(path("new"), "first, and longer"));
  const int held = open(path("new").c_str(), O_RDONLY);
  EXPECT_FALSE(write(path("new"), "second"));
  char seen[32] = {};
  EXPECT_EQ(read(held, seen, sizeof seen), 6);
  EXPECT_STREQ(seen, "second");
  close(held);
  EXPECT_FALSE(write(path("new"), ""));
  EXPECT_EQ(contents(path("new")), "");
}

TEST_F(FileWriting, FollowsLinksAlsoToNothing) {
  std::filesystem::create_symlink(path("target"), path("link"));
  EXPECT_FALSE(write(path("link"), "text"));
  EXPECT_EQ(contents(path("target")), "text");
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
}

TEST_F(FileWriting, FailuresAreAnsweredAndLeaveNothingBehind) {
  EXPECT_EQ(write(path("missing/file"), "x"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(write(folder_, "x"), std::errc::is_a_directory);
  EXPECT_EQ(write("/dev/full", "x"), std::errc::no_space_on_device);
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

// What can be known beforehand costs an old file nothing.
TEST_F(FileWriting, LimitsLeaveOldFilesAsTheyWere) {
  for (const auto writing : {writeFileInPlace, replaceFile}) {
    const std::string text(5000, 'x');
    ASSERT_FALSE(write(path("old"), "short"));
    FileSizeLimit limit(100);
    EXPECT_EQ(writing(path("old"), {reinterpret_cast<const uint8_t*>(text.data()), text.size()}),
              std::errc::file_too_large);
    EXPECT_EQ(contents(path("old")), "short");
    EXPECT_TRUE(writing(path("new"), {reinterpret_cast<const uint8_t*>(text.data()), text.size()}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1);
  }
}

TEST_F(FileWriting, NewFilesTakeThePlaceOfOldOnes) {
  const auto replace = [](const std::string& file, const std::string& text) {
    return replaceFile(file, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  };
  // Somebody who holds the old file keeps it.
  ASSERT_FALSE(replace(path("file"), "old"));
  ASSERT_EQ(chmod(path("file").c_str(), 0640), 0);
  std::ifstream held(path("file"));
  ASSERT_FALSE(replace(path("file"), "new"));
  EXPECT_EQ(contents(path("file")), "new");
  EXPECT_EQ((std::string{std::istreambuf_iterator<char>(held), {}}), "old");
  struct stat facts {};
  ASSERT_EQ(stat(path("file").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777, 0640U);
  // A link stays one; a device is written to.
  std::filesystem::create_symlink(path("file"), path("link"));
  ASSERT_FALSE(replace(path("link"), "through the link"));
  EXPECT_EQ(contents(path("file")), "through the link");
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  EXPECT_FALSE(replace("/dev/null", "gone"));
  EXPECT_EQ(replace("/dev/full", "x"), std::errc::no_space_on_device);
  EXPECT_EQ(replace(path("missing/file"), "x"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(replace(path("file") + std::string("\0.png", 5), "x"), std::errc::invalid_argument);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2);
  const mode_t old = umask(027);
  ASSERT_FALSE(replace(path("fresh"), "x"));
  umask(old);
  ASSERT_EQ(stat(path("fresh").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777, 0640U);
}
