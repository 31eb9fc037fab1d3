#pragma once

#include <cmath>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/outline/StrokeStyle.h"

/// A slow, independent evaluation of strokes: the union of one rectangle per segment, one wedge
/// per join and the caps, on a grid of kSamples x kSamples points per pixel. Curves are cut much
/// finer than the renderer does and turn with round joins.
class StrokeReference {
 public:
  static constexpr int kSamples = 8;

  StrokeReference(const PathData& path, const StrokeStyle& style, const CGAffineTransform& toDevice,
                  const PixelBox& box)
      : style_(style),
        toDevice_(toDevice),
        box_(box),
        width_(static_cast<size_t>(box.width() * kSamples)),
        samples_(width_ * static_cast<size_t>(box.height() * kSamples), 0) {
    readPath(path);
    countSamples();
  }

  /// Covered part of a pixel, 0 to 1.
  double at(int32_t x, int32_t y) const {
    const auto pixel = static_cast<size_t>((y - box_.y0) * box_.width() + (x - box_.x0));
    return counts_[pixel] / static_cast<double>(kSamples * kSamples);
  }

  double area() const {
    size_t count = 0;
    for (const uint8_t c : counts_) count += c;
    return static_cast<double>(count) / (kSamples * kSamples);
  }

 private:
  struct Vertex {
    NSPoint at;
    bool smooth = false;
  };

  void countSamples() {
    counts_.assign(static_cast<size_t>(box_.width() * box_.height()), 0);
    const auto pixels = static_cast<size_t>(box_.width());
    for (size_t i = 0; i < samples_.size(); ++i) {
      const size_t row = i / width_ / kSamples, column = i % width_ / kSamples;
      counts_[row * pixels + column] =
          static_cast<uint8_t>(counts_[row * pixels + column] + samples_[i]);
    }
  }

  void readPath(const PathData& path) {
    std::vector<Vertex> line;
    const NSPoint* p = path.points.data();
    for (const PathVerb verb : path.verbs) {
      switch (verb) {
        case PathVerb::move:
          strokeLine(line, false);
          line.assign(1, {*p, false});
          break;
        case PathVerb::line:
          line.push_back({*p, false});
          break;
        case PathVerb::cubic:
          addCurve(line, p);
          break;
        case PathVerb::quad:
          break;  // none of the shapes uses one
        case PathVerb::close:
          strokeLine(line, true);
          line.clear();
          break;
      }
      p += pointCount(verb);
    }
    strokeLine(line, false);
  }

