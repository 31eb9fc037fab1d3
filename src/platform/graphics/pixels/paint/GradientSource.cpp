#include "platform/graphics/pixels/paint/GradientSource.h"

#include <algorithm>
#include <cmath>

#include "platform/graphics/pixels/paint/GradientKernels.h"
#include "platform/graphics/pixels/paint/SpanKernels.h"

namespace {

constexpr double kLastEntry = GradientTable::kSize - 1;

bool extendsBefore(GradientExtent extent) {
  return (static_cast<int>(extent) & static_cast<int>(GradientExtent::beforeStart)) != 0;
}

bool extendsAfter(GradientExtent extent) {
  return (static_cast<int>(extent) & static_cast<int>(GradientExtent::afterEnd)) != 0;
}

bool isFinite(const CGAffineTransform& t) {
  return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
         std::isfinite(t.tx) && std::isfinite(t.ty);
}

/// Columns that are computed from the same one, in single precision. Whatever part of a row is
/// asked for, its pixels come from the same columns.
constexpr int32_t kColumns = 256;

/// Calls row(origin, first, n, out) for the pieces of a row that begin at `first` from an origin.
template <class Row>
void fetchInPieces(int32_t x, int32_t n, uint32_t* out, Row row) {
  while (n > 0) {
    const int32_t origin = x & ~(kColumns - 1);
    const int32_t count = std::min(n, origin + kColumns - x);
    row(origin, x - origin, count, out);
    x += count;
    n -= count;
    out += count;
  }
}

/// A location that varies linearly over the device: base + dx x + dy y.
struct LinearField {
  double base = 0;
  double dx = 0;
  double dy = 0;
  double at(double x, double y) const { return base + dx * x + dy * y; }
};

class LinearSource final : public RowSource {
 public:
  LinearSource(const GradientTable& table, const LinearField& field, GradientExtent extent)
      : table_(table), field_(field), extent_(extent) {}

  bool opaque() const override { return table_.opaque() && extent_ == GradientExtent::both; }

  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override {
    if (field_.dy == 0) return sameRow(x, n);
    fetch(x, y, n, buffer);
    return buffer;
  }

 private:
  void fetch(int32_t x, int32_t y, int32_t n, uint32_t* out) const {
    if (field_.dx == 0) {
      fillSpan(out, n, constantPixel(field_.at(x + 0.5, y + 0.5)));
      return;
    }
    fetchInPieces(x, n, out, [&](int32_t origin, int32_t first, int32_t count, uint32_t* piece) {
      fetchPiece(field_.at(origin + 0.5, y + 0.5), first, count, piece);
    });
  }

  /// `start` is the location of the pixel 0.
  void fetchPiece(double start, int32_t first, int32_t n, uint32_t* out) const {
    linearGradientRow(out, first, n, table_.entries(), static_cast<float>(start * kLastEntry + 0.5),
                      static_cast<float>(field_.dx * kLastEntry));
    if (extent_ == GradientExtent::both) return;
    for (int32_t i = 0; i < n; ++i) {
      const double location = start + field_.dx * (first + i);
      const bool hidden =
          (location < 0 && !extendsBefore(extent_)) || (location > 1 && !extendsAfter(extent_));
      if (hidden) out[i] = 0;
    }
  }

  bool hides(double location) const {
    return (location < 0 && !extendsBefore(extent_)) || (location > 1 && !extendsAfter(extent_));
  }

  uint32_t constantPixel(double location) const {
    if (hides(location)) return 0;
    return table_.pixelAt(location * kLastEntry);
  }

  /// Rows that are all alike are computed once, in pieces as they are asked for.
  const uint32_t* sameRow(int32_t x, int32_t n) {
    const auto end = [this] { return firstKnown_ + static_cast<int64_t>(known_.size()); };
    if (x < firstKnown_ || x > end()) {
      known_.clear();
      firstKnown_ = x;
    }
    if (x + n > end()) {
      const auto from = static_cast<int32_t>(end());
      const int32_t more = x + n - from;
      known_.resize(known_.size() + static_cast<size_t>(more));
      fetch(from, 0, more, known_.data() + (from - firstKnown_));
    }
    return known_.data() + (x - firstKnown_);
  }

