#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

/// How the programs end. 1 to 3 are the document decoder's own error codes.
enum ExitStatus : int {
  kExitSuccess = 0,
  kExitUnreadable = 1,
  kExitNewerFormat = 2,
  kExitCanvasTooLarge = 3,
  kExitNothingToDraw = 4,
  kExitUsage = 64,
  kExitOutputFailed = 74,
  kExitLimitReached = 75,
};

/// One clause that says what a status means for a file.
const char* describe(ExitStatus status);

/// Writes "PROGRAM: FILE: reason" to standard error, in one line, and answers the status.
ExitStatus fail(const char* program, const std::string& file, ExitStatus status,
                const std::string& reason = {});

/// What an input or output error means: kExitLimitReached when it is one of this program's limits,
/// else `otherwise`.
ExitStatus statusOf(std::error_code error, ExitStatus otherwise);

/// Writes the text to standard output at once. Answers kExitSuccess or, after a line on standard
/// error, what went wrong.
ExitStatus writeText(const char* program, std::string_view text);

/// Text as it may be shown on one line of a terminal. Control characters of both kinds, line and
/// paragraph separators, marks that turn the direction of text (Unicode, bidirectional controls)
/// and bytes that are no UTF-8 become "?".
std::string printable(const std::string& text);
