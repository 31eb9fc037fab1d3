// paintdoc: look into a document, render it, check it.
#include <CLI/CLI.hpp>
#include <new>

#include "common/CommandLine.h"
#include "common/Documents.h"
#include "common/ResourceLimits.h"
#include "paintdoc/Checking.h"
#include "paintdoc/DocumentInfo.h"
#include "paintdoc/RenderOptions.h"
#include "paintdoc/Rendering.h"

namespace {

constexpr const char* kProgram = "paintdoc";

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
  RenderOptions renderOptions;
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
};

Arguments::Arguments() {
  app.require_subcommand(0, 1);
  for (CLI::App* command : {info, render, check, help}) command->fallthrough();
  addCommonOptions();
  renderOptions.addTo(*render, request);
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

std::string Arguments::helpText() const {
  const CLI::App* const command = explained.empty() ? &app : app.get_subcommand(explained);
  const std::string name = explained.empty() ? kProgram : kProgram + (" " + explained);
  return app.get_formatter()->make_help(command, name, CLI::AppFormatMode::Normal);
}

ExitStatus renderAsAsked(Arguments& arguments) {
  RenderRequest& request = arguments.request;
  request.report = arguments.json;
  request.svg = arguments.engine();
  const std::string mistake = arguments.renderOptions.completeRequest(request);
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
