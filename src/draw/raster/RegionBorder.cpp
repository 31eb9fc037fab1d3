#include "draw/raster/RegionBorder.h"

#include <cstdint>
#include <vector>

#include "draw/raster/ImageMask.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

/// Counter-clockwise, so that the next one is a turn to the left.
enum Heading : uint8_t { kRight, kUp, kLeft, kDown };

struct Step {
  int8_t x, y;
};

// By heading: the step itself, and where, seen from a corner of the pixel grid, the pixels ahead on
// the left and on the right have their lower left corners.
constexpr Step kSteps[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
constexpr Step kLeftAhead[] = {{0, 0}, {-1, 0}, {-1, -1}, {0, -1}};
constexpr Step kRightAhead[] = {{0, -1}, {0, 0}, {-1, 0}, {-1, -1}};

/// Walks along the region's edges with the region on the left. Every loop heads to the right
/// somewhere, along the lower edge of a pixel, and is started from such an edge.
class BorderTracer {
 public:
  explicit BorderTracer(const ImageMask& mask)
      : width_(mask.width()),
        height_(mask.height()),
        bytes_(mask.maskData().data()),
        origin_(mask.maskStartPoint()),
        passed_(mask.maskData().size()),
        path_(NSBezierPath::bezierPath()) {}

  std::shared_ptr<NSBezierPath> trace() {
    for (int64_t y = 0; y < height_; ++y) {
      for (int64_t x = 0; x < width_; ++x) {
        if (isIn(x, y) && !isIn(x, y - 1) && !passed_[index(x, y)]) traceLoop(x, y);
      }
    }
    return path_;
  }

 private:
  size_t index(int64_t x, int64_t y) const {
    return static_cast<size_t>((height_ - 1 - y) * width_ + x);
  }
  bool isIn(int64_t x, int64_t y) const {
    return x >= 0 && x < width_ && y >= 0 && y < height_ && bytes_[index(x, y)] != 0;
  }
  bool isInAhead(const Step& offset, int64_t x, int64_t y) const {
    return isIn(x + offset.x, y + offset.y);
  }
  NSPoint corner(int64_t x, int64_t y) const {
    return {origin_.x + static_cast<CGFloat>(x), origin_.y + static_cast<CGFloat>(y)};
  }

  /// The loop through the lower edge of a pixel. Loops are found at the left end of their lowest
  /// edges, so that the start is a corner of the outline.
  void traceLoop(int64_t startX, int64_t startY) {
    int64_t x = startX, y = startY;
    Heading heading = kRight;
    path_->moveToPoint(corner(x, y));
    for (;;) {
      if (heading == kRight) passed_[index(x, y)] = true;
      x += kSteps[heading].x;
      y += kSteps[heading].y;
      const Heading next = headingAt(x, y, heading);
      if (x == startX && y == startY && next == kRight) break;
      if (next != heading) path_->lineToPoint(corner(x, y));
      heading = next;
    }
    path_->closePath();
  }

  Heading headingAt(int64_t x, int64_t y, Heading heading) const {
    if (!isInAhead(kLeftAhead[heading], x, y)) return static_cast<Heading>((heading + 1) % 4);
    if (isInAhead(kRightAhead[heading], x, y)) return static_cast<Heading>((heading + 3) % 4);
    return heading;
  }

  int64_t width_;
  int64_t height_;
  const uint8_t* bytes_;
  NSPoint origin_;
  /// Pixels whose lower edges have been walked along.
  std::vector<bool> passed_;
  std::shared_ptr<NSBezierPath> path_;
};

}  // namespace

std::shared_ptr<NSBezierPath> regionBorder(const ImageMask& mask) {
  return BorderTracer(mask).trace();
}
