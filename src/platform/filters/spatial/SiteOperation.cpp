#include "platform/filters/spatial/SiteOperation.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "platform/machine/VectorWidthClones.h"

namespace {

/// Greatest displacement of a site is half of this, in pitches. Below 0.328 the site nearest to a
/// pixel is one of the 3 x 3 around it.
constexpr double kJitter = 0.6;
constexpr double kDotRadius = 0.55;
/// A row of sites whose middle is farther away than this, in pitches, has none that is nearest. For
/// a pixel v above the middle of its own row, the sites of the row below are at least 0.7 + v away,
/// and that of its own cell at most 0.8 to the side and v + 0.3 down, which is nearer from v = 0.3
/// on.
constexpr double kFarRow = 1.3001;

/// An integer hash that changes half of the bits for a change of any.
inline uint32_t mixed(int32_t i, int32_t j) {
  uint32_t h = static_cast<uint32_t>(i) * 0x9E3779B1U ^ static_cast<uint32_t>(j) * 0x85EBCA77U;
  h ^= h >> 15;
  h *= 0x2C1B3C6DU;
  h ^= h >> 12;
  h *= 0x297A2D39U;
  return h ^ (h >> 15);
}

/// Where the sites (first, j), (first + 1, j), ... lie: from the left edge of their cell, and from
/// its middle upwards.
TARGET_CLONES void displaceSites(int32_t first, int32_t j, double pitch, float* __restrict x,
                                 float* __restrict y, size_t count) {
  const double scale = kJitter * pitch / 65536;
  for (size_t n = 0; n < count; ++n) {
    const uint32_t random = mixed(first + static_cast<int32_t>(n), j);
    const auto u = static_cast<double>(static_cast<int32_t>(random & 0xFFFF) - 32768);
    const auto v = static_cast<double>(static_cast<int32_t>(random >> 16) - 32768);
    x[n] = static_cast<float>(u * scale + 0.5 * pitch);
    y[n] = static_cast<float>(v * scale);
  }
}

/// The same sites in pixels, y downwards; the first one's cell has its middle at (left, top).
TARGET_CLONES void placeSites(const float* __restrict x, const float* __restrict y, double pitch,
                              double left, double top, double* __restrict placeX,
                              double* __restrict placeY, size_t count) {
  for (size_t n = 0; n < count; ++n) {
    const auto cell = static_cast<double>(static_cast<int32_t>(n)) - 0.5;
    placeX[n] = left + cell * pitch + static_cast<double>(x[n]);
    placeY[n] = top - static_cast<double>(y[n]);
  }
}

/// Of neighbouring pixels, whose nearest sites are looked for together.
template <size_t kLanes>
using Floats = typename VectorTypes<kLanes>::Floats;
template <size_t kLanes>
using Ints = typename VectorTypes<kLanes>::Ints;
using Pixel = float __attribute__((vector_size(16)));

/// What is known of the sites around a row of pixels. Cells are counted from the one left of the
/// row's first pixel; `sites` holds three rows of `cells` each.
struct SiteWindow {
  size_t cells = 0;
  float pitch = 1;
  std::vector<float> x;          ///< from the left edge of the site's cell
  std::vector<float> squaredDy;  ///< of its distance from the row of pixels
  std::vector<int32_t> payload;  ///< what a pixel gets that is nearest to it
  std::vector<int32_t> begin;    ///< first pixel of each cell, and the end of the last one
  std::vector<float> offset;     ///< from the cell's left edge to that pixel's centre
  bool tooFar[3] = {};           ///< rows of sites none of which can be nearest
};

/// The nearest sites so far.
template <size_t kLanes>
struct Nearest {
  Ints<kLanes> payload = {};
  Floats<kLanes> squared = Floats<kLanes>{} + std::numeric_limits<float>::max();
};

template <size_t kLanes>
ALWAYS_INLINE void consider(const Floats<kLanes>& dx, const Floats<kLanes>& squaredDy,
                            const Ints<kLanes>& payload, Nearest<kLanes>& nearest) {
  const Floats<kLanes> squared = dx * dx + squaredDy;
  nearest.payload = squared < nearest.squared ? payload : nearest.payload;
  nearest.squared = squared < nearest.squared ? squared : nearest.squared;
}

/// Payload and squared distance of the site nearest to each pixel. Writes up to kMaxLanes - 1 more
/// than there are.
template <size_t kLanes>
ALWAYS_INLINE void findNearestBy(const SiteWindow& window, int32_t* found, float* squaredDistance) {
  constexpr float kSteps[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  Floats<kLanes> steps;
  VectorTypes<kLanes>::load(kSteps, steps);
  const size_t cells = window.cells;
  const float shifts[] = {-window.pitch, 0, window.pitch};
  for (size_t n = 1; n + 1 < cells; ++n) {
    const auto end = static_cast<size_t>(window.begin[n + 1]);
    float first = window.offset[n];
    for (auto pixel = static_cast<size_t>(window.begin[n]); pixel < end; pixel += kLanes) {
      const Floats<kLanes> x = steps + first;
      Nearest<kLanes> nearest;
      for (size_t row = 0; row < 3; ++row) {
        if (window.tooFar[row]) continue;
        for (size_t side = 0; side < 3; ++side) {
          const size_t site = row * cells + n - 1 + side;
          consider<kLanes>(x - (window.x[site] + shifts[side]),
                           Floats<kLanes>{} + window.squaredDy[site],
                           Ints<kLanes>{} + window.payload[site], nearest);
        }
      }
      VectorTypes<kLanes>::store(nearest.payload, found + pixel);
      VectorTypes<kLanes>::store(nearest.squared, squaredDistance + pixel);
      first += kLanes;
    }
  }
}
VECTOR_WIDTH_CLONES(findNearest, (const SiteWindow& window, int32_t* found, float* squaredDistance),
                    findNearestBy, (window, found, squaredDistance))

/// The widest pitch whose cells have at most four pixels.
constexpr double kNarrowPitch = 4;
constexpr size_t kNarrowLanes = 4;

/// The first values, four lanes for each.
template <size_t kLanes, class Vector, class Value, size_t... kPlaces>
ALWAYS_INLINE void spreadTo(const Value* values, Vector& lanes, std::index_sequence<kPlaces...>) {
  Vector all;
  VectorTypes<kLanes>::load(values, all);
  lanes = __builtin_shufflevector(all, all, (kPlaces / kNarrowLanes)...);
}
template <size_t kLanes, class Vector, class Value>
ALWAYS_INLINE void spread(const Value* values, Vector& lanes) {
  spreadTo<kLanes>(values, lanes, std::make_index_sequence<kLanes>());
}

/// The same for narrow cells, as many of them at a time as there is room for.
template <size_t kLanes>
ALWAYS_INLINE void findNearestNarrowBy(const SiteWindow& window, int32_t* found,
                                       float* squaredDistance) {
  constexpr float kSteps[] = {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3};
  Floats<kLanes> steps;
  VectorTypes<kLanes>::load(kSteps, steps);
  constexpr size_t kCells = kLanes / kNarrowLanes;
  const size_t cells = window.cells;
  const float shifts[] = {-window.pitch, 0, window.pitch};
  for (size_t n = 1; n + 1 < cells; n += kCells) {
    Floats<kLanes> x;
    spread<kLanes>(window.offset.data() + n, x);
    x += steps;
    Nearest<kLanes> nearest;
    for (size_t row = 0; row < 3; ++row) {
      if (window.tooFar[row]) continue;
      for (size_t side = 0; side < 3; ++side) {
        const size_t site = row * cells + n - 1 + side;
        Floats<kLanes> siteX;
        Floats<kLanes> squaredDy;
        Ints<kLanes> payload;
        spread<kLanes>(window.x.data() + site, siteX);
        spread<kLanes>(window.squaredDy.data() + site, squaredDy);
        spread<kLanes>(window.payload.data() + site, payload);
        consider<kLanes>(x - siteX - shifts[side], squaredDy, payload, nearest);
      }
    }
    // Each cell's lanes beyond its pixels are written over by the next cell's.
    for (size_t cell = 0; cell < std::min(kCells, cells - 1 - n); ++cell) {
      const auto pixel = static_cast<size_t>(window.begin[n + cell]);
      const auto lanes = reinterpret_cast<const char*>(&nearest.payload) + 16 * cell;
      std::memcpy(found + pixel, lanes, 16);
      const auto squares = reinterpret_cast<const char*>(&nearest.squared) + 16 * cell;
      std::memcpy(squaredDistance + pixel, squares, 16);
    }
  }
}
VECTOR_WIDTH_CLONES(findNearestNarrow,
                    (const SiteWindow& window, int32_t* found, float* squaredDistance),
                    findNearestNarrowBy, (window, found, squaredDistance))

TARGET_CLONES void squareDistances(const float* __restrict y, float from, float* __restrict squared,
                                   size_t count) {
  for (size_t i = 0; i < count; ++i) squared[i] = (y[i] - from) * (y[i] - from);
}

/// How much of each pixel a dot of that radius covers.
TARGET_CLONES void coverPixels(float radius, const float* __restrict squaredDistance,
                               float* __restrict coverage, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const float depth = radius - std::sqrt(squaredDistance[i]) + 0.5F;
    coverage[i] = depth > 0 ? (depth < 1 ? depth : 1.0F) : 0.0F;
  }
}

/// The three rows of sites around a row of pixels, and their colours.
class SiteRows {
 public:
  SiteRows(SiteShape shape, const SiteGrid& grid, const SourceView& view,
           const OperationTarget& target)
      : shape_(shape), grid_(grid), view_(view), left_(target.left), top_(target.top) {
    const int64_t width = target.bitmap.pixelsWide();
    first_ = column(0.5) - 1;
    const size_t cells = static_cast<size_t>(column(static_cast<double>(width) - 0.5) + 2 - first_);
    window_.cells = cells;
    window_.pitch = static_cast<float>(grid.pitch);
    // Narrow cells are read a few at a time.
    window_.x.resize(3 * cells + kMaxLanes - 1);
    window_.squaredDy.resize(3 * cells + kMaxLanes - 1);
    window_.payload.resize(3 * cells + kMaxLanes - 1);
    values_.resize(3 * cells * 4);
    for (Row& row : rows_) row.y.resize(cells);
    sampleX_.resize(cells);
    sampleY_.resize(cells);
    placeCells(width);
  }

