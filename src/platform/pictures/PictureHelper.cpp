#include "platform/pictures/PictureHelper.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <utility>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/machine/SharedMemory.h"
#include "platform/pictures/PictureSession.h"

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// For what takes no time, on a machine that is very busy.
constexpr milliseconds kAnswerTime{10000};

struct ToldPath {
  std::mutex mutex;
  std::string path;
};

ToldPath& toldPath() {
  static ToldPath told;
  return told;
}

std::string helperPath() {
  ToldPath& told = toldPath();
  const std::lock_guard lock(told.mutex);
  return told.path.empty() ? foundPictureHelper() : told.path;
}

PictureFailure failureOf(HelperResult result) {
  switch (result) {
    case HelperResult::done:
      return PictureFailure::none;
    case HelperResult::unreadable:
      return PictureFailure::unreadable;
    case HelperResult::tooMuchTime:
      return PictureFailure::tooMuchTime;
    case HelperResult::tooMuchMemory:
      return PictureFailure::tooMuchMemory;
    case HelperResult::stuck:
      return PictureFailure::stuck;
    default:
      return PictureFailure::nonsense;
  }
}

bool isSound(const NSSize& size) {
  return std::isfinite(size.width) && std::isfinite(size.height) && size.width >= 0 &&
         size.height >= 0;
}

size_t bytesOfPixels(int64_t width, int64_t height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
}

/// The connection of a process, which is made anew in one that forked: the helper and perhaps a
/// locked mutex are its parent's.
struct Connection {
  const pid_t owner = getpid();
  PictureHelper* helper = nullptr;
};

}  // namespace

void setPictureHelperPath(const std::string& path) {
  ToldPath& told = toldPath();
  const std::lock_guard lock(told.mutex);
  told.path = path;
}

HelperPicture::HelperPicture(PictureKind pictureKind, std::shared_ptr<const NSData> pictureData)
    : kind(pictureKind), data(std::move(pictureData)), number([] {
        static std::atomic<uint64_t> last{0};
        return ++last;
      }()) {}

PictureHelper& PictureHelper::shared() {
  static std::atomic<Connection*> current{nullptr};
  Connection* connection = current.load();
  if (connection != nullptr && connection->owner == getpid()) return *connection->helper;
  // Kept for the rest of the process, and so is what a parent left.
  auto made = std::make_unique<Connection>();
  std::unique_ptr<PictureHelper> helper(new PictureHelper);
  made->helper = helper.get();
  if (current.compare_exchange_strong(connection, made.get())) {
    std::ignore = helper.release();
    return *made.release()->helper;
  }
  return *connection->helper;
}

PictureFailure PictureHelper::lost(PictureFailure failure) {
  process_ = HelperProcess();
  isStarted_ = false;
  inbox_ = MemoryMapping();
  outbox_ = MemoryMapping();
  openNumber_ = 0;
  return failure;
}

PictureFailure PictureHelper::ensureStarted() {
  if (isStarted_ && process_.isRunning()) return PictureFailure::none;
  PictureSession* const session = PictureSession::current();
  if (session != nullptr && session->helperFailure() != PictureFailure::none) {
    return session->helperFailure();
  }
  lost(PictureFailure::none);
  const std::string path = helperPath();
  const PictureFailure failure =
      path.empty() ? PictureFailure::helperMissing : HelperProcess::start(path, &process_);
  isStarted_ = failure == PictureFailure::none;
  if (!isStarted_) {
    lost(failure);
    if (session != nullptr) session->setHelperFailure(failure);
  }
  return failure;
}

template <class Exchange>
PictureFailure PictureHelper::withHelper(const Exchange& exchange) {
  const std::lock_guard lock(mutex_);
  try {
    for (int attempt = 0; attempt < 2; ++attempt) {
      const PictureFailure failure = ensureStarted();
      if (failure != PictureFailure::none) return failure;
      if (const Outcome outcome = exchange()) return *outcome;
      lost(PictureFailure::crashed);
    }
  } catch (...) {
    // In the middle of an exchange.
    lost(PictureFailure::none);
    throw;
  }
  return PictureFailure::crashed;
}

