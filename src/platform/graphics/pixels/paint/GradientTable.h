#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "platform/foundation/Convert.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"

struct GradientStop {
  double location = 0;  ///< 0..1; values outside are moved to the nearest end, NaN to 0
  RGBAColor color;
  bool operator==(const GradientStop&) const = default;
};

/// The colour at a location between the stops: components are interpolated before they are
/// premultiplied, below the first and above the last stop theirs hold. Of stops at the same
/// location the last one counts from there on. Transparent without stops.
RGBAColor interpolatedColor(std::span<const GradientStop> sortedStops, double location);

/// What lookups take of a table: its first entry, before which stands the colour before the start,
/// and whether that is another one, as it is where several stops are at 0.
struct GradientEntries {
  const uint32_t* first;
  bool startsWithEdge;
};

/// A gradient sampled at kSize evenly spaced locations from 0 to 1, as premultiplied pixels.
class GradientTable {
 public:
  static constexpr int kSize = 1024;

  /// Stops in any order, any number of them; those at equal locations keep their order. Every
  /// colour's alpha is scaled by `alpha`.
  GradientTable(std::span<const GradientStop> stops, double alpha);

  const uint32_t* pixels() const { return pixels_.data() + 1; }
  GradientEntries entries() const { return {pixels(), pixels_[0] != pixels_[1]}; }
  /// The colour at any place, counted in entries from the first.
  uint32_t pixelAt(double entry) const {
    if (entry < -0.5) return pixels_.front();
    return pixels()[roundedHalfUp(std::clamp<double>(entry, 0, kSize - 1))];
  }
  bool opaque() const { return opaque_; }

 private:
  void sample(std::span<const GradientStop> sortedStops, double alpha);

  std::array<uint32_t, kSize + 1> pixels_{};  // before the start, then the entries
  bool opaque_ = false;
};