  /// Moves to the pixel row `y`.
  const SiteWindow& moveTo(int64_t y) {
    const double up = static_cast<double>(top_ - y) - 0.5 - grid_.center.y;
    const double cell = std::floor(up / grid_.pitch + 0.5);
    const auto middle = static_cast<int64_t>(cell);
    for (int64_t j = middle - 1; j <= middle + 1; ++j) {
      const auto slot = static_cast<size_t>(((j % 3) + 3) % 3);
      if (rows_[slot].j != j) fill(slot, j);
      const double from = up - static_cast<double>(j) * grid_.pitch;
      window_.tooFar[slot] = std::fabs(from) > kFarRow * grid_.pitch;
      squareDistances(rows_[slot].y.data(), static_cast<float>(from),
                      window_.squaredDy.data() + slot * window_.cells, window_.cells);
    }
    return window_;
  }

  /// Linear light of all sites; a payload of dots is a position here.
  const float* values() const { return values_.data(); }

 private:
  struct Row {
    int64_t j = std::numeric_limits<int64_t>::min();
    std::vector<float> y;  // from the middle of the row's cells
  };

  int64_t column(double x) const {
    return static_cast<int64_t>(
        std::floor((static_cast<double>(left_) + x - grid_.center.x) / grid_.pitch + 0.5));
  }

