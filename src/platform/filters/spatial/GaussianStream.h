#pragma once

#include <functional>

#include "platform/filters/spatial/RowStream.h"

/// Gives the rows to be blurred, over the columns asked for (more than those of the result).
using RowStreamFactory = std::function<std::unique_ptr<RowStream>(ColumnRange)>;

/// How a Gaussian of a given width is made: halved `levels` times with (1, 4, 6, 4, 1) / 16,
/// filtered there with weights[0] to weights[radius()] on both sides, and doubled again. A pair of
/// halving and doubling at level l adds a variance of 2 * 4^l square pixels, which the filter in
/// the middle leaves out. Binomial filters are close to Gaussians, so the whole is one too, within
/// two 8-bit codes, and its cost does not grow with sigma.
struct GaussianPlan {
  /// sigma: standard deviation in pixels, above 0.
  explicit GaussianPlan(double sigma);
  size_t radius() const { return weights.size() - 1; }
  /// Pixels on each side of a result pixel that it may depend on.
  int64_t margin() const;

  int levels = 0;
  std::vector<float> weights;
};

/// The rows of `source` blurred, over `columns`.
std::unique_ptr<RowStream> makeGaussianStream(const GaussianPlan& plan, ColumnRange columns,
                                              const RowStreamFactory& source);
