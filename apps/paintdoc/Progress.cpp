#include "paintdoc/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "common/ExitStatus.h"

namespace {

constexpr std::chrono::milliseconds kQuietStart{1000};
constexpr std::chrono::milliseconds kInterval{100};
// To the start of the line, and erase to its end (ECMA-48: CR, EL).
constexpr const char* kEraseLine = "\r\x1b[K";

bool canEraseLines() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) != "dumb" && isatty(STDERR_FILENO) == 1;
}

}  // namespace

Progress::Progress() : onTerminal_(canEraseLines()), next_(Clock::now() + kQuietStart) {}

void Progress::show(const std::string& what, size_t done, size_t total) {
  if (!onTerminal_) return;
  const auto now = Clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  shown_ = true;
  std::fprintf(stderr, "%s%s: %zu of %zu", kEraseLine, printable(what).c_str(), done, total);
  std::fflush(stderr);
}

void Progress::clear() {
  if (shown_) std::fputs(kEraseLine, stderr);
  shown_ = false;
}
