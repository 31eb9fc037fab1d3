// paint-picture-helper: draws PDF pages and SVG pictures for the engine, which starts it. Not for
// people.
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "helper/HelperServer.h"
#include "helper/PictureGuard.h"
#include "helper/Sandbox.h"
#include "platform/machine/OwnFolder.h"
#include "platform/pictures/HelperProtocol.h"

namespace {

constexpr int kSocket = 3;

bool isSocket(int descriptor) {
  int type = 0;
  socklen_t size = sizeof type;
  return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

/// What libraries say of pictures is nobody's news.
bool silenceStreams() {
  const FileDescriptor nowhere(open("/dev/null", O_RDWR | O_CLOEXEC));
  bool done = nowhere.isOpen();
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    done = done && dup2(nowhere.number(), stream) == stream;
  }
  return done;
}

/// The parent ends, so that its own parent has no child to wait for.
void becomeNobodysChild() {
  const pid_t child = fork();
  if (child != 0) _exit(child < 0 ? EXIT_FAILURE : EXIT_SUCCESS);
}

/// How libraries find what they need. The same fonts stand in for missing ones everywhere, also in
/// sandboxes that do not show the system's configuration.
void prepareEnvironment() {
  setenv("FONTCONFIG_FILE", (ownFolder() + PAINT_DATA_FROM_HELPER "/fonts.conf").c_str(), 1);
  setenv("GIO_USE_VFS", "local", 1);
  setenv("GIO_MODULE_DIR", "/nonexistent", 1);
  setenv("LC_ALL", "C.UTF-8", 1);
}

bool greet(const HelperChannel& channel, const FileDescriptor& self) {
  HelperGreeting greeting;
  std::strncpy(greeting.version.data(), PAINT_VERSION, greeting.version.size() - 1);
  return channel.send(greeting, self);
}

[[noreturn]] void serve() {
  fcntl(kSocket, F_SETFD, FD_CLOEXEC);
  const HelperChannel channel{FileDescriptor(kSocket)};
  becomeNobodysChild();
  prepareEnvironment();
  prepareGuards(channel);
#ifndef PAINT_SANITIZED
  // No reports and no cores of hostile pictures. The sanitizers look into their own process.
  prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
  const FileDescriptor self(static_cast<int>(syscall(SYS_pidfd_open, getpid(), 0)));
  if (silenceStreams() && enterSandbox() && greet(channel, self)) {
    watchChannel();
    serveRequests(channel);
  }
  // Libraries are not let go: their last words take time and help nobody.
  _exit(EXIT_SUCCESS);
}

}  // namespace

int main() {
  if (isSocket(kSocket)) serve();
  std::fputs("paint-picture-helper " PAINT_VERSION
             " draws pictures for the paint engine, which starts it.\n",
             stderr);
  return 64;
}
