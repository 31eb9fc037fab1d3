#include "helper/HelperServer.h"

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <utility>

#include "helper/PictureGuard.h"
#include "helper/PictureLibraries.h"
#include "helper/PictureLibrary.h"
#include "platform/graphics/pixels/PixelBuffer.h"
#include "platform/machine/SharedMemory.h"
#include "platform/pictures/HelperProtocol.h"

namespace {

/// A host that shows pictures now and then gets a new process in some milliseconds.
constexpr std::chrono::seconds kIdleTime{60};
/// What libraries may keep from picture to picture before a new process is better.
constexpr uint64_t kKeptBytes = uint64_t{512} << 20;

HelperResult resultOf(PictureResult result) {
  switch (result) {
    case PictureResult::done:
      return HelperResult::done;
    case PictureResult::noMemory:
      return HelperResult::tooMuchMemory;
    case PictureResult::failed:
      break;
  }
  return HelperResult::unreadable;
}

/// Memory for the pixels of one picture: a part of the outbox, or memory of their own, which is
/// sealed once they are drawn.
struct PixelMemory {
  std::span<uint8_t> pixels;
  SharedMemory own;
  MemoryMapping ownMapping;
};

class Server {
 public:
  explicit Server(const HelperChannel& channel) : channel_(channel), atFirst_(mappedBytes()) {}

  /// False when there is nobody left to serve, or this process had better end.
  bool serveNext();

 private:
  /// A reply, and what goes with it.
  struct Answer {
    HelperReply reply;
    FileDescriptor attached;
  };
  /// Nothing for requests that no engine sends.
  std::optional<Answer> answer(const HelperRequest& request);
  Answer makeInbox(size_t bytes);
  bool makesSense(const HelperRequest& request) const;
  Answer measureOrDraw(const HelperRequest& request);
  HelperResult open(const HelperRequest& request);
  PixelMemory pixelMemory(size_t bytes, Answer& answer);

  const HelperChannel& channel_;
  MemoryMapping inbox_;
  std::unique_ptr<OpenedPicture> picture_;  // reads from the inbox
  MemoryMapping outbox_;
  uint64_t atFirst_;
};

bool Server::serveNext() {
  HelperRequest request;
  const Deadline deadline = std::chrono::steady_clock::now() + kIdleTime;
  if (channel_.receive(&request, nullptr, deadline) != ChannelResult::done ||
      request.magic != kHelperMagic) {
    return false;
  }
  const uint64_t before = processorMicroseconds();
  std::optional<Answer> answered;
  try {
    answered = answer(request);
  } catch (const std::bad_alloc&) {
    answered.emplace();
    answered->reply.result = HelperResult::tooMuchMemory;
  }
  if (!answered) return false;
  answered->reply.processorMicroseconds = processorMicroseconds() - before;
  const HelperResult result = answered->reply.result;
  const bool goesOn = result == HelperResult::done || result == HelperResult::no ||
                      result == HelperResult::unreadable;
  return channel_.send(answered->reply, answered->attached) && goesOn;
}

std::optional<Server::Answer> Server::answer(const HelperRequest& request) {
  switch (request.order) {
    case HelperOrder::findSystemSVG: {
      Answer found;
      const bool isThere = pictureLibrary(PictureKind::systemSVG) != nullptr;
      found.reply.result = isThere ? HelperResult::done : HelperResult::no;
      return found;
    }
    case HelperOrder::makeInbox:
      return makeInbox(request.dataBytes);
    case HelperOrder::measure:
    case HelperOrder::draw:
      if (makesSense(request)) return measureOrDraw(request);
  }
  return std::nullopt;
}

Server::Answer Server::makeInbox(size_t bytes) {
  picture_ = nullptr;
  inbox_ = MemoryMapping();
  liftMemoryLimit();
  const SharedMemory memory = SharedMemory::create(boxBytes(bytes));
  if (!memory.isOpen()) throw std::bad_alloc();
  inbox_ = memory.map(boxBytes(bytes), MapAccess::read);
  return {{}, FileDescriptor(dup(memory.descriptor().number()))};
}

bool Server::makesSense(const HelperRequest& request) const {
  const bool hasPicture =
      request.dataBytes > 0 ? request.dataBytes <= inbox_.bytes().size() : picture_ != nullptr;
  return hasPicture && (request.order == HelperOrder::measure ||
                        (request.width > 0 && request.height > 0 &&
                         PixelBuffer::canHold(request.width, request.height)));
}

PixelMemory Server::pixelMemory(size_t bytes, Answer& answer) {
  PixelMemory memory;
  if (bytes <= outbox_.bytes().size()) {
    memory.pixels = outbox_.bytes().first(bytes);
    // What a picture before it left there.
    std::fill(memory.pixels.begin(), memory.pixels.end(), uint8_t{0});
    return memory;
  }
  liftMemoryLimit();
  const bool isOwn = bytes > kMostBoxBytes;
  memory.own = SharedMemory::create(boxBytes(bytes));
  if (!memory.own.isOpen()) throw std::bad_alloc();
  MemoryMapping mapping = memory.own.map(boxBytes(bytes), MapAccess::write);
  memory.pixels = mapping.bytes().first(bytes);
  if (isOwn) {
    memory.ownMapping = std::move(mapping);
  } else {
    outbox_ = std::move(mapping);
    answer.attached = FileDescriptor(dup(std::exchange(memory.own, {}).descriptor().number()));
  }
  return memory;
}

HelperResult Server::open(const HelperRequest& request) {
  const PictureLibrary* const library = pictureLibrary(request.kind);
  if (library == nullptr) return HelperResult::unreadable;
  return resultOf(library->open(inbox_.bytes().first(request.dataBytes), &picture_));
}

Server::Answer Server::measureOrDraw(const HelperRequest& request) {
  Answer answer;
  HelperReply& reply = answer.reply;
  const bool isNew = request.dataBytes > 0;
  if (isNew) {
    picture_ = nullptr;
    if (mappedBytes() > atFirst_ + kKeptBytes + inbox_.bytes().size()) {
      reply.result = HelperResult::retired;
      return answer;
    }
    pictureLibrary(request.kind);  // loaded before the guard starts
  }
  PixelMemory memory;
  if (request.order == HelperOrder::draw) {
    memory = pixelMemory(static_cast<size_t>(request.width * request.height * 4), answer);
  }
  {
    const PictureGuard guard(
        {request.processorMilliseconds, request.wallMilliseconds, request.memoryBytes});
    if (isNew) reply.result = open(request);
    if (reply.result == HelperResult::done) reply.size = picture_->size();
    if (reply.result == HelperResult::done && request.order == HelperOrder::draw) {
      const CGAffineTransform fromOwn = CGAffineTransformConcat(
          CGAffineTransformMakeScale(1 / reply.size.width, 1 / reply.size.height),
          request.transform);
      const PixelTarget target{request.width, request.height, memory.pixels.data()};
      const bool hasSize = reply.size.width > 0 && reply.size.height > 0;
      reply.result = hasSize ? resultOf(picture_->draw(target, fromOwn)) : HelperResult::unreadable;
    }
  }
  if (memory.own.isOpen() && reply.result == HelperResult::done) {
    memory.ownMapping = MemoryMapping();
    memory.own.seal();
    answer.attached = FileDescriptor(dup(memory.own.descriptor().number()));
  }
  return answer;
}

}  // namespace

void serveRequests(const HelperChannel& channel) {
  Server server(channel);
  while (server.serveNext()) {
  }
}
