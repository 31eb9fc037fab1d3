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
#include "paintdoc/ChosenDraws.h"
#include "paintdoc/Json.h"
#include "paintdoc/PictureEdits.h"
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
  /// The same of a part, at the scale. Null when that is too large.
  std::function<Bitmap(const PictureLayout& layout)> compose{};
  /// The document that is drawn, if it is one.
  std::shared_ptr<PaintManager> document{};
  /// Units an inch, 0 when nothing says.
  double resolution = 0;
  /// What the drawing left out.
  std::function<std::vector<LeftOutPicture>()> leftOut = [] {
    return std::vector<LeftOutPicture>();
  };
};

Renderable documentToRender(const LoadedDocument& loaded, const std::string& name,
                            const std::vector<std::string>& draws) {
  if (loaded.document == nullptr) return {.status = loaded.status, .reason = loaded.reason};
  if (!draws.empty()) {
    const std::string missing = showOnly(*loaded.document, draws);
    if (!missing.empty()) return {kExitUsage, "there is no draw \"" + printable(missing) + "\""};
  }
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
  const auto compose = [document = loaded.document, progress](const PictureLayout& layout) {
    auto composed = document->composedImage(layout.part, layout.scale);
    progress->clear();
    return composed;
  };
  const auto leftOut = [document = loaded.document] { return document->leftOutPictures(); };
  return {.size = size,
          .draw = draw,
          .compose = compose,
          .document = loaded.document,
          .resolution = densityOr0(loaded.resolution),
          .leftOut = leftOut};
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
  const auto compose = [data, own, svg](const PictureLayout& layout) -> Bitmap {
    const NSSize size{std::ceil(own.width * layout.scale), std::ceil(own.height * layout.scale)};
    if (size.width * size.height > limits::kMaxCanvasPixels) return nullptr;
    const auto whole = ZTSVGTool::imageWithSVGData(data.get(), size, true, svg);
    if (whole == nullptr) return nullptr;
    const int64_t x = std::llround(layout.part.origin.x * layout.scale);
    const int64_t y = std::llround((own.height - NSMaxY(layout.part)) * layout.scale);
    return croppedBitmap(*whole, x, y,
                         {std::min(layout.pixels.width, whole->pixelsWide() - x),
                          std::min(layout.pixels.height, whole->pixelsHigh() - y)});
  };
  return {.size = own, .draw = draw, .compose = compose};
}

Renderable thingToRender(const RenderRequest& request) {
  std::error_code error;
  const auto data = readInput(request.input, &error);
  if (data != nullptr && ZTSVGTool::isSVGFormatData(data.get())) {
    if (!request.draws.empty()) return {kExitUsage, "an SVG picture has no draws"};
    return svgToRender(data, request.svg);
  }
  const LoadedDocument loaded = loadDocument(data, error);
  if (loaded.document != nullptr) loaded.document->setSVGEngine(request.svg);
  return documentToRender(loaded, request.input, request.draws);
}

/// For names of files; "-" has none.
std::string nameWithoutEnding(const std::string& path) {
  const std::string file = path.substr(path.rfind('/') + 1);
  const size_t dot = file.rfind('.');
  return file == "-" ? "picture" : file.substr(0, dot == 0 ? file.npos : dot);
}

