// paintdoc: look into a document, render it, check it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <new>

#include "common/CommandLine.h"
#include "common/Documents.h"
#include "common/ResourceLimits.h"
#include "paintdoc/Checking.h"
#include "paintdoc/DocumentInfo.h"
#include "paintdoc/Rendering.h"

namespace {

constexpr const char* kProgram = "paintdoc";
constexpr int64_t kLargestSize = 16384;

ExitStatus showInfo(const std::string& input, SVGEngine svg, bool json) {
  std::error_code error;
  const auto data = readInput(input, &error);
  const LoadedDocument loaded = loadDocument(data, error);
  if (loaded.document == nullptr) return fail(kProgram, input, loaded.status, loaded.reason);
  loaded.document->setSVGEngine(svg);
  const DocumentFacts facts{*loaded.document,
                            PaintManager::factsOfPaintData(data).value_or(PaintDataFacts()),
                            loaded.resolution};
  return writeText(kProgram, json ? infoJson(facts) : infoText(facts));
}

std::string mistakeInQuality(const std::string& text) {
  double quality = -1;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, quality);
  const bool isRight = error == std::errc() && stop == end && quality >= 0 && quality <= 1;
  return isRight ? "" : "\"" + text + "\" is not a number from 0 to 1";
}

/// For arguments of any number. What CLI11 does for vectors would split a name such as [a,b].
CLI::Option* takesAny(CLI::Option* option) {
  constexpr int kAny = CLI::detail::expected_max_vector_size;
  return option->expected(kAny, kAny)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

/// The command line.
struct Arguments {
  CLI::App app{"Looks into paint documents, renders and checks them.", kProgram};
  CLI::App* info = app.add_subcommand("info", "Show the canvas and the tree of draws");
  CLI::App* render =
      app.add_subcommand("render", "Render the canvas pixel for pixel, or in other sizes");
  CLI::App* check = app.add_subcommand("check", "Tell whether files are documents");
  CLI::App* help = app.add_subcommand("help", "Tell about a command and its options");
  ResourceLimits limits{.seconds = 600, .megabytes = 8192};
  std::string input;  ///< of info
  CheckRequest checkRequest;
  RenderRequest request;
  std::string format;
  std::string svg = "system";
  std::string explained;
  bool json = false;

  Arguments();
  SVGEngine engine() const { return svg == "system" ? SVGEngine::system : SVGEngine::builtIn; }
  /// What `paintdoc help` tells.
  std::string helpText() const;

 private:
  void addCheckedFiles();
  void addCommonOptions();
  void addRenderOptions();
};

Arguments::Arguments() {
  app.require_subcommand(0, 1);
  for (CLI::App* command : {info, render, check, help}) command->fallthrough();
  addCommonOptions();
  addRenderOptions();
  info->add_option("FILE", input, "Document; - is standard input")->required();
  addCheckedFiles();
  help->add_option("COMMAND", explained, "One of the others")
      ->check(oneOf({"info", "render", "check", "help"}));
}

void Arguments::addCheckedFiles() {
  const auto keep = [this](const std::vector<std::string>& names) {
    checkRequest.inputs = names;
    return true;
  };
  takesAny(check->add_option("FILE", keep, "Documents; - is standard input"))->required();
}

void Arguments::addCommonOptions() {
  app.option_defaults()->group("Options of every command");
  addVersionOption(app);
  addLimitOptions(app, limits);
  app.add_flag("--json", json, "Answer as JSON; render reports what was written");
  app.add_option("--svg", svg,
                 "Who draws SVG pictures: system (librsvg, if there is one), built-in")
      ->check(oneOf({"system", "built-in"}))
      ->capture_default_str();
  const auto listThem = [this] {
    std::string text = CLI::Formatter().make_groups(&app, CLI::AppFormatMode::Sub);
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
  };
  for (CLI::App* command : {info, render, check}) command->footer(listThem);
}

void Arguments::addRenderOptions() {
  render->add_option("--format", format, "Format of the picture; else what OUT ends with")
      ->check(oneOf(knownPictureFormats()))
      ->transform([](const std::string& name) { return CLI::detail::to_lower(name); });
  render->add_option("--quality", request.quality, "Of JPEG and WebP")
      ->check(CLI::Validator(mistakeInQuality, "0 to 1"))
      ->capture_default_str();
  render->add_option("FILE", request.input, "Document or SVG picture; - is standard input")
      ->required();
  render
      ->add_option("OUT", request.output, "Picture to write; - is standard output; %s is the size")
      ->required();
  takesAny(render->add_option("SIZE", request.sizes,
                              "Largest widths and heights; the full size without"))
      ->transform(wholeNumber(1, kLargestSize, ": render takes one FILE, one OUT and then sizes"));
}

std::string Arguments::helpText() const {
  const CLI::App* const command = explained.empty() ? &app : app.get_subcommand(explained);
  const std::string name = explained.empty() ? kProgram : kProgram + (" " + explained);
  return app.get_formatter()->make_help(command, name, CLI::AppFormatMode::Normal);
}

/// Why a request to render cannot be carried out; empty when it can.
std::string mistakeIn(const RenderRequest& request) {
  const bool toOutput = request.output == "-";
  if (toOutput && request.report) return "standard output cannot take the picture and the report";
  if (toOutput && request.sizes.size() > 1) return "standard output can take one picture only";
  if (!request.format && !toOutput && !pictureFormatOfPath(request.output)) {
    return "no picture format has this ending; known are " +
           CLI::detail::join(knownPictureFormats(), ", ");
  }
  return {};
}

/// Each size once, in the order in which they were given.
std::vector<int64_t> differentSizes(const std::vector<int64_t>& sizes) {
  std::vector<int64_t> different;
  for (const int64_t size : sizes) {
    const bool isKnown = std::find(different.begin(), different.end(), size) != different.end();
    if (!isKnown) different.push_back(size);
  }
  return different;
}

ExitStatus renderAsAsked(Arguments& arguments) {
  RenderRequest& request = arguments.request;
  request.sizes = differentSizes(request.sizes);
  request.report = arguments.json;
  request.svg = arguments.engine();
  if (!arguments.format.empty()) request.format = pictureFormatNamed(arguments.format);
  const std::string mistake = mistakeIn(request);
  return mistake.empty() ? render(request) : fail(kProgram, request.output, kExitUsage, mistake);
}

ExitStatus checkAsAsked(Arguments& arguments) {
  CheckRequest& request = arguments.checkRequest;
  request.limits = arguments.limits;
  request.svg = arguments.engine();
  request.asJson = arguments.json;
  return check(request);
}

ExitStatus run(int argc, char** argv, std::string& shownFile) {
  Arguments arguments;
  if (const auto end = readCommandLine(arguments.app, argc, argv)) return *end;
  if (arguments.help->parsed()) return writeText(kProgram, arguments.helpText());
  if (arguments.check->parsed()) return checkAsAsked(arguments);
  const bool isInfo = arguments.info->parsed();
  shownFile = printable(isInfo ? arguments.input : arguments.request.input);
  limitResources(arguments.limits, kProgram, shownFile.c_str());
  return isInfo ? showInfo(arguments.input, arguments.engine(), arguments.json)
                : renderAsAsked(arguments);
}

}  // namespace

// Mistakes in the declarations of options may well end the process.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
  std::string shownFile;           // outlives whatever is thrown
  try {
    return run(argc, argv, shownFile);
  } catch (const std::bad_alloc&) {
    endForMemory();
  }
}