bool PictureHelper::hasSystemSVG() {
  const auto asked = [this]() -> Outcome {
    if (hasSystemSVG_) return PictureFailure::none;
    HelperReply reply;
    const Deadline deadline = steady_clock::now() + kAnswerTime;
    const bool answered =
        process_.channel().send(HelperRequest{.order = HelperOrder::findSystemSVG}) &&
        process_.channel().receive(&reply, nullptr, deadline) == ChannelResult::done;
    if (!answered) return std::nullopt;
    if (failureOf(reply.result) == PictureFailure::tooMuchMemory) {
      return lost(PictureFailure::tooMuchMemory);
    }
    hasSystemSVG_ = reply.result == HelperResult::done;
    return PictureFailure::none;
  };
  const PictureFailure failure = withHelper(asked);
  // Without the memory to look for it, the picture is to fail for that and not to look otherwise.
  if (failure == PictureFailure::tooMuchMemory) return true;
  return failure == PictureFailure::none && *hasSystemSVG_;
}

PictureHelper::Outcome PictureHelper::makeInbox(size_t bytes) {
  inbox_ = MemoryMapping();
  HelperRequest request{.order = HelperOrder::makeInbox};
  request.dataBytes = bytes;
  HelperReply reply;
  FileDescriptor attached;
  if (!process_.channel().send(request)) return std::nullopt;
  const ChannelResult result =
      process_.channel().receive(&reply, &attached, steady_clock::now() + kAnswerTime);
  if (result == ChannelResult::malformed) return lost(PictureFailure::nonsense);
  if (result != ChannelResult::done) return std::nullopt;
  if (reply.result == HelperResult::tooMuchMemory) return lost(PictureFailure::tooMuchMemory);
  const SharedMemory memory(std::move(attached));
  if (reply.result != HelperResult::done || !memory.hasFixedSize(boxBytes(bytes))) {
    return lost(PictureFailure::nonsense);
  }
  inbox_ = memory.map(boxBytes(bytes), MapAccess::write);
  return PictureFailure::none;
}

PictureHelper::Outcome PictureHelper::handOver(const NSData& data) {
  const auto bytes = data.bytes();
  openNumber_ = 0;
  const size_t room = inbox_.bytes().size();
  const bool isTooLarge = room > kMostBoxBytes && room > boxBytes(bytes.size());
  if (room < bytes.size() || isTooLarge) {
    const Outcome made = makeInbox(bytes.size());
    if (made != PictureFailure::none) return made;
  }
  std::memcpy(inbox_.bytes().data(), bytes.data(), bytes.size());
  return PictureFailure::none;
}

PictureHelper::Outcome PictureHelper::receive(const PictureLimits& limits, HelperReply* reply,
                                              FileDescriptor* attached) {
  // The helper ends by itself when its time is over; this is for one that does not.
  constexpr milliseconds kGrace{1000};
  const Deadline deadline = steady_clock::now() + limits.wallTime + kGrace;
  switch (process_.channel().receive(reply, attached, deadline)) {
    case ChannelResult::done:
      break;
    case ChannelResult::closed:
      return PictureFailure::crashed;
    case ChannelResult::late:
      return PictureFailure::stuck;
    case ChannelResult::malformed:
      return PictureFailure::nonsense;
  }
  if (reply->magic != kHelperMagic || !isSound(reply->size)) return PictureFailure::nonsense;
  if (reply->result == HelperResult::retired) return std::nullopt;
  return failureOf(reply->result);
}

