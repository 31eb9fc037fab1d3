#include "paintdoc/PictureLayout.h"

#include <algorithm>
#include <cmath>

#include "document/PaintManager.h"
#include "platform/foundation/Limits.h"

namespace {

/// Positions closer than this to a whole pixel are whole, here and where it is composed.
constexpr double kNoise = 1e-6;
constexpr double kUsualResolution = 72;

/// Also of what is far beyond any limit, or no number.
int64_t wholeOf(double length) {
  constexpr double kFarBeyond = 1e15;
  return length < kFarBeyond ? std::llround(length) : static_cast<int64_t>(kFarBeyond);
}

int64_t pixelsOf(double length) {
  return std::max<int64_t>(1, wholeOf(length));
}

/// From and to which pixel, along one direction.
struct Span {
  double from = 0;
  double to = 0;
};

/// All pixels that show any of a span.
Span grown(Span span) {
  return {std::floor(span.from + kNoise), std::ceil(span.to - kNoise)};
}

/// So many pixels in the middle of a span, but none beyond the end of the canvas.
Span middle(Span span, int64_t count, double end) {
  const auto length = static_cast<double>(count);
  const double first = std::round((span.from + span.to - length) / 2);
  const double last = std::max(0.0, std::ceil(end - kNoise) - length);
  const double from = std::clamp(first, 0.0, last);
  return {from, from + length};
}

class Layout {
 public:
  Layout(const PictureWish& wish, NSSize canvas)
      : wish_(wish),
        canvas_(canvas),
        part_(NSIntersectionRect(wish.part.value_or(NSRect{NSZeroPoint, canvas}),
                                 {NSZeroPoint, canvas})) {}

  PictureLayout atScale(double scale) const;
  PictureLayout inBox() const;
  bool isEmpty() const { return NSIsEmptyRect(part_); }

 private:
  Span across(double scale) const { return {NSMinX(part_) * scale, NSMaxX(part_) * scale}; }
  /// From the top, as pixels are counted.
  Span down(double scale) const {
    return {(canvas_.height - NSMaxY(part_)) * scale, (canvas_.height - NSMinY(part_)) * scale};
  }
  PictureLayout of(Span x, Span y, double scale) const;
  PictureLayout stretched(PictureBox box) const;

  const PictureWish& wish_;
  NSSize canvas_;
  NSRect part_;
};

PictureLayout Layout::of(Span x, Span y, double scale) const {
  const double width = x.to - x.from;
  const double height = y.to - y.from;
  PictureLayout layout;
  layout.scale = scale;
  layout.part = {{x.from / scale, canvas_.height - y.to / scale}, {width / scale, height / scale}};
  layout.pixels = {wholeOf(width), wholeOf(height)};
  return layout;
}

PictureLayout Layout::atScale(double scale) const {
  const double possible = std::max<double>(scale, PaintManager::kSmallestScale);
  return of(grown(across(possible)), grown(down(possible)), possible);
}

PictureLayout Layout::stretched(PictureBox box) const {
  const double x = static_cast<double>(box.width) / part_.size.width;
  const double y = static_cast<double>(box.height) / part_.size.height;
  // Between the two, where the larger one would make much more pixels than are wanted.
  const double most =
      std::sqrt(limits::kMaxCanvasPixels / 4.0 / (NSWidth(part_) * NSHeight(part_)));
  PictureLayout layout = atScale(std::min(std::max(x, y), std::max(most, std::min(x, y))));
  layout.stretched = box;
  return layout;
}

PictureLayout Layout::inBox() const {
  PictureBox box = *wish_.box;
  if (!wish_.enlarges) {
    box.width = std::min(box.width, pixelsOf(part_.size.width));
    box.height = std::min(box.height, pixelsOf(part_.size.height));
  }
  if (wish_.fit == PictureFit::stretch) return stretched(box);
  const double x = static_cast<double>(box.width) / part_.size.width;
  const double y = static_cast<double>(box.height) / part_.size.height;
  const double wanted = wish_.fit == PictureFit::contain ? std::min(x, y) : std::max(x, y);
  const double scale = std::max<double>(wanted, PaintManager::kSmallestScale);
  const int64_t width = std::min(box.width, pixelsOf(part_.size.width * scale));
  const int64_t height = std::min(box.height, pixelsOf(part_.size.height * scale));
  return of(middle(across(scale), width, canvas_.width * scale),
            middle(down(scale), height, canvas_.height * scale), scale);
}

}  // namespace

double densityOr0(double resolution) {
  return std::isfinite(resolution) && resolution > 0 ? resolution : 0;
}

PictureLayout layoutOf(const PictureWish& wish, NSSize canvas, double resolution) {
  const Layout layout(wish, canvas);
  if (layout.isEmpty()) return {};
  if (wish.box) return layout.inBox();
  if (wish.scale > 0) return layout.atScale(wish.scale);
  const double known = densityOr0(resolution);
  return layout.atScale(
      wish.dotsPerInch > 0 ? wish.dotsPerInch / (known > 0 ? known : kUsualResolution) : 1);
}
