#include "platform/graphics/resample/ResampleAxis.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

/// Pixels are averaged only where this many cells are left per destination pixel: the averaging
/// then changes no weight by more than a few ten-thousandths of the largest.
constexpr double kCellsPerPixel = 64;

/// Radius of the kernel at scale 1.
constexpr double kKernelRadius = 2;

double catmullRom(double x) {
  x = std::abs(x);
  if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
  if (x < kKernelRadius) return ((-0.5 * x + 2.5) * x - 4) * x + 2;
  return 0;
}

/// Rounds the values, scaled so that they sum to one, to fixed point; what rounding leaves over
/// goes to the largest.
void quantise(const std::vector<double>& values, double sum, std::vector<int16_t>& weights) {
  constexpr int kOne = 1 << kFilterBits;
  weights.resize(values.size());
  int left = kOne;
  for (size_t i = 0; i < values.size(); ++i) {
    weights[i] = static_cast<int16_t>(std::lround(values[i] / sum * kOne));
    left -= weights[i];
  }
  int16_t& largest = *std::max_element(weights.begin(), weights.end());
  largest = static_cast<int16_t>(largest + left);
}

/// Takes weights of zero off both ends.
void trim(ResampleWindow& window) {
  auto& weights = window.weights;
  while (weights.back() == 0) weights.pop_back();
  const auto used = std::find_if(weights.begin(), weights.end(), [](int16_t w) { return w != 0; });
  window.first += used - weights.begin();
  weights.erase(weights.begin(), used);
}

}  // namespace

ResampleAxis::ResampleAxis(const AxisMapping& mapping, int64_t pixelCount) : mapping_(mapping) {
  const double end = mapping.source + mapping.sourceLength;
  step_ = mapping.sourceLength / mapping.destinationLength;
  if (!(mapping.sourceLength > 0 && mapping.destinationLength > 0) || !std::isfinite(end) ||
      !std::isfinite(mapping.source) || !std::isfinite(mapping.destination) ||
      !std::isfinite(step_) || !(step_ > 0)) {
    return;
  }
  const auto limit = static_cast<double>(pixelCount);
  firstPixel_ = static_cast<int64_t>(std::clamp(std::floor(mapping.source), 0.0, limit));
  endPixel_ = static_cast<int64_t>(std::clamp(std::ceil(end), 0.0, limit));
  if (firstPixel_ >= endPixel_) return;
  const double size = std::min(std::floor(step_ / kCellsPerPixel), limit);
  cellSize_ = std::max<int64_t>(1, static_cast<int64_t>(size));
  cellCount_ = (endPixel_ - firstPixel_ + cellSize_ - 1) / cellSize_;
  reach_ = kKernelRadius * std::max(1.0, step_ / static_cast<double>(cellSize_));
}

int64_t ResampleAxis::maxWindow() const {
  const double taps = std::min(2 * reach_ + 2, static_cast<double>(cellCount_));
  return static_cast<int64_t>(taps);
}

/// The middle of a destination pixel, in cells from the first.
double ResampleAxis::centre(int64_t destination) const {
  double offset = (static_cast<double>(destination) + 0.5 - mapping_.destination) * step_;
  if (mapping_.mirrored) offset = mapping_.sourceLength - offset;
  const double position = mapping_.source + std::clamp(offset, 0.0, mapping_.sourceLength);
  const double inside =
      std::clamp(position, static_cast<double>(firstPixel_), static_cast<double>(endPixel_));
  return (inside - static_cast<double>(firstPixel_)) / static_cast<double>(cellSize_);
}

void ResampleAxis::window(int64_t destination, ResampleWindow& result) const {
  const double middle = centre(destination);
  const auto last = static_cast<double>(cellCount_ - 1);
  const double first = std::clamp(std::ceil(middle - reach_ - 0.5), 0.0, last);
  const double final = std::clamp(std::floor(middle + reach_ - 0.5), first, last);
  result.first = static_cast<int64_t>(first);

  std::vector<double> values(static_cast<size_t>(final - first) + 1);
  double sum = 0;
  for (size_t i = 0; i < values.size(); ++i) {
    const double cell = first + static_cast<double>(i) + 0.5;
    values[i] = catmullRom((cell - middle) * kKernelRadius / reach_);
    sum += values[i];
  }
  const int64_t inLastCell = endPixel_ - firstPixel_ - (cellCount_ - 1) * cellSize_;
  if (final == last && inLastCell != cellSize_) {
    const double share = static_cast<double>(inLastCell) / static_cast<double>(cellSize_);
    sum -= values.back() * (1 - share);
    values.back() *= share;
  }
  quantise(values, sum, result.weights);
  trim(result);
}