  /// Which pixels lie in which cell.
  void placeCells(int64_t width) {
    const double origin = grid_.center.x - static_cast<double>(left_) - 0.5 * grid_.pitch;
    for (size_t n = 0; n <= window_.cells; ++n) {
      const double edge =
          origin + static_cast<double>(first_ + static_cast<int64_t>(n)) * grid_.pitch;
      const double pixel = std::clamp(std::ceil(edge - 0.5), 0.0, static_cast<double>(width));
      window_.begin.push_back(static_cast<int32_t>(pixel));
      window_.offset.push_back(static_cast<float>(pixel + 0.5 - edge));
    }
    window_.offset.resize(window_.offset.size() + kMaxLanes);
    // Rounding must leave no pixel out.
    window_.begin[1] = 0;
    window_.begin[window_.cells - 1] = static_cast<int32_t>(width);
  }

  void fill(size_t slot, int64_t j) {
    Row& row = rows_[slot];
    row.j = j;
    const size_t cells = window_.cells;
    float* values = values_.data() + slot * cells * 4;
    const double x = grid_.center.x + static_cast<double>(first_) * grid_.pitch;
    const double y = grid_.center.y + static_cast<double>(j) * grid_.pitch;
    displaceSites(static_cast<int32_t>(first_), static_cast<int32_t>(j), grid_.pitch,
                  window_.x.data() + slot * cells, row.y.data(), cells);
    placeSites(window_.x.data() + slot * cells, row.y.data(), grid_.pitch,
               x - static_cast<double>(left_), static_cast<double>(top_) - y, sampleX_.data(),
               sampleY_.data(), cells);
    view_.sample(sampleX_.data(), sampleY_.data(), cells, values);
    int32_t* payload = window_.payload.data() + slot * cells;
    if (shape_ == SiteShape::kCell) {
      encodePixels(values, cells, reinterpret_cast<uint8_t*>(payload));
    } else {
      for (size_t n = 0; n < cells; ++n) payload[n] = static_cast<int32_t>(4 * (slot * cells + n));
    }
  }

