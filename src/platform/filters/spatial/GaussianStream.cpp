#include "platform/filters/spatial/GaussianStream.h"

#include <algorithm>
#include <cmath>

#include "platform/filters/spatial/GaussianKernels.h"

namespace {

/// From this many pixels (at the lowest level) on another halving is cheaper, and within half a
/// code of the exact result.
constexpr double kWidestDirect = 3;
/// Where the Gaussian is cut off; what is left out shows nowhere by more than one code.
constexpr double kCutOff = 3.5;

int64_t floorHalf(int64_t x) {
  return x >> 1;
}

/// Columns needed one level up and one level down.
ColumnRange halvedFrom(ColumnRange c) {
  return {2 * c.begin - 2, 2 * (c.end - 1) + 3};
}
ColumnRange doubledFrom(ColumnRange c) {
  return {floorHalf(c.begin) - 1, floorHalf(c.end - 1) + 2};
}

class HalvedStream : public RowStream {
 public:
  HalvedStream(ColumnRange columns, std::unique_ptr<RowStream> input)
      : RowStream(columns, static_cast<Channels>(input->channels())),
        sum_(input->valueCount()),
        window_(std::move(input), 5) {}

  void produce(int64_t row, float* out) override {
    constexpr float kWeights[] = {6.0F / 16, 4.0F / 16, 1.0F / 16};
    weighSymmetric(window_.rows(2 * row - 2, 5), kWeights, 2, sum_.data(),
                   window_.input().valueCount());
    halveRow(sum_.data() + 2 * channels(), channels(), out, columns_.count());
  }

 private:
  AlignedFloats sum_;
  RowWindow window_;
};

class DoubledStream : public RowStream {
 public:
  DoubledStream(ColumnRange columns, std::unique_ptr<RowStream> input)
      : RowStream(columns, static_cast<Channels>(input->channels())),
        sum_(input->valueCount()),
        window_(std::move(input), 3) {}

  void produce(int64_t row, float* out) override {
    const int64_t middle = floorHalf(row);
    // The same three rows for both halves of a pair, so that none is computed twice.
    const float* const* rows = window_.rows(middle - 1, 3);
    if (row % 2 == 0) {
      constexpr float kOnRow[] = {0.75F, 0.125F};
      weighSymmetric(rows, kOnRow, 1, sum_.data(), window_.input().valueCount());
    } else {
      constexpr float kBetween[] = {0, 0.5F};
      const float* const between[] = {rows[1], rows[1], rows[2]};
      weighSymmetric(between, kBetween, 1, sum_.data(), window_.input().valueCount());
    }
    const auto odd = static_cast<size_t>(columns_.begin & 1);
    doubleRow(sum_.data() + channels(), channels(), odd, out, columns_.count());
  }

 private:
  AlignedFloats sum_;
  RowWindow window_;
};

class FilteredStream : public RowStream {
 public:
  FilteredStream(ColumnRange columns, const std::vector<float>& weights,
                 std::unique_ptr<RowStream> input)
      : RowStream(columns, static_cast<Channels>(input->channels())),
        weights_(weights),
        sum_(input->valueCount()),
        window_(std::move(input), 2 * weights.size() - 1) {
    for (size_t tap = 0; tap < 2 * weights_.size() - 1; ++tap) {
      taps_.push_back(sum_.data() + tap * channels());
    }
  }

  void produce(int64_t row, float* out) override {
    const size_t radius = weights_.size() - 1;
    const float* const* rows = window_.rows(row - static_cast<int64_t>(radius), 2 * radius + 1);
    weighSymmetric(rows, weights_.data(), radius, sum_.data(), window_.input().valueCount());
    weighSymmetric(taps_.data(), weights_.data(), radius, out, valueCount());
  }

 private:
  std::vector<float> weights_;
  AlignedFloats sum_;
  std::vector<const float*> taps_;
  RowWindow window_;
};

}  // namespace

GaussianPlan::GaussianPlan(double sigma) {
  while (sigma / std::exp2(levels) >= kWidestDirect) ++levels;
  const double pyramid = 2.0 * (std::exp2(2 * levels) - 1) / 3;
  const double direct = std::sqrt(sigma * sigma - pyramid) / std::exp2(levels);
  const auto radius = static_cast<int>(std::ceil(kCutOff * direct));
  double sum = 0;
  std::vector<double> exact;
  for (int i = 0; i <= radius; ++i) {
    exact.push_back(std::exp(-i * i / (2 * direct * direct)));
    sum += (i == 0 ? 1 : 2) * exact.back();
  }
  for (const double weight : exact) weights.push_back(static_cast<float>(weight / sum));
}

int64_t GaussianPlan::margin() const {
  return (static_cast<int64_t>(radius()) + 4) << levels;
}

std::unique_ptr<RowStream> makeGaussianStream(const GaussianPlan& plan, ColumnRange columns,
                                              const RowStreamFactory& source) {
  std::vector<ColumnRange> results{columns};
  for (int level = 0; level < plan.levels; ++level) results.push_back(doubledFrom(results.back()));
  const auto radius = static_cast<int64_t>(plan.radius());
  const ColumnRange lowest = results.back();
  std::vector<ColumnRange> inputs{{lowest.begin - radius, lowest.end + radius}};
  for (int level = 0; level < plan.levels; ++level) inputs.push_back(halvedFrom(inputs.back()));

  std::unique_ptr<RowStream> stream = source(inputs.back());
  for (int level = plan.levels; level-- > 0;) {
    stream = std::make_unique<HalvedStream>(inputs[static_cast<size_t>(level)], std::move(stream));
  }
  stream = std::make_unique<FilteredStream>(lowest, plan.weights, std::move(stream));
  for (int level = plan.levels; level-- > 0;) {
    stream =
        std::make_unique<DoubledStream>(results[static_cast<size_t>(level)], std::move(stream));
  }
  return stream;
}