  const GradientTable& table_;
  LinearField field_;
  GradientExtent extent_;
  int32_t firstKnown_ = 0;
  std::vector<uint32_t> known_;
};

/// Circles around one centre.
class ConcentricSource final : public RowSource {
 public:
  ConcentricSource(const GradientTable& table, const RadialAxis& axis, GradientExtent extent,
                   const CGAffineTransform& fromDevice)
      : table_(table), extent_(extent) {
    const double scale = kLastEntry / (axis.endRadius - axis.startRadius);
    const CGAffineTransform toEntries{
        scale, 0, 0, scale, -axis.startCenter.x * scale, -axis.startCenter.y * scale};
    toEntries_ = CGAffineTransformConcat(fromDevice, toEntries);
    offset_ = -axis.startRadius * scale;
    inward_ = scale < 0;
  }

  bool opaque() const override { return table_.opaque() && extent_ == GradientExtent::both; }

  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override {
    fetchInPieces(x, n, buffer, [&](int32_t origin, int32_t first, int32_t count, uint32_t* out) {
      fetchPiece(CGPointApplyAffineTransform({origin + 0.5, y + 0.5}, toEntries_), first, count,
                 out);
    });
    return buffer;
  }

 private:
  /// `start` is the place of the pixel 0.
  void fetchPiece(NSPoint start, int32_t first, int32_t n, uint32_t* out) const {
    if (!inward_ && extent_ == GradientExtent::both) {
      const ConcentricRow row{static_cast<float>(start.x), static_cast<float>(start.y),
                              static_cast<float>(toEntries_.a), static_cast<float>(toEntries_.b),
                              static_cast<float>(offset_ + 0.5)};
      concentricGradientRow(out, first, n, table_.entries(), row);
      return;
    }
    for (int32_t i = 0; i < n; ++i) out[i] = pixel(start, first + i);
  }

  uint32_t pixel(NSPoint start, int32_t i) const {
    const double distance = std::hypot(start.x + toEntries_.a * i, start.y + toEntries_.b * i);
    const double location = offset_ + (inward_ ? -distance : distance);
    if (location < 0 && !extendsBefore(extent_)) return 0;
    if (location > kLastEntry && !extendsAfter(extent_)) return 0;
    return table_.pixelAt(location);
  }

  const GradientTable& table_;
  GradientExtent extent_;
  CGAffineTransform toEntries_;
  double offset_ = 0;
  bool inward_ = false;
};

/// Two circles with different centres: the circle of location t through a point solves
/// a t^2 - 2 b t + c = 0.
class TwoCircleSource final : public RowSource {
 public:
  TwoCircleSource(const GradientTable& table, const RadialAxis& axis, GradientExtent extent,
                  const CGAffineTransform& fromDevice)
      : table_(table), extent_(extent) {
    // In units of the larger size, so that squares neither overflow nor vanish.
    const double dx = axis.endCenter.x - axis.startCenter.x;
    const double dy = axis.endCenter.y - axis.startCenter.y;
    const double unit = 1 / std::max({std::hypot(dx, dy), axis.startRadius, axis.endRadius});
    toUnits_ = CGAffineTransformConcat(
        fromDevice, {unit, 0, 0, unit, -axis.startCenter.x * unit, -axis.startCenter.y * unit});
    move_ = {dx * unit, dy * unit};
    startRadius_ = axis.startRadius * unit;
    growth_ = (axis.endRadius - axis.startRadius) * unit;
    a_ = move_.x * move_.x + move_.y * move_.y - growth_ * growth_;
    nested_ = a_ < kSafelyNested && growth_ > 0 && extent == GradientExtent::both;
  }

  bool opaque() const override {
    // One circle inside the other: the larger one grows over the whole plane.
    return a_ < 0 && table_.opaque() && extent_ == GradientExtent::both;
  }

  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override {
    fetchInPieces(x, n, buffer, [&](int32_t origin, int32_t first, int32_t count, uint32_t* out) {
      fetchPiece(CGPointApplyAffineTransform({origin + 0.5, y + 0.5}, toUnits_), first, count, out);
    });
    return buffer;
  }

 private:
  /// `start` is the place of the pixel 0.
  void fetchPiece(NSPoint start, int32_t first, int32_t n, uint32_t* out) const {
    if (nested_) {
      nestedCirclesGradientRow(out, first, n, table_.entries(), nestedRow(start));
      return;
    }
    for (int32_t i = first; i < first + n; ++i) {
      *out++ = pixel({start.x + toUnits_.a * i, start.y + toUnits_.b * i});
    }
  }

