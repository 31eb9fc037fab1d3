#include "common/ExitStatus.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <utility>

#include "platform/foundation/Unicode.h"

namespace {

/// The UTF-8 of the character that starts at a place; empty when none does.
std::string_view characterAt(std::string_view text, size_t place) {
  const auto lead = static_cast<uint8_t>(text[place]);
  const size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  const std::string_view character = text.substr(place, length);
  return isUTF8(character) ? character : std::string_view();
}

/// Of one character. What a terminal obeys, ends lines at or turns the direction of text by.
bool isControl(std::string_view character) {
  const char16_t unit = utf16FromUTF8(character).front();
  constexpr std::pair<char16_t, char16_t> kControls[] = {{0x00, 0x1F},     {0x7F, 0x9F},
                                                         {0x61C, 0x61C},   {0x200E, 0x200F},
                                                         {0x2028, 0x202E}, {0x2066, 0x2069}};
  return std::any_of(std::begin(kControls), std::end(kControls), [unit](const auto& range) {
    return unit >= range.first && unit <= range.second;
  });
}

}  // namespace

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
  errno = 0;
  const bool done =
      std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  if (done) return kExitSuccess;
  const std::error_code error(errno, std::generic_category());
  return fail(program, "standard output", statusOf(error, kExitOutputFailed), error.message());
}

std::string printable(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size();) {
    const std::string_view character = characterAt(text, i);
    const bool shows = !character.empty() && !isControl(character);
    result += shows ? character : "?";
    i += std::max<size_t>(character.size(), 1);
  }
  return result;
}
