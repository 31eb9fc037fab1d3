#include "paintdoc/Rendering.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "common/Documents.h"
#include "common/LeftOutPictures.h"
#include "extension/ThumbnailProvider.h"
#include "paintdoc/Json.h"
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
  /// when that is too large, empty when a long picture has no pixel left in its short direction.
  std::function<Bitmap(int64_t side)> draw{};
  /// The document that is drawn, if it is one.
  std::shared_ptr<PaintManager> document{};
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
  const auto draw = [document = loaded.document, size, progress, composed = Bitmap(),
                     composedAt = CGFloat{0}](int64_t side) mutable -> Bitmap {
    const auto length = static_cast<CGFloat>(side);
    const NSSize fit = ThumbnailProvider::contextSize(size, {length, length});
    if (side != 0 && (fit.width < 1 || fit.height < 1)) return NSBitmapImageRep::create(0, 0);
    const CGFloat scale = side == 0 ? 1 : ThumbnailProvider::composingScale(size, {length, length});
    if (composed == nullptr || composedAt != scale) {
      composed = side == 0 ? document->composedImage()
                           : ThumbnailProvider::composedImage(*document, {length, length});
      composedAt = scale;
    }
    progress->clear();
    if (side == 0 || composed == nullptr) return composed;
    return ThumbnailProvider::replyForImage(composed, size, {length, length})->drawnBitmap();
  };
  const auto leftOut = [document = loaded.document] { return document->leftOutPictures(); };
  return {kExitSuccess, {}, size, draw, loaded.document, leftOut};
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
      : request_(request),
        sides_(request.sizes.empty() ? std::vector<int64_t>{0} : request.sizes),
        source_(thingToRender(request.input, request.svg)) {}

  ExitStatus run();

 private:
  std::string pathFor(int64_t side) const {
    return pathForSize(request_.output, side == 0 ? fullSide() : side, sides_.size());
  }
  /// The larger side of the full size, in pixels; 0 when nothing is so large, or so small.
  int64_t fullSide() const;
  ExitStatus writeSize(int64_t side);
  PictureFormat format() const;
  ExitStatus failed(ExitStatus status, const std::string& reason = {}) const {
    return fail(kProgram, request_.input, status, reason);
  }
  ExitStatus writeReport() const;
  /// In lines on standard error.
  void tellLeftOut() const;

  const RenderRequest& request_;
  /// The sizes to write; 0 is the full one.
  const std::vector<int64_t> sides_;
  Renderable source_;
  std::vector<WrittenPicture> written_;
};

int64_t PictureRun::fullSide() const {
  const double side = std::max(source_.size.width, source_.size.height);
  return side >= 1 && side <= limits::kMaxCanvasPixels ? static_cast<int64_t>(side) : 0;
}

PictureFormat PictureRun::format() const {
  if (request_.format) return *request_.format;
  if (request_.output == "-") return PictureFormat::png;
  return pictureFormatOfPath(request_.output).value_or(PictureFormat::png);
}

ExitStatus PictureRun::run() {
  for (const int64_t side : sides_) {
    const std::string path = pathFor(side);
    const std::string mistake = mistakeInOutput(request_.input, path);
    if (!mistake.empty()) return fail(kProgram, path, kExitUsage, mistake);
  }
  if (source_.status != kExitSuccess) return failed(source_.status, source_.reason);
  for (const int64_t side : sides_) {
    if (const ExitStatus status = writeSize(side); status != kExitSuccess) return status;
  }
  tellLeftOut();
  return request_.report ? writeReport() : kExitSuccess;
}

void PictureRun::tellLeftOut() const {
  const auto tell = [this](const std::string& text) {
    if (text.empty()) return;
    std::fprintf(stderr, "%s: %s: %s\n", kProgram, printable(request_.input).c_str(), text.c_str());
  };
  tell(leftOutText(source_.leftOut()));
  if (source_.document != nullptr && lacksAllFonts(*source_.document)) tell(kNoFonts);
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
  return writeOutput(kProgram, path, bytes, WriteMode::byNewFile);
}

ExitStatus PictureRun::writeReport() const {
  Json pictures = Json::array();
  for (const WrittenPicture& picture : written_) {
    pictures.push_back({{"file", picture.path},
                        {"format", nameOf(format())},
                        {"width", picture.width},
                        {"height", picture.height},
                        {"bytes", picture.bytes}});
  }
  const Json size = {jsonNumber(source_.size.width), jsonNumber(source_.size.height)};
  const Json report = {
      {"file", request_.input},
      {"size", size},
      {"pictures", pictures},
      {"leftOut", jsonOf(source_.leftOut())},
      {"fonts", jsonOf(source_.document == nullptr ? std::vector<UsedFont>{}
                                                   : usedFonts(*source_.document))}};
  return writeText(kProgram, textOf(report, JsonLayout::indented));
}

}  // namespace

std::string pathForSize(const std::string& output, int64_t size, size_t sizeCount) {
  const std::string number = std::to_string(size);
  std::string path = output;
  size_t place = path.find("%s");
  if (place != std::string::npos) {
    for (; place != std::string::npos; place = path.find("%s", place)) {
      path.replace(place, 2, number);
    }
    return path;
  }
  if (sizeCount < 2) return path;
  const size_t name = path.rfind('/') + 1;
  const size_t dot = path.rfind('.');
  const bool hasEnding = dot != std::string::npos && dot > name;
  return path.insert(hasEnding ? dot : path.size(), "-" + number);
}

ExitStatus render(const RenderRequest& request) {
  return PictureRun(request).run();
}
