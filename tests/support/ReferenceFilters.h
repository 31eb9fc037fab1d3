#pragma once

// The filters written down once more: plainly, in double precision, pixel by pixel, straight from
// their definitions, without any of the engine's tables, streams or batches.

#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"

namespace reference {

using Color = std::array<double, 4>;  // premultiplied linear light
using Rgb = std::array<double, 3>;    // straight linear light
using Bitmap = std::shared_ptr<NSBitmapImageRep>;

enum class Edge { kTransparent, kNearest };

/// A picture in linear light that can be read anywhere.
class Picture {
 public:
  Picture(const NSBitmapImageRep& bitmap, Edge edge);
  int64_t width() const { return width_; }
  int64_t height() const { return height_; }
  /// y downwards.
  Color at(int64_t x, int64_t y) const;
  /// Bilinear, pixel centres at 0.5; y downwards.
  Color sample(double x, double y) const;
  void set(int64_t x, int64_t y, const Color& c) {
    pixels_[static_cast<size_t>(y * width_ + x)] = c;
  }

 private:
  int64_t width_;
  int64_t height_;
  Edge edge_;
  std::vector<Color> pixels_;
};

using Function = std::function<Color(const Picture&, int64_t x, int64_t y)>;

/// A bitmap of the same size, each pixel stored the way the platform does.
std::shared_ptr<NSBitmapImageRep> run(const NSBitmapImageRep& bitmap, Edge edge,
                                      const Function& pixel);
/// A function of straight linear colour.
std::shared_ptr<NSBitmapImageRep> runColor(const NSBitmapImageRep& bitmap,
                                           const std::function<Rgb(const Rgb&)>& color);

/// The picture blurred, row after row.
std::vector<Color> gaussian(const Picture& picture, double sigma);

double luminance(const Rgb& c);
Rgb controls(const Rgb& c, double saturation, double brightness, double contrast);
Rgb sepia(const Rgb& c, double intensity);
Rgb highlightShadow(const Rgb& color, double highlight, double shadow);
Rgb hue(const Rgb& c, double angle);

/// The nearest point of the jittered grid, in y-up coordinates.
struct Site {
  double x;
  double y;
  double distance;
  /// How much farther the second nearest is.
  double lead;
};
Site nearestSite(double x, double y, double pitch, double centerX, double centerY);

// Whole filters. Grids are centred at (150, 150).
Bitmap blurred(const NSBitmapImageRep& bitmap, double sigma, Edge edge);
Bitmap sharpened(const NSBitmapImageRep& bitmap, double amount);
Bitmap edges(const NSBitmapImageRep& bitmap, double intensity);
Bitmap edgeWork(const NSBitmapImageRep& bitmap, double radius);
Bitmap pixellated(const NSBitmapImageRep& bitmap, double scale);
Bitmap crystallized(const NSBitmapImageRep& bitmap, double radius);
Bitmap pointillized(const NSBitmapImageRep& bitmap, double radius);
/// The site that a pixel of the two filters above shows, y downwards.
Site siteAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y, double radius);

}  // namespace reference
