#pragma once

#include <functional>
#include <string>
#include <system_error>

#include "common/ExitStatus.h"

/// The answer to a question: whole lines, and the status that goes with them.
struct Answer {
  ExitStatus status = kExitSuccess;
  std::string text;
};

/// What became of a question that a process of its own was to answer.
struct ProcessEnd {
  /// What the process wrote: its answer or, without an end of line, the reason of the limit that
  /// ended it.
  std::string text;
  /// As waitpid tells it.
  int waitStatus = 0;
  /// Why there was no process.
  std::error_code error;
};

/// Calls `answer` in a process of its own and waits for its end. It ends with this process at the
/// latest. `answer` puts limits in force itself (common/ResourceLimits.h); they hold for that
/// process alone.
ProcessEnd askProcess(const std::function<Answer()>& answer);
