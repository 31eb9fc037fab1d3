#include "support/ReferenceFilters.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace reference {

namespace {

double toLinear(double v) {
  return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double toCoded(double v) {
  return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

Color load(const uint8_t* p) {
  const double a = p[3] / 255.0;
  if (p[3] == 0) return {};
  return {a * toLinear(p[0] / 255.0 / a), a * toLinear(p[1] / 255.0 / a),
          a * toLinear(p[2] / 255.0 / a), a};
}

void store(const Color& c, uint8_t* p) {
  const double a = std::clamp(c[3], 0.0, 1.0);
  for (int i = 0; i < 3; ++i) {
    const double straight = std::clamp(c[i] / std::max(a, 0.00001), 0.0, 1.0);
    p[i] = static_cast<uint8_t>(std::floor(255 * a * toCoded(straight) + 0.5));
  }
  p[3] = static_cast<uint8_t>(std::floor(255 * a + 0.5));
}

double mix(double u, double v, double t) {
  return u + (v - u) * t;
}

double smooth(double e0, double e1, double x) {
  const double t = std::clamp((x - e0) / (e1 - e0), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

uint32_t hash(int64_t i, int64_t j) {
  uint32_t h = static_cast<uint32_t>(i) * 0x9E3779B1U ^ static_cast<uint32_t>(j) * 0x85EBCA77U;
  h ^= h >> 15;
  h *= 0x2C1B3C6DU;
  h ^= h >> 12;
  h *= 0x297A2D39U;
  h ^= h >> 15;
  return h;
}

}  // namespace

Picture::Picture(const NSBitmapImageRep& bitmap, Edge edge)
    : width_(bitmap.pixelsWide()), height_(bitmap.pixelsHigh()), edge_(edge) {
  for (int64_t y = 0; y < height_; ++y) {
    for (int64_t x = 0; x < width_; ++x) pixels_.push_back(load(bitmap.row(y) + x * 4));
  }
}

Color Picture::at(int64_t x, int64_t y) const {
  const int64_t nearX = std::clamp<int64_t>(x, 0, width_ - 1);
  const int64_t nearY = std::clamp<int64_t>(y, 0, height_ - 1);
  if (edge_ == Edge::kTransparent && (nearX != x || nearY != y)) return {};
  return pixels_[static_cast<size_t>(nearY * width_ + nearX)];
}

Color Picture::sample(double x, double y) const {
  const double x0 = std::floor(x - 0.5);
  const double y0 = std::floor(y - 0.5);
  Color sum{};
  for (int corner = 0; corner < 4; ++corner) {
    const double cx = x0 + corner % 2;
    const double cy = y0 + corner / 2;
    const double weight = (1 - std::fabs(x - 0.5 - cx)) * (1 - std::fabs(y - 0.5 - cy));
    const Color p = at(static_cast<int64_t>(cx), static_cast<int64_t>(cy));
    for (int c = 0; c < 4; ++c) sum[c] += weight * p[c];
  }
  return sum;
}

std::shared_ptr<NSBitmapImageRep> run(const NSBitmapImageRep& bitmap, Edge edge,
                                      const Function& pixel) {
  const Picture picture(bitmap, edge);
  auto result = NSBitmapImageRep::create(bitmap.pixelsWide(), bitmap.pixelsHigh());
  uint8_t* out = result->writableRows(0, bitmap.pixelsHigh());
  for (int64_t y = 0; y < picture.height(); ++y) {
    for (int64_t x = 0; x < picture.width(); ++x, out += 4) store(pixel(picture, x, y), out);
  }
  return result;
}

std::shared_ptr<NSBitmapImageRep> runColor(const NSBitmapImageRep& bitmap,
                                           const std::function<Rgb(const Rgb&)>& color) {
  return run(bitmap, Edge::kTransparent, [&](const Picture& p, int64_t x, int64_t y) -> Color {
    const Color c = p.at(x, y);
    if (c[3] == 0) return {};
    const auto out = color({c[0] / c[3], c[1] / c[3], c[2] / c[3]});
    return {out[0] * c[3], out[1] * c[3], out[2] * c[3], c[3]};
  });
}

std::vector<Color> gaussian(const Picture& picture, double sigma) {
  const auto radius = static_cast<int64_t>(std::ceil(6 * sigma));
  std::vector<double> weights;
  double total = 0;
  for (int64_t i = -radius; i <= radius; ++i) {
    weights.push_back(std::exp(-static_cast<double>(i * i) / (2 * sigma * sigma)));
    total += weights.back();
  }
  const auto blurred = [&](const std::function<Color(int64_t)>& at) {
    Color sum{};
    for (int64_t i = -radius; i <= radius; ++i) {
      const Color p = at(i);
      const double weight = weights[static_cast<size_t>(i + radius)] / total;
      for (int c = 0; c < 4; ++c) sum[c] += weight * p[c];
    }
    return sum;
  };
  // Rows beyond the picture are either nothing or copies of its edge rows, blurred or not.
  Picture rows = picture;
  for (int64_t y = 0; y < picture.height(); ++y) {
    for (int64_t x = 0; x < picture.width(); ++x) {
      rows.set(x, y, blurred([&](int64_t i) { return picture.at(x + i, y); }));
    }
  }
  std::vector<Color> result;
  for (int64_t y = 0; y < picture.height(); ++y) {
    for (int64_t x = 0; x < picture.width(); ++x) {
      result.push_back(blurred([&](int64_t i) { return rows.at(x, y + i); }));
    }
  }
  return result;
}

double luminance(const Rgb& c) {
  return 0.2125 * c[0] + 0.7154 * c[1] + 0.0721 * c[2];
}

Rgb controls(const Rgb& c, double saturation, double brightness, double contrast) {
  const double y = luminance(c);
  Rgb result;
  for (int i = 0; i < 3; ++i) {
    result[i] = (mix(y, c[i], saturation) - 0.5) * contrast + 0.5 + brightness;
  }
  return result;
}

Rgb sepia(const Rgb& c, double intensity) {
  const double y = luminance(c);
  return {mix(c[0], std::pow(y, 0.79), intensity), mix(c[1], std::pow(y, 1.11), intensity),
          mix(c[2], y * y, intensity)};
}

Rgb highlightShadow(const Rgb& color, double h, double s) {
  const double z = std::clamp(1 - std::pow(std::fabs(s / 0.3), 1.6), 0.0, 1.0);
  const double g = 1 / std::max(1.0, 1.997 - 1 / (1 + std::exp(-6 * h)));
  const double scale = 0.5 + 0.5 * smooth(0.5, 1, s);
  const double red = color[0];
  const double green = color[1];
  const double blue = color[2];
  const double peak = std::max({red, green, blue});
  const double root = std::sqrt(peak);
  const double warmth = (red + 0.8 * green + 1.1 * blue) / std::max(0.001, red + green + blue);
  const double lift = s == 0 ? 0 : s * std::pow(std::min(warmth, 1.0), 1 - s);
  const double y = .299 * red + .587 * green + .114 * blue;
  const double i = .596 * red - .2755 * green - .321 * blue;
  const double q = .212 * red - .523 * green + .311 * blue;
  const auto exponent = [&](double c) { return mix(std::exp2(-lift - c), 1, z); };
  const double k = 2 * std::pow(y * scale, exponent(red));
  const double lumaOnly[] = {1.00048 * k + .955558 * i + .619549 * q,
                             .999864 * k - .271545 * i - .646786 * q,
                             .999446 * k - 1.10803 * i + 1.70542 * q};
  const double restore = std::min(1.0, 30 * peak);
  const double boost = restore * (1 - h);
  Rgb result;
  for (int n = 0; n < 3; ++n) {
    const double c = color[n];
    double shade = 2 * (1 + lift) * std::pow(c * scale, exponent(c));
    shade = mix(shade, lumaOnly[n], 0.35);
    shade = mix(c, shade, smooth(0, 0.1 + lift, std::sqrt(root)));
    shade = mix(shade, c, root);
    double high = std::pow(c * g, 2 - h);
    high = mix(high, mix(0.25, high, 1 + 0.4 * (1 - std::min(1.0, h + 0.3))), boost);
    high = mix(c, high, smooth(0.2, 0.8, root));
    high = mix(c, high, peak);
    const double out = mix(shade, high, std::min(root, 1.0));
    result[n] =
        std::max(mix(out, mix(0.5, out, 1 + 0.1 * std::fabs(lift) * (1 - z)), restore), 0.0);
  }
  return result;
}

Rgb hue(const Rgb& v, double angle) {
  const double C = std::cos(angle);
  const double S = std::sin(angle);
  const double m[3][3] = {
      {.213 + .787 * C - .213 * S, .715 - .715 * C - .715 * S, .072 - .072 * C + .928 * S},
      {.213 - .213 * C + .143 * S, .715 + .285 * C + .140 * S, .072 - .072 * C - .283 * S},
      {.213 - .213 * C - .787 * S, .715 - .715 * C + .715 * S, .072 + .928 * C + .072 * S}};
  Rgb result;
  for (int i = 0; i < 3; ++i) result[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
  return result;
}

Site nearestSite(double x, double y, double pitch, double centerX, double centerY) {
  const auto column = static_cast<int64_t>(std::floor((x - centerX) / pitch));
  const auto row = static_cast<int64_t>(std::floor((y - centerY) / pitch));
  Site best{0, 0, std::numeric_limits<double>::infinity(), 0};
  for (int64_t j = row - 2; j <= row + 3; ++j) {
    for (int64_t i = column - 2; i <= column + 3; ++i) {
      const uint32_t h = hash(i, j);
      const double siteX =
          centerX + (static_cast<double>(i) + 0.6 * ((h & 0xffff) / 65536.0 - 0.5)) * pitch;
      const double siteY =
          centerY + (static_cast<double>(j) + 0.6 * ((h >> 16) / 65536.0 - 0.5)) * pitch;
      const double distance = std::hypot(siteX - x, siteY - y);
      if (distance < best.distance) {
        best = {siteX, siteY, distance, best.distance - distance};
      } else {
        best.lead = std::min(best.lead, distance - best.distance);
      }
    }
  }
  return best;
}

namespace {

constexpr double kCenter = 150;

/// Sample at a place given with y upwards.
Color sampleUp(const Picture& p, double x, double y) {
  return p.sample(x, static_cast<double>(p.height()) - y);
}

double luminance(const Color& c) {
  return reference::luminance(Rgb{c[0], c[1], c[2]});
}

double videoLuma(const Color& c) {
  return .299 * c[0] + .587 * c[1] + .114 * c[2];
}

size_t indexOf(const Picture& p, int64_t x, int64_t y) {
  return static_cast<size_t>(y * p.width() + x);
}

}  // namespace

Bitmap blurred(const NSBitmapImageRep& bitmap, double sigma, Edge edge) {
  const auto soft = gaussian(Picture(bitmap, edge), sigma);
  return run(bitmap, edge,
             [&](const Picture& p, int64_t x, int64_t y) { return soft[indexOf(p, x, y)]; });
}

Bitmap sharpened(const NSBitmapImageRep& bitmap, double amount) {
  const auto soft = gaussian(Picture(bitmap, Edge::kNearest), 1.69);
  return run(bitmap, Edge::kNearest, [&](const Picture& p, int64_t x, int64_t y) {
    Color c = p.at(x, y);
    const double delta = amount * (luminance(c) - luminance(soft[indexOf(p, x, y)]));
    for (int i = 0; i < 3; ++i) c[i] = std::clamp(c[i] + delta, 0.0, c[3]);
    return c;
  });
}

Bitmap edges(const NSBitmapImageRep& bitmap, double intensity) {
  return run(bitmap, Edge::kTransparent, [&](const Picture& p, int64_t x, int64_t y) {
    const Color a = p.at(x, y);
    const Color b = p.at(x + 1, y);
    const Color c = p.at(x, y + 1);
    const Color d = p.at(x + 1, y + 1);
    Color out = a;
    for (int i = 0; i < 3; ++i) {
      out[i] = std::min(a[3], intensity * (std::pow(d[i] - a[i], 2) + std::pow(b[i] - c[i], 2)));
    }
    return out;
  });
}

Bitmap edgeWork(const NSBitmapImageRep& bitmap, double radius) {
  const Picture picture(bitmap, Edge::kNearest);
  const auto fine = gaussian(picture, radius / 2);
  const auto coarse = gaussian(picture, radius * 1.5);
  return run(bitmap, Edge::kNearest, [&](const Picture& p, int64_t x, int64_t y) {
    const size_t at = indexOf(p, x, y);
    const double alpha = std::clamp(400 * (videoLuma(fine[at]) - videoLuma(coarse[at])), 0.0, 1.0);
    return Color{alpha, alpha, alpha, alpha};
  });
}

Bitmap pixellated(const NSBitmapImageRep& bitmap, double scale) {
  return run(bitmap, Edge::kNearest, [&](const Picture& p, int64_t x, int64_t y) {
    const double up = static_cast<double>(p.height() - y) - 0.5;
    const double i = std::floor((static_cast<double>(x) + 0.5 - kCenter) / scale);
    const double j = std::floor((up - kCenter) / scale);
    return sampleUp(p, kCenter + (i + 0.5) * scale, kCenter + (j + 0.5) * scale);
  });
}

Site siteAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y, double radius) {
  const double up = static_cast<double>(bitmap.pixelsHigh() - y) - 0.5;
  return nearestSite(static_cast<double>(x) + 0.5, up, radius, kCenter, kCenter);
}

Bitmap crystallized(const NSBitmapImageRep& bitmap, double radius) {
  return run(bitmap, Edge::kNearest, [&](const Picture& p, int64_t x, int64_t y) {
    const Site site = siteAt(bitmap, x, y, radius);
    return sampleUp(p, site.x, site.y);
  });
}

Bitmap pointillized(const NSBitmapImageRep& bitmap, double radius) {
  return run(bitmap, Edge::kNearest, [&](const Picture& p, int64_t x, int64_t y) {
    const Site site = siteAt(bitmap, x, y, radius);
    const double coverage = std::clamp(0.55 * radius - site.distance + 0.5, 0.0, 1.0);
    const Color dot = sampleUp(p, site.x, site.y);
    Color out;
    for (int c = 0; c < 4; ++c) out[c] = mix(dot[3], dot[c], coverage);
    return out;
  });
}

}  // namespace reference
