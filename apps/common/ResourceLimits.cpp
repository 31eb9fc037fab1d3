#include "common/ResourceLimits.h"

#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstring>

#include "common/ExitStatus.h"

#if defined(__SANITIZE_ADDRESS__)
#define PAINT_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PAINT_ADDRESS_SANITIZER 1
#endif
#endif

namespace {

// Read by the signal handler, written once before it is installed.
const char* gProgram = "";
const char* gFile = "";

void writeText(const char* text) {
  const ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
  static_cast<void>(written);
}

extern "C" void timeIsUp(int) {
  writeText(gProgram);
  writeText(": ");
  writeText(gFile);
  writeText(": the time limit was reached\n");
  _exit(kExitLimitReached);
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
  // The sanitizer's own reservations are terabytes of address space.
  setLimit(RLIMIT_AS, limits.megabytes * kMegabyte);
#endif
}
