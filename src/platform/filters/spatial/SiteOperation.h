#pragma once

#include "platform/filters/image/ImageOperation.h"
#include "platform/foundation/Geometry.h"

/// A square grid of points, each moved by up to 0.3 of the pitch in both directions. Which way
/// depends only on the point's place in the grid, so pictures come out the same every time.
struct SiteGrid {
  double pitch = 1;
  NSPoint center;
};

/// What the point nearest to a pixel does with it.
enum class SiteShape {
  kCell,  ///< colours it
  kDot,   ///< colours it within 0.55 pitches; beyond, white shows between the dots
};

/// Each pixel by its nearest grid point, which has the source's colour at its place.
class SiteOperation : public ImageOperation {
 public:
  SiteOperation(SiteShape shape, const SiteGrid& grid) : shape_(shape), grid_(grid) {}
  int64_t growth() const override;
  int64_t reach() const override;
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  SiteShape shape_;
  SiteGrid grid_;
};
