#include "common/ExitStatus.h"

#include <algorithm>
#include <cstdio>

const char* describe(ExitStatus status) {
  switch (status) {
    case kExitSuccess:
      return "a readable document";
    case kExitUnreadable:
      return "not a readable document";
    case kExitNewerFormat:
      return "written by a newer version of the format";
    case kExitCanvasTooLarge:
      return "the canvas is too large";
    case kExitNothingToDraw:
      return "nothing to draw";
    case kExitOutputFailed:
      return "the output could not be written";
    case kExitLimitReached:
      return "a limit of time, memory, output or open files was reached";
    case kExitUsage:
      break;
  }
  return "wrong usage";
}

ExitStatus fail(const char* program, const std::string& file, ExitStatus status,
                const std::string& reason) {
  const std::string line = std::string(program) + ": " + printable(file) + ": " + describe(status) +
                           (reason.empty() ? "" : " (" + reason + ")") + "\n";
  std::fputs(line.c_str(), stderr);
  return status;
}

ExitStatus statusOf(std::error_code error, ExitStatus otherwise) {
  const bool limit = error == std::errc::too_many_files_open || error == std::errc::file_too_large;
  return limit ? kExitLimitReached : otherwise;
}

ExitStatus writeText(const char* program, std::string_view text) {
  const bool done =
      std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  return done ? kExitSuccess : fail(program, "standard output", kExitOutputFailed);
}

std::string printable(const std::string& text) {
  std::string result = text;
  std::replace_if(
      result.begin(), result.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  return result;
}
