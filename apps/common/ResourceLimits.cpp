#include "common/ResourceLimits.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "common/ExitStatus.h"
#include "platform/machine/AddressSanitizer.h"

namespace {

// Read by the signal handlers. There is no file until the command line has been read.
const char* gProgram = "";
const char* gFile = nullptr;

void writeText(const char* text) {
  const ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
  static_cast<void>(written);
}

[[noreturn]] void endForLimit(const char* reason) {
  writeText(gProgram);
  writeText(": ");
  if (gFile != nullptr) {
    writeText(gFile);
    writeText(": ");
  }
  writeText(reason);
  _exit(kExitLimitReached);
}

extern "C" void timeIsUp(int) {
  endForLimit("the time limit was reached\n");
}

/// Whether the system still gives what malloc asks it for at least once its heap cannot grow.
bool isMemoryLeft() {
  constexpr size_t kLeastMapping = 1 << 20;
  void* const mapping = mmap(nullptr, kLeastMapping, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return mapping != MAP_FAILED && munmap(mapping, kLeastMapping) == 0;
}

/// Libraries abort when they are refused memory, and so does the C++ runtime when an exception
/// finds none or passes a function that must not throw. Other aborts take their course.
extern "C" void abortIsOn(int) {
  if (!isMemoryLeft()) endForMemory();
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

void addLimitOptions(CLI::App& app, ResourceLimits& limits) {
  constexpr int kMost = 1 << 20;
  app.add_option("--limit-time", limits.seconds, "Seconds of processor time")
      ->check(CLI::Range(1, kMost))
      ->capture_default_str();
  app.add_option("--limit-memory", limits.megabytes, "Megabytes of memory")
      ->check(CLI::Range(16, kMost))
      ->capture_default_str();
  app.add_option("--limit-output", limits.outputMegabytes, "Megabytes of a written file")
      ->check(CLI::Range(1, kMost))
      ->capture_default_str();
}

void endForMemory() noexcept {
  endForLimit("the memory limit was reached\n");
}

void liftTimeLimits() {
  alarm(0);
  std::signal(SIGXCPU, SIG_IGN);
}

void limitResources(const ResourceLimits& limits, const char* program, const char* file) {
  gProgram = program;
  gFile = file;
  constexpr int64_t kMegabyte = 1 << 20;
  constexpr int64_t kOpenFiles = 64;
  constexpr int64_t kWallFactor = 3;
  std::signal(SIGXCPU, timeIsUp);
  std::signal(SIGALRM, timeIsUp);
  // A write beyond the limit then fails like one on a full disk.
  std::signal(SIGXFSZ, SIG_IGN);
  setLimit(RLIMIT_CPU, limits.seconds);
  alarm(static_cast<unsigned>(std::min<int64_t>(limits.seconds * kWallFactor, 1 << 30)));
  setLimit(RLIMIT_FSIZE, limits.outputMegabytes * kMegabyte);
  setLimit(RLIMIT_NOFILE, kOpenFiles);
  setLimit(RLIMIT_CORE, 0);
#ifndef PAINT_ADDRESS_SANITIZER
  setLimit(RLIMIT_AS, limits.megabytes * kMegabyte);
#endif
}
