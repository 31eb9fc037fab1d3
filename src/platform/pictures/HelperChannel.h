#pragma once

#include <chrono>
#include <optional>

#include "platform/machine/FileDescriptor.h"

/// When to stop waiting; never without a value.
using Deadline = std::optional<std::chrono::steady_clock::time_point>;

enum class ChannelResult : uint8_t { done, closed, late, malformed };

/// One end of the socket between the engine and the picture helper. Messages are structures that
/// can be copied byte by byte.
class HelperChannel {
 public:
  HelperChannel() = default;
  explicit HelperChannel(FileDescriptor socket) : socket_(std::move(socket)) {}

  bool isOpen() const { return socket_.isOpen(); }
  const FileDescriptor& socket() const { return socket_; }
  /// Whether the other end is still there.
  bool isConnected() const;

  /// Sends a message, with a copy of `attached` when that is open. Does not wait: a message always
  /// fits, because each end waits for the other's answer.
  template <class Message>
  bool send(const Message& message, const FileDescriptor& attached = {}) const {
    return sendBytes(&message, sizeof message, attached.number());
  }
  /// Takes the next message; `attached` may be null. A message of another length is malformed.
  template <class Message>
  ChannelResult receive(Message* message, FileDescriptor* attached, Deadline deadline) const {
    return receiveBytes(message, sizeof *message, attached, deadline);
  }

 private:
  bool sendBytes(const void* message, size_t bytes, int attached) const;
  ChannelResult receiveBytes(void* message, size_t bytes, FileDescriptor* attached,
                             Deadline deadline) const;

  FileDescriptor socket_;
};
