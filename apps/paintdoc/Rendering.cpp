#include "paintdoc/Rendering.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>

#include "common/Documents.h"
#include "common/LeftOutPictures.h"
#include "extension/ThumbnailProvider.h"
#include "paintdoc/DocumentInfo.h"
#include "paintdoc/JsonWriter.h"
#include "paintdoc/Progress.h"
#include "platform/foundation/Limits.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "svg/ZTSVGTool.h"

namespace {

constexpr const char* kProgram = "paintdoc";

using Bitmap = std::shared_ptr<NSBitmapImageRep>;

/// Something to render, or why there is nothing.
struct Renderable {
  ExitStatus status = kExitSuccess;
  std::string reason{};
  NSSize size{};
  /// The picture no larger than `side` in either direction, in full size when that is 0. Null
  /// when that is too large.
  std::function<Bitmap(int64_t side)> draw{};
  /// What the drawing left out.
  std::function<std::vector<LeftOutPicture>()> leftOut = [] {
    return std::vector<LeftOutPicture>();
  };
};

Renderable documentToRender(const LoadedDocument& loaded, const std::string& name) {
  if (loaded.document == nullptr) return {.status = loaded.status, .reason = loaded.reason};
  const NSSize size = loaded.document->size();
  if (size.width < 1 || size.height < 1) return {.status = kExitNothingToDraw, .size = size};
  const auto progress = std::make_shared<Progress>();
  loaded.document->setProgressHandler(
      [progress, name](size_t painted, size_t total) { progress->show(name, painted, total); });
  const auto draw = [document = loaded.document, progress,
                     full = Bitmap()](int64_t side) mutable -> Bitmap {
    if (full == nullptr) full = document->composedImage();
    progress->clear();
    if (side == 0 || full == nullptr) return full;
    const auto length = static_cast<CGFloat>(side);
    return ThumbnailProvider::replyForImage(full, {length, length})->drawnBitmap();
  };
  const auto leftOut = [document = loaded.document] { return document->leftOutPictures(); };
  return {kExitSuccess, {}, size, draw, leftOut};
}

/// The size of the picture's own aspect ratio that fits into a square. Vectors are enlarged too.
NSSize fitted(NSSize own, int64_t side) {
  const double scale = static_cast<double>(side) / std::max(own.width, own.height);
  return {std::max(1.0, std::floor(own.width * scale)),
          std::max(1.0, std::floor(own.height * scale))};
}

Renderable svgToRender(const std::shared_ptr<NSData>& data, SVGEngine wanted) {
  const bool isBuiltIn = wanted == SVGEngine::builtIn || !ZTSVGTool::canUseSystemSVGFramework();
  const SVGEngine svg = isBuiltIn ? SVGEngine::builtIn : SVGEngine::system;
  PictureFailure failure = PictureFailure::none;
  const NSSize own = ZTSVGTool::originalSizeOfSVG(data.get(), svg, &failure);
  if (own.width < 1 || own.height < 1) {
    const bool isNone = failure == PictureFailure::none || failure == PictureFailure::unreadable;
    return {.status = isNone ? kExitNothingToDraw : kExitLimitReached,
            .reason = isNone ? "" : describe(failure),
            .size = own};
  }
  const auto draw = [data, own, svg](int64_t side) {
    const NSSize size = side == 0 ? own : fitted(own, side);
    return ZTSVGTool::imageWithSVGData(data.get(), size, true, svg);
  };
  return {.size = own, .draw = draw};
}

Renderable thingToRender(const std::string& input, SVGEngine svg) {
  std::error_code error;
  const auto data = readInput(input, &error);
  if (data != nullptr && ZTSVGTool::isSVGFormatData(data.get())) return svgToRender(data, svg);
  const LoadedDocument loaded = loadDocument(data, error);
  if (loaded.document != nullptr) loaded.document->setSVGEngine(svg);
  return documentToRender(loaded, input);
}

struct WrittenPicture {
  std::string path;
  int64_t width = 0;
  int64_t height = 0;
  size_t bytes = 0;
};

class PictureRun {
 public:
  explicit PictureRun(const RenderRequest& request)
      : request_(request), source_(thingToRender(request.input, request.svg)) {}

  ExitStatus run();