  /// Single precision would show where the circles nearly touch.
  static constexpr double kSafelyNested = -0.05;

  NestedCirclesRow nestedRow(NSPoint start) const {
    const auto narrow = [](double v) { return static_cast<float>(v); };
    return {narrow(start.x),      narrow(start.y), narrow(toUnits_.a),
            narrow(toUnits_.b),   narrow(move_.x), narrow(move_.y),
            narrow(startRadius_), narrow(growth_), narrow(a_)};
  }

  bool shows(double location) const {
    return startRadius_ + location * growth_ >= 0 && (location >= 0 || extendsBefore(extent_)) &&
           (location <= 1 || extendsAfter(extent_));
  }

  uint32_t pixelAt(double location) const { return table_.pixelAt(location * kLastEntry); }

  uint32_t pixel(NSPoint p) const {
    const double b = p.x * move_.x + p.y * move_.y + startRadius_ * growth_;
    const double c = p.x * p.x + p.y * p.y - startRadius_ * startRadius_;
    if (std::fabs(a_) < 1e-9) {
      const double location = c / (2 * b);
      return b != 0 && shows(location) ? pixelAt(location) : 0;
    }
    const double discriminant = b * b - a_ * c;
    if (!(discriminant >= 0)) return 0;
    const double root = std::sqrt(discriminant);
    const double first = (b + root) / a_;
    const double second = (b - root) / a_;
    const double higher = std::max(first, second);
    if (shows(higher)) return pixelAt(higher);
    const double lower = std::min(first, second);
    return shows(lower) ? pixelAt(lower) : 0;
  }

  const GradientTable& table_;
  GradientExtent extent_;
  CGAffineTransform toUnits_;
  NSPoint move_;
  double startRadius_ = 0;
  double growth_ = 0;
  double a_ = 0;
  bool nested_ = false;
};

/// The inverse of a transform, if it has a finite one.
bool invert(const CGAffineTransform& toDevice, CGAffineTransform* fromDevice) {
  *fromDevice = CGAffineTransformInvert(toDevice);
  return CGAffineTransformDeterminant(toDevice) != 0 && isFinite(*fromDevice);
}

}  // namespace

std::unique_ptr<RowSource> linearGradientSource(const GradientTable& table, const LinearAxis& axis,
                                                GradientExtent extent,
                                                const CGAffineTransform& toDevice) {
  CGAffineTransform fromDevice;
  const double dx = axis.end.x - axis.start.x;
  const double dy = axis.end.y - axis.start.y;
  const double squaredLength = dx * dx + dy * dy;
  if (!invert(toDevice, &fromDevice) || !(squaredLength > 0 && std::isfinite(squaredLength))) {
    return nullptr;
  }
  const NSPoint unit{dx / squaredLength, dy / squaredLength};
  const LinearField field{
      (fromDevice.tx - axis.start.x) * unit.x + (fromDevice.ty - axis.start.y) * unit.y,
      fromDevice.a * unit.x + fromDevice.b * unit.y, fromDevice.c * unit.x + fromDevice.d * unit.y};
  if (!std::isfinite(field.base) || !std::isfinite(field.dx) || !std::isfinite(field.dy)) {
    return nullptr;
  }
  return std::make_unique<LinearSource>(table, field, extent);
}

std::unique_ptr<RowSource> radialGradientSource(const GradientTable& table, const RadialAxis& axis,
                                                GradientExtent extent,
                                                const CGAffineTransform& toDevice) {
  CGAffineTransform fromDevice;
  if (!invert(toDevice, &fromDevice)) return nullptr;
  if (!(axis.startRadius >= 0 && axis.endRadius >= 0)) return nullptr;
  const double distance =
      std::hypot(axis.endCenter.x - axis.startCenter.x, axis.endCenter.y - axis.startCenter.y);
  const double growth = axis.endRadius - axis.startRadius;
  if (!std::isfinite(distance) || !std::isfinite(growth)) return nullptr;
  if (distance > 0) return std::make_unique<TwoCircleSource>(table, axis, extent, fromDevice);
  if (growth == 0) return nullptr;
  return std::make_unique<ConcentricSource>(table, axis, extent, fromDevice);
}
