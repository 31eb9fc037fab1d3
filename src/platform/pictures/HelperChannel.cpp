#include "platform/pictures/HelperChannel.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

namespace {

/// Room for the header of one descriptor.
struct ControlBuffer {
  alignas(cmsghdr) char bytes[CMSG_SPACE(sizeof(int))]{};
};

/// The first descriptor of a message; further ones are closed.
FileDescriptor descriptorIn(msghdr& header) {
  FileDescriptor first;
  const cmsghdr* const control = CMSG_FIRSTHDR(&header);
  if (control == nullptr || control->cmsg_level != SOL_SOCKET || control->cmsg_type != SCM_RIGHTS) {
    return first;
  }
  const size_t bytes = control->cmsg_len - CMSG_LEN(0);
  for (size_t place = 0; place + sizeof(int) <= bytes; place += sizeof(int)) {
    int number = -1;
    std::memcpy(&number, CMSG_DATA(control) + place, sizeof number);
    FileDescriptor descriptor(number);
    if (!first.isOpen()) first = std::move(descriptor);
  }
  return first;
}

/// For poll(2), rounded up; -1 waits for ever.
int millisecondsUntil(Deadline deadline) {
  if (!deadline) return -1;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp<int64_t>(left.count(), 0, INT_MAX));
}

}  // namespace

bool HelperChannel::isConnected() const {
  pollfd state{socket_.number(), POLLIN | POLLRDHUP, 0};
  return isOpen() && poll(&state, 1, 0) == 0;
}

bool HelperChannel::sendBytes(const void* message, size_t bytes, int attached) const {
  iovec part{const_cast<void*>(message), bytes};
  msghdr header{};
  header.msg_iov = &part;
  header.msg_iovlen = 1;
  ControlBuffer buffer;
  if (attached >= 0) {
    header.msg_control = buffer.bytes;
    header.msg_controllen = sizeof buffer.bytes;
    cmsghdr* const control = CMSG_FIRSTHDR(&header);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof attached);
    std::memcpy(CMSG_DATA(control), &attached, sizeof attached);
  }
  ssize_t sent = -1;
  do {
    sent = sendmsg(socket_.number(), &header, MSG_NOSIGNAL | MSG_DONTWAIT);
  } while (sent < 0 && errno == EINTR);
  return sent == static_cast<ssize_t>(bytes);
}

ChannelResult HelperChannel::receiveBytes(void* message, size_t bytes, FileDescriptor* attached,
                                          Deadline deadline) const {
  pollfd state{socket_.number(), POLLIN, 0};
  int ready = -1;
  do {
    ready = poll(&state, 1, millisecondsUntil(deadline));
  } while (ready < 0 && errno == EINTR);
  if (ready == 0) return ChannelResult::late;
  iovec part{message, bytes};
  ControlBuffer buffer;
  msghdr header{};
  header.msg_iov = &part;
  header.msg_iovlen = 1;
  header.msg_control = buffer.bytes;
  header.msg_controllen = sizeof buffer.bytes;
  const ssize_t received =
      ready < 0 ? -1 : recvmsg(socket_.number(), &header, MSG_CMSG_CLOEXEC | MSG_DONTWAIT);
  if (received <= 0) return ChannelResult::closed;
  FileDescriptor descriptor = descriptorIn(header);
  if (attached != nullptr) *attached = std::move(descriptor);
  const bool whole =
      received == static_cast<ssize_t>(bytes) && (header.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
  return whole ? ChannelResult::done : ChannelResult::malformed;
}