  static void addCurve(std::vector<Vertex>& line, const NSPoint* p) {
    const NSPoint p0 = line.back().at;
    constexpr int kSteps = 300;
    for (int i = 1; i <= kSteps; ++i) {
      const double t = i / static_cast<double>(kSteps), s = 1 - t;
      const double w[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
      line.push_back({{w[0] * p0.x + w[1] * p[0].x + w[2] * p[1].x + w[3] * p[2].x,
                       w[0] * p0.y + w[1] * p[0].y + w[2] * p[1].y + w[3] * p[2].y},
                      i < kSteps});
    }
  }

  static NSPoint direction(NSPoint a, NSPoint b) {
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    return {(b.x - a.x) / length, (b.y - a.y) / length};
  }

  void strokeLine(const std::vector<Vertex>& given, bool closed) {
    std::vector<Vertex> line;
    for (const Vertex& v : given) {
      if (line.empty() || !(line.back().at == v.at)) line.push_back(v);
    }
    if (closed && line.size() > 1 && line.front().at == line.back().at) line.pop_back();
    const size_t n = line.size();
    if (n < 2) return;
    const size_t segments = closed ? n : n - 1;
    for (size_t i = 0; i < segments; ++i) addSegment(line[i].at, line[(i + 1) % n].at);
    for (size_t i = closed ? 0 : 1; i < (closed ? n : n - 1); ++i) {
      addJoin(line[(i + n - 1) % n].at, line[i], line[(i + 1) % n].at);
    }
    if (closed) return;
    addCap(line[1].at, line[0].at);
    addCap(line[n - 2].at, line[n - 1].at);
  }

  NSPoint out(NSPoint p, NSPoint d, double along, double across) const {
    const double r = style_.width / 2;
    return {p.x + r * (along * d.x - across * d.y), p.y + r * (along * d.y + across * d.x)};
  }

  void addSegment(NSPoint a, NSPoint b) {
    const NSPoint d = direction(a, b);
    fill({out(a, d, 0, 1), out(b, d, 0, 1), out(b, d, 0, -1), out(a, d, 0, -1)});
  }

  void addJoin(NSPoint before, const Vertex& v, NSPoint after) {
    const NSPoint a = direction(before, v.at), b = direction(v.at, after);
    const double cross = a.x * b.y - a.y * b.x, dot = a.x * b.x + a.y * b.y;
    const double turn = std::atan2(cross, dot);
    const double side = turn > 0 ? -1 : 1;
    const LineJoin join = v.smooth ? LineJoin::round : style_.join;
    const NSPoint from = out(v.at, a, 0, side), to = out(v.at, b, 0, side);
    const double half = std::abs(turn) / 2;
    if (join == LineJoin::round) {
      addSector(v.at, a, side, turn);
    } else if (join == LineJoin::miter && 1 / std::cos(half) <= style_.miterLimit) {
      fill({v.at, from, out(from, a, std::tan(half), 0), to});
    } else {
      fill({v.at, from, to});
    }
  }

  void addSector(NSPoint centre, NSPoint direction, double side, double turn) {
    const int steps = 2 + static_cast<int>(std::abs(turn) * 40);
    std::vector<NSPoint> fan{centre};
    for (int i = 0; i <= steps; ++i) {
      const double angle = turn * i / steps;
      const NSPoint d{direction.x * std::cos(angle) - direction.y * std::sin(angle),
                      direction.x * std::sin(angle) + direction.y * std::cos(angle)};
      fan.push_back(out(centre, d, 0, side));
    }
    fill(fan);
  }

  void addCap(NSPoint inner, NSPoint end) {
    const NSPoint d = direction(inner, end);
    if (style_.cap == LineCap::square) {
      fill({out(end, d, 0, 1), out(end, d, 1, 1), out(end, d, 1, -1), out(end, d, 0, -1)});
    } else if (style_.cap == LineCap::round) {
      addSector(end, d, -1, M_PI);
    }
  }

  /// Marks the samples inside a convex polygon given in user space.
  void fill(const std::vector<NSPoint>& given) {
    std::vector<NSPoint> polygon = given;
    double top = HUGE_VAL, bottom = -HUGE_VAL;
    for (NSPoint& p : polygon) {
      p = CGPointApplyAffineTransform(p, toDevice_);
      p = {(p.x - box_.x0) * kSamples - 0.5, (p.y - box_.y0) * kSamples - 0.5};
      top = std::min(top, p.y);
      bottom = std::max(bottom, p.y);
    }
    const auto rows = static_cast<double>(box_.height() * kSamples - 1);
    for (double y = std::max(0.0, std::ceil(top)); y <= std::min(rows, std::floor(bottom)); ++y) {
      fillRow(polygon, y);
    }
  }

  void fillRow(const std::vector<NSPoint>& polygon, double y) {
    double left = HUGE_VAL, right = -HUGE_VAL;
    for (size_t i = 0; i < polygon.size(); ++i) {
      const NSPoint a = polygon[i], b = polygon[(i + 1) % polygon.size()];
      if ((a.y < y && b.y < y) || (a.y > y && b.y > y)) continue;
      const double t = a.y == b.y ? 0 : (y - a.y) / (b.y - a.y);
      for (const double x : {a.x + t * (b.x - a.x), a.y == b.y ? b.x : a.x + t * (b.x - a.x)}) {
        left = std::min(left, x);
        right = std::max(right, x);
      }
    }
    const double first = std::max(0.0, std::ceil(left));
    const double last = std::min(static_cast<double>(width_) - 1, std::floor(right));
    for (double x = first; x <= last; ++x) {
      samples_[static_cast<size_t>(y) * width_ + static_cast<size_t>(x)] = 1;
    }
  }

  StrokeStyle style_;
  CGAffineTransform toDevice_;
  PixelBox box_;
  size_t width_;
  std::vector<uint8_t> samples_;
  std::vector<uint8_t> counts_;  ///< covered samples per pixel
};
