#pragma once

#include "platform/filters/image/ImageOperation.h"
#include "platform/filters/spatial/GaussianStream.h"

/// Filters that look at a pixel's surroundings, on premultiplied linear values.

/// Gaussian blur of all four channels.
class BlurOperation : public ImageOperation {
 public:
  /// sigma in pixels, above 0.
  explicit BlurOperation(double sigma) : plan_(sigma), sigma_(sigma) {}
  int64_t growth() const override;
  int64_t reach() const override { return plan_.margin(); }
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  void renderOpaque(const SourceView& view, const OperationTarget& target, RowRange rows) const;

  GaussianPlan plan_;
  double sigma_;
};

/// Adds `amount` times what a blur takes away from the luminance (unsharp mask). Samples never
/// leave the picture, so that its border gets no halo.
class SharpenOperation : public ImageOperation {
 public:
  SharpenOperation(double amount, double sigma)
      : plan_(sigma), amount_(static_cast<float>(amount)) {}
  int64_t reach() const override { return plan_.margin(); }
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  GaussianPlan plan_;
  float amount_;
};

/// Squared differences along both diagonals of 2 x 2 pixels (Roberts' cross), for each colour.
class EdgesOperation : public ImageOperation {
 public:
  explicit EdgesOperation(double intensity) : intensity_(static_cast<float>(intensity)) {}
  int64_t reach() const override { return 1; }
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  float intensity_;
};

/// White, as opaque as luminance blurred by half the radius exceeds that blurred by 1.5 times the
/// radius.
class EdgeWorkOperation : public ImageOperation {
 public:
  /// radius in pixels, above 0.
  explicit EdgeWorkOperation(double radius)
      : fine_(0.5 * radius), coarse_(1.5 * radius), radius_(radius) {}
  int64_t growth() const override;
  int64_t reach() const override { return coarse_.margin(); }
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  GaussianPlan fine_;
  GaussianPlan coarse_;
  double radius_;
};
