// paintdoc: look into a document, render it at full size, check it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <new>

#include "common/Documents.h"
#include "common/ResourceLimits.h"
#include "paintdoc/DocumentInfo.h"
#include "platform/graphics/NSBitmapImageRep.h"

namespace {

constexpr const char* kProgram = "paintdoc";

ExitStatus showInfo(const std::string& input, bool json) {
  const LoadedDocument loaded = loadDocument(*fileURLFromArgument(input));
  if (loaded.document == nullptr) return fail(kProgram, input, loaded.status, loaded.reason);
  const DocumentFacts facts{*loaded.document, loaded.version, loaded.resolution};
  const std::string text = json ? infoJson(facts) : infoText(facts);
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  return written && std::fflush(stdout) == 0 ? kExitSuccess
                                             : fail(kProgram, "standard output", kExitOutputFailed);
}

ExitStatus render(const std::string& input, const std::string& output) {
  const LoadedDocument loaded = loadDocument(*fileURLFromArgument(input));
  if (loaded.document == nullptr) return fail(kProgram, input, loaded.status, loaded.reason);
  const NSSize canvas = loaded.document->size();
  if (canvas.width < 1 || canvas.height < 1) return fail(kProgram, input, kExitNothingToDraw);
  const auto image = loaded.document->fullImage();
  if (image == nullptr) return fail(kProgram, input, kExitLimitReached, "not enough memory");
  return writePicture(kProgram, *image, output);
}

/// One line per file; the highest error code.
ExitStatus check(const std::vector<std::string>& inputs) {
  ExitStatus worst = kExitSuccess;
  for (const std::string& input : inputs) {
    const LoadedDocument loaded = loadDocument(*fileURLFromArgument(input));
    const std::string reason = loaded.reason.empty() ? "" : " (" + loaded.reason + ")";
    std::printf("%s: %s%s\n", printable(input).c_str(), describe(loaded.status), reason.c_str());
    worst = std::max(worst, loaded.status);
  }
  return worst;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Looks into paint documents, renders and checks them."};
  app.set_version_flag("--version", std::string(kProgram) + " " + PAINT_VERSION);
  app.require_subcommand(1);
  ResourceLimits limits{.seconds = 600, .megabytes = 8192};
  app.add_option("--limit-time", limits.seconds, "Seconds of processor time")
      ->check(CLI::Range(1, 1 << 20));
  app.add_option("--limit-memory", limits.megabytes, "Megabytes of memory")
      ->check(CLI::Range(16, 1 << 20));

  std::string input;
  std::string output;
  std::vector<std::string> inputs;
  bool json = false;
  CLI::App* info = app.add_subcommand("info", "Show the canvas and the tree of draws");
  info->add_flag("--json", json, "As JSON");
  info->add_option("FILE", input)->required();
  CLI::App* renderCommand = app.add_subcommand("render", "Render the canvas, pixel for pixel");
  renderCommand->add_option("FILE", input)->required();
  renderCommand->add_option("OUT.png", output)->required();
  CLI::App* checkCommand = app.add_subcommand("check", "Tell whether files are documents");
  checkCommand->add_option("FILE", inputs)->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitSuccess : kExitUsage;
  }

  const std::string& named = inputs.empty() ? input : inputs.front();
  limitResources(limits, kProgram, named.c_str());
  try {
    if (info->parsed()) return showInfo(input, json);
    if (renderCommand->parsed()) return render(input, output);
    return check(inputs);
  } catch (const std::bad_alloc&) {
    return fail(kProgram, named, kExitLimitReached, "out of memory");
  }
}
