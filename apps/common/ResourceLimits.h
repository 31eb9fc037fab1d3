#pragma once

#include <cstdint>

/// What one run may use. No desktop limits its thumbnailers, so the programs limit themselves.
struct ResourceLimits {
  /// Seconds of processor time; wall time is limited to three times that.
  int64_t seconds = 20;
  /// Address space. Two bitmaps of the largest canvas are 2 GiB.
  int64_t megabytes = 4096;
  /// Largest file the program may write.
  int64_t outputMegabytes = 2048;
};

/// Puts the limits in force for the rest of the process. When time runs out the process writes one
/// line that names `program` and `file` to standard error and ends with kExitLimitReached; so it
/// does when a library or the C++ runtime aborts because there is no memory left, from before main
/// on. Both names must live as long as the process.
void limitResources(const ResourceLimits& limits, const char* program, const char* file);

/// The limit of written files alone, for a process that leaves the work to others.
void limitOutput(const ResourceLimits& limits);

/// A limit that ends the process from now on writes its reason, and nothing else, to this
/// descriptor instead of a line to standard error: for a process that works for another.
void reportLimitsTo(int descriptor);

/// Takes the limits of time off again: nothing is to end the process while it writes a file.
void liftTimeLimits();

/// Ends the process as a limit does: for callers that catch std::bad_alloc. Allocates nothing.
[[noreturn]] void endForMemory() noexcept;
