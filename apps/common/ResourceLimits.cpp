#include "common/ResourceLimits.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "common/ExitStatus.h"
#include "platform/machine/AddressSanitizer.h"
#include "platform/machine/AddressSpace.h"

namespace {

constexpr int64_t kMegabyte = 1 << 20;

// Read by the signal handlers. There is no file until the command line has been read.
const char* gProgram = "";
const char* gFile = nullptr;
// Of the process that this one works for; without one, people read standard error.
int gReport = -1;

void writeText(int descriptor, const char* text) {
  const ssize_t written = write(descriptor, text, std::strlen(text));
  static_cast<void>(written);
}

void tellPeople(const char* reason) {
  for (const char* text : {gProgram, gFile}) {
    if (text == nullptr) continue;
    writeText(STDERR_FILENO, text);
    writeText(STDERR_FILENO, ": ");
  }
  writeText(STDERR_FILENO, reason);
  writeText(STDERR_FILENO, "\n");
}

[[noreturn]] void endForLimit(const char* reason) {
  if (gReport < 0) {
    tellPeople(reason);
  } else {
    writeText(gReport, reason);
  }
  _exit(kExitLimitReached);
}

extern "C" void timeIsUp(int) {
  endForLimit("the time limit was reached");
}

/// What malloc asks the system for at least once its heap cannot grow.
constexpr size_t kLeastMapping = 1 << 20;

/// Libraries abort when they are refused memory, and so does the C++ runtime when an exception
/// finds none or passes a function that must not throw. Other aborts take their course.
extern "C" void abortIsOn(int) {
  if (!hasAddressSpace(kLeastMapping)) endForMemory();
}

/// Ahead of the constructors of the program's own objects.
[[gnu::constructor(101)]] void watchAborts() {
  gProgram = program_invocation_short_name;
  std::signal(SIGABRT, abortIsOn);
}

void setLimit(int resource, int64_t value) {
  rlimit limit{};
  if (getrlimit(resource, &limit) != 0) return;
  limit.rlim_cur = std::min<rlim_t>(static_cast<rlim_t>(value), limit.rlim_max);
  setrlimit(resource, &limit);
}

}  // namespace

void endForMemory() noexcept {
  endForLimit("the memory limit was reached");
}

void reportLimitsTo(int descriptor) {
  gReport = descriptor;
}

void liftTimeLimits() {
  alarm(0);
  std::signal(SIGXCPU, SIG_IGN);
}

void limitOutput(const ResourceLimits& limits) {
  // A write beyond the limit then fails like one on a full disk.
  std::signal(SIGXFSZ, SIG_IGN);
  setLimit(RLIMIT_FSIZE, limits.outputMegabytes * kMegabyte);
}

void limitResources(const ResourceLimits& limits, const char* program, const char* file) {
  gProgram = program;
  gFile = file;
  constexpr int64_t kOpenFiles = 64;
  constexpr int64_t kWallFactor = 3;
  std::signal(SIGXCPU, timeIsUp);
  std::signal(SIGALRM, timeIsUp);
  limitOutput(limits);
  setLimit(RLIMIT_CPU, limits.seconds);
  alarm(static_cast<unsigned>(std::min<int64_t>(limits.seconds * kWallFactor, 1 << 30)));
  setLimit(RLIMIT_NOFILE, kOpenFiles);
  setLimit(RLIMIT_CORE, 0);
#ifndef PAINT_ADDRESS_SANITIZER
  setLimit(RLIMIT_AS, limits.megabytes * kMegabyte);
#endif
}
