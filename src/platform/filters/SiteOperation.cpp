#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/TargetClones.h"
#include "platform/filters/GridOperations.h"

namespace {

/// Greatest displacement of a site is half of this, in pitches. Below 0.328 the site nearest to a
/// pixel is one of the 3 x 3 around it.
constexpr double kJitter = 0.6;
constexpr double kDotRadius = 0.55;
/// Pixels whose coordinates are taken relative to one origin, so that single precision will do.
constexpr int64_t kChunk = 512;

/// An integer hash that changes half of the bits for a change of any.
uint32_t mixed(int64_t i, int64_t j) {
  uint32_t h = static_cast<uint32_t>(i) * 0x9E3779B1U ^ static_cast<uint32_t>(j) * 0x85EBCA77U;
  h ^= h >> 15;
  h *= 0x2C1B3C6DU;
  h ^= h >> 12;
  h *= 0x297A2D39U;
  return h ^ (h >> 15);
}

/// The sites around a stretch of a row, relative to its first pixel: 3 rows of `count` each.
struct NearbySites {
  std::vector<float> x;
  std::vector<float> squaredDy;
  size_t count = 0;
  /// Where the cell of the second site begins, and cells per pixel.
  float origin = 0;
  float perPixel = 0;
};

/// For each pixel the index of its nearest site and its squared distance.
VECTOR_CLONES void findNearest(const float* __restrict siteX, const float* __restrict squaredDy,
                               size_t count, float origin, float perPixel,
                               int32_t* __restrict nearest, float* __restrict squaredDistance,
                               size_t pixelCount) {
  const auto stride = static_cast<int32_t>(count);
  const int32_t last = stride - 3;
  for (size_t k = 0; k < pixelCount; ++k) {
    const float x = static_cast<float>(static_cast<int32_t>(k)) + 0.5F;
    const auto cell = static_cast<int32_t>((x - origin) * perPixel);
    const int32_t first = cell < 0 ? 0 : (cell > last ? last : cell);
    float best = std::numeric_limits<float>::max();
    int32_t bestSite = 0;
    for (int32_t row = 0; row < 3; ++row) {
      for (int32_t column = 0; column < 3; ++column) {
        const int32_t site = row * stride + first + column;
        const float dx = siteX[site] - x;
        const float d = dx * dx + squaredDy[site];
        bestSite = d < best ? site : bestSite;
        best = d < best ? d : best;
      }
    }
    nearest[k] = bestSite;
    squaredDistance[k] = best;
  }
}

/// The three rows of sites around a row of pixels; site n of a row is in column firstSite + n.
class SiteRows {
 public:
  SiteRows(const SiteGrid& grid, const SourceView& view, const OperationTarget& target)
      : grid_(grid), view_(view), left_(target.left), top_(target.top) {
    const auto width = static_cast<double>(target.bitmap.pixelsWide());
    first_ = column(0.5) - 1;
    count_ = static_cast<size_t>(column(width - 0.5) + 2 - first_);
    for (Row& row : rows_) row.x.resize(count_), row.y.resize(count_);
    values_.resize(3 * count_ * 4);
    codes_.resize(3 * count_);
  }

  /// Moves to the pixel row `y`.
  void moveTo(int64_t y) {
    y_ = static_cast<double>(y) + 0.5;
    const auto middle = static_cast<int64_t>(
        std::floor((static_cast<double>(top_) - y_ - grid_.center.y) / grid_.pitch + 0.5));
    for (int64_t j = middle - 1; j <= middle + 1; ++j) {
      const auto slot = static_cast<size_t>(((j % 3) + 3) % 3);
      if (rows_[slot].j != j) fill(slot, j);
    }
  }

  /// The sites around pixels `begin` to `end` - 1 of the row; answers the column of the first.
  size_t around(int64_t begin, int64_t end, NearbySites& nearby) const {
    const int64_t first = column(static_cast<double>(begin) + 0.5) - 1;
    const int64_t last = column(static_cast<double>(end) - 0.5) + 1;
    const auto offset = static_cast<size_t>(first - first_);
    nearby.count = static_cast<size_t>(last - first + 1);
    nearby.x.resize(3 * nearby.count);
    nearby.squaredDy.resize(3 * nearby.count);
    const auto origin = static_cast<double>(begin);
    for (size_t slot = 0; slot < 3; ++slot) {
      const Row& row = rows_[slot];
      float* x = nearby.x.data() + slot * nearby.count;
      float* squaredDy = nearby.squaredDy.data() + slot * nearby.count;
      for (size_t n = 0; n < nearby.count; ++n) {
        x[n] = static_cast<float>(row.x[offset + n] - origin);
        const auto dy = static_cast<float>(row.y[offset + n] - y_);
        squaredDy[n] = dy * dy;
      }
    }
    nearby.origin = static_cast<float>(grid_.center.x - static_cast<double>(left_) - origin +
                                       (static_cast<double>(first) + 0.5) * grid_.pitch);
    nearby.perPixel = static_cast<float>(1 / grid_.pitch);
    return offset;
  }

