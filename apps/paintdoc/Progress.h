#pragma once

#include <chrono>
#include <cstddef>
#include <string>

/// Tells a person at a terminal how far long work is, on one line of standard error that is removed
/// again. Says nothing in the first second, and nothing at all when standard error is no terminal
/// or one that cannot erase a line, by what TERM says.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { clear(); }

  /// "WHAT: DONE of TOTAL".
  void show(const std::string& what, size_t done, size_t total);
  /// Makes room for other lines.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool onTerminal_;
  bool shown_ = false;
  Clock::time_point next_;
};
