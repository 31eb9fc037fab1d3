// paintdoc: look into a document, render it, check it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <new>

#include "common/Documents.h"
#include "common/LeftOutPictures.h"
#include "common/ResourceLimits.h"
#include "paintdoc/DocumentInfo.h"
#include "paintdoc/JsonWriter.h"
#include "paintdoc/Progress.h"
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
  const int64_t version = PaintManager::versionOfPaintData(data).value_or(0);
  const DocumentFacts facts{*loaded.document, version, loaded.resolution};
  return writeText(kProgram, json ? infoJson(facts) : infoText(facts));
}

/// What a check found.
struct CheckedFile {
  std::string name;
  ExitStatus status = kExitUnreadable;
  std::string reason;
  std::vector<LeftOutPicture> leftOut;
};

CheckedFile checkFile(const std::string& input, SVGEngine svg) {
  std::error_code error;
  const auto data = readInput(input, &error);
  const LoadedDocument loaded = loadDocument(data, error);
  CheckedFile checked{input, loaded.status, loaded.reason, {}};
  if (loaded.document != nullptr) {
    loaded.document->setSVGEngine(svg);
    checked.leftOut = findLeftOutPictures(*loaded.document);
  }
  return checked;
}

std::string checkLine(const CheckedFile& checked) {
  const std::string reason = checked.reason.empty() ? "" : " (" + checked.reason + ")";
  const std::string leftOut = checked.leftOut.empty() ? "" : ", " + leftOutText(checked.leftOut);
  return printable(checked.name) + ": " + describe(checked.status) + reason + leftOut + "\n";
}

void writeCheck(JsonWriter& json, const CheckedFile& checked) {
  json.beginObject();
  json.key("file");
  json.value(checked.name);
  json.key("code");
  json.value(static_cast<int64_t>(checked.status));
  json.key("result");
  json.value(describe(checked.status));
  json.key("reason");
  checked.reason.empty() ? json.null() : json.value(checked.reason);
  writeLeftOut(json, checked.leftOut);
  json.endObject();
}

/// One line, or one object, per file; the highest error code.
ExitStatus check(const std::vector<std::string>& inputs, SVGEngine svg, bool asJson) {
  ExitStatus worst = kExitSuccess;
  Progress progress;
  JsonWriter json;
  json.beginArray();
  for (size_t i = 0; i < inputs.size(); ++i) {
    if (asJson) progress.show(kProgram, i, inputs.size());
    const CheckedFile checked = checkFile(inputs[i], svg);
    worst = std::max(worst, checked.status);
    if (asJson) {
      writeCheck(json, checked);
    } else if (writeText(kProgram, checkLine(checked)) != kExitSuccess) {
      return kExitOutputFailed;
    }
  }
  json.endArray();
  if (asJson && writeText(kProgram, json.text() + "\n") != kExitSuccess) return kExitOutputFailed;
  return worst;
}

/// The command line.
struct Arguments {
  CLI::App app{"Looks into paint documents, renders and checks them."};
  ResourceLimits limits{.seconds = 600, .megabytes = 8192};
  CLI::App* info = app.add_subcommand("info", "Show the canvas and the tree of draws");
  CLI::App* render =
      app.add_subcommand("render", "Render the canvas pixel for pixel, or in other sizes");
  CLI::App* check = app.add_subcommand("check", "Tell whether files are documents");
  std::vector<std::string> inputs;
  RenderRequest request;
  std::string format;
  std::string svg = "system";
  bool json = false;

  Arguments();
  SVGEngine engine() const { return svg == "system" ? SVGEngine::system : SVGEngine::builtIn; }
  const std::string& file() const { return inputs.empty() ? request.input : inputs.front(); }

 private:
  void addRenderOptions();
};

Arguments::Arguments() {
  app.set_version_flag("--version", std::string(kProgram) + " " + PAINT_VERSION);
  app.require_subcommand(1);
  for (CLI::App* command : {info, render, check}) command->fallthrough();
  addLimitOptions(app, limits);
  app.add_option("--svg", svg,
                 "Who draws SVG pictures: system (librsvg, if there is one), built-in")
      ->check(CLI::IsMember({"system", "built-in"}))
      ->capture_default_str();
  info->add_flag("--json", json, "As JSON");
  info->add_option("FILE", inputs, "Document; - is standard input")->required()->expected(1);
  check->add_flag("--json", json, "As JSON");
  check->add_option("FILE", inputs, "Documents; - is standard input")->required();
  addRenderOptions();
}

void Arguments::addRenderOptions() {
  render->add_flag("--json", json, "Report on standard output what was written");
  render->add_option("--format", format, "png, jpeg, webp or tiff; else what OUT ends with")
      ->check([](const std::string& name) {
        return pictureFormatNamed(name) ? "" : "unknown picture format " + name;
      });
  render->add_option("--quality", request.quality, "Of JPEG and WebP, 0 to 1")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  render->add_option("FILE", request.input, "Document or SVG picture; - is standard input")
      ->required();
  render
      ->add_option("OUT", request.output, "Picture to write; - is standard output; %s is the size")
      ->required();
  render->add_option("SIZE", request.sizes, "Largest widths and heights; the full size without")
      ->check(CLI::Range(int64_t{1}, kLargestSize));
}

/// Why a request to render cannot be carried out; empty when it can.
std::string mistakeIn(const RenderRequest& request) {
  const bool toOutput = request.output == "-";
  if (toOutput && request.report) return "standard output cannot take the picture and the report";
  if (toOutput && request.sizes.size() > 1) return "standard output can take one picture only";
  if (!request.format && !toOutput && !pictureFormatOfPath(request.output)) {
    return "no picture format has the ending of " + printable(request.output);
  }
  return {};
}

ExitStatus renderAsAsked(Arguments& arguments) {
  arguments.request.report = arguments.json;
  arguments.request.svg = arguments.engine();
  if (!arguments.format.empty()) arguments.request.format = pictureFormatNamed(arguments.format);
  const std::string mistake = mistakeIn(arguments.request);
  if (mistake.empty()) return render(arguments.request);
  return fail(kProgram, arguments.request.input, kExitUsage, mistake);
}

ExitStatus run(int argc, char** argv, std::string& shownFile) {
  Arguments arguments;
  try {
    arguments.app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return arguments.app.exit(error) == 0 ? kExitSuccess : kExitUsage;
  }
  const std::string file = arguments.file();
  shownFile = printable(file);
  limitResources(arguments.limits, kProgram, shownFile.c_str());
  if (arguments.info->parsed()) return showInfo(file, arguments.engine(), arguments.json);
  if (arguments.render->parsed()) return renderAsAsked(arguments);
  return check(arguments.inputs, arguments.engine(), arguments.json);
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
