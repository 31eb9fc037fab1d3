#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "platform/foundation/values/NSData.h"
#include "platform/pictures/PictureHelper.h"
#include "platform/pictures/PictureSession.h"
#include "support/Bitmaps.h"

namespace {

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

std::shared_ptr<NSData> dataOf(std::string_view text) {
  return NSData::dataWithBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

// Eight by eight, red above and blue below.
const HelperPicture& flag() {
  static const HelperPicture picture(
      PictureKind::systemSVG, dataOf("<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'>"
                                     "<rect width='8' height='4' fill='red'/>"
                                     "<rect y='4' width='8' height='4' fill='blue'/></svg>"));
  return picture;
}

const HelperPicture& arc() {
  static const HelperPicture picture(
      PictureKind::builtInSVG,
      dataOf("<svg width='9' height='9'><path d='M0 0A1 2 0 0 0 5 5'/></svg>"));
  return picture;
}

PictureFailure drawn(const HelperPicture& picture, int64_t side,
                     std::shared_ptr<NSBitmapImageRep>* bitmap) {
  const auto length = static_cast<CGFloat>(side);
  return PictureHelper::shared().draw(picture, CGAffineTransformMakeScale(length, length), side,
                                      side, bitmap);
}

bool drawsFlag(int64_t side) {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  return drawn(flag(), side, &bitmap) == PictureFailure::none &&
         bitmap->size() == NSMakeSize(static_cast<CGFloat>(side), static_cast<CGFloat>(side)) &&
         pixelAt(*bitmap, 0, 0) == kRed && pixelAt(*bitmap, side - 1, side - 1) == kBlue;
}

PictureFailure failureOfFlag() {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  return drawn(flag(), 8, &bitmap);
}

/// Whether `work` is true in a copy of this process.
bool inFork(const std::function<bool()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

size_t openFiles() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    ++count;
  }
  return count;
}

/// Has pictures drawn by another program for the length of a scope. A helper that runs goes on; it
/// is ended by a picture that takes no time.
class HelperAt {
 public:
  explicit HelperAt(const std::string& path) {
    endHelper();
    setPictureHelperPath(path);
  }
  HelperAt(const HelperAt&) = delete;
  HelperAt& operator=(const HelperAt&) = delete;
  ~HelperAt() { setPictureHelperPath(""); }

 private:
  static void endHelper() {
    std::shared_ptr<NSBitmapImageRep> bitmap;
    drawn(arc(), 8, &bitmap);
  }
};

}  // namespace

TEST(PictureHelper, DrawsSmallAndLargePictures) {
  // In the outbox, in a larger one, and in memory of their own.
  for (const int64_t side : {8, 2, 200, 900, 1200, 8}) EXPECT_TRUE(drawsFlag(side)) << side;
  std::shared_ptr<NSBitmapImageRep> bitmap;
  EXPECT_EQ(drawn(flag(), 0, &bitmap), PictureFailure::unreadable);
  EXPECT_EQ(drawn(flag(), 16000, &bitmap), PictureFailure::tooLarge);
  NSSize size;
  EXPECT_EQ(PictureHelper::shared().measure(flag(), &size), PictureFailure::none);
  EXPECT_EQ(size, NSMakeSize(8, 8));
  const HelperPicture none(PictureKind::systemSVG, dataOf("nothing"));
  EXPECT_EQ(PictureHelper::shared().measure(none, &size), PictureFailure::unreadable);
}

TEST(PictureHelper, LargeDataAndSmallDataAfterIt) {
  const std::string start = "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'>";
  const HelperPicture large(
      PictureKind::systemSVG,
      dataOf(start + std::string(6000000, ' ') + "<rect width='8' height='8' fill='red'/></svg>"));
  std::shared_ptr<NSBitmapImageRep> bitmap;
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(drawn(large, 8, &bitmap), PictureFailure::none);
    EXPECT_EQ(pixelAt(*bitmap, 7, 7), kRed);
    EXPECT_TRUE(drawsFlag(8));
  }
}

