// The picture helper as the engine sees it, in a process of its own without a sandbox.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <string>

#include "helper/HelperServer.h"
#include "helper/PictureGuard.h"
#include "platform/machine/AddressSanitizer.h"
#include "platform/machine/SharedMemory.h"
#include "platform/pictures/HelperProtocol.h"

namespace {

#ifdef PAINT_ADDRESS_SANITIZER
constexpr bool kHasMemoryLimit = false;
#else
constexpr bool kHasMemoryLimit = true;
#endif

const std::string kRedPicture =
    "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='2'>"
    "<rect width='4' height='2' fill='red'/></svg>";

/// A picture that takes seconds.
std::string slowPicture() {
  std::string text = "<svg xmlns='http://www.w3.org/2000/svg' width='4' height='2'>";
  for (int i = 0; i < 300000; ++i) text += "<circle r='5' fill='red' opacity='.5'/>";
  return text + "</svg>";
}

class HelperServer : public testing::Test {
 protected:
  HelperServer() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()), 0);
    child_ = fork();
    if (child_ == 0) {
      close(ends[0]);
      const HelperChannel channel{FileDescriptor(ends[1])};
      prepareGuards(channel);
      watchChannel();
      serveRequests(channel);
      _exit(0);
    }
    close(ends[1]);
    channel_ = HelperChannel(FileDescriptor(ends[0]));
  }
  ~HelperServer() override {
    channel_ = HelperChannel();
    int status = 0;
    // Whatever it did, it ends with the channel.
    EXPECT_EQ(waitpid(child_, &status, 0), child_);
  }

  ChannelResult ask(const HelperRequest& request, HelperReply* reply, FileDescriptor* attached) {
    EXPECT_TRUE(channel_.send(request));
    return channel_.receive(reply, attached,
                            std::chrono::steady_clock::now() + std::chrono::seconds(60));
  }

  /// Puts a text into a new inbox.
  void handOver(const std::string& text) {
    HelperRequest request{.order = HelperOrder::makeInbox};
    request.dataBytes = text.size();
    HelperReply reply;
    FileDescriptor attached;
    ASSERT_EQ(ask(request, &reply, &attached), ChannelResult::done);
    const SharedMemory inbox(std::move(attached));
    ASSERT_TRUE(inbox.hasFixedSize(boxBytes(text.size())));
    std::memcpy(inbox.map(text.size(), MapAccess::write).bytes().data(), text.data(), text.size());
  }

  /// What is said of a slow picture under the limits that `limit` sets.
  void expectEnd(const std::function<void(HelperRequest&)>& limit, HelperResult end) {
    const std::string slow = slowPicture();
    handOver(slow);
    HelperRequest limited = request(HelperOrder::draw, slow.size());
    limit(limited);
    HelperReply reply;
    ASSERT_EQ(ask(limited, &reply, nullptr), ChannelResult::done);
    EXPECT_EQ(reply.result, end);
  }

  static HelperRequest request(HelperOrder order, size_t dataBytes = 0) {
    HelperRequest request{.order = order, .kind = PictureKind::builtInSVG};
    request.processorMilliseconds = 60000;
    request.wallMilliseconds = 60000;
    request.memoryBytes = uint64_t{1} << 30;
    request.dataBytes = dataBytes;
    request.width = 4;
    request.height = 2;
    request.transform = CGAffineTransformMakeScale(4, 2);
    return request;
  }

  pid_t child_ = 0;
  HelperChannel channel_;
};

}  // namespace

TEST_F(HelperServer, MeasuresAndDrawsOnePictureSeveralTimes) {
  handOver(kRedPicture);
  HelperReply reply;
  ASSERT_EQ(ask(request(HelperOrder::measure, kRedPicture.size()), &reply, nullptr),
            ChannelResult::done);
  EXPECT_EQ(reply.result, HelperResult::done);
  EXPECT_EQ(reply.size, NSMakeSize(4, 2));
  FileDescriptor attached;
  ASSERT_EQ(ask(request(HelperOrder::draw), &reply, &attached), ChannelResult::done);
  const SharedMemory outbox(std::move(attached));
  ASSERT_TRUE(outbox.hasFixedSize(boxBytes(32)));
  const MemoryMapping pixels = outbox.map(boxBytes(32), MapAccess::read);
  const std::array<uint8_t, 4> red{255, 0, 0, 255};
  for (size_t i = 0; i < 8; ++i) {
    EXPECT_TRUE(std::equal(red.begin(), red.end(), pixels.bytes().data() + i * 4)) << i;
  }
  // The outbox stays, and the second picture starts with nothing in it.
  HelperRequest moved = request(HelperOrder::draw);
  moved.transform.tx = 2;
  FileDescriptor none;
  ASSERT_EQ(ask(moved, &reply, &none), ChannelResult::done);
  EXPECT_FALSE(none.isOpen());
  EXPECT_EQ(pixels.bytes()[4], 0);
  EXPECT_EQ(pixels.bytes()[8], 255);
}

TEST_F(HelperServer, LargePicturesHaveSealedMemoryOfTheirOwn) {
  handOver(kRedPicture);
  HelperRequest large = request(HelperOrder::draw, kRedPicture.size());
  large.width = 1100;
  large.height = 1000;
  HelperReply reply;
  FileDescriptor attached;
  ASSERT_EQ(ask(large, &reply, &attached), ChannelResult::done);
  EXPECT_EQ(reply.result, HelperResult::done);
  EXPECT_TRUE(SharedMemory(std::move(attached)).isSealed(size_t{4} * 1100 * 1000));
}

TEST_F(HelperServer, EndsAtRequestsThatNoEngineSends) {
  HelperReply reply;
  EXPECT_EQ(ask(request(HelperOrder::draw), &reply, nullptr), ChannelResult::closed);
}

TEST_F(HelperServer, EndsAtDataBeyondTheInbox) {
  handOver(kRedPicture);
  HelperReply reply;
  EXPECT_EQ(ask(request(HelperOrder::measure, boxBytes(1) + 1), &reply, nullptr),
            ChannelResult::closed);
}

TEST_F(HelperServer, EndsAtPicturesOfNoSize) {
  handOver(kRedPicture);
  HelperRequest none = request(HelperOrder::draw, kRedPicture.size());
  none.width = int64_t{1} << 40;
  HelperReply reply;
  EXPECT_EQ(ask(none, &reply, nullptr), ChannelResult::closed);
}

TEST_F(HelperServer, SaysThatProcessorTimeIsUp) {
  expectEnd([](HelperRequest& hasty) { hasty.processorMilliseconds = 50; },
            HelperResult::tooMuchTime);
}

TEST_F(HelperServer, SaysThatItIsStuck) {
  expectEnd([](HelperRequest& hasty) { hasty.wallMilliseconds = 50; }, HelperResult::stuck);
}

TEST_F(HelperServer, SaysThatMemoryIsUp) {
  if (!kHasMemoryLimit) GTEST_SKIP() << "the sanitizer needs all address space";
  expectEnd([](HelperRequest& tight) { tight.memoryBytes = size_t{4} << 20; },
            HelperResult::tooMuchMemory);
}

// The destructor waits for the process.
TEST_F(HelperServer, EndsInTheMiddleOfAPictureWhenNobodyWaitsForIt) {
  const std::string slow = slowPicture();
  handOver(slow);
  ASSERT_TRUE(channel_.send(request(HelperOrder::draw, slow.size())));
}
