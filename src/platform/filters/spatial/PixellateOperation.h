#pragma once

#include "platform/filters/image/ImageOperation.h"
#include "platform/foundation/Geometry.h"

/// Square cells, each in the colour at its centre; `center` is a corner of four cells.
class PixellateOperation : public ImageOperation {
 public:
  /// scale: side of a cell in pixels, 1 or more.
  PixellateOperation(double scale, NSPoint center) : scale_(scale), center_(center) {}
  int64_t growth() const override;
  int64_t reach() const override;
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  double scale_;
  NSPoint center_;
};
