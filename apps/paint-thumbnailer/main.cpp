// paint-thumbnailer [-s SIZE] INPUT OUTPUT: the contract of freedesktop thumbnailers.
#include <CLI/CLI.hpp>
#include <new>
#include <string_view>
#include <utility>

#include "common/CommandLine.h"
#include "common/Documents.h"
#include "common/ResourceLimits.h"
#include "extension/ThumbnailProvider.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

namespace {

constexpr const char* kProgram = "paint-thumbnailer";
constexpr int64_t kLargestSize = 16384;

struct Options {
  std::string input;
  std::string shownInput;  ///< for terminals
  std::string output;
  int64_t size = 128;
  ResourceLimits limits;
};

/// What desktops keep with a thumbnail and show as the dimensions of the document.
std::vector<PNGText> textsFor(NSSize canvas) {
  const auto pixels = [](CGFloat side) { return std::to_string(static_cast<int64_t>(side)); };
  return {{"Software", std::string(kProgram) + " " + PAINT_VERSION},
          {"Thumb::Image::Width", pixels(canvas.width)},
          {"Thumb::Image::Height", pixels(canvas.height)}};
}

ExitStatus makeThumbnail(const Options& options) {
  const std::string mistake = mistakeInOutput(options.input, options.output);
  if (!mistake.empty()) return fail(kProgram, options.output, kExitUsage, mistake);
  LoadedDocument loaded = loadDocument(options.input);
  if (loaded.document == nullptr) {
    return fail(kProgram, options.input, loaded.status, loaded.reason);
  }
  const auto side = static_cast<CGFloat>(options.size);
  const NSSize canvas = loaded.document->size();
  const NSSize size = ThumbnailProvider::contextSize(canvas, {side, side});
  if (size.width < 1 || size.height < 1) return fail(kProgram, options.input, kExitNothingToDraw);
  auto image =
      ThumbnailProvider::composedImage(*std::exchange(loaded.document, nullptr), {side, side});
  const auto thumbnail =
      ThumbnailProvider::replyForImage(std::move(image), canvas, {side, side})->drawnBitmap();
  if (thumbnail == nullptr) {
    return fail(kProgram, options.input, kExitLimitReached, "too large a picture");
  }
  return writeOutput(kProgram, options.output, encodePNG(*thumbnail, {.texts = textsFor(canvas)}),
                     WriteMode::inPlace);
}

void declareArguments(CLI::App& app, Options& options) {
  addVersionOption(app);
  app.add_option("-s,--size", options.size, "Largest width and height in pixels")
      ->transform(wholeNumber(1, kLargestSize))
      ->capture_default_str();
  addLimitOptions(app, options.limits);
  app.add_option("INPUT", options.input, "Document, as a path or a file: URI; - is standard input")
      ->required();
  app.add_option("OUTPUT", options.output, "PNG file to write; - is standard output")->required();
}

ExitStatus run(int argc, char** argv, Options& options) {
  CLI::App app{"Makes a PNG thumbnail of a paint document.", kProgram};
  declareArguments(app, options);
  // With another argument it is the name of a file.
  if (argc == 2 && std::string_view(argv[1]) == "help") return writeText(kProgram, app.help());
  if (const auto end = readCommandLine(app, argc, argv)) return *end;
  options.shownInput = printable(options.input);
  limitResources(options.limits, kProgram, options.shownInput.c_str());
  return makeThumbnail(options);
}

}  // namespace

// Mistakes in the declarations of options may well end the process.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
  Options options;                 // the file's name outlives whatever is thrown
  try {
    return run(argc, argv, options);
  } catch (const std::bad_alloc&) {
    endForMemory();
  }
}