  SiteShape shape_;
  const SiteGrid& grid_;
  const SourceView& view_;
  int64_t left_;
  int64_t top_;
  int64_t first_ = 0;
  SiteWindow window_;
  Row rows_[3];
  std::vector<float> values_;
  std::vector<double> sampleX_;
  std::vector<double> sampleY_;
};

/// Mixes each pixel from its dot's colour and white, both as opaque as the picture is there.
void paintDots(const float* sites, const int32_t* found, const float* coverage, float* values,
               size_t count) {
  for (size_t k = 0; k < count; ++k) {
    Pixel site;
    std::memcpy(&site, sites + found[k], sizeof site);
    const Pixel value = site * coverage[k] + site[3] * (1 - coverage[k]);
    std::memcpy(values + 4 * k, &value, sizeof value);
  }
}

}  // namespace

int64_t SiteOperation::growth() const {
  return static_cast<int64_t>(std::ceil(1.5 * grid_.pitch));
}

int64_t SiteOperation::reach() const {
  return static_cast<int64_t>(std::ceil(2 * grid_.pitch));
}

void SiteOperation::render(const OperationSource& source, const OperationTarget& target,
                           RowRange rows) const {
  const SourceView view(source, target);
  SiteRows sites(shape_, grid_, view, target);
  const auto width = static_cast<size_t>(target.bitmap.pixelsWide());
  std::vector<int32_t> found(width + kMaxLanes);
  std::vector<float> squaredDistance(width + kMaxLanes);
  std::vector<float> values(shape_ == SiteShape::kDot ? 4 * width : 0);
  const auto dotRadius = static_cast<float>(kDotRadius * grid_.pitch);
  const bool narrow = grid_.pitch <= kNarrowPitch;
  for (int64_t y = rows.first; y < rows.end; ++y) {
    const SiteWindow& window = sites.moveTo(y);
    if (narrow) {
      findNearestNarrow(window, found.data(), squaredDistance.data());
    } else {
      findNearest(window, found.data(), squaredDistance.data());
    }
    uint8_t* out = target.bitmap.writableRows(y, y + 1);
    if (shape_ == SiteShape::kCell) {
      std::memcpy(out, found.data(), 4 * width);
    } else {
      coverPixels(dotRadius, squaredDistance.data(), squaredDistance.data(), width);
      paintDots(sites.values(), found.data(), squaredDistance.data(), values.data(), width);
      encodePixels(values.data(), width, out);
    }
  }
}