bool isTooLarge(PictureBox size) {
  constexpr int64_t kMost = limits::kMaxCanvasPixels;
  return size.width > kMost || size.height > kMost || size.width * size.height > kMost;
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
        source_(thingToRender(request)) {}

  ExitStatus run();

 private:
  std::string pathFor(int64_t side) const;
  /// What "%s" stands for.
  std::string sizeText(int64_t side) const;
  /// Whether a size, or none, is all that is asked for: documents are then reduced only, and with
  /// the filter of thumbnails.
  bool isPlain(int64_t side) const;
  PictureLayout layoutFor(int64_t side) const;
  /// Composed, but not edited; null when it is too large.
  Bitmap drawn(int64_t side);
  Bitmap edited(Bitmap bitmap) const;
  /// Pixels an inch of a picture before it is trimmed; 0 when nothing says.
  double densityOf(const NSBitmapImageRep& bitmap, int64_t side) const;
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

bool PictureRun::isPlain(int64_t side) const {
  const PictureWish& wish = request_.wish;
  const bool isLarger =
      static_cast<double>(side) > std::max(source_.size.width, source_.size.height);
  const bool enlarges = wish.enlarges && isLarger && source_.document != nullptr;
  return wish.scale == 0 && wish.dotsPerInch == 0 && !wish.box && !wish.part && !enlarges;
}

PictureLayout PictureRun::layoutFor(int64_t side) const {
  PictureWish wish = request_.wish;
  if (side != 0) wish.box = PictureBox{side, side};
  if (source_.document == nullptr) wish.enlarges = true;  // vectors are sharp in any size
  return layoutOf(wish, source_.size, source_.resolution);
}

std::string PictureRun::sizeText(int64_t side) const {
  if (side != 0) return std::to_string(side);
  if (const auto& box = request_.wish.box) {
    return std::to_string(box->width) + "x" + std::to_string(box->height);
  }
  if (source_.status != kExitSuccess) return "0";
  const PictureBox full = layoutFor(0).result();
  return std::to_string(std::max(full.width, full.height));
}

std::string PictureRun::pathFor(int64_t side) const {
  return pathForSize(request_.output, {sizeText(side), nameWithoutEnding(request_.input)},
                     sides_.size());
}

Bitmap PictureRun::drawn(int64_t side) {
  if (isPlain(side)) return source_.draw(side);
  const PictureLayout layout = layoutFor(side);
  if (isTooLarge(layout.pixels) || isTooLarge(layout.result())) return nullptr;
  auto composed = source_.compose(layout);
  if (composed == nullptr || !layout.stretched) return composed;
  return resizedBitmap(*composed, *layout.stretched);
}

Bitmap PictureRun::edited(Bitmap bitmap) const {
  if (request_.trims) bitmap = trimmedBitmap(*bitmap);
  const bool isEmpty = bitmap == nullptr || bitmap->pixelsWide() < 1 || bitmap->pixelsHigh() < 1;
  return isEmpty || request_.background == nullptr ? bitmap
                                                   : bitmapOver(*bitmap, *request_.background);
}

double PictureRun::densityOf(const NSBitmapImageRep& bitmap, int64_t side) const {
  const PictureWish& wish = request_.wish;
  if (wish.dotsPerInch > 0) return wish.dotsPerInch;
  if (!isPlain(side)) {
    const PictureLayout layout = layoutFor(side);
    return layout.stretched ? 0 : source_.resolution * layout.scale;
  }
  const double scale = static_cast<double>(bitmap.pixelsWide()) / source_.size.width;
  const double height = source_.size.height * scale;
  const bool isStretched = std::abs(static_cast<double>(bitmap.pixelsHigh()) - height) > 1;
  return isStretched ? 0 : source_.resolution * scale;
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
  if (layoutFor(0).isEmpty()) return failed(kExitUsage, "the part lies outside of the canvas");
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
  Bitmap bitmap = drawn(side);
  const double density = bitmap == nullptr ? 0 : densityOf(*bitmap, side);
  if (bitmap != nullptr) bitmap = edited(std::move(bitmap));
  if (bitmap == nullptr) {
    const bool tooLarge = source_.size.width * source_.size.height > limits::kMaxCanvasPixels;
    return tooLarge && side == 0 && isPlain(side)
               ? failed(kExitCanvasTooLarge)
               : failed(kExitLimitReached, "too large a picture");
  }
  if (bitmap->pixelsWide() < 1 || bitmap->pixelsHigh() < 1) return failed(kExitNothingToDraw);
  const std::vector<uint8_t> bytes = encodePicture(*bitmap, format(), request_.quality, density);
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

std::string pathForSize(const std::string& output, const OutputNames& names, size_t sizeCount) {
  std::string path;
  bool hasSize = false;
  for (size_t i = 0; i < output.size(); ++i) {
    const std::string mark = output.substr(i, 2);
    const bool isSize = mark == "%s";
    if (isSize || mark == "%n") {
      path += isSize ? names.size : names.input;
      hasSize = hasSize || isSize;
      ++i;
    } else {
      path += output[i];
    }
  }
  if (hasSize || sizeCount < 2) return path;
  const size_t name = path.rfind('/') + 1;
  const size_t dot = path.rfind('.');
  const bool hasEnding = dot != std::string::npos && dot > name;
  return path.insert(hasEnding ? dot : path.size(), "-" + names.size);
}

ExitStatus render(const RenderRequest& request) {
  return PictureRun(request).run();
}
