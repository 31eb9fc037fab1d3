#pragma once

#include <cstdint>

namespace CLI {
class App;
}

/// What one run may use. No desktop limits its thumbnailers, so the programs limit themselves.
struct ResourceLimits {
  /// Seconds of processor time; wall time is limited to three times that.
  int64_t seconds = 20;
  /// Address space. Two bitmaps of the largest canvas are 2 GiB.
  int64_t megabytes = 4096;
  /// Largest file the program may write.
  int64_t outputMegabytes = 2048;
};

/// Adds the options that change the limits, which show their defaults.
void addLimitOptions(CLI::App& app, ResourceLimits& limits);

/// Puts the limits in force for the rest of the process. When time runs out the process writes one
/// line that names `program` and `file` to standard error and ends with kExitLimitReached; so it
/// does when a library or the C++ runtime aborts because there is no memory left, from before main
/// on. Both names must live as long as the process.
void limitResources(const ResourceLimits& limits, const char* program, const char* file);

/// Takes the limits of time off again: nothing is to end the process while it writes a file.
void liftTimeLimits();

/// Ends the process as a limit does: for callers that catch std::bad_alloc. Allocates nothing.
[[noreturn]] void endForMemory() noexcept;