  size_t count() const { return count_; }
  /// Linear light of all sites, and their codes.
  const float* values() const { return values_.data(); }
  const uint32_t* codes() const { return codes_.data(); }

 private:
  struct Row {
    int64_t j = std::numeric_limits<int64_t>::min();
    std::vector<double> x;
    std::vector<double> y;
  };

  int64_t column(double x) const {
    return static_cast<int64_t>(
        std::floor((static_cast<double>(left_) + x - grid_.center.x) / grid_.pitch + 0.5));
  }

  void fill(size_t slot, int64_t j) {
    Row& row = rows_[slot];
    row.j = j;
    float* values = values_.data() + slot * count_ * 4;
    for (size_t n = 0; n < count_; ++n) {
      const NSPoint site = grid_.site(first_ + static_cast<int64_t>(n), j);
      row.x[n] = site.x - static_cast<double>(left_);
      row.y[n] = static_cast<double>(top_) - site.y;
      const auto value = view_.sample(row.x[n], row.y[n]);
      std::copy(value.begin(), value.end(), values + n * 4);
    }
    encodePixels(values, count_, reinterpret_cast<uint8_t*>(codes_.data() + slot * count_));
  }

  const SiteGrid& grid_;
  const SourceView& view_;
  int64_t left_;
  int64_t top_;
  int64_t first_ = 0;
  size_t count_ = 0;
  double y_ = 0;
  Row rows_[3];
  std::vector<float> values_;
  std::vector<uint32_t> codes_;
};

/// Paints one stretch of a row after another.
class SitePainter {
 public:
  SitePainter(const SiteRows& sites, double pitch)
      : sites_(sites), dotRadius_(static_cast<float>(kDotRadius * pitch)) {}

  void paint(SiteShape shape, int64_t begin, int64_t end, uint32_t* out) {
    const size_t offset = sites_.around(begin, end, nearby_);
    const auto count = static_cast<size_t>(end - begin);
    findNearest(nearby_.x.data(), nearby_.squaredDy.data(), nearby_.count, nearby_.origin,
                nearby_.perPixel, nearest_, squaredDistance_, count);
    const auto stride = static_cast<int32_t>(nearby_.count);
    const auto widening = static_cast<int32_t>(sites_.count() - nearby_.count);
    for (size_t k = 0; k < count; ++k) {
      const int32_t row = (nearest_[k] >= stride ? 1 : 0) + (nearest_[k] >= 2 * stride ? 1 : 0);
      nearest_[k] += row * widening + static_cast<int32_t>(offset);
    }
    if (shape == SiteShape::kCell) {
      for (size_t k = 0; k < count; ++k) out[begin + k] = sites_.codes()[nearest_[k]];
    } else {
      paintDots(count);
      encodePixels(values_, count, reinterpret_cast<uint8_t*>(out + begin));
    }
  }

 private:
  void paintDots(size_t count) {
    for (size_t k = 0; k < count; ++k) {
      const float* site = sites_.values() + static_cast<size_t>(nearest_[k]) * 4;
      const float depth = dotRadius_ - std::sqrt(squaredDistance_[k]) + 0.5F;
      const float coverage = std::clamp(depth, 0.0F, 1.0F);
      const float gap = site[3] * (1 - coverage);
      for (size_t c = 0; c < 4; ++c) values_[k * 4 + c] = site[c] * coverage + gap;
    }
  }

  const SiteRows& sites_;
  float dotRadius_;
  NearbySites nearby_;
  int32_t nearest_[kChunk];
  float squaredDistance_[kChunk];
  float values_[kChunk * 4];
};

}  // namespace

NSPoint SiteGrid::site(int64_t i, int64_t j) const {
  const uint32_t random = mixed(i, j);
  const double u = (random & 0xFFFF) / 65536.0 - 0.5;
  const double v = (random >> 16) / 65536.0 - 0.5;
  return {center.x + (static_cast<double>(i) + kJitter * u) * pitch,
          center.y + (static_cast<double>(j) + kJitter * v) * pitch};
}

int64_t SiteOperation::growth() const {
  return static_cast<int64_t>(std::ceil(1.5 * grid_.pitch));
}

int64_t SiteOperation::reach() const {
  return static_cast<int64_t>(std::ceil(2 * grid_.pitch));
}

void SiteOperation::render(const OperationSource& source, const OperationTarget& target,
                           RowRange rows) const {
  const SourceView view(source, target);
  SiteRows sites(grid_, view, target);
  SitePainter painter(sites, grid_.pitch);
  const int64_t width = target.bitmap.pixelsWide();
  for (int64_t y = rows.first; y < rows.end; ++y) {
    sites.moveTo(y);
    auto* out = reinterpret_cast<uint32_t*>(target.bitmap.writableRows(y, y + 1));
    for (int64_t x = 0; x < width; x += kChunk) {
      painter.paint(shape_, x, std::min(x + kChunk, width), out);
    }
  }
}
