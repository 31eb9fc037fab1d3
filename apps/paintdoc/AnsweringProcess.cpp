#include "paintdoc/AnsweringProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <new>
#include <string_view>

#include "common/ResourceLimits.h"
#include "platform/machine/FileDescriptor.h"

namespace {

std::error_code lastError() {
  return {errno, std::generic_category()};
}

void writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno != EINTR) return;
    text.remove_prefix(written < 0 ? 0 : static_cast<size_t>(written));
  }
}

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> part{};
  for (;;) {
    const ssize_t length = read(descriptor, part.data(), part.size());
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return text;
    text.append(part.data(), static_cast<size_t>(length));
  }
}

/// Leaves without what the other process has prepared for its own end, such as output that is
/// not written yet.
[[noreturn]] void answerTo(pid_t asking, int descriptor, const std::function<Answer()>& answer) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != asking) _exit(kExitSuccess);
  reportLimitsTo(descriptor);
  try {
    const Answer given = answer();
    liftTimeLimits();
    writeAll(descriptor, given.text);
    _exit(given.status);
  } catch (const std::bad_alloc&) {
    endForMemory();
  }
}

int waitFor(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

ProcessEnd askProcess(const std::function<Answer()>& answer) {
  // A caller may have this signal ignored; the system then forgets how processes end.
  std::signal(SIGCHLD, SIG_DFL);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return {.text = {}, .error = lastError()};
  const FileDescriptor reading(ends[0]);
  FileDescriptor writing(ends[1]);
  const pid_t asking = getpid();
  const pid_t process = fork();
  if (process < 0) return {.text = {}, .error = lastError()};
  if (process == 0) answerTo(asking, writing.number(), answer);
  writing = FileDescriptor();
  std::string text = readAll(reading.number());
  return {.text = std::move(text), .waitStatus = waitFor(process), .error = {}};
}