 private:
  /// The sizes that are asked for; 0 for the full one.
  std::vector<int64_t> sides() const {
    return request_.sizes.empty() ? std::vector<int64_t>{0} : request_.sizes;
  }
  std::string pathFor(int64_t side) const {
    return side == 0 ? request_.output : pathForSize(request_.output, side, request_.sizes.size());
  }
  ExitStatus writeSize(int64_t side);
  ExitStatus writeFile(const std::string& path, const std::vector<uint8_t>& bytes) const;
  PictureFormat format() const;
  ExitStatus failed(ExitStatus status, const std::string& reason = {}) const {
    return fail(kProgram, request_.input, status, reason);
  }
  ExitStatus writeReport() const;
  /// In one line on standard error.
  void tellLeftOut() const;

  const RenderRequest& request_;
  Renderable source_;
  std::vector<WrittenPicture> written_;
};

PictureFormat PictureRun::format() const {
  if (request_.format) return *request_.format;
  if (request_.output == "-") return PictureFormat::png;
  return pictureFormatOfPath(request_.output).value_or(PictureFormat::png);
}

ExitStatus PictureRun::run() {
  if (source_.status != kExitSuccess) return failed(source_.status, source_.reason);
  for (const int64_t side : sides()) {
    const std::string path = pathFor(side);
    const std::string mistake = mistakeInOutput(request_.input, path);
    if (!mistake.empty()) return fail(kProgram, path, kExitUsage, mistake);
  }
  for (const int64_t side : sides()) {
    if (const ExitStatus status = writeSize(side); status != kExitSuccess) return status;
  }
  tellLeftOut();
  return request_.report ? writeReport() : kExitSuccess;
}

void PictureRun::tellLeftOut() const {
  const std::string text = leftOutText(source_.leftOut());
  if (text.empty()) return;
  std::fprintf(stderr, "%s: %s: %s\n", kProgram, printable(request_.input).c_str(), text.c_str());
}

ExitStatus PictureRun::writeSize(int64_t side) {
  const Bitmap bitmap = source_.draw(side);
  if (bitmap == nullptr) {
    const bool tooLarge = source_.size.width * source_.size.height > limits::kMaxCanvasPixels;
    return tooLarge && side == 0 ? failed(kExitCanvasTooLarge)
                                 : failed(kExitLimitReached, "too large a picture");
  }
  if (bitmap->pixelsWide() < 1 || bitmap->pixelsHigh() < 1) return failed(kExitNothingToDraw);
  const std::vector<uint8_t> bytes = encodePicture(*bitmap, format(), request_.quality);
  const std::string path = pathFor(side);
  if (bytes.empty()) {
    return fail(kProgram, path, kExitOutputFailed,
                std::string("too large for ") + nameOf(format()) + ", or no library for it");
  }
  written_.push_back({path, bitmap->pixelsWide(), bitmap->pixelsHigh(), bytes.size()});
  return writeFile(path, bytes);
}

ExitStatus PictureRun::writeFile(const std::string& path, const std::vector<uint8_t>& bytes) const {
  if (path != "-") return writeOutput(kProgram, path, bytes, WriteMode::byNewFile);
  return writeText(kProgram, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

ExitStatus PictureRun::writeReport() const {
  JsonWriter json;
  json.beginObject();
  json.key("file");
  json.value(request_.input);
  json.key("size");
  json.beginArray();
  json.value(source_.size.width);
  json.value(source_.size.height);
  json.endArray();
  json.key("pictures");
  json.beginArray();
  for (const WrittenPicture& picture : written_) {
    json.beginObject();
    json.key("file");
    json.value(picture.path);
    json.key("format");
    json.value(nameOf(format()));
    json.key("width");
    json.value(picture.width);
    json.key("height");
    json.value(picture.height);
    json.key("bytes");
    json.value(static_cast<int64_t>(picture.bytes));
    json.endObject();
  }
  json.endArray();
  writeLeftOut(json, source_.leftOut());
  json.endObject();
  return writeText(kProgram, json.text() + "\n");
}

}  // namespace

std::string pathForSize(const std::string& output, int64_t size, size_t sizeCount) {
  const std::string number = std::to_string(size);
  if (const size_t place = output.find("%s"); place != std::string::npos) {
    return std::string(output).replace(place, 2, number);
  }
  if (sizeCount < 2) return output;
  const size_t name = output.rfind('/') + 1;
  const size_t dot = output.rfind('.');
  const bool hasEnding = dot != std::string::npos && dot > name;
  return std::string(output).insert(hasEnding ? dot : output.size(), "-" + number);
}

ExitStatus render(const RenderRequest& request) {
  return PictureRun(request).run();
}
