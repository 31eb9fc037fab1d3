#pragma once

#include <string>

#include "platform/pictures/HelperChannel.h"
#include "platform/pictures/PictureFailure.h"

/// A running paint-picture-helper. It is nobody's child, so that hosts that reap their children, or
/// wait for all of them, never meet it; it ends when this does.
class HelperProcess {
 public:
  HelperProcess() = default;
  HelperProcess(HelperProcess&&) = default;
  HelperProcess& operator=(HelperProcess&&) = default;
  ~HelperProcess();

  /// Starts the program at `path` and waits for its greeting. Anything but `none` says why there is
  /// none. Throws std::bad_alloc when there is no memory for it.
  static PictureFailure start(const std::string& path, HelperProcess* process);

  bool isRunning() const { return channel_.isConnected(); }
  const HelperChannel& channel() const { return channel_; }

 private:
  HelperChannel channel_;
  FileDescriptor process_;  ///< a process descriptor; not open where the system has none
};

/// Where paint-picture-helper is: beside the installation or in the build folder that this code is
/// in. Empty when it is not there. Neither PATH nor the environment is asked.
std::string foundPictureHelper();
