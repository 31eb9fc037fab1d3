#include "paintdoc/Checking.h"

#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <nlohmann/json.hpp>

#include "common/Documents.h"
#include "common/LeftOutPictures.h"
#include "paintdoc/AnsweringProcess.h"
#include "paintdoc/Json.h"
#include "paintdoc/Progress.h"

namespace {

constexpr const char* kProgram = "paintdoc";

/// What a check found.
struct CheckedFile {
  std::string name;
  ExitStatus status = kExitUnreadable;
  std::string reason{};
  std::vector<LeftOutPicture> leftOut{};
  std::vector<UsedFont> fonts{};
  bool lacksFonts = false;
};

CheckedFile checkFile(const std::string& input, SVGEngine svg) {
  const LoadedDocument loaded = loadDocument(input);
  CheckedFile checked{input, loaded.status, loaded.reason};
  if (loaded.document != nullptr) {
    loaded.document->setSVGEngine(svg);
    checked.leftOut = findLeftOutPictures(*loaded.document);
    checked.fonts = usedFonts(*loaded.document);
    checked.lacksFonts = lacksAllFonts(*loaded.document);
  }
  return checked;
}

std::string plainLine(const CheckedFile& checked) {
  const std::string reason = checked.reason.empty() ? "" : " (" + checked.reason + ")";
  const std::string leftOut = checked.leftOut.empty() ? "" : ", " + leftOutText(checked.leftOut);
  const std::string fonts = checked.lacksFonts ? std::string(", ") + kNoFonts : "";
  return printable(checked.name) + ": " + describe(checked.status) + reason + leftOut + fonts +
         "\n";
}

std::string jsonLine(const CheckedFile& checked) {
  const Json reason = checked.reason.empty() ? Json() : Json(checked.reason);
  return textOf({{"file", checked.name},
                 {"code", static_cast<int>(checked.status)},
                 {"result", describe(checked.status)},
                 {"reason", reason},
                 {"leftOut", jsonOf(checked.leftOut)},
                 {"fonts", jsonOf(checked.fonts)}},
                JsonLayout::oneLine);
}

/// A process that gave no answer. The system ends what uses more than it has by these two signals.
CheckedFile describeEnd(const std::string& input, const ProcessEnd& end) {
  if (end.error) return {input, kExitLimitReached, end.error.message()};
  if (WIFSIGNALED(end.waitStatus)) {
    const int number = WTERMSIG(end.waitStatus);
    const bool isLimit = number == SIGKILL || number == SIGXCPU;
    return {input, isLimit ? kExitLimitReached : kExitUnreadable,
            "checking it ended by signal " + std::to_string(number) + ", " + strsignal(number)};
  }
  const int status = WEXITSTATUS(end.waitStatus);
  if (status == kExitLimitReached) return {input, kExitLimitReached, end.text};
  return {input, kExitUnreadable, "checking it ended with status " + std::to_string(status)};
}

Answer checkApart(const std::string& input, const CheckRequest& request) {
  const auto answerFor = [&request](const CheckedFile& checked) {
    return Answer{checked.status, request.asJson ? jsonLine(checked) : plainLine(checked)};
  };
  ProcessEnd end = askProcess([&] {
    limitResources(request.limits, kProgram, nullptr);
    return answerFor(checkFile(input, request.svg));
  });
  const bool isAnswered = WIFEXITED(end.waitStatus) && end.text.ends_with('\n');
  if (!isAnswered) return answerFor(describeEnd(input, end));
  return {static_cast<ExitStatus>(WEXITSTATUS(end.waitStatus)), std::move(end.text)};
}

}  // namespace

ExitStatus check(const CheckRequest& request) {
  limitOutput(request.limits);
  ExitStatus worst = kExitSuccess;
  Progress progress;
  for (size_t i = 0; i < request.inputs.size(); ++i) {
    progress.show(kProgram, i, request.inputs.size());
    const Answer answer = checkApart(request.inputs[i], request);
    progress.clear();
    const ExitStatus written = writeText(kProgram, answer.text);
    if (written != kExitSuccess) return written;
    worst = std::max(worst, answer.status);
  }
  return worst;
}