PictureHelper::Outcome PictureHelper::ask(const HelperPicture& picture, HelperRequest request,
                                          FileDescriptor* attached) {
  PictureSession* const session = PictureSession::current();
  const PictureLimits limits = session != nullptr ? session->limits() : PictureLimits();
  microseconds time = limits.processorTime;
  if (session != nullptr) time = std::min(time, session->timeLeft());
  if (time <= microseconds(0)) return PictureFailure::budgetSpent;
  if (openNumber_ != picture.number) {
    const Outcome handed = handOver(*picture.data);
    if (handed != PictureFailure::none) return handed;
    request.dataBytes = picture.data->length();
  }
  request.kind = picture.kind;
  request.processorMilliseconds =
      static_cast<uint32_t>(std::chrono::ceil<milliseconds>(time).count());
  request.wallMilliseconds = static_cast<uint32_t>(limits.wallTime.count());
  request.memoryBytes = limits.memoryBytes;
  HelperReply reply;
  const auto start = steady_clock::now();
  if (!process_.channel().send(request)) return std::nullopt;
  const Outcome outcome = receive(limits, &reply, attached);
  if (!outcome) return outcome;
  // A picture that is none leaves the helper as it was; what else fails has ended it, and nobody
  // says how much processor time that took.
  const bool goesOn = outcome == PictureFailure::none || outcome == PictureFailure::unreadable;
  const auto elapsed = std::chrono::ceil<microseconds>(steady_clock::now() - start);
  if (session != nullptr) {
    session->spend(goesOn ? std::min(microseconds(reply.processorMicroseconds), elapsed) : elapsed);
  }
  if (!goesOn) return lost(*outcome);
  if (outcome == PictureFailure::unreadable) return outcome;
  openNumber_ = picture.number;
  openSize_ = reply.size;
  return outcome;
}

bool PictureHelper::takeOutbox(size_t bytes, const SharedMemory& memory) {
  if (!memory.hasFixedSize(boxBytes(bytes))) return false;
  outbox_ = MemoryMapping();
  outbox_ = memory.map(boxBytes(bytes), MapAccess::read);
  return true;
}

std::shared_ptr<NSBitmapImageRep> PictureHelper::takePixels(int64_t width, int64_t height,
                                                            const SharedMemory& memory) {
  const size_t bytes = bytesOfPixels(width, height);
  if (bytes > kMostBoxBytes) {
    if (!memory.isSealed(bytes)) return nullptr;
    ZeroedMemory pixels(memory.map(bytes, MapAccess::privateCopy).release(), bytes);
    return std::make_shared<NSBitmapImageRep>(PixelBuffer(width, height, std::move(pixels)));
  }
  if (outbox_.bytes().size() < bytes) return nullptr;
  auto bitmap = NSBitmapImageRep::create(width, height);
  std::memcpy(bitmap->writableRows(0, height), outbox_.bytes().data(), bytes);
  return bitmap;
}

PictureFailure PictureHelper::measure(const HelperPicture& picture, NSSize* size) {
  return withHelper([&]() -> Outcome {
    Outcome outcome = PictureFailure::none;
    if (openNumber_ != picture.number) {
      outcome = ask(picture, {.order = HelperOrder::measure}, nullptr);
    }
    if (outcome == PictureFailure::none) *size = openSize_;
    return outcome;
  });
}

PictureFailure PictureHelper::draw(const HelperPicture& picture, const CGAffineTransform& transform,
                                   int64_t width, int64_t height,
                                   std::shared_ptr<NSBitmapImageRep>* bitmap, NSSize* naturalSize) {
  if (width < 1 || height < 1) return PictureFailure::unreadable;
  if (!PixelBuffer::canHold(width, height)) return PictureFailure::tooLarge;
  return withHelper([&]() -> Outcome {
    HelperRequest request{.order = HelperOrder::draw};
    request.transform = transform;
    request.width = width;
    request.height = height;
    FileDescriptor attached;
    const Outcome outcome = ask(picture, request, &attached);
    const SharedMemory memory(std::move(attached));
    const size_t bytes = bytesOfPixels(width, height);
    // A new outbox also comes with a picture that turns out to be none.
    if (isStarted_ && memory.isOpen() && bytes <= kMostBoxBytes && !takeOutbox(bytes, memory)) {
      return lost(PictureFailure::nonsense);
    }
    if (outcome != PictureFailure::none) return outcome;
    if (naturalSize != nullptr) *naturalSize = openSize_;
    *bitmap = takePixels(width, height, memory);
    return *bitmap != nullptr ? PictureFailure::none : lost(PictureFailure::nonsense);
  });
}