// One picture that ends the helper costs no other.
TEST(PictureHelper, OthersAreDrawnAfterOneThatCrashed) {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(drawn(arc(), 8, &bitmap), PictureFailure::crashed);
    EXPECT_TRUE(drawsFlag(8));
  }
  std::vector<std::thread> threads;
  std::array<int, 4> wrong{};
  for (size_t i = 0; i < wrong.size(); ++i) {
    threads.emplace_back([&wrong, i] {
      for (int round = 0; round < 5; ++round) {
        std::shared_ptr<NSBitmapImageRep> own;
        const bool isRight =
            i == 0 ? drawn(arc(), 8, &own) == PictureFailure::crashed : drawsFlag(8);
        wrong[i] += isRight ? 0 : 1;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, (std::array<int, 4>{}));
}

TEST(PictureHelper, HelpersThatDoWrong) {
  const struct {
    const char* way;
    PictureFailure failure;
  } kCases[] = {{"old version", PictureFailure::helperOutdated},
                {"short greeting", PictureFailure::helperOutdated},
                {"no greeting", PictureFailure::helperNotStarted},
                {"dies at data", PictureFailure::crashed},
                {"dies at picture", PictureFailure::crashed},
                {"says nonsense", PictureFailure::nonsense},
                {"answers too much", PictureFailure::nonsense},
                {"says nothing", PictureFailure::stuck},
                {"infinite size", PictureFailure::nonsense},
                {"memory that shrinks", PictureFailure::nonsense},
                {"too large a picture", PictureFailure::nonsense},
                {"unsealed picture", PictureFailure::nonsense},
                {"no picture", PictureFailure::nonsense},
                {"unknown result", PictureFailure::nonsense}};
  PictureSession session;
  session.setLimits({.wallTime = std::chrono::milliseconds(200)});
  const PictureSessionScope scope(session);
  for (const auto& [way, failure] : kCases) {
    session.begin();
    const HelperAt helper(std::string(PAINT_BINARY_DIR "/fixtures/helpers/") + way);
    std::shared_ptr<NSBitmapImageRep> bitmap;
    EXPECT_EQ(drawn(flag(), 1200, &bitmap), failure) << way;
    // The next picture gets another helper.
    setPictureHelperPath("");
    session.begin();
    session.setLimits({});
    EXPECT_TRUE(drawsFlag(8)) << way;
    session.setLimits({.wallTime = std::chrono::milliseconds(200)});
  }
}

TEST(PictureHelper, ProgramsThatAreNone) {
  const struct {
    const char* path;
    PictureFailure failure;
  } kCases[] = {{"/nonexistent/paint-picture-helper", PictureFailure::helperMissing},
                {"/etc/passwd", PictureFailure::helperNotStarted},
                {"/", PictureFailure::helperNotStarted},
                {"/bin/true", PictureFailure::helperNotStarted}};
  for (const auto& [path, failure] : kCases) {
    const HelperAt helper(path);
    EXPECT_EQ(failureOfFlag(), failure) << path;
    EXPECT_FALSE(PictureHelper::shared().hasSystemSVG() && failure != PictureFailure::none) << path;
  }
  EXPECT_TRUE(drawsFlag(8));
}

// A composition does not wait again for what did not come.
TEST(PictureHelper, AMissingHelperIsRememberedForACompositon) {
  PictureSession session;
  const PictureSessionScope scope(session);
  {
    const HelperAt helper("/nonexistent");
    EXPECT_EQ(failureOfFlag(), PictureFailure::helperMissing);
  }
  EXPECT_EQ(failureOfFlag(), PictureFailure::helperMissing);
  session.begin();
  EXPECT_EQ(failureOfFlag(), PictureFailure::none);
}

TEST(PictureHelper, PicturesOfACompositionShareItsTime) {
  PictureSession session;
  session.setLimits({.compositionTime = std::chrono::milliseconds(100)});
  const PictureSessionScope scope(session);
  EXPECT_TRUE(drawsFlag(8));
  session.spend(std::chrono::milliseconds(100));
  EXPECT_EQ(failureOfFlag(), PictureFailure::budgetSpent);
  session.begin();
  EXPECT_TRUE(drawsFlag(8));
}

// Nobody says what they took.
TEST(PictureHelper, PicturesThatCrashSpendTimeToo) {
  PictureSession session;
  session.setLimits({.compositionTime = std::chrono::milliseconds(1)});
  const PictureSessionScope scope(session);
  std::shared_ptr<NSBitmapImageRep> bitmap;
  PictureFailure failure = PictureFailure::none;
  int drawnUntilThen = 0;
  do {
    failure = drawn(arc(), 8, &bitmap);
    ++drawnUntilThen;
  } while (failure == PictureFailure::crashed && drawnUntilThen < 1000);
  EXPECT_EQ(failure, PictureFailure::budgetSpent);
}

// Its outbox is there for the next one.
TEST(PictureHelper, AfterAPictureThatIsNone) {
  const HelperPicture none(PictureKind::systemSVG, dataOf("nothing"));
  for (const int64_t first : {8, 200, 1200}) {
    for (const int64_t side : {8, 200, 900, 1200}) {
      std::shared_ptr<NSBitmapImageRep> bitmap;
      drawn(arc(), 8, &bitmap);  // a new helper, without boxes
      EXPECT_TRUE(drawsFlag(first)) << first;
      EXPECT_EQ(drawn(none, side, &bitmap), PictureFailure::unreadable);
      EXPECT_TRUE(drawsFlag(side)) << first << " " << side;
    }
  }
}

TEST(PictureHelper, AfterFork) {
  ASSERT_TRUE(drawsFlag(8));
  EXPECT_TRUE(inFork([] { return drawsFlag(8) && drawsFlag(1200); }));
  EXPECT_TRUE(drawsFlag(8));
}

TEST(PictureHelper, LeavesNoChildAndNoOpenFile) {
  ASSERT_TRUE(drawsFlag(1200));
  const size_t before = openFiles();
  std::shared_ptr<NSBitmapImageRep> bitmap;
  for (int round = 0; round < 3; ++round) {
    drawn(arc(), 8, &bitmap);
    ASSERT_TRUE(drawsFlag(1200));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  }
  EXPECT_EQ(openFiles(), before);
}

// What the host limits, ignores or closes for itself is not the helper's.
TEST(PictureHelper, HostsOfManyKinds) {
  const auto limit = [](auto resource, rlim_t value) {
    rlimit limits{};
    getrlimit(resource, &limits);
    limits.rlim_cur = value;
    return setrlimit(resource, &limits) == 0;
  };
  const struct {
    const char* name;
    std::function<bool()> become;
  } kHosts[] = {{"writes no files", [&] { return limit(RLIMIT_FSIZE, 1); }},
                {"opens few files", [&] { return limit(RLIMIT_NOFILE, 12); }},
                {"reaps all children", [] { return std::signal(SIGCHLD, SIG_IGN) != SIG_ERR; }},
                {"ignores signals",
                 [] {
                   for (const int number : {SIGPROF, SIGALRM, SIGABRT, SIGPIPE, SIGXFSZ}) {
                     std::signal(number, SIG_IGN);
                   }
                   sigset_t all;
                   sigfillset(&all);
                   return sigprocmask(SIG_BLOCK, &all, nullptr) == 0;
                 }},
                {"has no streams", [] { return close(0) == 0 && close(1) == 0 && close(2) == 0; }},
                {"has a foreign environment", [] {
                   setenv("FONTCONFIG_FILE", "/nonexistent", 1);
                   setenv("PATH", "/nonexistent", 1);
                   return chdir("/") == 0;
                 }}};
  for (const auto& [name, become] : kHosts) {
    EXPECT_TRUE(inFork([&become] {
      if (!become()) return false;
      std::shared_ptr<NSBitmapImageRep> bitmap;
      return drawsFlag(8) && drawsFlag(1200) &&
             drawn(arc(), 8, &bitmap) == PictureFailure::crashed && drawsFlag(8);
    })) << name;
  }
}
